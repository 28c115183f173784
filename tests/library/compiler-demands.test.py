#!/usr/bin/env python3
"""Every front door of the libraries says in its first error message what the compiler lacks."""

import pathlib
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
HEADERS = ["Ipv6RouterAdvt/RouterAdvt.h", "Ipv6RouterAdvt/RouterAdvtUtils.h", "Ipv6RouterAdvt/Version.h",
           "Ipv6RouterAdvt/Heard/RouterNeighborRaReader.h", "RouterPlatform/Fwk/Entity.h",
           "RouterPlatform/Net/Ip6Addr.h", "RouterPlatform/SharedTable/Reader.h"]
DEMANDS = {
    "-std=c++17": "need C++20",
    "-fno-exceptions": "need exceptions",
    "-fno-rtti": "need type information at run time",
}
COMPILERS = {"g++": ["g++"], "clang": ["clang++-14", "clang++"]}

failures = 0


def messages(compiler, options, header):
    command = [compiler, "-std=c++20", *options, f"-I{ROOT}", "-fsyntax-only", "-x", "c++", "-"]
    result = subprocess.run(command, text=True, input=f"#include <{header}>\n", capture_output=True)
    return [line for line in result.stderr.splitlines() if "error:" in line]


def check(compiler, options, header, expected):
    global failures
    found = messages(compiler, options, header)
    first = found[0] if found else ""
    if bool(found) != bool(expected) or expected not in first:
        failures += 1
        print(f"FAILED {compiler} {options} {header}: the first error is {first!r} and not {expected!r}")


for name, programs in COMPILERS.items():
    compiler = next((program for program in programs if shutil.which(program)), None)
    if not compiler:
        print(f"skipped {name}: it is not installed")
        continue
    for header in HEADERS:
        check(compiler, [], header, "")
        for option, expected in DEMANDS.items():
            check(compiler, [option], header, expected)
    print("checked", name)
sys.exit(1 if failures else 0)
