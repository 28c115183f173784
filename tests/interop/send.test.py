"""`send` on a real interface: contents and number of advertisements, Ctrl-C, and the reasons for not sending."""
import os
import re
import signal
import tempfile
import time

from netns import EXAMPLE, PROGRAM, Checks, Pair, eventually, link_local, need

checks = Checks()

CONFIG = "config: {intf: {lan: {raLifetime: 900, prefixes: {2001:db8:77::/64: }}}}\n"


def received(host):
    """The number of advertisements that the host's kernel has counted."""
    text = host.run("cat", "/proc/net/snmp6").stdout
    return int(re.search(r"^Icmp6InRouterAdvertisements\s+(\d+)", text, re.MULTILINE).group(1))


def check_count(pair, path):
    before = received(pair.host)
    start = time.monotonic()
    result = pair.router.run(PROGRAM, "send", path, "lan", "--via", "router", "--count", "3", "--interval", "0.3", check=False)
    took = time.monotonic() - start
    checks.equal("count: exit status, errors", (result.returncode, result.stderr), (0, ""))
    checks.true(f"count: summary: {result.stdout!r}",
                re.search(r"^sent 3 advertisements in 0\.[67] s$", result.stdout, re.MULTILINE))
    checks.true(f"count: took {took} s", 0.6 <= took < 10)
    checks.equal("count: received", eventually(lambda: received(pair.host) - before >= 3) and received(pair.host) - before, 3)


def check_sources(pair, path):
    own = link_local(pair.router, "router")
    result = pair.router.run(PROGRAM, "send", path, "lan", "--via", "router")
    checks.contains("addresses of the device", result.stdout, f"from {own} ({pair.ROUTER_MAC}) to ff02::1 (33:33:00:00:00:01) on router")
    result = pair.router.run(PROGRAM, "send", path, "lan", "--via", "router", "--src", "fe80::7", "--src-mac", "02:00:00:00:00:07")
    checks.contains("addresses that are given", result.stdout, "from fe80::7 (02:00:00:00:00:07) to ")
    result = pair.router.run(PROGRAM, "send", EXAMPLE, "Ethernet1", "--via", "router")
    checks.contains("addresses of the file", result.stdout, "from fe80::1 (02:00:00:00:00:01) to ")


def check_interrupt(pair, path, number):
    process = pair.router.start(PROGRAM, "send", path, "lan", "--via", "router", "--count", "0", "--interval", "30")
    first = process.stdout.readline()
    checks.contains("interrupt: first line", first, "sending ")
    before = time.monotonic()
    process.send_signal(number)
    rest, _ = process.communicate(timeout=10)
    checks.true("interrupt: ends at once", time.monotonic() - before < 5)
    checks.equal("interrupt: exit status", process.returncode, 0)
    checks.true(f"interrupt: summary: {rest!r}", re.fullmatch(r"sent [01] advertisements? in \d+\.\d s\n", rest))


def check_failure(what, result, error):
    checks.equal(what + ": exit status", result.returncode, 1)
    checks.contains(what + ": error", result.stderr, error)


def check_failures(pair, path):
    send = [PROGRAM, "send", path, "lan", "--via"]
    check_failure("unknown device", pair.router.run(*send, "routr", check=False),
                  "there is no interface \"routr\" on this machine; did you mean router?")
    check_failure("loopback", pair.router.run(*send, "lo", check=False), "lo is not an Ethernet interface")
    check_failure("no rights", pair.router.run("setpriv", "--bounding-set=-net_raw", "--inh-caps=-net_raw", *send, "router",
                                               check=False), "without the right to open packet sockets")
    pair.router.run("ip", "link", "set", "router", "mtu", "1280")
    big = os.path.join(os.path.dirname(path), "big.yaml")
    with open(big, "w", encoding="ascii") as file:
        file.write("config: {intf: {lan: {networkBootFileUrl: '" + 1400 * "x" + "'}}}\nlinks: {lan: {mtu: 1500}}\n")
    check_failure("frame above the MTU", pair.router.run(PROGRAM, "send", big, "lan", "--via", "router", check=False),
                  "octets is too long for its MTU")
    pair.router.run("ip", "link", "set", "router", "down")
    check_failure("device that is down", pair.router.run(*send, "router", check=False), "router is down")


need("setpriv")
with tempfile.TemporaryDirectory() as folder, Pair() as joined:
    config = os.path.join(folder, "send.yaml")
    with open(config, "w", encoding="ascii") as out:
        out.write(CONFIG)
    check_sources(joined, config)
    check_count(joined, config)
    check_interrupt(joined, config, signal.SIGINT)
    check_interrupt(joined, config, signal.SIGTERM)
    check_failures(joined, config)
checks.exit()
