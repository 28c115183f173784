"""The width of the help: COLUMNS, else that of the terminal, else 80."""
import fcntl
import os
import pty
import struct
import subprocess
import termios

from support import PROGRAM, Checks, run

checks = Checks()
WITHOUT_COLUMNS = {name: value for name, value in os.environ.items() if name != "COLUMNS"}


def width(text):
    """The length of the longest line that is not an example."""
    return max(len(line) for line in text.splitlines() if not line.startswith("  routeradvt "))


def help_on_terminal(columns, environment):
    """The help on a terminal of that many columns."""
    ours, theirs = pty.openpty()
    fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
    with subprocess.Popen([PROGRAM, "serve", "--help"], stdout=theirs, env=environment) as process:
        os.close(theirs)
        shown = b""
        try:
            while octets := os.read(ours, 4096):
                shown += octets
        except OSError:  # a terminal reports the end of its writer by this
            pass
    os.close(ours)
    checks.equal("exit status on a terminal", process.returncode, 0)
    return shown.decode()


def check_width(what, text, columns):
    """The text is folded at that width: no line is longer, and at least one is nearly as long."""
    checks.true(f"{what}: {width(text)} columns, should be {columns}", columns - 8 <= width(text) <= columns)


def help_with(columns):
    """The help on a pipe, with that value of COLUMNS."""
    return run("serve", "--help", env={**WITHOUT_COLUMNS, "COLUMNS": columns}).stdout


check_width("no terminal", run("serve", "--help", env=WITHOUT_COLUMNS).stdout, 80)
check_width("COLUMNS without a terminal", help_with("60"), 60)
for unusable in ("", "0", "x", "60x", "-60", "99999999999"):
    check_width(f"COLUMNS={unusable}", help_with(unusable), 80)
check_width("terminal of 70 columns", help_on_terminal(70, WITHOUT_COLUMNS), 70)
check_width("COLUMNS on a terminal", help_on_terminal(70, {**WITHOUT_COLUMNS, "COLUMNS": "90"}), 90)
check_width("terminal of unknown width", help_on_terminal(0, WITHOUT_COLUMNS), 80)
checks.exit()
