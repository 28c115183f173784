"""Shared by the tests of serve and mirror: running both programs, and waiting for their lines."""

import json
import os
import queue
import signal
import subprocess
import threading

from support import PROGRAM

PATIENCE = 60


class Running:
    """The program with these arguments, whose lines can be waited for."""

    def __init__(self, *arguments):
        self.process = subprocess.Popen([PROGRAM, *arguments], text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.out, self.err = self.collect(self.process.stdout), self.collect(self.process.stderr)

    @staticmethod
    def collect(stream):
        lines = queue.Queue()

        def run():
            for line in stream:
                lines.put(line.rstrip("\n"))
            lines.put(None)

        threading.Thread(target=run, daemon=True).start()
        return lines

    @staticmethod
    def until(lines, part):
        """Passes over lines up to one with that part, and returns it."""
        while True:
            line = lines.get(timeout=PATIENCE)
            assert line is not None, f"ended before {part!r} came"
            if part in line:
                return line

    @staticmethod
    def rest(lines):
        """All lines up to the end, once there is one."""
        result = []
        while (line := lines.get(timeout=PATIENCE)) is not None:
            result.append(line)
        return result

    def end(self, with_signal=signal.SIGTERM):
        """Exit status, or the negative signal."""
        self.process.send_signal(with_signal)
        return self.process.wait(timeout=PATIENCE)


class Server(Running):
    def __init__(self, file, socket, *arguments):
        super().__init__("serve", file, "--socket", socket, *arguments)
        self.until(self.out, "serving ")


class Follower(Running):
    """A mirror that follows; its events are objects."""

    def __init__(self, socket):
        super().__init__("mirror", socket, "--follow", "--json")

    def event(self):
        line = self.out.get(timeout=PATIENCE)
        assert line is not None, "the mirror has ended"
        return json.loads(line)

    def events(self, count):
        return [self.event() for _ in range(count)]


def write(path, text):
    """Replaces a file by renaming, so that nobody sees a part of it."""
    with open(path + ".new", "w", encoding="ascii") as file:
        file.write(text)
    os.rename(path + ".new", path)
