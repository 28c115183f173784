"""`parse`: capture files of every kind, and the result for each packet in them."""
import json
import os
import struct
import subprocess
import tempfile

from support import PROGRAM, ROOT, Checks, run

CAPTURES = os.path.join(ROOT, "tests", "captures")
ETHERNET, RAW, LINUX_COOKED, IPV6 = 1, 101, 113, 229  # link types
SOURCE = bytes.fromhex("fe80" + 13 * "00" + "01")
ALL_NODES = bytes.fromhex("ff02" + 13 * "00" + "01")
HEADER = bytes.fromhex("86000000" "40c00708" "00007530" "000003e8")  # M and O, 1800 s, 30000 ms, 1000 ms
MTU = bytes.fromhex("0501000000000578")
PREFIX = bytes.fromhex("0304" "40c0" "00015180" "00003840" "00000000" "20010db8000100000000000000000000")
OTHERS = {
    "Source Link-Layer Address": bytes.fromhex("0101020000000001"),
    "Recursive DNS Server": bytes.fromhex("1903" "0000" "0000012c" "20010db8000000000000000000000053"),
    "DNS Search List": bytes.fromhex("1f03" "0000" "0000012c") + b"\x07example\x03com\x00" + bytes(3),
    "Route Information": bytes.fromhex("1802" "3018" "00000708" "20010db800090000"),
    "type that is not known": bytes.fromhex("c801" "deadbeef0102"),
}

checks = Checks()


def checksum(octets):
    octets += b"\0" * (len(octets) % 2)
    total = sum(struct.unpack(f">{len(octets) // 2}H", octets))
    while total >> 16:
        total = (total & 0xFFFF) + (total >> 16)
    return ~total & 0xFFFF


def packet(message, good=True, next_header=58, extension=b""):
    """The IPv6 packet of an ICMPv6 message."""
    if len(message) >= 4 and good:
        pseudo = SOURCE + ALL_NODES + struct.pack(">I3xB", len(message), 58)
        message = message[:2] + struct.pack(">H", checksum(pseudo + message[:2] + b"\0\0" + message[4:])) + message[4:]
    size = len(extension) + len(message)
    return struct.pack(">IHBB", 6 << 28, size, next_header, 255) + SOURCE + ALL_NODES + extension + message


def frame(message, tags=b"", **options):
    return bytes.fromhex("333300000001020000000001") + tags + b"\x86\xdd" + packet(message, **options)


def pcap(packets, link=ETHERNET, order="<", magic=0xA1B2C3D4, missing=0):
    """`missing`: octets that each packet had on the wire and that were not captured."""
    octets = struct.pack(order + "IHHiIII", magic, 2, 4, 0, 0, 65535, link)
    for content in packets:
        octets += struct.pack(order + "IIII", 1, 0, len(content), len(content) + missing) + content
    return octets


def pcapng(packets, link=ETHERNET, interfaces=1):
    """With several interfaces, the packets come from them by turns."""
    def block(kind, body):
        body += b"\0" * (-len(body) % 4)
        return struct.pack("<II", kind, len(body) + 12) + body + struct.pack("<I", len(body) + 12)

    octets = block(0x0A0D0D0A, struct.pack("<IHHq", 0x1A2B3C4D, 1, 0, -1))
    octets += interfaces * block(1, struct.pack("<HHI", link, 0, 65535))
    for number, content in enumerate(packets):
        octets += block(6, struct.pack("<IIIII", number % interfaces, 0, 0, len(content), len(content)) + content)
    return octets


def parse(octets, *options):
    """Runs `parse` on a capture file with that content."""
    with tempfile.NamedTemporaryFile(suffix=".pcap") as file:
        file.write(octets)
        file.flush()
        return run("parse", file.name, *options)


def parse_json(octets, *options):
    result = parse(octets, "--json", *options)
    checks.equal("exit status, errors", (result.returncode, result.stderr), (0, ""))
    return [json.loads(line) for line in result.stdout.splitlines()]


def check_kinds_of_captures():
    message = HEADER + MTU + PREFIX
    expected = parse_json(pcap([frame(message)]))
    checks.equal("record", expected, [{
        "packet": 1, "checksumValid": True,
        "record": {
            "intfId": "capture", "curHopLimit": 64, "managedConfigFlag": True, "otherConfigFlag": True,
            "reachableTime": 30000, "retransTimer": 1000, "mtuSpecified": True, "mtu": 1400, "srcIp6Addr": "fe80::1",
            "routerLifeTime": 1800,
            "prefixInfo": [{"prefix": "2001:db8:1::/64", "onLinkFlag": True, "autoConfigFlag": True,
                            "validLifetime": 86400, "preferredLifetime": 14400}],
            "isDeathPacket": False}}])
    checks.equal("pcapng", parse_json(pcapng([frame(message)])), expected)
    checks.equal("raw IP", parse_json(pcap([packet(message)], RAW)), expected)
    checks.equal("raw IPv6", parse_json(pcap([packet(message)], IPV6)), expected)
    checks.equal("pcapng, raw IP", parse_json(pcapng([packet(message)], RAW)), expected)
    checks.equal("802.1Q tag", parse_json(pcap([frame(message, tags=bytes.fromhex("81000064"))])), expected)
    hop_by_hop = bytes.fromhex("3a00050200000000")
    checks.equal("hop-by-hop", parse_json(pcap([frame(message, next_header=0, extension=hop_by_hop)])), expected)
    checks.equal("no packets", parse_json(pcap([])), [])
    nanoseconds = 0xA1B23C4D
    checks.equal("nanoseconds", parse_json(pcap([frame(message)], magic=nanoseconds)), expected)
    checks.equal("big-endian", parse_json(pcap([frame(message)], order=">")), expected)
    checks.equal("big-endian, nanoseconds", parse_json(pcap([frame(message)], order=">", magic=nanoseconds)), expected)
    both = parse_json(pcapng([frame(message), frame(message)], interfaces=2))
    checks.equal("pcapng of two interfaces", both, [expected[0], {**expected[0], "packet": 2}])
    named = parse_json(pcap([frame(message)]), "--intf", "Ethernet1/2")
    checks.equal("--intf", named[0]["record"]["intfId"], "Ethernet1/2")
    odd = parse_json(pcap([frame(message)]), "--intf", b"eth\xff")
    checks.equal("--intf that is no UTF-8", odd[0]["record"]["intfId"], "eth\ufffd")
    bird = os.path.join(CAPTURES, "bird.pcap")
    with open(bird, "rb") as file:
        piped = subprocess.run([PROGRAM, "parse", "-", "--json"], stdin=file, capture_output=True, text=True, timeout=30,
                               check=False)
    checks.equal("standard input: exit status, errors", (piped.returncode, piped.stderr), (0, ""))
    checks.equal("standard input: packets", len(piped.stdout.splitlines()), 3)
    checks.equal("standard input", piped.stdout, run("parse", bird, "--json").stdout)


def check_what_is_no_record():
    death = HEADER[:6] + b"\0\0" + HEADER[8:]
    packets = parse_json(pcap([
        frame(HEADER + MTU + b"\x01\0" + bytes(6)),
        frame(b"\x85" + bytes(7)),
        frame(HEADER)[:40],
        frame(HEADER, next_header=44, extension=bytes.fromhex("3a00000100000001")),
        bytes.fromhex("333300000001020000000001" "0800") + bytes(40),
        frame(HEADER, good=False),
        frame(death),
    ]))
    checks.equal("length 0", packets[0], {"packet": 1, "checksumValid": True, "rejected": "an option has length 0"})
    checks.equal("solicitation", packets[1], {"packet": 2, "skipped": "ICMPv6 type 133"})
    cut = parse_json(pcap([frame(HEADER + MTU)[:-4]], missing=4))
    checks.equal("capture of a part of a packet", cut, [{**packets[2], "packet": 1}])
    checks.equal("cut capture", packets[2], {"packet": 3, "skipped": "truncated: fewer octets than the headers say"})
    checks.equal("fragment", packets[3], {"packet": 4, "skipped": "fragment"})
    checks.equal("IPv4", packets[4], {"packet": 5, "skipped": "not IPv6"})
    checks.equal("wrong checksum", (packets[5]["checksumValid"], "record" in packets[5]), (False, True))
    checks.equal("final advertisement", packets[6]["record"]["isDeathPacket"], True)
    checks.equal("ordinary advertisement", packets[5]["record"]["isDeathPacket"], False)


def check_words():
    result = parse(pcap([frame(HEADER + MTU + PREFIX + b"".join(OTHERS.values())), frame(b"\x85" + bytes(7))]))
    checks.equal("words: exit status, errors", (result.returncode, result.stderr), (0, ""))
    places = [result.stdout.find(part) for part in (
        "packet 1: Router Advertisement, checksum good\n", "intfId", "routerLifeTime", "1800",
        "prefixInfo[2001:db8:1::/64]/validLifetime", "isDeathPacket", "MTU option", "1400 octets",
        "Prefix Information option", "Source Link-Layer Address option", "02:00:00:00:00:01",
        "Recursive DNS Server option", "2001:db8::53", "DNS Search List option", "example.com",
        "Route Information option", "2001:db8:9::/48", "type that is not known", "deadbeef0102",
        "packet 2: skipped: ICMPv6 type 133\n")]
    checks.true(f"words: everything is there, in order: {places}", -1 not in places and places == sorted(places))
    checks.true("words: nothing is odd", "!" not in result.stdout)

    odd = parse(pcap([frame(HEADER + MTU + PREFIX[:20], good=False)])).stdout
    checks.contains("wrong checksum", odd, "packet 1: Router Advertisement, checksum bad\n")
    checks.contains("wrong checksum", odd, "! the checksum should be ")
    checks.contains("option that is cut", odd, "!  the option passes the end of the message: 20 octets are left\n")
    rejected = parse(pcap([frame(HEADER + MTU + b"\x01\0" + bytes(6))])).stdout
    checks.contains("length 0", rejected, "packet 1: rejected: an option has length 0, checksum good\n")
    checks.contains("length 0", rejected, "MTU option")
    checks.true("length 0: no record", "routerLifeTime" not in rejected)


def check_damage():
    whole = pcap([frame(HEADER + MTU), frame(HEADER), frame(HEADER)])
    for name, octets in {"packet cut short": whole[:-5], "packet header cut short": whole[:-(len(frame(HEADER)) + 7)],
                         "absurd length": whole[:-(len(frame(HEADER)) + 8)] + b"\xff" * (len(frame(HEADER)) + 8)}.items():
        for options in ((), ("--json",)):
            result = parse(octets, *options)
            checks.equal(name + ": exit status", result.returncode, 1)
            checks.contains(name, result.stderr, ".pcap: packet 3: ")
            before = parse(pcap([frame(HEADER + MTU), frame(HEADER)]), *options).stdout
            checks.equal(name + ": what was read before", result.stdout, before)
    ng = pcapng([frame(HEADER), frame(HEADER)])
    result = parse(ng[:-30], "--json")
    checks.equal("pcapng cut short", (result.returncode, len(result.stdout.splitlines())), (1, 1))
    checks.contains("pcapng cut short", result.stderr, ".pcap: packet 2: ")


def check_errors():
    for name, octets in {"no capture": b"hello, this is no capture file", "empty": b"", "header cut": pcap([])[:20]}.items():
        result = parse(octets)
        checks.equal(name + ": exit status, output", (result.returncode, result.stdout), (1, ""))
        checks.contains(name, result.stderr, ".pcap: is no capture file that can be read: ")
    other = parse(pcap([], LINUX_COOKED))
    checks.equal("other link type: exit status", other.returncode, 1)
    checks.contains("other link type", other.stderr, "link type LINUX_SLL; Ethernet and raw IP can be read")
    missing = run("parse", "nowhere.pcap")
    checks.equal("missing file: exit status", missing.returncode, 1)
    checks.contains("missing file", missing.stderr, "nowhere.pcap: cannot be opened: No such file or directory\n")
    odd_name = run("parse", "no\x1bwhere.pcap")
    checks.contains("missing file, its name printable", odd_name.stderr, "no\\x1bwhere.pcap: cannot be opened: ")
    with tempfile.TemporaryDirectory() as folder:
        directory = run("parse", folder)
        checks.equal("directory: exit status, output", (directory.returncode, directory.stdout), (1, ""))
        checks.contains("directory", directory.stderr, folder + ": ")
    with open("/dev/full", "w", encoding="ascii") as full:
        bird = os.path.join(CAPTURES, "bird.pcap")
        for options in ((), ("--json",)):
            result = subprocess.run([PROGRAM, "parse", bird, *options], stdout=full, stderr=subprocess.PIPE, text=True,
                                    timeout=30, check=False)
            checks.equal("output that is full: exit status", result.returncode, 1)
            checks.true("output that is full: message", result.stderr != "")
    nothing = run("parse", "-", stdin="")
    checks.equal("nothing on standard input: exit status", nothing.returncode, 1)
    checks.contains("nothing on standard input", nothing.stderr, "standard input: ")
    for arguments in ((), ("a", "b"), ("a", "--intf", 32 * "x"), ("a", "--intf", ""), ("a", "--nothing")):
        checks.equal(f"usage {arguments}: exit status", run("parse", *arguments).returncode, 2)


check_kinds_of_captures()
check_what_is_no_record()
check_words()
check_damage()
check_errors()
checks.exit()
