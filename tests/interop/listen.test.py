"""`listen`, with radvd on the other side of the link: routers, prefixes, changes, the final advertisement; then messages
that RFC 4861 6.1.2 makes invalid, and how `listen` ends."""
import json
import os
import shutil
import signal
import socket
import struct
import sys
import tempfile
import threading

from netns import PROGRAM, Checks, Pair, eventually, link_local, need

RADVD = shutil.which("radvd", path=os.environ["PATH"] + ":/usr/sbin")

checks = Checks()

SEND = """
import socket, sys
s = socket.socket(socket.AF_PACKET, socket.SOCK_RAW)
s.bind((sys.argv[1], 0))
for _ in range(int(sys.argv[2])):
    for frame in sys.argv[3:]:
        s.send(bytes.fromhex(frame))
"""

# An advertisement from this host to itself, through an interface that need not be Ethernet.
SEND_MESSAGE = """
import socket, sys
device, message = sys.argv[1], bytes.fromhex(sys.argv[2])
s = socket.socket(socket.AF_INET6, socket.SOCK_RAW, socket.IPPROTO_ICMPV6)
s.setsockopt(socket.IPPROTO_IPV6, socket.IPV6_UNICAST_HOPS, 255)
own = ("fe80::77", 0, 0, socket.if_nametoindex(device))
s.bind(own)
s.sendto(message, own)
"""

# Advertisements and echo requests from this host to itself, without an end.
CHATTER = """
import socket
send = socket.socket(socket.AF_INET6, socket.SOCK_RAW, socket.IPPROTO_ICMPV6).sendto
messages = [bytes.fromhex(kind + "00000000010001") for kind in ("86", "80")]
while True:
    for message in messages:
        send(message, ("::1", 0))
"""


class Listener:
    """A running `listen`, whose lines are read as they come."""

    def __init__(self, node, *arguments, device="host"):
        self.process = node.start(PROGRAM, "listen", device, *arguments)
        self.lines = []
        self.reader = threading.Thread(target=lambda: self.lines.extend(self.process.stdout), daemon=True)
        self.reader.start()

    def events(self, name):
        return [e for e in (json.loads(line) for line in list(self.lines)) if e["event"] == name]

    def first(self, name, condition=lambda event: True, seconds=25):
        """The first event of that name, once it has come; None if it does not come."""
        return eventually(lambda: next((e for e in self.events(name) if condition(e)), None), seconds)

    def stop(self, number=signal.SIGINT):
        """Sends the signal, waits for the end, and returns the exit status."""
        self.process.send_signal(number)
        return self.wait()

    def wait(self):
        status = self.process.wait(timeout=20)
        self.reader.join(timeout=10)
        return status


def is_listening(node, device="host"):
    """Whether a process in the namespace has joined the group of all routers on the link, the last one that `listen` joins."""
    group = "ff02" + 26 * "0" + "02"
    return any(line.split()[1:3] == [device, group] for line in node.run("cat", "/proc/net/igmp6").stdout.splitlines())


def checksum(octets):
    octets += b"\0" * (len(octets) % 2)
    total = sum(struct.unpack(f">{len(octets) // 2}H", octets))
    while total >> 16:
        total = (total & 0xFFFF) + (total >> 16)
    return ~total & 0xFFFF


def in_frame(payload, source, next_header=58, hop_limit=255, dest="ff02::1"):
    addresses = socket.inet_pton(socket.AF_INET6, source) + socket.inet_pton(socket.AF_INET6, dest)
    group = b"\x33\x33" + addresses[28:]
    header = struct.pack(">IHBB", 6 << 28, len(payload), next_header, hop_limit)
    return (group + b"\x02" + bytes(4) + b"\x99" + b"\x86\xdd" + header + addresses + payload).hex()


def summed(message, source, good=True, dest="ff02::1"):
    addresses = socket.inet_pton(socket.AF_INET6, source) + socket.inet_pton(socket.AF_INET6, dest)
    zeroed = message[:2] + b"\0\0" + message[4:]
    right = checksum(addresses + struct.pack(">I3xB", len(message), 58) + zeroed)
    return message[:2] + struct.pack(">H", right if good else right ^ 0x0100) + message[4:]


def frame(message, source="fe80::99", hop_limit=255, good=True, dest="ff02::1"):
    return in_frame(summed(message, source, good, dest), source, hop_limit=hop_limit, dest=dest)


def fragments(message, source, size):
    """The frames of the message in fragments of that size, a multiple of 8."""
    message = summed(message, source)
    return [in_frame(struct.pack(">BxHI", 58, at | (at + size < len(message)), 7) + message[at:at + size], source, 44)
            for at in range(0, len(message), size)]


ADVERT = bytes.fromhex("86000000" "40000708" "00000000" "00000000")
MTU = bytes.fromhex("0501000000000578")
FINAL = bytes.fromhex("86000000" "40000000" "00000000" "00000000")


def send(router, *frames, device="router", times=1):
    router.run(sys.executable, "-c", SEND, device, str(times), *frames)


def radvd_config(lifetime):
    return f"""interface router {{
  AdvSendAdvert on; MinRtrAdvInterval 3; MaxRtrAdvInterval 4; AdvDefaultLifetime {lifetime}; AdvCurHopLimit 61;
  AdvManagedFlag on; AdvReachableTime 30000; AdvRetransTimer 1000; AdvLinkMTU 1400;
  prefix 2001:db8:1::/64 {{ AdvValidLifetime 7200; AdvPreferredLifetime 3600; }};
  prefix 2001:db8:2::/48 {{ AdvOnLink off; AdvValidLifetime 9000; AdvPreferredLifetime 4000; }};
}};
"""


def check_first(listener, address):
    router = listener.first("router")
    checks.equal("radvd: router", router, {"event": "router", "router": address})
    change = listener.first("change") or {"record": {}, "changes": {}}
    record = change["record"]
    expected = {
        "intfId": "host", "curHopLimit": 61, "managedConfigFlag": True, "otherConfigFlag": False,
        "reachableTime": 30000, "retransTimer": 1000, "mtuSpecified": True, "mtu": 1400, "srcIp6Addr": address,
        "routerLifeTime": 1800,
        "prefixInfo": [
            {"prefix": "2001:db8:1::/64", "onLinkFlag": True, "autoConfigFlag": True, "validLifetime": 7200,
             "preferredLifetime": 3600},
            {"prefix": "2001:db8:2::/48", "onLinkFlag": False, "autoConfigFlag": True, "validLifetime": 9000,
             "preferredLifetime": 4000}],
        "isDeathPacket": False}
    record["prefixInfo"] = sorted(record.get("prefixInfo", []), key=lambda p: p["prefix"])  # radvd chooses their order
    checks.equal("radvd: record", record, expected)
    checks.equal("radvd: everything is new", change["changes"].get("routerLifeTime"), [None, 1800])


def check_radvd(pair, folder):
    address = link_local(pair.router, "router")
    pair.router.sysctl(all__forwarding=1)
    config = os.path.join(folder, "radvd.conf")

    def configure(lifetime):
        with open(config, "w", encoding="ascii") as file:
            file.write(radvd_config(lifetime))

    listener = Listener(pair.host, "--json")
    checks.true("listen has joined the group", eventually(lambda: is_listening(pair.host)))
    configure(1800)
    radvd = pair.router.start(RADVD, "-n", "-m", "stderr", "-C",
                              config, "-p", os.path.join(folder, "pid"))
    check_first(listener, address)

    configure(2400)
    radvd.send_signal(signal.SIGHUP)
    # radvd may first send a final advertisement with the old configuration.
    change = listener.first("change", lambda e: e["record"]["routerLifeTime"] == 2400) or {"changes": {}}
    checks.true(f"radvd: changed lifetime: {change['changes']}", change["changes"].get("routerLifeTime", [])[1:] == [2400])
    checks.true("radvd: an unchanged value is not shown", "curHopLimit" not in change["changes"])

    seen = len(listener.lines)
    radvd.terminate()
    final = eventually(lambda: next((e for e in listener.events("change")[1:] if e["record"]["isDeathPacket"]
                                     and len(listener.lines) > seen), None), 15) or {"changes": {}}
    checks.equal("radvd: final advertisement", final["changes"].get("isDeathPacket"), [False, True])
    checks.equal("radvd: final lifetime", final["changes"].get("routerLifeTime"), [2400, 0])
    checks.equal("radvd: router gone", listener.first("routerGone"), {"event": "routerGone", "router": address})
    checks.equal("listen: exit status on SIGINT", listener.stop(), 0)
    summary = (listener.events("summary") or [{}])[-1]
    checks.equal("summary: nothing dropped, no router left", (summary.get("dropped"), summary.get("routers")), (0, 0))
    checks.true("summary: advertisements", summary.get("advertisements", 0) >= 3)


DROPPED = {  # by the source that sends it, so that the order does not matter
    "2001:db8::9": (ADVERT, {}, "its source is not a link-local address"),
    "fe80::a1": (ADVERT, {"hop_limit": 64}, "its hop limit is 64, not 255"),
    "fe80::a2": (ADVERT, {"good": False}, "its checksum is wrong"),
    "fe80::a3": (ADVERT[:1] + b"\x07" + ADVERT[2:], {}, "its code is 7, not 0"),
    "fe80::a4": (ADVERT[:12], {}, "it has 12 octets; 16 are the least"),
    "fe80::a5": (ADVERT + bytes.fromhex("0100000000000000"), {}, "an option has length 0"),
}


def check_drops(pair):
    listener = Listener(pair.host, "--json", "--count", "2")
    checks.true("listen has joined the group", eventually(lambda: is_listening(pair.host)))
    solicitation = frame(b"\x85" + bytes(7), source="fe80::b1")
    send(pair.router, *[frame(message, source=source, **options) for source, (message, options, _) in DROPPED.items()],
         solicitation)
    checks.true("all are dropped", eventually(lambda: len(listener.events("dropped")) == len(DROPPED)))
    reasons = {event["source"]: event["reason"] for event in listener.events("dropped")}
    checks.equal("reasons", reasons, {source: reason for source, (_, _, reason) in DROPPED.items()})
    send(pair.router, frame(ADVERT, source="fe80::c1"), frame(ADVERT, source="fe80::c2", dest="ff02::2"))
    checks.equal("--count: exit status", listener.wait(), 0)
    checks.equal("routers, to all nodes and to all routers", [e["router"] for e in listener.events("router")],
                 ["fe80::c1", "fe80::c2"])
    summary = (listener.events("summary") or [{}])[-1]
    checks.equal("summary", {k: summary.get(k) for k in ("advertisements", "dropped", "routers")},
                 {"advertisements": 2, "dropped": len(DROPPED), "routers": 2})


def check_table(pair):
    """While `listen` runs, another process reads the routers from its table. The table ends with it."""
    def shown():
        result = pair.host.run(PROGRAM, "neighbors", "--json", check=False)
        return json.loads(result.stdout) if result.returncode == 0 else {}

    listener = Listener(pair.host)
    checks.true("listen has joined the group", eventually(lambda: is_listening(pair.host)))
    # The table comes a moment after the socket.
    checks.true("table: empty", eventually(lambda: shown().get("neighbors") == []))
    send(pair.router, frame(ADVERT, "fe80::e1"), frame(ADVERT, "fe80::e2"), frame(ADVERT, "fe80::e3", hop_limit=1))
    expected = {("host", "fe80::e1"), ("host", "fe80::e2")}
    heard = eventually(lambda: {(row["interface"], row["router"]) for row in shown()["neighbors"]} == expected)
    table = shown()
    checks.true(f"table: has exactly the routers that were heard: {table}", heard)
    checks.equal("table: the writer is `listen`", table["writer"],
                 {"alive": True, "pid": listener.process.pid})
    ages = [row["age"] for row in table["neighbors"]]
    checks.true(f"table: heard just now: {ages}", all(0 <= age < 30 for age in ages))
    checks.equal("table: exit status", listener.stop(), 0)
    after = pair.host.run(PROGRAM, "neighbors", check=False)
    checks.equal("table: gone with its writer", after.returncode, 1)
    checks.contains("table: error", after.stderr, "there is no table")


def check_fragments(pair):
    listener = Listener(pair.host, "--json", "--count", "1")
    checks.true("listen has joined the group", eventually(lambda: is_listening(pair.host)))
    send(pair.router, *fragments(ADVERT + MTU, "fe80::d1", 16), *fragments(ADVERT, "fe80::d2", 16),
         frame(ADVERT, "fe80::d3"))
    checks.equal("fragments: exit status", listener.wait(), 0)
    dropped = [(event["source"], event["reason"]) for event in listener.events("dropped")]
    checks.equal("fragments: dropped, a single one as well", dropped, [("fe80::d1", "fragment"), ("fe80::d2", "fragment")])
    checks.equal("fragments: the next one is heard", [e["router"] for e in listener.events("router")], ["fe80::d3"])


def check_flood(pair):
    """More messages arrive than there is room for: those that are lost are counted. `listen` ends at its time nevertheless."""
    listener = Listener(pair.host, "--json")
    checks.true("listen has joined the group", eventually(lambda: is_listening(pair.host)))
    listener.process.send_signal(signal.SIGSTOP)
    send(pair.router, frame(ADVERT), times=5000)
    listener.process.send_signal(signal.SIGCONT)
    checks.equal("flood: exit status", listener.stop(), 0)
    summary = (listener.events("summary") or [{}])[-1]
    checks.true(f"flood: some are lost: {summary}", summary.get("lost", 0) > 0)
    checks.true("flood: no more than were sent", summary.get("lost", 0) + summary.get("advertisements", 0) <= 5000)
    flood = pair.router.start(sys.executable, "-c", SEND, "router", str(10**9), frame(ADVERT))
    timed = pair.host.run(PROGRAM, "listen", "host", "--for", "0.3", "--json", check=False)
    checks.equal("flood: --for ends all the same", (timed.returncode, timed.stderr), (0, ""))
    summary = json.loads(timed.stdout.splitlines()[-1])
    checks.true(f"flood: many are heard: {summary}", summary["advertisements"] > 100)
    flood.kill()


def check_start(pair):
    """A packet that is on its way when `listen` starts is not read as an advertisement of this interface."""
    chatter = pair.host.start(sys.executable, "-c", CHATTER)
    for _ in range(20):
        result = pair.host.run(PROGRAM, "listen", "host", "--for", "0.02", "--json", check=False)
        checks.equal("start: exit status, errors", (result.returncode, result.stderr), (0, ""))
        checks.equal("start: nothing but the summary", [json.loads(line)["event"] for line in result.stdout.splitlines()],
                     ["summary"])
    chatter.kill()


def check_other_interfaces(pair):
    """Interfaces that are not Ethernet, and that have a name that is not UTF-8."""
    pair.host.run("ip", "addr", "add", "fe80::77/64", "dev", "lo")
    loopback = Listener(pair.host, "--json", "--count", "1", device="lo")
    checks.true("lo: listen has joined the group", eventually(lambda: is_listening(pair.host, "lo")))
    pair.host.run(sys.executable, "-c", SEND_MESSAGE, "lo", ADVERT.hex())
    checks.equal("lo: exit status", loopback.wait(), 0)
    checks.equal("lo: router", loopback.first("router"), {"event": "router", "router": "fe80::77"})

    name = b"odd\xff"
    pair.host.run("ip", "link", "add", name, "type", "veth", "peer", "name", "odd-peer")
    for device in (name, "odd-peer"):
        pair.host.run("ip", "link", "set", device, "up")
    odd = Listener(pair.host, "--json", "--count", "1", device=name)
    # The kernel's list of groups would not be UTF-8 either, so messages are sent until one is heard.
    checks.true("name that is not UTF-8: ends", eventually(
        lambda: send(pair.host, frame(ADVERT), device="odd-peer") or odd.process.poll() is not None))
    checks.equal("name that is not UTF-8: exit status", odd.wait(), 0)
    change = odd.first("change") or {"record": {}}
    checks.equal("name that is not UTF-8: record", change["record"].get("intfId"), "odd\ufffd")
    pair.host.run("ip", "link", "del", "odd-peer")


def check_gone(pair):
    pair.host.run("ip", "link", "add", "gone", "type", "veth", "peer", "name", "gone-peer")
    for device in ("gone", "gone-peer"):
        pair.host.run("ip", "link", "set", device, "up")
    listener = Listener(pair.host, device="gone")
    checks.true("gone: listen has joined the group", eventually(lambda: is_listening(pair.host, "gone")))
    pair.host.run("ip", "link", "set", "gone", "down")
    pair.host.run("ip", "link", "set", "gone", "up")
    ended = eventually(lambda: listener.process.poll() is not None, 0.3)
    checks.true("gone: an interface that goes down and up is not gone", not ended)
    pair.host.run("ip", "link", "del", "gone")
    checks.equal("gone: exit status", listener.wait(), 1)
    text = "".join(listener.lines)
    checks.contains("gone: message", text, "gone is gone\n")
    checks.contains("gone: summary", text, "0 advertisements, 0 dropped, 0 routers at the end, in ")


def check_words(pair):
    listener = Listener(pair.host)
    checks.true("listen has joined the group", eventually(lambda: is_listening(pair.host)))
    changed = ADVERT[:6] + struct.pack(">H", 600) + ADVERT[8:]
    send(pair.router, frame(ADVERT), frame(ADVERT), frame(changed), frame(ADVERT, hop_limit=1), frame(FINAL))
    checks.true("the end is reported", eventually(lambda: any("has withdrawn" in line for line in listener.lines)))
    checks.equal("exit status on SIGTERM", listener.stop(signal.SIGTERM), 0)
    text = "".join(listener.lines)
    places = [text.find(part) for part in (
        "listening on host for Router Advertisements\n", "router fe80::99 is heard\n", "router fe80::99 advertises\n",
        "router fe80::99 advertises a change\n", "1800 -> 600\n",
        "dropped an advertisement from fe80::99: its hop limit is 1, not 255\n", "600 -> 0\n", "false -> true\n",
        "router fe80::99 has withdrawn\n", "4 advertisements, 1 dropped, 0 routers at the end, in ")]
    checks.true(f"words, in order: {places} in {text!r}", -1 not in places and places == sorted(places))
    checks.equal("an advertisement that says the same again is not shown", text.count("advertises"), 3)


def check_ends(pair):
    timed = pair.host.run(PROGRAM, "listen", "host", "--for", "0.3", "--json", check=False)
    checks.equal("--for: exit status, errors", (timed.returncode, timed.stderr), (0, ""))
    checks.equal("--for: summary", {k: v for k, v in json.loads(timed.stdout).items() if k != "seconds"},
                 {"event": "summary", "advertisements": 0, "dropped": 0, "notKept": 0, "lost": 0, "routers": 0})
    unknown = pair.host.run(PROGRAM, "listen", "hots", "--for", "0.3", check=False)
    checks.equal("unknown interface: exit status", unknown.returncode, 1)
    checks.contains("unknown interface", unknown.stderr, "did you mean host?")
    pair.host.run("ip", "link", "set", "host", "down")
    down = pair.host.run(PROGRAM, "listen", "host", "--for", "0.3", check=False)
    checks.equal("interface that is down: exit status", down.returncode, 1)
    checks.contains("interface that is down", down.stderr, "host is down")
    for arguments in ((), ("host", "--count", "0"), ("host", "--for", "-1"), ("host", "--nothing")):
        usage = pair.host.run(PROGRAM, "listen", *arguments, check=False)
        checks.equal(f"usage {arguments}: exit status", usage.returncode, 2)


need()
with tempfile.TemporaryDirectory() as directory, Pair() as nodes:
    if RADVD:
        check_radvd(nodes, directory)
    else:
        print("radvd is not installed: what it sends is not looked at")
    check_drops(nodes)
    check_table(nodes)
    check_fragments(nodes)
    check_flood(nodes)
    check_start(nodes)
    check_other_interfaces(nodes)
    check_gone(nodes)
    check_words(nodes)
    check_ends(nodes)
checks.exit()
