"""The frames of the example, octet by octet. tests/interop/decode.test.py decodes them with other programs."""
import os

from support import EXAMPLE, Checks, run

checks = Checks()
folder = os.path.join(os.path.dirname(os.path.abspath(__file__)), "golden")

for name, arguments in {
    "ethernet1": ["Ethernet1"],
    "ethernet1-death": ["Ethernet1", "--death"],
    "ethernet1-virtual-router": ["Ethernet1", "--virtual-router"],
    "ethernet1-small-mtu": ["Ethernet1", "--mtu", "118"],
    "ethernet2": ["Ethernet2"],
    "vlan30": ["Vlan30"],
}.items():
    with open(os.path.join(folder, name + ".hex"), encoding="ascii") as file:
        expected = file.read()
    result = run("build", EXAMPLE, *arguments, "--hex")
    checks.equal(name + ": exit status", result.returncode, 0)
    checks.equal(name, result.stdout, expected)

checks.exit()
