#include <RouterPlatform/Trace/Trace.h>
#include <programs/common/config/LinkConfig.h>
#include <programs/routeradvt/cli/AdvertArguments.h>
#include <programs/routeradvt/cli/NumberOption.h>
#include <programs/routeradvt/cli/ValueOption.h>

namespace Tool {

namespace {

/// A list of levels alone is meant for every handle.
std::string withHandle(std::string const& levels) {
  return levels.find('/') == std::string::npos ? "*/" + levels : levels;
}

void addAddressOptions(CLI::App& app, AdvertOptions& options, std::string const& device) {
  std::string const elseDevice = device.empty() ? "" : ", else that of " + device;
  addValueOption(app, "--src", options.src, "ADDR",
                 "IPv6 source; else the link's first link-local address" + elseDevice +
                     ", else the one\nmade from the source MAC");
  addValueOption(app, "--dst", options.dst, "ADDR", "IPv6 destination; else all nodes, ff02::1");
  addValueOption(app, "--src-mac", options.srcMac, "MAC", "Ethernet source; else the link's mac" + elseDevice,
                 &LinkConfig::macRefusal);
  addValueOption(app, "--dst-mac", options.dstMac, "MAC", "Ethernet destination; else that of the group --dst");
  addNumberOption(
      app, "--mtu", options.mtu, {LinkConfig::mtuMin, LinkConfig::mtuMax}, "OCTETS",
      "link MTU, which also bounds the frame; else the link's" + (device.empty() ? ", else 1500" : elseDevice));
}

void addOutputOptions(CLI::App& app, AdvertOptions& options) {
  app.add_flag("--hex", options.hex, "print the frame as one line of hex")->group("Output");
  namesA("file", app.add_option("--write", options.write, "write the frame to a capture file, which Wireshark opens"))
      ->type_name("FILE.pcap")
      ->group("Output");
  auto const take = [&options](std::string const& levels) {
    options.trace = withHandle(levels);
    try {
      Trace::levelsIs(options.trace);
    } catch (Trace::SettingsError const& e) {
      throw CLI::ValidationError("--trace", e.what());
    }
  };
  app.add_option_function<std::string>("--trace", take,
                                       "trace how the frame is made: levels such as 0-3,8,\nor HANDLE/LEVELS such as "
                                       "'RouterAdvt*/0-8'")
      ->type_name("LEVELS")
      ->group("Output");
}

}  // namespace

void addAdvertOptions(CLI::App& app, AdvertOptions& options, std::string const& device) {
  namesA("file", app.add_option("FILE", options.file, "configuration file; - is standard input"))->required();
  namesA("interface", app.add_option("INTF", options.intf, "interface, by its name in the section config"))->required();
  addAddressOptions(app, options, device);
  app.add_flag("--no-lifetime", options.noLifetime, "advertise Router Lifetime 0: not a default router");
  app.add_flag("--death", options.death, "the final advertisement, by which hosts forget the router at once");
  app.add_flag("--virtual-router", options.virtualRouter, "on behalf of the link's virtual router, with its prefixes");
  addOutputOptions(app, options);
}

}  // namespace Tool
