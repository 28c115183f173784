#!/usr/bin/env python3
"""The names of the model's types in the library file: a section of its own, read-only, octet for octet, whatever the
compiler, its optimization and the linker; and registered in the reverse of that order."""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
SOURCE = ROOT / "Ipv6RouterAdvt" / "RouterAdvt" / "Registration.cpp"
HEADER = ROOT / "RouterPlatform" / "Fwk" / "TypeRegistry.h"
SECTION = re.search(r'^#define FWK_TYPE_NAMES_SECTION "(.*)"$', HEADER.read_text(), re.MULTILINE).group(1)

# The last one that is registered stands first.
NAMES = [
    "RouterAdvt::RouterNeighbors",
    "RouterAdvt::IntfStatus",
    "RouterAdvt::Config",
    "RouterAdvt::ProcFileDirDataSet",
    "RouterAdvt::RaPacketPrefixInfo",
    "RouterAdvt::DNSSuffixConfigEntry",
    "RouterAdvt::DNSServerConfigEntry",
    "RouterAdvt::LifeTimeHashMap",
    "RouterAdvt::Table::RouterNeighborRaStatus",
    "RouterAdvt::IntfConfig",
    "RouterAdvt::RaPacket",
    "RouterAdvt::PrefixConfigEntry",
    "RouterAdvt::PrefixProfileEntry",
    "RouterAdvt::RouterNeighborRa",
    "RouterAdvt::RouterNeighborRaKey",
    "RouterAdvt::RouterNeighborStatus",
    "RouterAdvt::PrefixDefault",
    "RouterAdvt::RouterNeighbor",
    "RouterAdvt::RaPacketStatus",
    "RouterAdvt::Status",
]
EXPECTED = b"".join(name.encode() + b"\0" for name in NAMES)

# Each with a linker that throws away what nothing refers to.
COMMON = ["-std=c++20", "-fPIC", "-shared", "-fvisibility=hidden", "-ffunction-sections", "-fdata-sections",
          "-Wl,--gc-sections", f"-I{ROOT}"]
CONFIGURATIONS = {
    "-O0": ["-O0"],
    "-O2": ["-O2"],
    "-O2 with link-time optimization": ["-O2", "-flto"],
    "-O0 with link-time optimization": ["-O0", "-flto"],
}
COMPILERS = {"g++": ["g++"], "clang": ["clang++-14", "clang++"]}

failures = 0


def fail(what):
    global failures
    failures += 1
    print("FAILED", what)


def section_flags(file):
    """Flags of the section as readelf prints them, such as AR; nothing when there is none or more than one."""
    listing = subprocess.run(["readelf", "--section-headers", "--wide", file], text=True, capture_output=True, check=True)
    found = [line.split("]", 1)[1].split() for line in listing.stdout.splitlines() if SECTION in line]
    # name, type, address, offset, size, entry size, flags, link, info, alignment
    return found[0][6] if len(found) == 1 else None


def section_octets(file, folder):
    out = os.path.join(folder, "octets")
    subprocess.run(["objcopy", "--output-target=binary", f"--only-section={SECTION}", file, out], check=True)
    with open(out, "rb") as octets:
        return octets.read()


def check(what, file, folder):
    flags = section_flags(file)
    if flags is None:
        return fail(f"{what}: there is no single section {SECTION}")
    if "A" not in flags or "W" in flags:
        fail(f"{what}: the section's flags are {flags}: it is not read-only data of the program")
    octets = section_octets(file, folder)
    if octets != EXPECTED:
        fail(f"{what}: the section holds\n  {octets}\nand not\n  {EXPECTED}")
    print("checked", what)
    return None


def check_compiled(compiler, name, options, folder):
    file = os.path.join(folder, "registration.so")
    built = subprocess.run([compiler, *COMMON, *options, SOURCE, "-o", file], text=True, capture_output=True)
    what = f"{compiler} {name}"
    if built.returncode == 0:
        return check(what, file, folder)
    trivial = subprocess.run([compiler, "-fPIC", "-shared", *options, "-x", "c++", "-", "-o", file], text=True, input="",
                             capture_output=True)
    if trivial.returncode != 0:
        return print(f"skipped {what}: it builds nothing here: {trivial.stderr.strip()}")
    return fail(f"{what}: {built.stderr}")


def check_registered():
    """What the program lists is what is registered when it loads the library."""
    listed = subprocess.run([os.environ["ROUTERADVT"], "types"], text=True, capture_output=True, check=True).stdout
    names = [line.split()[0] for line in listed.splitlines()[1:]]
    names = [name for name in names if name.startswith("RouterAdvt::")]
    if names != NAMES[::-1]:
        fail(f"the program that loads the library lists {names}")


def main():
    for tool in ("readelf", "objcopy"):
        if not shutil.which(tool):
            print(f"{tool} is missing")
            sys.exit(77)
    with tempfile.TemporaryDirectory() as folder:
        check("the library", os.environ["LIBRARY"], folder)
        check_registered()
        for name, programs in COMPILERS.items():
            compiler = next((program for program in programs if shutil.which(program)), None)
            if not compiler:
                print(f"skipped {name}: it is not installed")
                continue
            for configuration, options in CONFIGURATIONS.items():
                check_compiled(compiler, configuration, options, folder)
    sys.exit(1 if failures else 0)


main()
