"""examples/all-attributes.yaml: every attribute of the configuration stands in it, with the default that the model has."""
import json
import os
import re

from support import ROOT, Checks, run

FILE = os.path.join(ROOT, "examples", "all-attributes.yaml")
BARE = "config: {prefixProfiles: {p: }, intf: {i: {prefixes: {'::/0': }, dnsServers: {'::1': }, dnsSuffixes: {a.b: }}}}"

checks = Checks()


def attributes_of(type_name):
    """Maps each scalar that can be set to None, and each collection to the type of its members."""
    lines = run("types", type_name).stdout.splitlines()
    found = dict.fromkeys(line.split()[1] for line in lines if line.endswith(" settable"))
    for line in lines:
        if collection := re.match(r"\d+ +(\w+) +collection +\S+ to (\S+)$", line):
            found[collection[1]] = collection[2]
    return found


def configured(file):
    """The attributes of the section config: maps each path, without keys of members, to the default that its comment gives, or
    to None."""
    keys = []
    for line in file:
        if line.startswith("links:"):
            return
        if not (entry := re.match(r"( *)([\w:./-]+):( |$)", line)) or not (indent := len(entry[1])):
            continue
        while keys and keys[-1][0] >= indent:
            keys.pop()
        keys.append((indent, entry[2]))
        path = [key for _, key in keys]
        if len(path) % 2 == 1:  # between two attributes stands the key of a member
            default = re.search(r"; default: (\S+)$", line)
            yield tuple(path[::2]), default and default[1]


def defaults(members, prefix=()):
    """The output of 'show --json' for members without attributes: maps each attribute's path to its value, as YAML."""
    for name, value in members.items():
        yield (*prefix, name), value if value and isinstance(value, str) else json.dumps(value)
        if isinstance(value, dict):
            for member in value.values():
                yield from defaults(member, (*prefix, name))


def expected(type_name, prefix=()):
    for name, members in attributes_of(type_name).items():
        yield (*prefix, name), members
        if members:
            yield from expected(members, (*prefix, name))


shown = json.loads(run("show", FILE, "--json").stdout)
warned = sorted(warning["path"] for warning in shown["warnings"])
checks.equal("paths of warnings", warned, ["config/hopLimit", "config/intf[Ethernet1]/nsIntervalMsec"])
checks.equal("build", run("build", FILE, "Ethernet1", "--hex").returncode, 0)

with open(FILE, encoding="utf-8") as example:
    stands = dict(configured(example))
model = dict(defaults(json.loads(run("show", "--json", "-", stdin=BARE).stdout)["config"]))
for attribute, member_type in expected("RouterAdvt::Config"):
    checks.true(f"{'/'.join(attribute)} stands in the file", attribute in stands)
    if not member_type:
        checks.equal(f"default of {'/'.join(attribute)}", stands.get(attribute), model[attribute])

checks.exit()
