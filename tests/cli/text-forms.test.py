#!/usr/bin/env python3
"""Text forms are Python: a printed form is evaluated with a function Value. The result is compared with the same value
printed by its type record."""

import json
import math
import os
import subprocess

from support import PROGRAM, Checks

PRINTER = os.environ.get("VALUE_PRINTER", os.path.join(os.path.dirname(PROGRAM), "value_printer"))
NAMES = {"__builtins__": {}, "inf": math.inf, "nan": math.nan}


def value(type_name, **attributes):
    """The function that a text form calls, with the type and the attributes in their order."""
    return type_name, list(attributes.items())


def expected(attribute):
    """The value that the text form should evaluate to, from the JSON of the printer."""
    if not isinstance(attribute, dict):
        return attribute
    if "text" in attribute:
        return bytes.fromhex(attribute["text"]).decode("latin-1")
    if "float" in attribute:
        return float.fromhex(attribute["float"])
    return attribute["type"], [(name, expected(inner)) for name, inner in attribute["attributes"]]


def same(one, other):
    """Equality that tells 1 from True and -0.0 from 0.0, and takes nan for equal to itself."""
    if type(one) is not type(other):
        return False
    if isinstance(one, float):
        return repr(one) == repr(other)
    if isinstance(one, (list, tuple)):
        return len(one) == len(other) and all(same(a, b) for a, b in zip(one, other))
    return one == other


printed = subprocess.run([PRINTER], capture_output=True, text=True, timeout=60, check=True).stdout.split("\n")
checks = Checks()
types = set()
for text, description in zip(printed[0::2], printed[1::2]):
    should_be = expected(json.loads(description))
    evaluated = eval(text, {**NAMES, "Value": value})  # pylint: disable=eval-used
    checks.true(f"{text}: is {evaluated}, should be {should_be}", same(evaluated, should_be))
    types.add(should_be[0] if should_be else None)
checks.equal("types", types, {None, *("RouterAdvt::" + name for name in (
    "RaPacketPrefixInfo", "RaPacket", "RouterNeighbor", "RouterNeighborRaKey", "RouterNeighborRa"))})
checks.true("there are some hundred values", checks.done > 1000)
checks.exit()
