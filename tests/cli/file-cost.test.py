#!/usr/bin/env python3
"""The cost of a configuration file is bounded by its size, whatever is in it: processor time and memory."""

import os
import resource
import tempfile

from support import Checks, need_optimized, run

MEGA = 1 << 20
INTERFACES = "".join(
    f"    Ethernet{n}:\n      raLifetime: 1800\n      hopLimit: 64\n      raIntervalMaxMsec: 60000\n"
    f"      prefixes: {{ '2001:db8:{n % 65536:x}::/64': {{ validLifetime: 86400, preferredLifetime: 3600 }} }}\n"
    f"      dnsServers: {{ '2001:db8::53': {{ lifetime: 600, lifetimeConfigured: true }} }}\n"
    f"      dnsSuffixes: {{ example.com: {{}}, example.net: {{}}, example.org: {{}} }}\n"
    f"      # An interface of a rack, with the values that all of its ports have.\n"
    for n in range(10000)
)
ANCHOR = "links:\n  E0: &a { " + ", ".join(f"k{n}: 0" for n in range(1000)) + " }\n"

# Name, text, exit status of `build`, part of what it prints.
FILES = [
    ("commas", "," * MEGA, 1, ":1:1: unexpected comma"),
    ("commas behind a document", "config: {}\n---\n" + "," * MEGA, 1, "a second document begins"),
    ("a list in the place of a mapping", "config: [" + "x," * (MEGA // 2) + "]\n", 1, "expected a mapping"),
    ("one key again and again", "a:\n" * (MEGA // 3), 1, "only the first 1000 are listed"),
    ("keys that are not there", "".join(f"k{n}:\n" for n in range(MEGA // 9)), 1, "only the first 1000 are listed"),
    ("aliases", ANCHOR + "".join(f"  E{n}: *a\n" for n in range(1, 80000)), 1, "aliases repeat more than 200000 values"),
    ("aliases of aliases", "a0: &a0 x\n" + "".join(f"a{n}: &a{n} [*a{n - 1}, *a{n - 1}]\n" for n in range(1, 20000)), 1,
     "aliases repeat more than 200000 values"),
    ("anchors without a name", "&" * 100000, 1, "the file holds no values"),
    ("brackets", "[" * 1000000, 1, "nested too deeply"),
    ("brackets with keys", "{a: " * 250000, 1, "nested too deeply"),
    ("dashes", "- " * 500000, 1, "nested too deeply"),
    ("a comment", "config: { intf: { Ethernet1: {} } }\n#" + "x" * MEGA, 1, 'there is no link "Ethernet1"'),
    ("10000 interfaces", "config:\n  intf:\n" + INTERFACES + "links:\n  Ethernet1: { mac: '02:00:00:00:00:01', "
     "addresses: ['fe80::1/64'] }\n", 0, "valid lifetime          86400 s"),
]

need_optimized()
checks = Checks()


def limits(seconds, octets):
    def apply():
        resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds))
        resource.setrlimit(resource.RLIMIT_AS, (octets, octets))

    return apply


with tempfile.TemporaryDirectory() as folder:
    path = os.path.join(folder, "ra.yaml")
    for name, text, status, part in FILES:
        with open(path, "w", encoding="ascii") as file:
            file.write(text)
        size = len(text)
        result = run("build", path, "Ethernet1", preexec_fn=limits(2 + 2 * size // MEGA, 64 * MEGA + 50 * size))
        checks.equal(f"{name}: exit status", result.returncode, status)
        checks.contains(f"{name}: output", (result.stderr if status else result.stdout)[:200000], part)
        checks.true(f"{name}: memory suffices", "bad_alloc" not in result.stderr)
checks.exit()
