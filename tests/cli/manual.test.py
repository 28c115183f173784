"""The manual page: whatever a command's help offers stands in it."""
import os
import re

from support import ROOT, Checks, run

checks = Checks()
with open(os.path.join(ROOT, "docs", "man", "routeradvt.1"), encoding="ascii") as file:
    page = file.read().replace("\\-", "-")

for command in ("", "build", "send", "parse", "listen", "neighbors", "serve", "mirror", "show", "types"):
    shown = run(*[command] if command else [], "--help").stdout
    options = re.findall(r"^  (?:-\w,)?(--[a-z-]+)", shown, re.MULTILINE)
    checks.true(f"{command}: help has options", "--help" in options)
    for option in options:
        checks.true(f"{command}: {option} is in the manual page", re.search(re.escape(option) + r"(?![a-z-])", page))

checks.exit()
