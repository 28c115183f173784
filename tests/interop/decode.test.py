"""tshark and scapy decode what `build` writes: every field that the example sets, and a good checksum."""
import os
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "cli"))
from support import EXAMPLE, Checks, run  # noqa: E402  # pylint: disable=wrong-import-position

try:
    from scapy.all import rdpcap, raw  # type: ignore
    from scapy.layers import inet6
except ImportError:
    inet6 = None

checks = Checks()

RA = "icmpv6.nd.ra."
PREFIX = "icmpv6.opt.prefix."

# The values of the configuration, by the field names of tshark; values of several options have commas between.
EXPECTED = {
    "Ethernet1": {
        "eth.dst": "33:33:00:00:00:01",
        "eth.src": "02:00:00:00:00:01",
        "ipv6.src": "fe80::1",
        "ipv6.dst": "ff02::1",
        "ipv6.hlim": "255",
        "icmpv6.type": "134",
        "icmpv6.code": "0",
        "icmpv6.checksum.status": "1",
        RA + "cur_hop_limit": "64",
        RA + "flag.m": "0",
        RA + "flag.o": "1",
        RA + "flag.prf": "1",
        RA + "router_lifetime": "1800",
        RA + "reachable_time": "0",
        RA + "retrans_timer": "0",
        "icmpv6.opt.type": "1,5,3,3,25,31,31",
        "icmpv6.opt.linkaddr": "02:00:00:00:00:01",
        "icmpv6.opt.mtu": "1500",
        "icmpv6.opt.prefix": "2001:db8:1::,fd00:db8:1::",
        PREFIX + "length": "64,48",
        PREFIX + "flag.l": "1,1",
        PREFIX + "flag.a": "1,0",
        PREFIX + "valid_lifetime": "2592000,86400",
        PREFIX + "preferred_lifetime": "604800,43200",
        "icmpv6.opt.rdnss": "2001:db8:1::53,2001:db8:2::53",
        "icmpv6.opt.rdnss.lifetime": "90",
        "icmpv6.opt.dnssl": "office.example.com,example.com",
        "icmpv6.opt.dnssl.lifetime": "90,3600",
    },
    "Ethernet2": {
        "icmpv6.checksum.status": "1",
        RA + "router_lifetime": "600",
        RA + "flag.prf": "0",
        "icmpv6.opt.type": "1,5,3,25",
        PREFIX + "valid_lifetime": "7200",
        PREFIX + "preferred_lifetime": "3600",
        "icmpv6.opt.rdnss.lifetime": "1200",
    },
    "Vlan30": {
        "icmpv6.checksum.status": "1",
        RA + "flag.m": "1",
        RA + "retrans_timer": "1000",
        "icmpv6.opt.type": "1,5,3,253",
        "icmpv6.opt.mtu": "9000",
        "icmpv6.opt.prefix": "2001:db8:3::",
        PREFIX + "length": "64",
        PREFIX + "valid_lifetime": "2592000",
    },
    "Ethernet1 --death": {
        "icmpv6.checksum.status": "1",
        RA + "router_lifetime": "0",
        RA + "flag.prf": "3",
    },
}

BEHIND = {"Vlan30": b"\xfd\x06\0\x01\0\0\0\0" b"tftp://[2001:db8:3::1]/boot/grubx64.efi" b"\0"}


def joined(captures, name):
    """One capture file with the frames of all captures, because starting tshark takes longer than reading them."""
    with open(name, "wb") as out:
        for number, capture in enumerate(captures):
            with open(capture, "rb") as file:
                octets = file.read()
            out.write(octets if number == 0 else octets[24:])
    return name


def seen_by_tshark(capture, fields):
    """One line of values per frame."""
    command = ["tshark", "-n", "-r", capture, "-T", "fields", "-E", "separator=|", "-E", "aggregator=,"]
    for field in ("_ws.malformed", *fields):
        command += ["-e", field]
    # With a home directory of its own, tshark does not read the settings of this machine.
    result = subprocess.run(command, capture_output=True, text=True, timeout=100, check=False,
                            env={**os.environ, "HOME": os.path.dirname(capture), "LC_ALL": "C"})
    checks.equal("tshark: exit status", (result.returncode, result.stderr if result.returncode else ""), (0, ""))
    return [line.split("|") for line in result.stdout.splitlines()]


def check_by_tshark(captures):
    """`captures`: by the name of the expected values, in the same order."""
    fields = sorted({field for expected in EXPECTED.values() for field in expected})
    lines = seen_by_tshark(joined(captures.values(), next(iter(captures.values())) + ".all"), fields)
    checks.equal("tshark: frames", len(lines), len(captures))
    for name, values in zip(captures, lines):
        checks.equal(f"{name}: tshark: malformed", values[0], "")
        seen = dict(zip(fields, values[1:]))
        for field, value in EXPECTED[name].items():
            checks.equal(f"{name}: tshark: {field}", normal(field, seen.get(field, "")), value)


def normal(field, value):
    """Versions of tshark print flags as 1, True and numbers as 0x."""
    if ".flag." in field:
        return ",".join(str(int({"True": "1", "False": "0"}.get(v, v), 0)) for v in value.split(","))
    return value


def check_by_scapy(name, capture, size):
    expected = EXPECTED[name]
    frames = rdpcap(capture)
    checks.equal(f"{name}: scapy: frames", len(frames), 1)
    frame = frames[0]
    checks.equal(f"{name}: scapy: size", len(raw(frame)), size)
    advert = frame[inet6.ICMPv6ND_RA]
    checks.equal(f"{name}: scapy: payload length", frame[inet6.IPv6].plen, size - 54)
    checks.equal(f"{name}: scapy: lifetime", str(advert.routerlifetime), expected.get(RA + "router_lifetime", "1800"))
    # Scapy computes a checksum that is missing; it equals the one in the frame.
    told = advert.cksum
    again = frame.copy()
    del again[inet6.ICMPv6ND_RA].cksum
    checks.equal(f"{name}: scapy: checksum", told, frame.__class__(raw(again))[inet6.ICMPv6ND_RA].cksum)
    options = []
    option = advert.payload
    while hasattr(option, "type"):
        options.append(option)
        option = option.payload
    # Scapy does not know the option of an experimental type.
    checks.equal(f"{name}: scapy: octets behind the options", bytes(option), BEHIND.get(name, b""))
    if "icmpv6.opt.type" in expected:
        checks.equal(f"{name}: scapy: options", ",".join(str(o.type) for o in options),
                     expected["icmpv6.opt.type"].removesuffix(",253"))
    if "icmpv6.opt.prefix" in expected:
        checks.equal(f"{name}: scapy: prefixes", ",".join(o.prefix for o in options if o.type == 3),
                     expected["icmpv6.opt.prefix"])
    if "icmpv6.opt.rdnss" in expected:
        checks.equal(f"{name}: scapy: servers", ",".join(a for o in options if o.type == 25 for a in o.dns),
                     expected["icmpv6.opt.rdnss"])
    if "icmpv6.opt.dnssl" in expected:
        checks.equal(f"{name}: scapy: suffixes",
                     ",".join(n.rstrip(".") for o in options if o.type == 31 for n in o.searchlist if n != "."),
                     expected["icmpv6.opt.dnssl"])


def main():
    if not shutil.which("tshark") and not inet6:
        print("skipped: neither tshark nor scapy is installed")
        sys.exit(77)
    with tempfile.TemporaryDirectory() as folder:
        captures = {}
        for name in EXPECTED:
            captures[name] = capture = os.path.join(folder, name.replace(" ", "") + ".pcap")
            built = run("build", EXAMPLE, *name.split(), "--write", capture)
            checks.equal(f"{name}: exit status", built.returncode, 0)
            size = len(run("build", EXAMPLE, *name.split(), "--hex").stdout.strip()) // 2
            if inet6:
                check_by_scapy(name, capture, size)
        if shutil.which("tshark"):
            check_by_tshark(captures)
    checks.exit()


main()
