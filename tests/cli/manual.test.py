"""The manual pages: one per command, each with exactly the options and arguments of the command's help.

mandoc and groff, where they are installed, report nothing for any page."""
import os
import re
import shutil
import subprocess

from support import ROOT, Checks, run

FOLDER = os.path.join(ROOT, "docs", "man")
LINTERS = {"mandoc": ["-T", "lint", "-W", "warning"], "groff": ["-man", "-Tutf8", "-ww", "-z"]}

checks = Checks()


def text_of(page):
    """The page, without the backslash of an option's dashes."""
    with open(page, encoding="ascii") as file:
        return file.read().replace(r"\-", "-")


def check_page(command, shown, page):
    """Compares the options and arguments of the help with those of the page."""
    text = text_of(page)
    arguments = re.search(r"^Usage: .*\[OPTION\.\.\.\] ?(.*)", shown, re.MULTILINE)[1].replace("[", "").replace("]", "")
    synopsis = text.split(".SH SYNOPSIS")[1].split(".SH")[0]
    options = text.split(".SH OPTIONS")[1].split(".SH")[0]
    offered = re.findall(r"^  (?:-\w,)?(--[a-z-]+)(?: (\S+))?", shown, re.MULTILINE)
    described = re.findall(r'^\.TP\n\.B[IR]? (?:-\w ", " )?(--[a-z-]+)(?: " (\S+)")?$', options, re.MULTILINE)
    checks.equal(f"{command}: options of the page", sorted(described), sorted(offered))
    for name, value in offered:
        if name not in ("--help", "--version"):
            checks.contains(f"{command}: synopsis", synopsis, f"\\fB{name}\\fP" + (f" \\fI{value}\\fP" if value else ""))
    for argument in arguments.split():
        checks.contains(f"{command}: synopsis", synopsis, argument)
        checks.true(f"{command}: {argument} is described", argument == "COMMAND" or f".TP\n.I {argument}\n" in options)
    for tool, flags in LINTERS.items():
        if shutil.which(tool):
            said = subprocess.run([tool, *flags, page], capture_output=True, text=True, check=False)
            checks.equal(f"{command}: {tool}", (said.returncode, said.stdout + said.stderr), (0, ""))


program_help = run("--help").stdout
commands = re.findall(r"^  ([a-z]+) ", program_help.split("Commands:\n")[1].split("\n\n")[0], re.MULTILINE)
checks.true("the help has commands", len(commands) > 1)
pages = {"routeradvt": program_help, **{f"routeradvt-{name}": run(name, "--help").stdout for name in commands}}
checks.equal("pages", sorted(os.listdir(FOLDER)), sorted(name + ".1" for name in pages))
for name, shown_help in pages.items():
    check_page(name, shown_help, os.path.join(FOLDER, name + ".1"))
main_page = text_of(os.path.join(FOLDER, "routeradvt.1"))
listed = re.findall(r"\.TP\n\.BR routeradvt-([a-z]+) \(1\)\n", main_page.split(".SH COMMANDS")[1].split(".SH")[0])
checks.equal("commands of the program's page", listed, commands)
print("checked by", [tool for tool in LINTERS if shutil.which(tool)] or "no linter of manual pages: none is installed")
checks.exit()
