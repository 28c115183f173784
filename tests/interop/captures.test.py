"""`parse` reads from captured advertisements the same fields as tshark and scapy."""
import json
import os
import shutil
import subprocess

from netns import Checks, skip
from support import ROOT, run

CAPTURES = os.path.join(ROOT, "tests", "captures")
FILES = {"radvd-full.pcap": 2, "radvd-many.pcap": 2, "bird.pcap": 3}  # with the number of packets
PREFIX_INFORMATION, ROUTE_INFORMATION = "3", "24"  # the options that have prefixes

checks = Checks()


def our_records(path):
    result = run("parse", path, "--json", "--intf", "Ethernet1")
    checks.equal(path + ": exit status, errors", (result.returncode, result.stderr), (0, ""))
    packets = [json.loads(line) for line in result.stdout.splitlines()]
    for number, packet in enumerate(packets, 1):
        checks.equal("packet number", packet["packet"], number)
        checks.equal("attributes of a packet", list(packet), ["packet", "checksumValid", "record"])
        checks.equal("interface", packet["record"].pop("intfId"), "Ethernet1")
        packet["record"]["checksumValid"] = packet["checksumValid"]
    return [packet["record"] for packet in packets]


TSHARK_FIELDS = [
    "icmpv6.checksum.status", "ipv6.src", "icmpv6.nd.ra.cur_hop_limit", "icmpv6.nd.ra.flag.m", "icmpv6.nd.ra.flag.o",
    "icmpv6.nd.ra.router_lifetime", "icmpv6.nd.ra.reachable_time", "icmpv6.nd.ra.retrans_timer", "icmpv6.opt.mtu",
    "icmpv6.opt.type", "icmpv6.opt.prefix", "icmpv6.opt.prefix.length", "icmpv6.opt.prefix.flag.l",
    "icmpv6.opt.prefix.flag.a", "icmpv6.opt.prefix.valid_lifetime", "icmpv6.opt.prefix.preferred_lifetime",
]


def tshark_prefixes(types, addresses, lengths, on_link, autonomous, valid, preferred):
    """Route Information options have a prefix and a length, and none of the other fields."""
    with_prefix = [t for t in types if t in (PREFIX_INFORMATION, ROUTE_INFORMATION)]
    prefixes = [f"{a}/{n}" for t, a, n in zip(with_prefix, addresses, lengths) if t == PREFIX_INFORMATION]
    return [
        {"prefix": p, "onLinkFlag": l == "1", "autoConfigFlag": a == "1", "validLifetime": int(v),
         "preferredLifetime": int(f)}
        for p, l, a, v, f in zip(prefixes, on_link, autonomous, valid, preferred, strict=True)
    ]


def tshark_records(path):
    command = ["tshark", "-r", path, "-T", "fields", "-E", "occurrence=a", "-E", "aggregator=,"]
    for field in TSHARK_FIELDS:
        command += ["-e", field]
    lines = subprocess.run(command, capture_output=True, text=True, timeout=60, check=True).stdout.splitlines()
    records = []
    for line in lines:
        status, source, hops, managed, other, lifetime, reachable, retrans, mtu, *options = line.split("\t")
        records.append({
            "curHopLimit": int(hops), "managedConfigFlag": managed == "1", "otherConfigFlag": other == "1",
            "reachableTime": int(reachable), "retransTimer": int(retrans), "mtuSpecified": mtu != "",
            "mtu": int(mtu or 0), "srcIp6Addr": source, "routerLifeTime": int(lifetime),
            "prefixInfo": tshark_prefixes(*[field.split(",") for field in options]),
            "isDeathPacket": int(lifetime) == 0, "checksumValid": status == "1",
        })
    return records


def scapy_records(path):
    from scapy.all import (ICMPv6ND_RA, ICMPv6NDOptMTU, ICMPv6NDOptPrefixInfo, IPv6, rdpcap)
    records = []
    for packet in rdpcap(path):
        advert = packet[ICMPv6ND_RA]
        prefixes, mtu, layer = [], None, advert.payload
        while layer:
            if isinstance(layer, ICMPv6NDOptMTU):
                mtu = layer.mtu
            elif isinstance(layer, ICMPv6NDOptPrefixInfo):
                prefixes.append({
                    "prefix": f"{layer.prefix}/{layer.prefixlen}", "onLinkFlag": bool(layer.L),
                    "autoConfigFlag": bool(layer.A), "validLifetime": layer.validlifetime,
                    "preferredLifetime": layer.preferredlifetime})
            layer = layer.payload
        received = advert.cksum
        del advert.cksum
        records.append({
            "curHopLimit": advert.chlim, "managedConfigFlag": bool(advert.M), "otherConfigFlag": bool(advert.O),
            "reachableTime": advert.reachabletime, "retransTimer": advert.retranstimer, "mtuSpecified": mtu is not None,
            "mtu": mtu or 0, "srcIp6Addr": packet[IPv6].src, "routerLifeTime": advert.routerlifetime,
            "prefixInfo": prefixes, "isDeathPacket": advert.routerlifetime == 0,
            "checksumValid": ICMPv6ND_RA in packet and IPv6(bytes(packet[IPv6]))[ICMPv6ND_RA].cksum == received})
    return records


def compare(name, peer, ours, theirs):
    checks.equal(f"{name}: {peer}: number of records", len(ours), len(theirs))
    for number, (our, their) in enumerate(zip(ours, theirs), 1):
        checks.equal(f"{name}: {peer}: attributes", sorted(our), sorted(their))
        for attribute, value in our.items():
            checks.equal(f"{name}: packet {number}: {attribute}, which {peer} reads", value, their.get(attribute))


def has_scapy():
    try:
        import scapy.all  # noqa: F401  # pylint: disable=import-outside-toplevel,unused-import
    except ImportError:
        return False
    return True


peers = {"tshark": tshark_records} if shutil.which("tshark") else {}
if has_scapy():
    peers["scapy"] = scapy_records
if not peers:
    skip("neither tshark nor scapy is installed")
for file, count in FILES.items():
    capture = os.path.join(CAPTURES, file)
    records = our_records(capture)
    checks.equal(file + ": packets", len(records), count)
    for program, read in peers.items():
        compare(file, program, records, read(capture))
print("compared with " + " and ".join(peers))
checks.exit()
