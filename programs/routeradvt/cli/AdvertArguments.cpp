#include <RouterPlatform/Trace/Trace.h>
#include <programs/common/config/LinkConfig.h>
#include <programs/routeradvt/cli/AdvertArguments.h>

namespace Tool {

namespace {

/// Levels without a handle are meant for every handle.
std::string withHandle(std::string const& levels) {
  return levels.find('/') == std::string::npos ? "*/" + levels : levels;
}

void addAddressOptions(Options& options, AdvertOptions& advert, std::string const& device) {
  std::string const elseDevice = device.empty() ? "" : ", else that of " + device;
  options.value("--src", "ADDR", advert.src,
                "IPv6 source; default: the link's first link-local address" + elseDevice +
                    ", else the one made from the source MAC");
  options.value("--dst", "ADDR", advert.dst, "IPv6 destination; default: all nodes, ff02::1");
  options.value("--src-mac", "MAC", advert.srcMac, "Ethernet source; default: the link's mac" + elseDevice,
                &LinkConfig::macRefusal);
  options.value("--dst-mac", "MAC", advert.dstMac, "Ethernet destination; default: that of the group --dst");
  options.number(
      "--mtu", "OCTETS", advert.mtu, {LinkConfig::mtuMin, LinkConfig::mtuMax},
      "link MTU, which also bounds the frame; default: the link's" + (device.empty() ? ", else 1500" : elseDevice));
}

void addOutputOptions(Options& options, AdvertOptions& advert) {
  options.heading("Output");
  options.flag("--hex", advert.hex, "print the frame as one line of hex");
  options.name("--write", "FILE.pcap", advert.write, "file",
               "write the frame to a capture file, which Wireshark opens");
  auto const takeLevels = [&advert](std::string const& levels) {
    advert.trace = withHandle(levels);
    try {
      Trace::levelsIs(advert.trace);
    } catch (Trace::SettingsError const& e) {
      return std::string(e.what());
    }
    return std::string();
  };
  options.add("--trace", "LEVELS", takeLevels,
              "trace the building of the frame: levels such as 0-3,8, or HANDLE/LEVELS such as 'RouterAdvt*/0-8'");
}

}  // namespace

void addAdvertOptions(Options& options, AdvertOptions& advert, std::string const& device) {
  options.argument("FILE", advert.file, "file", "configuration file; - is standard input");
  options.argument("INTF", advert.intf, "interface", "interface, by its name in the section config");
  addAddressOptions(options, advert, device);
  options.flag("--no-lifetime", advert.noLifetime, "advertise Router Lifetime 0: not a default router");
  options.flag("--death", advert.death, "build the final advertisement, after which hosts forget the router at once");
  options.flag("--virtual-router", advert.virtualRouter,
               "advertise on behalf of the link's virtual router, with its prefixes");
  addOutputOptions(options, advert);
}

}  // namespace Tool
