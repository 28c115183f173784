"""Completion in bash completes exactly the words that the program's help offers."""
import os
import subprocess

from support import PROGRAM, ROOT, Checks

SCRIPT = os.path.join(ROOT, "programs", "routeradvt", "completion", "routeradvt.bash")
checks = Checks()


def completed(*words):
    """The completions of the last of `words`."""
    script = f'. "{SCRIPT}"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _routeradvt "$1"; printf "%s\\n" "${{COMPREPLY[@]}}"'
    run = subprocess.run(["bash", "-c", script, "bash", PROGRAM, *words], capture_output=True, text=True, timeout=30, check=False,
                         cwd=ROOT)
    checks.equal(f"completing {words}: standard error", run.stderr, "")
    return sorted(run.stdout.split())


checks.equal("a command is completed", completed("bui"), ["build"])
checks.true("all commands are offered", {"build", "send", "parse", "listen", "neighbors", "serve", "mirror", "show", "types"} <= set(completed("")))
checks.equal("a command is completed behind help", completed("help", "bui"), ["build"])
checks.equal("an option of a command is completed", completed("send", "--vi"), ["--via", "--virtual-router"])
checks.equal("an option of the program is completed", completed("--ver"), ["--version"])
checks.equal("a file is completed", completed("show", "examples/off"), ["examples/office.yaml"])
checks.true("a device is completed after --via", "lo" in completed("send", "office.yaml", "E1", "--via", "l"))
checks.true("a device is completed after listen", "lo" in completed("listen", "l"))
checks.equal("nothing is offered for what no command has", completed("build", "--no-such"), [])
checks.exit()
