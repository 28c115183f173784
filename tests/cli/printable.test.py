"""Names from arguments, files, the environment and the kernel reach the terminal as printable UTF-8 only."""
import os
import shutil
import signal
import subprocess
import tempfile
import threading

from support import EXAMPLE, PROGRAM, Checks

# An escape sequence, CSI as a C1 control, a right-to-left override, a line separator, an octet that is not UTF-8, a
# backslash and a newline; between ordinary letters.
NAME = b"<\x1b[31m\xc2\x9b1m\xe2\x80\xae\xe2\x80\xa8\xff\\x\n>"
SHOWN = "<\\x1b[31m\\xc2\\x9b1m\\xe2\\x80\\xae\\xe2\\x80\\xa8\\xff\\\\x\\x0a>"
# The kernel takes names of at most 15 octets without blanks.
DEVICE = b"g\x1b[1m\xc2\x9b\xff\\"
DEVICE_SHOWN = "g\\x1b[1m\\xc2\\x9b\\xff\\\\"
# The same characters in YAML, which has no octets.
YAML_NAME = '"<\\e[31m\\x9b1m\\u202e\\u2028\\\\x\\n>"'
YAML_SHOWN = SHOWN.replace("\\xff", "")

checks = Checks()


def octets_of(*arguments, prefix=(), **options):
    """Runs the program to its end, and returns its exit status and the text of both streams."""
    result = subprocess.run([*prefix, PROGRAM, *arguments], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=30,
                            check=False, **options)
    return result.returncode, result.stdout


def is_harmless(character):
    code = ord(character)
    return not (code < 0x20 and character != "\n" or 0x7F <= code <= 0x9F or code in (0x61C, 0x200E, 0x200F)
                or 0x2028 <= code <= 0x202E or 0x2066 <= code <= 0x2069)


def check_octets(what, octets, shown=SHOWN):
    try:
        text = octets.decode("utf-8")
    except UnicodeDecodeError as error:
        checks.true(f"{what}: {octets!r} is not UTF-8: {error}", False)
        return
    checks.true(f"{what}: {text!r} can drive a terminal", all(map(is_harmless, text)))
    checks.contains(what, text, shown)


def check(what, *arguments, status=1, shown=SHOWN, **options):
    actual, octets = octets_of(*arguments, **options)
    checks.equal(f"{what}: exit status, with {octets!r}", actual, status)
    check_octets(what, octets, shown)


def check_arguments():
    check("command", NAME, status=2)
    check("option", "show", b"--" + NAME, EXAMPLE, status=2)
    check("value of a flag", "show", EXAMPLE, b"--json=" + NAME, status=2)
    check("extra argument", "show", "a", "b", NAME, status=2)
    for command in (["build", EXAMPLE, "Ethernet1"], ["send", EXAMPLE, "Ethernet1", "--via", "lo"]):
        for option in ("--src", "--dst", "--src-mac", "--dst-mac", "--mtu", "--trace"):
            check(f"{command[0]} {option}", *command, option, NAME, status=2)
    for option in ("--count", "--interval"):
        check(f"send {option}", "send", EXAMPLE, "Ethernet1", "--via", "lo", option, NAME, status=2)
    for option in ("--count", "--for"):
        check(f"listen {option}", "listen", "lo", option, NAME, status=2)
    check("serve --poll", "serve", EXAMPLE, "--socket", "x", "--poll", NAME, status=2)
    for option in ("--sort", "--owner"):
        check(f"neighbors {option}", "neighbors", option, NAME, status=2)
    check("neighbors --intf", "neighbors", "--intf", NAME + 32 * b"x", status=2)
    check("parse --intf", "parse", "x", "--intf", NAME + 32 * b"x", status=2)
    check("type", "types", NAME)
    for command in ("show", "build"):
        check(f"interface of {command}", command, EXAMPLE, NAME)
    check("device of listen", "listen", NAME)
    check("device of send", "send", EXAMPLE, "Ethernet1", "--via", NAME)


def check_files(folder):
    odd = os.path.join(os.fsencode(folder), NAME)
    for what, arguments in {
            "show": ("show", odd),
            "build": ("build", odd, "Ethernet1"),
            "send": ("send", odd, "Ethernet1", "--via", "lo"),
            "parse": ("parse", odd),
            "serve": ("serve", odd, "--socket", folder + "/s"),
            "mirror": ("mirror", odd),
    }.items():
        check(f"{what} without its file", *arguments)
    check("capture in no folder", "build", EXAMPLE, "Ethernet1", "--write", odd + b"/a.pcap")
    check("socket in no folder", "serve", EXAMPLE, "--socket", odd + b"/s")
    check("socket with a long path", "serve", EXAMPLE, "--socket", odd + 107 * b"x")
    with open(odd, "wb") as file:
        file.write(b"config: [")
    check("file that is not YAML", "show", odd)
    check("file that is no capture", "parse", odd)
    check("file in place of a socket", "serve", EXAMPLE, "--socket", odd)
    check("file in place of a server", "mirror", odd)
    with open(odd, "wb") as file:
        file.write(b"config: {intf: {E: {raSuppress: true}}}")
    check("warnings of show", "show", odd, status=0)
    check("warnings of build", "build", odd, "E", "--src-mac", "02:00:00:00:00:01", "--dst", "ff02::1", status=0)
    check("no link in the file", "build", odd, "E")
    check_server(odd)


def check_server(odd):
    """The messages of a server and of a mirror that follows."""
    socket = odd + b".s"
    server = subprocess.Popen([PROGRAM, "serve", odd, "--socket", socket], stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT)
    limit = threading.Timer(60, server.kill)
    limit.start()
    check_octets("serving", server.stdout.readline())
    follower = subprocess.Popen([PROGRAM, "mirror", socket, "--follow"], stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    follower.stdout.readline()
    with open(odd + b".new", "wb") as file:
        file.write(b"config: {")
    os.rename(odd + b".new", odd)
    check_octets("file with an error", server.stdout.readline())
    check_octets("served as before", server.stdout.readline())
    with open(odd + b".new", "wb") as file:
        file.write(b"config: {}")
    os.rename(odd + b".new", odd)
    check_octets("reloaded", server.stdout.readline())
    server.terminate()
    server.wait(timeout=30)
    limit.cancel()
    check_octets("mirror without its server", follower.stderr.readline())
    follower.send_signal(signal.SIGTERM)
    follower.communicate(timeout=30)


def check_contents():
    """Names from a configuration file, in errors and in output."""
    # The path of an entity escapes a backslash in a key by another one.
    shown = {"anchor": "", "attribute below a name": YAML_SHOWN.replace("\\\\x\\x0a", "\\\\\\\\x\\x0a")}
    for what, text in {
            "section": "NAME: 1",
            "attribute": "config: {NAME: 1}",
            "value": "config: {hopLimit: NAME}",
            "flag": "config: {raConsistency: NAME}",
            "key of a prefix": "config: {intf: {E: {prefixes: {NAME: {}}}}}",
            "attribute below a name": "config: {intf: {NAME: {x: 1}}}",
            "duplicate key": "config: {intf: {NAME: {}, NAME: {}}}",
            "list in place of a mapping": "config: {intf: {NAME: []}}",
            "key of a link": "config: {}\nlinks: {E: {NAME: 1}}",
            "name of a link": "config: {}\nlinks: {NAME: {mtu: 1}}",
            "mac of a link": "config: {}\nlinks: {E: {mac: NAME}}",
            "address of a link": "config: {}\nlinks: {E: {addresses: [NAME]}}",
            "anchor": "config: *NAME",
    }.items():
        check(f"error about a {what}", "show", "-", input=text.replace("NAME", YAML_NAME).encode(),
              shown=shown.get(what, YAML_SHOWN))
    for what, text in {
            "name of an interface": "config: {intf: {NAME: {}}}",
            "network boot URL": "config: {intf: {E: {networkBootFileUrl: NAME}}}",
            "suffix": "config: {intf: {E: {dnsSuffixes: {NAME: {}}}}}",
            "profile": "config: {prefixProfiles: {NAME: {}}}",
            "profile without an entry": "config: {intf: {E: {prefixes: {2001:db8::/64: {profile: NAME}}}}}",
            "link without an interface": "config: {}\nlinks: {NAME: {}}",
    }.items():
        check(f"{what} shown", "show", "-", input=text.replace("NAME", YAML_NAME).encode(), status=0, shown=YAML_SHOWN)


def check_packet(folder):
    """A boot file URL from a packet; its octets need not be UTF-8."""
    file = os.path.join(folder, "boot.yaml")
    with open(file, "w", encoding="ascii") as stream:
        stream.write(f"config: {{intf: {{E: {{networkBootFileUrl: {YAML_NAME}}}}}}}")
    _, capture = octets_of("build", file, "E", "--src-mac", "02:00:00:00:00:01", "--write", "-")
    checks.contains("capture", capture, b"\xc2\x9b1m")
    check("URL of a packet", "parse", "-", input=capture, status=0, shown=YAML_SHOWN)
    malformed = capture.replace(b"\xc2\x9b1m", b"\x9b1mm")
    check("malformed URL of a packet", "parse", "-", input=malformed, status=0, shown="<\\x1b[31m\\x9b1mm\\xe2\\x80\\xae")


def check_environment(folder):
    odd = os.path.join(os.fsencode(folder), b"tables" + NAME)
    tables = {**os.environb, b"SHARED_TABLE_DIR": odd}
    check("folder of tables that is missing", "neighbors", env=tables)
    os.makedirs(odd)
    os.chmod(odd, 0o777)
    check("folder of tables that others may write", "neighbors", env=tables)
    check("trace settings", "types", env={**os.environb, b"TRACE": NAME}, status=0)


def in_a_network(*commands):
    """The beginning of a command line that makes a network, runs these commands in it, and then the program."""
    return ["unshare", "--user", "--map-root-user", "--net", "sh", "-ec", " && ".join([*commands, 'exec "$@"']), "sh"]


def check_devices():
    device = "\"$(printf 'g\\033[1m\\302\\233\\377\\\\')\""
    down = f"ip link add {device} type veth peer name peer"
    up = f"{down} && ip link set dev {device} up && ip link set dev peer up"
    if not shutil.which("ip") or subprocess.run([*in_a_network(down), "true"], capture_output=True, timeout=30,
                                                check=False).returncode != 0:
        print("interfaces: not checked, no network can be made here")
        return
    send = ("send", EXAMPLE, "Ethernet1", "--via", DEVICE)
    check("listen on an interface that is down", "listen", DEVICE, prefix=in_a_network(down), shown=DEVICE_SHOWN)
    check("send on an interface that is down", *send, prefix=in_a_network(down), shown=DEVICE_SHOWN)
    check("listening", "listen", DEVICE, "--for", "0", prefix=in_a_network(up), status=0, shown=DEVICE_SHOWN)
    check("sending", *send, prefix=in_a_network(up), status=0, shown=DEVICE_SHOWN)
    check("frame that is too long", *send, "--mtu", "9000", shown=DEVICE_SHOWN,
          prefix=in_a_network(up, f"ip link set dev {device} mtu 100"))
    check("interface that is not Ethernet", *send, prefix=in_a_network(f"ip link set dev lo name {device}"),
          shown=DEVICE_SHOWN)


check_arguments()
check_contents()
with tempfile.TemporaryDirectory() as temporary:
    check_files(temporary)
    check_packet(temporary)
    check_environment(temporary)
check_devices()
checks.exit()
