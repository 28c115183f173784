"""The manual pages: a page a command, in which everything stands that the command's help says, and no other option.

The pages are those of the build. Where groff is, they are read as it sets them, and it has nothing to complain of."""
import os
import re
import shutil
import subprocess

from support import PROGRAM, Checks, run

SECTIONS = ["NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "COMMANDS", "CONFIGURATION FILE", "JSON OUTPUT", "EXIT STATUS"]
SECTIONS += ["ENVIRONMENT", "FILES", "NOTES", "EXAMPLES", "SEE ALSO"]
ALWAYS = {"NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "EXIT STATUS", "SEE ALSO"}
FOLDER = os.path.join(os.path.dirname(os.path.dirname(PROGRAM)), "man")
GROFF = shutil.which("groff")
OPTION = re.compile(r"(?<![\w-])--[a-z][a-z-]*")

checks = Checks()


def words(text):
    """The text with one blank wherever it has any."""
    return " ".join(text.split())


def file_of(page):
    """Where the page is."""
    return os.path.join(FOLDER, page + ".1")


def source(page):
    """The page as it was written."""
    with open(file_of(page), encoding="ascii") as file:
        return file.read()


def unescaped(text):
    """What a page says, roughly as it is set, for want of groff."""
    for escape, meant in ((r"\-", "-"), (r"\(aq", "'"), (r"\(dq", '"'), (r"\&", ""), ("\\ ", " "), (r"\(rs", "\\")):
        text = text.replace(escape, meant)
    text = re.sub(r"\\f[BIP]", "", text)
    lines = []
    for line in text.splitlines():
        request = re.match(r"\.(\S*) ?(.*)", line)
        if not request:
            lines.append("       " + line)
        elif request[1] in ("SH", "SS"):
            lines.append(("   " if request[1] == "SS" else "") + request[2])
        elif request[1] in ("B", "BI", "BR", "I", "IR", "SY"):
            lines.append("       " + request[2].replace('"', ""))
    return "\n".join(lines)


def rendered(page):
    """The page as it is read, paragraphs of one line each."""
    if not GROFF:
        return unescaped(source(page))
    command = [GROFF, "-man", "-Tascii", "-P-cbou", "-rLL=9000n", file_of(page)]
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def sections_of(text):
    """From the names of the sections to their texts."""
    parts = re.split(r"^([A-Z][A-Z ]+)$", text, flags=re.MULTILINE)
    return dict(zip(parts[1::2], parts[2::2]))


def help_of(command):
    """What the program, or its command, prints."""
    return run(*[command] if command else [], "--help").stdout


def entries_of(shown):
    """From the options and arguments of a help to what it says of them."""
    entries = {}
    for block in re.findall(r"^(?:Arguments|Options|[A-Z][a-z]+):\n((?:  .*\n)+)", shown, re.MULTILINE):
        for entry in re.findall(r"^  (\S.*(?:\n {24}.*)*)", block, re.MULTILINE):
            name, text = re.split(r" {2,}|\n {24}", entry, maxsplit=1)
            entries[name.replace(",", ", ")] = words(text)
    return entries


def commands_of(shown):
    """The names of the commands that the program's help lists."""
    return re.findall(r"^  ([a-z]+) ", shown.split("Commands:\n")[1].split("\n\n")[0], re.MULTILINE)


def check_options(command, page, sections):
    """Arguments and options are those of the help, and those alone."""
    shown = help_of(command)
    entries = {name: text for name, text in entries_of(shown).items() if name not in commands}
    checks.true(f"{page}: help has options", any("--help" in name for name in entries))
    lines = words(sections["OPTIONS"])
    for name, text in entries.items():
        checks.contains(f"{page}: {name}", lines, f"{name} {text}")
    of_help = {name for entry in entries for name in OPTION.findall(entry)}
    tags = {name for name in re.findall(r"^ *(?:-\w, )?(--[a-z-]+)", sections["OPTIONS"], re.MULTILINE)}
    checks.equal(f"{page}: options", sorted(tags), sorted(of_help))
    for name in of_help - {"--help"}:
        checks.contains(f"{page}: synopsis", sections["SYNOPSIS"], name)
    for name in re.findall(r"^Usage: .*\] (.*)", shown, re.MULTILINE):
        synopsis = words(sections["SYNOPSIS"]).removesuffix(" ...")
        checks.true(f"{page}: {synopsis!r} ends with {name}", synopsis.endswith(name))


def check_mentions(page, text, own):
    """Options that the text mentions are the command's own, or those of a command that the same line names."""
    for line in text.splitlines():
        known = set(own)
        for named in re.findall(r"routeradvt[ -]([a-z]+)", line):
            known.update(OPTION.findall(help_of(named) if named in commands else ""))
        for option in OPTION.findall(line):
            checks.true(f"{page}: {option} is an option, in {line!r}", option in known)


def check_help_text(page, shown, text):
    """What stands around the options in the help stands in the page."""
    for line in shown.split("\n\n")[-1].splitlines() + shown.splitlines()[:1]:
        # The name of a section, the first letter and the last point are the page's.
        line = re.sub(r"^Exit status: ", "", words(line))[1:].rstrip(".")
        checks.contains(page, words(text), line)


def check_page(command):
    """All of a page."""
    page = "routeradvt" + ("-" + command if command else "")
    text = rendered(page)
    sections = sections_of(text)
    places = [SECTIONS.index(name) if name in SECTIONS else -1 for name in sections]
    checks.equal(f"{page}: order of the sections", places, sorted(places))
    checks.true(f"{page}: has {ALWAYS}, of {list(sections)}", ALWAYS <= set(sections))
    if not ALWAYS <= set(sections):
        return
    checks.contains(f"{page}: name", words(sections["NAME"]), page + " - ")
    check_options(command, page, sections)
    if GROFF:  # which puts a paragraph on a line
        check_mentions(page, text, OPTION.findall(help_of(command)))
    check_help_text(page, help_of(command), text)
    named = re.findall(r"(routeradvt[a-z-]*) ?\(1\)", sections["SEE ALSO"])
    for other in named:
        checks.true(f"{page}: {other}(1) is a page", os.path.exists(file_of(other)))
    checks.equal(f"{page}: SEE ALSO names no page twice", len(named), len(set(named)))
    expected = {f"routeradvt-{name}" for name in commands} if not command else {"routeradvt"}
    checks.true(f"{page}: {expected} are in SEE ALSO, which has {named}", expected <= set(named))
    checks.true(f"{page}: is not its own SEE ALSO", page not in named)
    if GROFF:
        said = subprocess.run([GROFF, "-man", "-Tutf8", "-ww", "-z", file_of(page)], capture_output=True, check=False)
        checks.equal(f"{page}: groff", (said.returncode, said.stderr + said.stdout), (0, b""))


commands = commands_of(help_of(""))
checks.true("the help has commands", len(commands) > 1)
checks.equal(
    "pages",
    sorted(os.listdir(FOLDER)),
    sorted(["routeradvt.1"] + [f"routeradvt-{command}.1" for command in commands]),
)
for command_name in ["", *commands]:
    check_page(command_name)
for command_name in commands:
    checks.contains("the program's page", sections_of(rendered("routeradvt"))["COMMANDS"], f"routeradvt-{command_name}")
if not GROFF:
    print("there is no groff: whether the pages can be set, and what else they mention, was not tried")
checks.exit()
