"""README shows real output: each command of a `console` block is run, and prints the lines below it.

A line `...` stands for any number of lines.
"""
import os
import re
import shlex

from support import ROOT, Checks, run

checks = Checks()


def sessions(document):
    """Command and expected output of every `$` line in the console blocks of a document."""
    with open(document, encoding="utf-8") as file:
        blocks = re.findall(r"^```console\n(.*?)^```$", file.read(), re.MULTILINE | re.DOTALL)
    for block in blocks:
        for session in re.split(r"^\$ ", block, flags=re.MULTILINE)[1:]:
            command, _, output = session.partition("\n")
            yield command, output.rstrip("\n")


for command, expected in sessions(os.path.join(ROOT, "README.md")):
    program, *arguments = shlex.split(command)
    checks.equal(f"program of {command!r}", program, "routeradvt")
    result = run(*arguments, cwd=ROOT)
    pattern = "".join(".*?" if line == "...\n" else re.escape(line) for line in (expected + "\n").splitlines(True))
    shown = result.stdout + result.stderr
    checks.true(f"{command!r} prints {shown!r}, README says {expected!r}", re.fullmatch(pattern, shown, re.DOTALL))
    checks.equal(f"exit status of {command!r}", result.returncode, 0)

checks.exit()
