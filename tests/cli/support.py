"""Shared by the tests of the command line: running the program, and reporting failed checks."""
import os
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
EXAMPLE = os.path.join(ROOT, "examples", "office.yaml")
PROGRAM = os.environ.get("ROUTERADVT", "")


def run(*arguments, stdin=None, **options):
    """Runs the program to its end; the result has returncode, stdout and stderr."""
    return subprocess.run(
        [PROGRAM, *arguments], input=stdin, capture_output=True, text=True, timeout=30, check=False, **options
    )


def need_optimized():
    """Skips a test whose limits are those of an optimized program without a sanitizer."""
    if os.environ.get("OPTIMIZED") == "0":
        print("skipped: the program is not optimized, or has a sanitizer")
        sys.exit(77)


class Checks:
    """Counts checks and failures; a test without checks fails, too."""

    def __init__(self):
        self.done = 0
        self.failed = 0

    def equal(self, what, actual, expected):
        self.true(f"{what}: is {actual!r}, should be {expected!r}", actual == expected)

    def contains(self, what, text, part):
        self.true(f"{what}: {part!r} is not in {text!r}", part in text)

    def true(self, what, holds):
        self.done += 1
        if not holds:
            self.failed += 1
            print("FAILED", what)

    def exit(self):
        print(f"{self.done} checks, {self.failed} failed")
        sys.exit(1 if self.failed or not self.done else 0)
