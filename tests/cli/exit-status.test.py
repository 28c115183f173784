"""The program as a process: its exit status, and the texts on each of its streams."""
import os
import subprocess
import tempfile

from support import EXAMPLE, PROGRAM, Checks, run

checks = Checks()


def check(what, result, status, out=None, err=None):
    """`out`, `err`: a part of the stream; if it is empty, the stream has to be empty."""
    checks.equal(what + ": exit status", result.returncode, status)
    for name, text, part in (("stdout", result.stdout, out), ("stderr", result.stderr, err)):
        if part == "":
            checks.equal(f"{what}: {name}", text, "")
        elif part is not None:
            checks.contains(f"{what}: {name}", text, part)


check("help", run("--help"), 0, out="Usage: routeradvt", err="")
for command in ("build", "send", "show", "types"):
    check(command + " help", run(command, "--help"), 0, out=f"Usage: routeradvt {command}", err="")
check("no command", run(), 2, out="", err="a command is required")
check("unknown command", run("biuld"), 2, out="", err="biuld")
check("unknown option", run("show", EXAMPLE, "--nothing"), 2, out="", err="--nothing")
check("missing argument", run("build", EXAMPLE), 2, out="", err="INTF is required")
check("bad option value", run("build", EXAMPLE, "Ethernet1", "--mtu", "85"), 2, out="", err="--mtu")
check("missing file", run("show", "nowhere.yaml"), 1, out="", err="nowhere.yaml: cannot be opened")
check("unknown interface", run("build", EXAMPLE, "Ethernet9"), 1, out="", err="did you mean Ethernet1?")
check("standard input", run("show", "-", stdin="config: {hopLimt: 3}\n"), 1, out="",
      err="standard input:1:10: config/hopLimt: there is no such attribute; did you mean hopLimit?\n")
check("a comma behind the document", run("show", "-", stdin='{"config": {}},\n'), 1, out="",
      err="standard input:1:15: unexpected comma\n")
check("types", run("types"), 0, out="RouterAdvt::IntfConfig", err="")
check("unknown type", run("types", "IntfConfg"), 1, out="", err="did you mean IntfConfig?")
check("show", run("show", EXAMPLE), 0, out="intf[Ethernet1]", err="")
check("build", run("build", EXAMPLE, "Ethernet1"), 0, out="Router Advertisement, RFC 4861 4.2", err="")

result = run("build", EXAMPLE, "Ethernet1", "--trace", "RouterAdvt*/0-8")
check("trace", result, 0, out="Router Advertisement", err="After Network Boot option: ")
check("trace of all handles", run("build", EXAMPLE, "Ethernet1", "--trace", "0-3,8"), 0, err="Ipv6 payload length ")
check("trace by the environment", run("build", EXAMPLE, "Ethernet1", env={**os.environ, "TRACE": "*/8"}), 0,
      err="Ipv6 payload length ")

with tempfile.TemporaryDirectory() as folder:
    capture = os.path.join(folder, "ra.pcap")
    check("write", run("build", EXAMPLE, "Ethernet1", "--write", capture), 0, out="", err="")
    with open(capture, "rb") as file:
        octets = file.read()
    frame = run("build", EXAMPLE, "Ethernet1", "--hex").stdout.strip()
    checks.equal("capture magic", octets[:4], b"\xd4\xc3\xb2\xa1")
    checks.equal("capture link type", octets[20:24], b"\x01\0\0\0")
    checks.equal("captured frame", octets[40:].hex(), frame)
    piped = subprocess.run([PROGRAM, "build", EXAMPLE, "Ethernet1", "--write", "-"], capture_output=True, timeout=30,
                           check=False)
    checks.equal("capture on standard output: exit status, errors", (piped.returncode, piped.stderr), (0, b""))
    checks.equal("capture on standard output", piped.stdout[40:].hex(), frame)
    check("capture and hex on standard output", run("build", EXAMPLE, "Ethernet1", "--write", "-", "--hex"), 2, out="",
          err="both mean standard output")
    check("send's capture on standard output", run("send", EXAMPLE, "Ethernet1", "--via", "lo", "--write", "-"), 2, out="",
          err="--write: expected a file")

    # The next file that is opened does not take the place of a closed stream.
    closed = run("build", EXAMPLE, "Ethernet1", "--hex", "--write", capture, preexec_fn=lambda: os.close(1))
    check("closed standard output", closed, 1, out="", err="the output could not be written")
    with open(capture, "rb") as file:
        checks.equal("capture beside a closed standard output", file.read()[40:].hex(), frame)

if os.path.exists("/dev/full"):
    for argument in ("types", "--help", "--version"):
        with open("/dev/full", "w", encoding="ascii") as full:
            result = subprocess.run([PROGRAM, argument], stdout=full, stderr=subprocess.PIPE, text=True, timeout=30,
                                    check=False)
        checks.equal(f"{argument} on a full disk: exit status", result.returncode, 1)
        checks.contains(f"{argument} on a full disk: stderr", result.stderr, "could not be written")

checks.exit()
