"""rdisc6 and rdnssd report the DNS options that `send` sends."""
import os
import re
import shutil
import tempfile

from netns import PROGRAM, Checks, Pair, eventually, need, skip

CONFIG = """
config:
  intf:
    lan:
      dnsServers:
        2001:db8::53:
        2001:db8::54: { lifetime: 1234, lifetimeConfigured: true }
      dnsSuffixes:
        example.com: { lifetime: 1500, lifetimeConfigured: true }
        lab.example.org: { lifetime: 1500, lifetimeConfigured: true }
"""

checks = Checks()


def field(text, name):
    """The values that rdisc6 prints for a field of that name, wherever it stands."""
    return re.findall(rf"^\s*{name}\s*:\s*(.*?)\s*$", text, re.MULTILINE)


def check_rdisc6(host):
    result = host.run("rdisc6", "-1", "-w", "5000", "-r", "3", "host", check=False)
    text = result.stdout
    checks.equal("rdisc6: exit status, errors", (result.returncode, result.stderr), (0, ""))
    checks.equal("rdisc6: servers", field(text, "Recursive DNS server"), ["2001:db8::53", "2001:db8::54"])
    checks.equal("rdisc6: search lists", [" ".join(v.split()) for v in field(text, "DNS search list")],
                 ["example.com lab.example.org"])
    checks.equal("rdisc6: lifetimes", [int(v.split()[0]) for v in field(text, "DNS (?:server|search list) lifetimes?")],
                 [300, 1234, 1500])


def check_rdnssd(host, folder):
    resolv = os.path.join(folder, "resolv.conf")
    host.start("rdnssd", "-f", "-u", "root", "-p", os.path.join(folder, "pid"), "-r", resolv, "-H", "/bin/true")

    def read():
        try:
            with open(resolv, encoding="ascii") as file:
                text = file.read()
        except OSError:
            return None
        return text if "nameserver" in text and "search" in text else None

    text = eventually(read, 15) or ""
    servers = re.findall(r"^nameserver (\S+)", text, re.MULTILINE)
    checks.equal("rdnssd: servers", sorted(servers), ["2001:db8::53", "2001:db8::54"])
    search = " ".join(re.findall(r"^search (.*)", text, re.MULTILINE)).split()
    checks.equal("rdnssd: search list", sorted(name.rstrip(".") for name in search), ["example.com", "lab.example.org"])


need()
if not shutil.which("rdisc6") and not shutil.which("rdnssd"):
    skip("neither rdisc6 nor rdnssd is installed")
with tempfile.TemporaryDirectory() as directory, Pair() as pair:
    path = os.path.join(directory, "dns.yaml")
    with open(path, "w", encoding="ascii") as config:
        config.write(CONFIG)
    pair.router.start(PROGRAM, "send", path, "lan", "--via", "router", "--interval", "0.2")
    if shutil.which("rdisc6"):
        check_rdisc6(pair.host)
    if shutil.which("rdnssd"):
        check_rdnssd(pair.host, directory)
checks.exit()
