"""Shared by the tests against other programs: network namespaces, and skipping where they cannot be made.

A test makes the namespaces that it needs, under names of its own, bounds every wait, and removes everything that it made,
whatever happens. It ends processes only by their handles.
"""
import atexit
import json
import os
import secrets
import shutil
import signal
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "cli"))
from support import EXAMPLE, PROGRAM, Checks  # noqa: E402,F401  # pylint: disable=wrong-import-position,unused-import

SKIPPED = 77

# The tables of neighbouring routers are in a folder of the test, apart from those of the machine.
os.environ["SHARED_TABLE_DIR"] = tempfile.mkdtemp(prefix="tables-")
atexit.register(shutil.rmtree, os.environ["SHARED_TABLE_DIR"], ignore_errors=True)


def skip(reason):
    print("skipped:", reason)
    sys.exit(SKIPPED)


def need(*programs):
    """Skips the test unless these programs are there and namespaces can be made."""
    for program in ("ip", *programs):
        if not shutil.which(program, path=os.environ.get("PATH", "") + ":/usr/sbin:/sbin"):
            skip(f"{program} is not installed")
    if os.geteuid() != 0:
        skip("not root: network namespaces cannot be made")
    probe = "ra-probe-" + secrets.token_hex(4)
    made = attempt("netns", "add", probe)
    if made.returncode == 0:
        # In a chroot or a container, a namespace may be made that cannot be entered or that cannot have such links.
        made = attempt("netns", "exec", probe, "ip", "link", "add", "probe0", "type", "veth", "peer", "name", "probe1")
        attempt("netns", "del", probe)
    if made.returncode != 0:
        skip("network namespaces cannot be made: " + made.stderr.strip())


def attempt(*arguments):
    return subprocess.run(["ip", *arguments], capture_output=True, text=True, timeout=10, check=False)


class Node:
    """A network namespace."""

    def __init__(self, name):
        self.name = name
        self.processes = []
        subprocess.run(["ip", "netns", "add", name], check=True, timeout=10)

    def command(self, *arguments):
        return ["ip", "netns", "exec", self.name, *arguments]

    def run(self, *arguments, check=True):
        return subprocess.run(self.command(*arguments), capture_output=True, text=True, timeout=30, check=check)

    def start(self, *arguments):
        """A process in the background, which ends with the namespace at the latest."""
        process = subprocess.Popen(self.command(*arguments), stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.processes.append(process)
        return process

    def end_processes(self):
        """Ends the processes that this test started, and their children in the namespace."""
        for process in self.processes:
            if process.poll() is None:
                process.terminate()
                try:
                    process.wait(timeout=3)
                except subprocess.TimeoutExpired:
                    process.kill()
        left = subprocess.run(["ip", "netns", "pids", self.name], capture_output=True, text=True, timeout=10, check=False)
        for pid in left.stdout.split():
            try:
                os.kill(int(pid), signal.SIGKILL)
            except ProcessLookupError:
                pass
        for process in self.processes:
            process.wait(timeout=10)
            process.stdout.close()

    def ip(self, *arguments):
        """The output of `ip -6 -j`, parsed."""
        return json.loads(self.run("ip", "-6", "-j", *arguments).stdout or "[]")

    def sysctl(self, **values):
        for name, value in values.items():
            self.run("sysctl", "-q", "-w", f"net.ipv6.conf.{name.replace('__', '.')}={value}")

    def close(self):
        try:
            self.end_processes()
        finally:
            subprocess.run(["ip", "netns", "del", self.name], timeout=10, check=False)


class Pair:
    """A router and a host, joined by a link; the link's ends are named `router` and `host`."""

    ROUTER_MAC = "02:00:00:00:0a:01"
    HOST_MAC = "02:00:00:00:0a:02"

    def __enter__(self):
        # When another process ends the test, the namespaces are removed as well.
        signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
        name = f"ra-{os.getpid()}-{secrets.token_hex(3)}"
        self.nodes = []
        try:
            self.router = self.add(name + "-router")
            self.host = self.add(name + "-host")
            self.join()
        except BaseException:
            self.__exit__()
            raise
        return self

    def add(self, name):
        node = Node(name)
        self.nodes.append(node)
        return node

    def join(self):
        self.router.run("ip", "link", "add", "router", "address", self.ROUTER_MAC, "type", "veth", "peer", "name", "host",
                        "address", self.HOST_MAC, "netns", self.host.name)
        self.router.sysctl(all__accept_dad=0, default__accept_dad=0, router__accept_dad=0, router__accept_ra=0)
        self.host.sysctl(all__accept_dad=0, default__accept_dad=0, host__accept_dad=0, host__accept_ra=1,
                         host__router_solicitations=0)
        for node, device in ((self.router, "router"), (self.host, "host")):
            node.run("ip", "link", "set", "lo", "up")
            node.run("ip", "link", "set", device, "up")
        for node, device in ((self.router, "router"), (self.host, "host")):
            eventually(lambda n=node, d=device: link_local(n, d))

    def __exit__(self, *_):
        for node in self.nodes:
            node.close()


def link_local(node, device):
    """The device's link-local address, once it may be used."""
    for interface in node.ip("addr", "show", "dev", device, "scope", "link"):
        for address in interface.get("addr_info", []):
            if "local" in address and not address.get("tentative"):
                return address["local"]
    return None


def eventually(condition, seconds=10):
    """The condition's value once it is true, or its last one when time is up."""
    end = time.monotonic() + seconds
    while True:
        value = condition()
        if value or time.monotonic() > end:
            return value
        time.sleep(0.05)
