#!/usr/bin/env python3
"""routeradvt serve and mirror: trees across processes, reloads, restarts, refusals."""

import json
import os
import resource
import signal
import socket
import subprocess
import tempfile
import threading

from mirroring import PATIENCE, PROGRAM, Follower, Running, Server, write
from support import EXAMPLE, Checks, run

checks = Checks()

FIRST = """config:
  intf:
    lo:
      raLifetime: 1800
      dnsServers: { "2001:db8::1": {}, "2001:db8::2": {} }
    Ethernet2: {}
"""


def mirrored(path):
    result = run("mirror", path, "--json")
    assert result.returncode == 0, result
    return json.loads(result.stdout)


def shown(path):
    return json.loads(run("show", path, "--json").stdout)["config"]


def check_failure(what, result, part, status=1):
    checks.equal(f"{what}: exit status", result.returncode, status)
    checks.equal(f"{what}: output", result.stdout, "")
    checks.contains(f"{what}: errors", result.stderr, part)


def check_trees(folder):
    file, path = EXAMPLE, os.path.join(folder, "example.sock")
    server = Server(file, path)
    trees = mirrored(path)
    checks.equal("trees", list(trees), ["config", "status"])
    checks.equal("configuration", trees["config"], shown(file))
    checks.equal("interfaces of the status", list(trees["status"]["intf"]), ["Ethernet1", "Ethernet2", "Vlan30"])
    text = run("mirror", path).stdout
    for part in ("config\n", "  intf[Ethernet1]\n", "    raLifetime ", "\nstatus\n", "    cfgProcFileData "):
        checks.contains("words", text, part)
    checks.equal("the socket's lines on stdout", Running.rest(server.out) if server.end() == 0 else None, [])
    checks.true("the socket is removed at the end", not os.path.exists(path))


def check_captured_files(folder):
    file, path = os.path.join(folder, "captured.yaml"), os.path.join(folder, "captured.sock")
    write(file, "config: { intf: { lo: {}, nowhere9: {}, all: {}, default: {}, ../conf/lo: {} } }\n")
    server = Server(file, path)
    intf = mirrored(path)["status"]["intf"]
    server.end()
    for name in ("nowhere9", "all", "default", "../conf/lo"):
        checks.equal(f"files of {name}", [intf[name]["cfgProcFileData"], intf[name]["nbrProcFileData"]], [None, None])
    for attribute, directory in (("cfgProcFileData", "conf"), ("nbrProcFileData", "neigh")):
        captured = f"/proc/sys/net/ipv6/{directory}/lo"
        if not os.path.isdir(captured):
            print(f"not checked: there is no {captured}")
            continue
        data = intf["lo"][attribute]
        checks.equal(f"name of {attribute}", data["name"], captured)
        files = {}
        for name in os.listdir(captured):
            try:
                with open(os.path.join(captured, name), encoding="ascii") as opened:
                    files[name] = opened.read()
            except OSError:
                pass
        checks.true(f"{captured} has files", files)
        checks.equal(f"files of {attribute}", data["fileData"], files)


def check_reload(folder):
    file, path = os.path.join(folder, "reload.yaml"), os.path.join(folder, "reload.sock")
    write(file, FIRST)
    server = Server(file, path, "--poll", "1000")
    followers = [Follower(path) for _ in range(3)]
    for follower in followers:
        attached = follower.event()
        checks.equal("the first event", attached["event"], "attached")
        checks.equal("the first trees", attached["trees"]["config"], shown(file))

    def expect(what, text, *events):
        write(file, text)
        server.until(server.out, "reloaded ")
        for number, follower in enumerate(followers):
            checks.equal(f"{what}, mirror {number}", follower.events(len(events)), list(events))
        checks.equal(f"{what}: mirrored", mirrored(path)["config"], shown(file))

    second = FIRST.replace("1800", "600")
    expect("a scalar", second, {"event": "set", "path": "config/intf[lo]/raLifetime", "value": 600})
    third = second.replace('"2001:db8::1": {}, "2001:db8::2": {}', '"2001:db8::2": {}, "2001:db8::1": {}')
    entry = shown(file)["intf"]["lo"]["dnsServers"]["2001:db8::1"]
    server_path = "config/intf[lo]/dnsServers[2001:db8::1]"
    expect("an order", third, {"event": "removed", "path": server_path},
           {"event": "added", "path": server_path, "value": entry})
    fresh = shown(file)["intf"]["Ethernet2"]
    expect("an interface more", third + "    Ethernet3: {}\n",
           {"event": "added", "path": "config/intf[Ethernet3]", "value": {**fresh, "intfId": "Ethernet3"}},
           {"event": "added", "path": "status/intf[Ethernet3]",
            "value": {"intfId": "Ethernet3", "cfgProcFileData": None, "nbrProcFileData": None}})
    expect("an interface less", third.replace("    Ethernet2: {}\n", ""),
           *({"event": "removed", "path": f"{root}/intf[{intf}]"}
             for root in ("config", "status") for intf in ("Ethernet2", "Ethernet3")))

    # A comment changes nothing in the trees, and a file with an error changes nothing either.
    write(file, third.replace("    Ethernet2: {}\n", "") + "# a remark\n")
    server.until(server.out, "reloaded ")
    write(file, FIRST.replace("raLifetime", "raLifetme"))
    checks.contains("error of the file", server.until(server.err, "raLifetme"), "config/intf[lo]/raLifetme: there is no such attribute")
    checks.contains("effect", server.until(server.err, "stays"), "what is served stays as it was")
    checks.equal("trees under a wrong file", list(mirrored(path)["config"]["intf"]), ["lo"])
    os.unlink(file)
    server.until(server.err, "cannot be opened")
    server.until(server.err, "stays")
    # Written in place, without a rename.
    with open(file, "w", encoding="ascii") as opened:
        opened.write(third.replace("    Ethernet2: {}\n", "").replace("600", "700"))
    server.until(server.out, "reloaded ")
    for follower in followers:
        checks.equal("the next change", follower.event(), {"event": "set", "path": "config/intf[lo]/raLifetime", "value": 700})
    for follower in followers:
        checks.equal("a mirror's end", follower.end(signal.SIGINT), 0)
    checks.equal("the server's end", server.end(signal.SIGINT), 0)
    checks.true("the socket is removed by Ctrl-C", not os.path.exists(path))


def check_a_file_above_the_memory(folder):
    file, path = os.path.join(folder, "large.yaml"), os.path.join(folder, "large.sock")
    write(file, FIRST)
    server = Server(file, path, "--poll", "1000")
    with open(f"/proc/{server.process.pid}/statm", encoding="ascii") as statm:
        taken = int(statm.read().split()[0]) * resource.getpagesize()
    if taken > 1 << 40:
        print("not checked: a sanitizer takes all addresses there are")
        server.end()
        return
    resource.prlimit(server.process.pid, resource.RLIMIT_AS, (taken + (32 << 20),) * 2)
    write(file, "config: [" + "a, " * 900000 + "]\n")
    checks.contains("why it is refused", server.until(server.err, "large.yaml"), "cannot be read: std::bad_alloc")
    checks.contains("effect", server.until(server.err, "stays"), "what is served stays as it was")
    checks.equal("trees under a file above the memory", list(mirrored(path)["config"]["intf"]), ["lo", "Ethernet2"])
    write(file, FIRST.replace("1800", "600"))
    server.until(server.out, "reloaded ")
    checks.equal("the next file", mirrored(path)["config"]["intf"]["lo"]["raLifetime"], 600)
    server.end()


def check_link_to_the_file(folder):
    """The file is a link to a link that is replaced, which is a frequent way to install a configuration."""
    for number in ("1", "2"):
        os.mkdir(os.path.join(folder, number))
        write(os.path.join(folder, number, "ra.yaml"), FIRST.replace("1800", "100" + number))
    current, path = os.path.join(folder, "current"), os.path.join(folder, "link.sock")
    os.symlink("1", current)
    file = os.path.join(folder, "linked.yaml")
    os.symlink("current/ra.yaml", file)
    server = Server(file, path, "--poll", "1000")
    os.symlink("2", current + ".new")
    os.rename(current + ".new", current)
    server.until(server.out, "reloaded ")
    checks.equal("through links", mirrored(path)["config"]["intf"]["lo"]["raLifetime"], 1002)
    server.end()


def check_restart(folder):
    file, path = os.path.join(folder, "restart.yaml"), os.path.join(folder, "restart.sock")
    write(file, FIRST)
    follower = Follower(path)
    checks.contains("nobody yet", follower.until(follower.err, path), "nobody listens there; waiting")
    server = Server(file, path)
    checks.equal("the first event", follower.event()["event"], "attached")
    checks.equal("killed", server.end(signal.SIGKILL), -signal.SIGKILL)
    checks.true("what a killed server leaves behind", os.path.exists(path))
    checks.equal("the server ends", follower.event(), {"event": "detached"})
    checks.contains("told", follower.until(follower.err, "ended"), "the server has ended; waiting")
    write(file, FIRST.replace("1800", "900"))
    server = Server(file, path)
    checks.equal("another server comes", follower.events(2), [
        {"event": "attached"}, {"event": "set", "path": "config/intf[lo]/raLifetime", "value": 900}])
    checks.contains("told", follower.until(follower.err, "again"), "attached again")
    check_failure("a second server", run("serve", file, "--socket", path), "another server listens there")
    checks.equal("the first one's socket", mirrored(path)["config"], shown(file))
    server.end()
    follower.end()


def served_by(path, behaviour):
    """The result of a mirror whose server treats its connection in this way."""
    with socket.socket(socket.AF_UNIX) as listener:
        listener.bind(path)
        listener.listen()

        def serve():
            connection = listener.accept()[0]
            with connection:
                behaviour(connection)

        thread = threading.Thread(target=serve)
        thread.start()
        result = run("mirror", path)
        thread.join(PATIENCE)
    os.unlink(path)
    return result


def check_refusals(folder):
    nowhere = os.path.join(folder, "nowhere")
    check_failure("no server", run("mirror", nowhere), f"{nowhere}: nobody listens there")
    check_failure("a path too long", run("mirror", folder + "/" + "x" * 200), "too long")
    check_failure("a path too long to follow", run("mirror", "x" * 200, "--follow"), "too long")
    check_failure("a file for a directory", run("mirror", EXAMPLE + "/x"), "/x: cannot be connected to: Not a directory")
    check_failure("garbage", served_by(nowhere, lambda c: c.sendall(b"x" * 1000)), "what comes from there cannot be read")
    check_failure("a short answer", served_by(nowhere, lambda c: c.sendall(b"")), "the server has ended")
    check_failure("silence", served_by(nowhere, lambda c: c.recv(1)), "nothing has come for 10 seconds; it may have as many mirrors as it serves")
    check_failure("no socket to mirror", run("mirror", EXAMPLE), "there is something that is no socket")
    check_failure("no socket to follow", run("mirror", folder, "--follow"), "there is something that is no socket")

    file, other = os.path.join(folder, "refused.yaml"), os.path.join(folder, "no-socket")
    write(file, "config: {hopLimt: 3}\n")
    check_failure("a wrong file", run("serve", file, "--socket", nowhere), "refused.yaml:1:10: config/hopLimt: ")
    checks.true("a wrong file leaves no socket", not os.path.exists(nowhere))
    check_failure("no file", run("serve", nowhere, "--socket", nowhere), "cannot be opened")
    write(file, FIRST)
    write(other, "precious")
    check_failure("no socket", run("serve", file, "--socket", other), "there is something that is no socket")
    with open(other, encoding="ascii") as opened:
        checks.equal("the file that is no socket", opened.read(), "precious")
    check_failure("no directory", run("serve", file, "--socket", nowhere + "/x"), "x.lock cannot be opened: No such file")
    check_failure("a path that is too long", run("serve", file, "--socket", "x" * 200), "a path of 1 to 107 octets")
    check_failure("standard input", run("serve", "-", "--socket", nowhere), "not standard input", status=2)
    check_failure("no --socket", run("serve", file), "--socket is required", status=2)
    check_failure("no PATH", run("mirror"), "PATH is required", status=2)
    check_failure("a poll of no time", run("serve", file, "--socket", nowhere, "--poll", "0"), "--poll", status=2)


def check_output_that_ends(folder):
    """A mirror ends by itself when the reader of its output has gone."""
    file, path = os.path.join(folder, "pipe.yaml"), os.path.join(folder, "pipe.sock")
    write(file, FIRST)
    server = Server(file, path)
    with subprocess.Popen([PROGRAM, "mirror", path, "--follow"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as mirror:
        mirror.stdout.readline()
        mirror.stdout.close()
        write(file, FIRST.replace("1800", "5"))
        server.until(server.out, "reloaded ")
        write(file, FIRST.replace("1800", "6"))
        checks.true("the mirror ends", mirror.wait(timeout=PATIENCE) != 0)
    checks.true("the server goes on", mirrored(path)["config"]["intf"]["lo"]["raLifetime"] in (5, 6))
    server.end()


def check_server_whose_output_ends(folder):
    """A server goes on when the reader of its output has gone."""
    file, path = os.path.join(folder, "deaf.yaml"), os.path.join(folder, "deaf.sock")
    write(file, FIRST)
    with subprocess.Popen([PROGRAM, "serve", file, "--socket", path], stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL) as server:
        server.stdout.readline()
        server.stdout.close()
        follower = Follower(path)
        follower.event()
        for lifetime in ("5", "6"):
            write(file, FIRST.replace("1800", lifetime))
            checks.equal("a change", follower.event()["value"], int(lifetime))
        follower.end()
        server.terminate()
        checks.equal("the server says that its output is lost", server.wait(timeout=PATIENCE), 1)
    checks.true("the socket is removed", not os.path.exists(path))


def check_time_to_come(folder):
    """A file that is written and not closed gives no event. It is read again although its time is in the future."""
    file, path = os.path.join(folder, "future.yaml"), os.path.join(folder, "future.sock")
    write(file, FIRST)
    server = Server(file, path, "--poll", "0.05")
    with open(file, "r+", encoding="ascii") as opened:
        opened.write(FIRST.replace("1800", "1700"))
        opened.flush()
        os.utime(file, (4e9, 4e9))
        server.until(server.out, "reloaded ")
    checks.equal("the change", mirrored(path)["config"]["intf"]["lo"]["raLifetime"], 1700)
    server.end()


def check_few_descriptors(folder):
    """Mirrors take no file descriptor that the server needs for the file."""
    file, path = os.path.join(folder, "few.yaml"), os.path.join(folder, "few.sock")
    write(file, FIRST)
    former = resource.getrlimit(resource.RLIMIT_NOFILE)
    resource.setrlimit(resource.RLIMIT_NOFILE, (44, former[1]))
    server = Server(file, path, "--poll", "0.05")
    resource.setrlimit(resource.RLIMIT_NOFILE, former)
    mirrors = [socket.socket(socket.AF_UNIX) for _ in range(50)]
    for mirror in mirrors:
        mirror.settimeout(PATIENCE)
        mirror.connect(path)
    for mirror in mirrors[:12]:
        checks.true("a mirror is served", mirror.recv(1))
    write(file, FIRST.replace("1800", "1700"))
    server.until(server.out, "reloaded ")
    checks.equal("files that are open", len(os.listdir(f"/proc/{server.process.pid}/fd")) < 44, True)
    for mirror in mirrors:
        mirror.close()
    checks.equal("the next mirror", mirrored(path)["config"]["intf"]["lo"]["raLifetime"], 1700)
    server.end()


def check_a_peer_that_sends(folder):
    """A peer that sends octets is no mirror; its connection is closed."""
    file, path = os.path.join(folder, "talk.yaml"), os.path.join(folder, "talk.sock")
    write(file, FIRST)
    server = Server(file, path)
    with socket.socket(socket.AF_UNIX) as connection:
        connection.settimeout(PATIENCE)
        connection.connect(path)
        checks.true("it is served", connection.recv(1))
        connection.sendall(b"hello")
        try:
            while connection.recv(65536):
                pass
            ended = True
        except ConnectionResetError:
            ended = True
        except TimeoutError:
            ended = False
        checks.true("its connection is closed", ended)
    checks.equal("the next mirror", mirrored(path)["config"], shown(file))
    server.end()


def check_hangup(folder):
    """SIGHUP ends a server, unless it was started with SIGHUP ignored, as by nohup(1)."""
    file, path = os.path.join(folder, "hangup.yaml"), os.path.join(folder, "hangup.sock")
    write(file, FIRST)
    checks.equal("hanging up", Server(file, path).end(signal.SIGHUP), 0)
    signal.signal(signal.SIGHUP, signal.SIG_IGN)
    server, follower = Server(file, path), Follower(path)
    signal.signal(signal.SIGHUP, signal.SIG_DFL)
    follower.event()
    for running in (server, follower):
        running.process.send_signal(signal.SIGHUP)
    write(file, FIRST.replace("1800", "1700"))
    checks.equal("both go on", follower.event()["value"], 1700)
    checks.equal("the mirror's end", follower.end(), 0)
    checks.equal("the server's end", server.end(), 0)


def stream_of(path):
    """The first octets of a server: a complete snapshot."""
    with socket.socket(socket.AF_UNIX) as connection:
        connection.settimeout(PATIENCE)
        connection.connect(path)
        octets = b""
        while not octets.endswith(b"\x0d\x00"):  # the mark behind a complete snapshot
            octets += connection.recv(65536)
        return octets


def check_streams(folder):
    """Streams of a faulty server, and of a server of another program."""
    file, path, other = (os.path.join(folder, name) for name in ("stream.yaml", "stream.sock", "other.sock"))
    write(file, FIRST)
    server = Server(file, path, "--poll", "1000")
    octets = stream_of(path)
    server.end()
    unknown = octets.replace(b"RouterAdvt::Config", b"RouterAdvt::Konfig").replace(b"RouterAdvt::Status", b"RouterAdvt::Stadus")
    check_failure("unknown trees", served_by(other, lambda c: c.sendall(unknown)), "serves no tree that this program knows")
    with socket.socket(socket.AF_UNIX) as listener:
        listener.bind(other)
        listener.listen()
        follower = Follower(other)
        for what in ("attached", "attached"):
            with listener.accept()[0] as connection:
                connection.sendall(octets)
                checks.equal("with the stream", follower.event()["event"], what)
                connection.sendall(b"\x02\x01\x7f")  # a batch that is not the next one
                checks.equal("with a gap", follower.event(), {"event": "detached"})
        checks.contains("told", follower.until(follower.err, "missing"), "something of the changes is missing; waiting")
        checks.equal("its end", follower.end(), 0)


with tempfile.TemporaryDirectory() as temporary:
    for check in (check_trees, check_captured_files, check_reload, check_a_file_above_the_memory, check_link_to_the_file, check_restart,
                  check_refusals, check_output_that_ends, check_server_whose_output_ends, check_time_to_come, check_few_descriptors,
                  check_a_peer_that_sends, check_hangup, check_streams):
        check(temporary)
checks.exit()
