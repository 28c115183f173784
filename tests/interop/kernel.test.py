"""The Linux kernel takes over the advertisements of `send`: address, default route, lifetimes, final advertisement."""
import os
import tempfile

from netns import PROGRAM, Checks, Pair, eventually, link_local, need

CONFIG = """
config:
  intf:
    lan:
      raLifetime: 900
      routerPreference: high
      hopLimit: 77
      prefixes:
        2001:db8:77::/64: { validLifetime: 5000, preferredLifetime: 4000 }
        2001:db8:78::/64: { noAutoConfig: true, validLifetime: 3000, preferredLifetime: 2000 }
links:
  lan: { mtu: 1400 }
"""
TOLERANCE = 30  # seconds that may pass between sending and looking

checks = Checks()


def dynamic_addresses(host):
    found = {}
    for interface in host.ip("addr", "show", "dev", "host", "scope", "global"):
        for address in interface.get("addr_info", []):
            if "local" in address:  # ip prints {} for an address that it leaves out
                found[address["local"]] = address
    return found


def default_routes(host):
    return [route for route in host.ip("route", "show", "default", "dev", "host") if route.get("protocol") == "ra"]


def on_link(host, prefix):
    return [route for route in host.ip("route", "show", prefix, "dev", "host") if route.get("protocol") in ("ra", "kernel")]


def near(what, actual, sent):
    checks.true(f"{what}: is {actual}, was sent as {sent}", sent - TOLERANCE <= actual <= sent)


def check_address(host):
    address = "2001:db8:77::ff:fe00:a02"
    found = eventually(lambda: dynamic_addresses(host))
    checks.equal("addresses", sorted(found), [address])
    if address in found:
        near("valid lifetime", found[address]["valid_life_time"], 5000)
        near("preferred lifetime", found[address]["preferred_life_time"], 4000)


def check_default_route(host, router_address):
    routes = eventually(lambda: default_routes(host))
    checks.equal("default routes", [route.get("gateway") for route in routes], [router_address])
    if routes:
        near("router lifetime", routes[0]["expires"], 900)
        checks.equal("hop limit", [m.get("hoplimit") for m in routes[0].get("metrics", []) if "hoplimit" in m], [77])
        checks.equal("preference", routes[0].get("pref"), "high")


def check_rest(host):
    checks.true("the prefix without autonomous flag is on-link", on_link(host, "2001:db8:78::/64"))
    mtu = host.run("sysctl", "-n", "net.ipv6.conf.host.mtu").stdout.strip()
    checks.equal("mtu", mtu, "1400")


def send(router, config, *options):
    result = router.run(PROGRAM, "send", config, "lan", "--via", "router", *options, check=False)
    checks.equal(f"send {options}: exit status, errors", (result.returncode, result.stderr), (0, ""))
    checks.contains(f"send {options}: summary", result.stdout, "sent 1 advertisement in ")


need()
with tempfile.TemporaryDirectory() as folder, Pair() as pair:
    path = os.path.join(folder, "kernel.yaml")
    with open(path, "w", encoding="ascii") as file:
        file.write(CONFIG)
    send(pair.router, path)
    check_address(pair.host)
    check_default_route(pair.host, link_local(pair.router, "router"))
    check_rest(pair.host)
    send(pair.router, path, "--death")
    checks.true("the final advertisement takes the default route away", eventually(lambda: not default_routes(pair.host)))
    checks.true("and leaves the address", dynamic_addresses(pair.host))
checks.exit()
