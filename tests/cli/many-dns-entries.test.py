"""The time of a build grows with the number of DNS entries that do not fit, and not with its square."""
import os
import resource
import tempfile

from support import Checks, need_optimized, run

COUNT = 60000
CPU_SECONDS = 10  # far more than the files need, and less than walks over all entries for each of them take

need_optimized()
checks = Checks()


def limit_processor_time():
    resource.setrlimit(resource.RLIMIT_CPU, (CPU_SECONDS, CPU_SECONDS))


def check(what, attribute, entries):
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "many.yaml")
        with open(path, "w", encoding="ascii") as file:
            file.write(f"config:\n  intf:\n    Ethernet1:\n      {attribute}:\n" + "".join(entries))
            file.write("links:\n  Ethernet1:\n    mac: '02:00:00:00:00:01'\n    addresses: [fe80::1/64]\n")
        result = run("build", path, "Ethernet1", preexec_fn=limit_processor_time)
    checks.equal(f"{what}: exit status, with {result.stderr[:200]!r}", result.returncode, 0)
    checks.contains(what, result.stdout, "Router Advertisement, RFC 4861 4.2 (16 octets)")


def lifetime(seconds):
    return f"{{ lifetime: {seconds}, lifetimeConfigured: true }}"


check("suffixes of one lifetime", "dnsSuffixes", (f"        s{i}.example: {{}}\n" for i in range(COUNT)))
check("servers of one lifetime", "dnsServers", (f"        2001:db8::{i:x}: {{}}\n" for i in range(COUNT)))
check("suffixes, each of its own lifetime", "dnsSuffixes",
      (f"        s{i}.example: {lifetime(1 + i)}\n" for i in range(COUNT)))
check("servers, each of its own lifetime", "dnsServers",
      (f"        2001:db8::{i:x}: {lifetime(1 + i)}\n" for i in range(COUNT)))
checks.exit()
