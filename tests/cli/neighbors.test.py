#!/usr/bin/env python3
"""routeradvt neighbors, against tables that are missing, damaged, abandoned and replaced."""

import atexit
import json
import os
import pathlib
import pwd
import queue
import shutil
import subprocess
import tempfile
import threading

ROUTERADVT = os.environ["ROUTERADVT"]
WRITER = os.environ.get("NEIGHBOR_WRITER", os.path.join(os.path.dirname(ROUTERADVT), "neighbor_writer"))
READER = os.path.join(os.path.dirname(ROUTERADVT), "neighbor_reader")


class Watcher:
    """A running `neighbors --watch --json`, whose lines can be waited for."""

    def __init__(self, env, *arguments):
        self.process = subprocess.Popen([ROUTERADVT, "neighbors", "--watch", "--json", *arguments], env=env, text=True,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        atexit.register(self.process.kill)
        self.lines = queue.Queue()
        threading.Thread(target=self.collect, daemon=True).start()

    def collect(self):
        for line in self.process.stdout:
            self.lines.put(json.loads(line))

    def until(self, condition):
        while True:
            shown = self.lines.get(timeout=30)
            if condition(shown):
                return shown

    def end(self):
        self.process.terminate()
        self.process.wait(timeout=30)

    def fails(self):
        """Exit status, and the message on standard error, of a watcher that ends by itself."""
        return self.process.wait(timeout=30), self.process.stderr.read()


class Reader:
    """The example program, which stands for another author's reader of the table."""

    def __init__(self, env):
        self.process = subprocess.Popen([READER], env=env, text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        atexit.register(self.process.kill)

    def until(self, line):
        for shown in self.process.stdout:
            if shown.startswith(line):
                return
        raise AssertionError(f"no {line}")

    def end(self):
        out, err = self.process.communicate(timeout=30)
        return self.process.returncode, err


class Writer:
    """A program that keeps the table and writes one row per line of its input."""

    def __init__(self, env):
        self.process = subprocess.Popen([WRITER], env=env, text=True, stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        assert self.process.stdout.readline() == "mounted\n"

    def hear(self, interface, router):
        self.process.stdin.write(f"{interface} {router}\n")
        self.process.stdin.flush()
        assert self.process.stdout.readline() == "written\n"

    def kill(self):
        self.process.kill()
        self.process.wait()

    def end(self):
        self.process.stdin.close()
        assert self.process.wait(timeout=30) == 0


def replace(table, content):
    """Puts another file in the table's place, as a writer does."""
    other = table.with_suffix(".new")
    other.write_bytes(content)
    other.chmod(0o644)
    other.rename(table)


def neighbors(env, *arguments):
    return subprocess.run([ROUTERADVT, "neighbors", *arguments], env=env, text=True, capture_output=True, timeout=60)


def routers(shown):
    return [entry["router"] for entry in shown["neighbors"]]


def main():
    with tempfile.TemporaryDirectory() as directory:
        env = dict(os.environ, SHARED_TABLE_DIR=directory)
        table = pathlib.Path(directory, "routing6/routerAdvt/routerNeighborRaStatus/routerNeighborRa.tbl")

        missing = neighbors(env)
        assert missing.returncode == 1 and "there is no table" in missing.stderr, missing

        watcher = Watcher(env)
        watcher.until(lambda shown: not shown["table"])
        first = Writer(env)
        first.hear("Ethernet1", "fe80::1")
        watcher.until(lambda shown: routers(shown) == ["fe80::1"])
        first.hear("Ethernet2", "fe80::2")
        watcher.until(lambda shown: routers(shown) == ["fe80::1", "fe80::2"] and shown["writer"]["alive"])

        shown = neighbors(env, "--intf", "Ethernet2", "--json")
        assert shown.returncode == 0 and routers(json.loads(shown.stdout)) == ["fe80::2"], shown
        assert json.loads(shown.stdout)["writer"]["pid"] == first.process.pid
        text = neighbors(env, "--sort", "age")
        assert text.stdout.splitlines()[1].startswith("Ethernet2  fe80::2  "), text
        assert "alive" not in text.stdout

        first.kill()
        watcher.until(lambda shown: shown["table"] and not shown["writer"]["alive"])
        dead = neighbors(env)
        assert dead.returncode == 0 and "no writer is alive; the last sign of one is of 20" in dead.stdout, dead
        assert "fe80::1" in dead.stdout, "the last rows are still shown"

        second = Writer(env)
        second.hear("Ethernet1", "fe80::3")
        watcher.until(lambda shown: routers(shown) == ["fe80::3"] and shown["writer"]["alive"])
        content = table.read_bytes()[:256]
        second.end()
        watcher.until(lambda shown: not shown["table"])
        assert not table.exists()
        missing = Reader(env).end()
        assert missing[0] == 1 and "no such file" in missing[1], missing
        third = Writer(env)
        third.hear("Ethernet1", "fe80::4")
        watcher.until(lambda shown: shown["table"] and routers(shown) == ["fe80::4"])
        reader = Reader(env)
        reader.until("Ethernet1 fe80::4 ")
        third.hear("Ethernet1", "fe80::5")
        reader.until("2 routers")
        third.kill()
        watcher.until(lambda shown: not shown["writer"]["alive"])

        # After the writer is gone: a table of another format, a damaged one, none, and a sound one.
        replace(table, content[:8] + content[11:7:-1] + content[12:])
        shown = watcher.until(lambda shown: not shown["table"])
        assert "other byte order" in shown["problem"], shown
        replace(table, content[:100])
        watcher.until(lambda shown: "truncated" in shown.get("problem", ""))
        table.unlink()
        watcher.until(lambda shown: not shown["table"] and "problem" not in shown)
        assert "other byte order" in (ended := reader.end())[1] and ended[0] == 0, ended
        fourth = Writer(env)
        fourth.hear("Ethernet1", "fe80::6")
        watcher.until(lambda shown: shown["table"] and routers(shown) == ["fe80::6"])
        watcher.end()
        shutil.rmtree(pathlib.Path(directory, "routing6"))
        fourth.hear("Ethernet1", "fe80::7")
        shown = json.loads(neighbors(env, "--json").stdout)
        assert routers(shown) == ["fe80::6", "fe80::7"] and shown["writer"]["alive"], shown
        reader = Reader(env)
        reader.until("2 routers")
        fourth.end()
        assert reader.end() == (0, table.name + ": no such file\n")

        # A user whom --owner names can take the file away while it is read.
        last = Writer(env)
        last.hear("Ethernet1", "fe80::7")
        watcher = Watcher(env, "--owner", pwd.getpwuid(os.geteuid()).pw_name)
        watcher.until(lambda shown: routers(shown) == ["fe80::7"])
        last.kill()
        watcher.until(lambda shown: not shown["writer"]["alive"])
        os.truncate(table, 0)
        assert watcher.fails() == (1, "the table cannot be read: its owner has cut the file short\n")

        table.write_bytes(content[:100])
        damaged = neighbors(env)
        assert damaged.returncode == 1 and "truncated" in damaged.stderr, damaged
        table.write_bytes(content[:20] + b"x" + content[21:])
        damaged = neighbors(env)
        assert damaged.returncode == 1 and "damaged" in damaged.stderr, damaged
        table.write_bytes(content[:8] + content[11:7:-1] + content[12:])
        other = neighbors(env)
        assert other.returncode == 1 and "other byte order" in other.stderr, other
        os.chmod(table, 0o666)
        assert "others may write it" in neighbors(env).stderr

        assert neighbors(env, "--sort", "colour").returncode == 2
        assert neighbors(env, "--owner", "nobody-of-that-name").returncode == 2
        assert neighbors(env, "--intf", "x" * 40).returncode == 2


main()
