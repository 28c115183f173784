#!/usr/bin/env python3
"""A mirror that is stopped while 10,000 interfaces change, and are replaced by others, again and again: the server's memory
stays bounded, the other mirror gets everything, and the stopped one has the right trees after it goes on."""

import os
import re
import signal
import tempfile

from mirroring import Follower, Server, write
from support import PROGRAM, Checks

# Under a sanitizer, memory says nothing about the server, and everything is slow.
with open(PROGRAM, "rb") as program:
    octets = program.read()
SANITIZED = b"__asan_" in octets or b"__tsan_" in octets
INTERFACES = 500 if SANITIZED else 10_000
ROUNDS = 6
# Memory that a stopped mirror may add: the changes that the source holds for it, a buffer, and some slack for memory that
# reading the file again leaves in the allocator.
MOST_MORE = 48 << 20

checks = Checks()


def configuration(lifetime, prefix="E"):
    return "config:\n  intf:\n" + "".join(f"    {prefix}{i}: {{raLifetime: {lifetime}}}\n" for i in range(INTERFACES))


def memory(process):
    with open(f"/proc/{process.pid}/status", encoding="ascii") as status:
        return int(re.search(r"VmRSS:\s+(\d+) kB", status.read()).group(1)) << 10


def lifetimes_until(follower, last):
    """The lifetimes that the events leave behind, once every interface has the last one."""
    lifetimes, missing = {}, INTERFACES
    while missing:
        event = follower.event()
        if event["event"] == "set" and event["path"].endswith("/raLifetime"):
            missing += (lifetimes.get(event["path"]) == last) - (event["value"] == last)
            lifetimes[event["path"]] = event["value"]
    return lifetimes


def interfaces_until(follower, present, prefix):
    """The interfaces that the events leave behind of those that are present, once all are of that prefix and there."""
    expected = {f"config/intf[{prefix}{i}]" for i in range(INTERFACES)}
    missing, others = len(expected - present), len(present - expected)
    while missing or others:
        event = follower.event()
        path = event["path"]
        if event["event"] == "added" and path.startswith("config/") and path not in present:
            present.add(path)
            missing, others = (missing - 1, others) if path in expected else (missing, others + 1)
        elif event["event"] == "removed" and path in present:
            present.remove(path)
            missing, others = (missing + 1, others) if path in expected else (missing, others - 1)
    return present


with tempfile.TemporaryDirectory() as folder:
    file, path = os.path.join(folder, "many.yaml"), os.path.join(folder, "many.sock")
    write(file, configuration(1))
    server = Server(file, path, "--poll", "1000")
    quick, stopped = Follower(path), Follower(path)
    for follower in (quick, stopped):
        checks.equal("interfaces at first", len(follower.event()["trees"]["config"]["intf"]), INTERFACES)

    def change(lifetime):
        write(file, configuration(lifetime))
        server.until(server.out, "reloaded ")
        checks.equal(f"lifetimes {lifetime} in the mirror that goes on", len(lifetimes_until(quick, lifetime)), INTERFACES)

    # One round with both mirrors, so that memory left by reading a file belongs to the memory before the test.
    change(2)
    lifetimes_until(stopped, 2)
    before = memory(server.process)
    stopped.process.send_signal(signal.SIGSTOP)
    for lifetime in range(3, 3 + ROUNDS):
        change(lifetime)
    more = memory(server.process) - before
    print(f"memory: {before >> 20} MB, and {more >> 20} MB more with a stopped mirror")
    checks.true(f"{more} octets more are at most {MOST_MORE}", SANITIZED or more <= MOST_MORE)

    stopped.process.send_signal(signal.SIGCONT)
    after = lifetimes_until(stopped, 2 + ROUNDS)
    checks.equal("the mirror that was stopped", after, {f"config/intf[E{i}]/raLifetime": 2 + ROUNDS for i in range(INTERFACES)})

    # Each round has its own interfaces. Nothing is merged, and there is more than is held for a mirror that does not read.
    present = {f"config/intf[E{i}]" for i in range(INTERFACES)}
    quick_present, stopped_present = set(present), set(present)
    stopped.process.send_signal(signal.SIGSTOP)
    for prefix in ("A-long-interface-name-", "B-long-interface-name-", "C-long-interface-name-", "D-long-interface-name-",
                   "E-long-interface-name-"):
        write(file, configuration(9, prefix))
        server.until(server.out, "reloaded ")
        interfaces_until(quick, quick_present, prefix)
    more = memory(server.process) - before
    print(f"memory: {more >> 20} MB more after interfaces were replaced")
    checks.true(f"{more} octets more are at most {MOST_MORE}", SANITIZED or more <= MOST_MORE)
    stopped.process.send_signal(signal.SIGCONT)
    interfaces_until(stopped, stopped_present, prefix)
    checks.equal("the mirror that was stopped", stopped_present, quick_present)
    checks.equal("its end", stopped.end(), 0)
    checks.equal("the other one's end", quick.end(), 0)
    checks.equal("the server's end", server.end(), 0)
checks.exit()
