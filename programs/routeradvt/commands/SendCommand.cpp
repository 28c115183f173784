#include <programs/common/config/Advert.h>
#include <programs/common/config/Warnings.h>
#include <programs/common/frames/CaptureWriter.h>
#include <programs/common/linux/PacketSocket.h>
#include <programs/common/linux/StopSignals.h>
#include <programs/common/text/Text.h>
#include <programs/routeradvt/cli/AdvertArguments.h>
#include <programs/routeradvt/cli/Options.h>
#include <programs/routeradvt/commands/Commands.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <optional>
#include <ostream>

namespace Tool {

namespace {

using Clock = std::chrono::steady_clock;

constexpr double secondsDefault = 3;  // MIN_DELAY_BETWEEN_RAS, RFC 4861 10

std::string secondsText(Clock::duration duration) {
  std::array<char, 32> text;
  int const size = std::snprintf(text.data(), text.size(), "%.1f", std::chrono::duration<double>(duration).count());
  return {text.data(), static_cast<std::size_t>(size)};
}

class SendCommand final : public Command {
 public:
  CommandText text() const override {
    return {"send", "send advertisements on an interface of this machine",
            "Needs the right to open packet sockets (root, or CAP_NET_RAW). Ctrl-C ends it, with a summary.\n\n"
            "  routeradvt send office.yaml Ethernet1 --via eth0\n"
            "  routeradvt send office.yaml Ethernet1 --via eth0 --interval 10\n"
            "  routeradvt send office.yaml Ethernet1 --via eth0 --death"};
  }

  void addTo(Options& options) override {
    addAdvertOptions(options, options_, "DEV");
    options.heading("Sending");
    options.name(
        "--via", "DEV", device_, "interface",
        "interface to send on; it also gives the source MAC, the addresses and the MTU that neither options nor "
        "file give",
        Need::required);
    options.number("--count", "N", count_, {0, {}},
                   "number of advertisements, 0: until Ctrl-C; default 1, with --interval 0");
    options.number("--interval", "SECONDS", seconds_, {0.001, 1e6},
                   "time between two advertisements; default 3 seconds");
  }

  void run(Console& console) override {
    if (options_.write == "-") throw UsageError("--write: expected a file; standard output reports what is sent");
    ConfigFile const file = loadConfigFileOrFail(options_.file);
    findIntf(file, options_.intf);
    NetworkInterface const device = lookUpEthernetInterface(device_);
    RouterAdvt::AdvertRequest const request = makeAdvertRequest(file, options_, &device);
    traceLevelsAre(options_.trace);
    RouterAdvt::LeftOut leftOut;
    auto const packet = RouterAdvt::build(request, &leftOut);
    printAdvertWarnings(console.err, file, request, leftOut);
    PacketSocket socket(device);
    if (!options_.write.empty()) capture_ = std::make_unique<CaptureWriter>(options_.write);
    StopSignals signals;  // held back before anything says that it has begun
    if (options_.hex) console.out << toHex(packet->octets()) << '\n';
    console.out << "sending " << packet->size() << " octets from " << request.srcAddr.toString() << " ("
                << request.srcMac.toString() << ") to " << request.dstAddr.toString() << " ("
                << request.dstMac.toString() << ") on " << printable(device.name) << std::endl;
    sendAll(console, socket, *packet, signals);
  }

 private:
  bool isEnough(Fwk::U64 sent) const {
    Fwk::U64 const wanted = count_.value_or(seconds_ ? 0 : 1);
    return wanted > 0 && sent >= wanted;
  }

  /// The summary comes in any case: an error does not take back what was sent before it.
  void sendAll(Console& console, PacketSocket& socket, Net::Pkt const& packet, StopSignals& signals) {
    auto const start = Clock::now();
    Fwk::U64 sent = 0;
    auto const summary = [&] {
      console.out << "sent " << sent << (sent == 1 ? " advertisement" : " advertisements") << " in "
                  << secondsText(Clock::now() - start) << " s" << std::endl;
    };
    auto const interval =
        std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds_.value_or(secondsDefault)));
    try {
      for (auto next = start;; next += interval) {
        if (signals.waitUntil(next)) break;
        socket.send(packet.octets());
        ++sent;
        if (capture_) capture_->add(packet.octets());
        if (isEnough(sent)) break;
      }
    } catch (Failure const&) {
      summary();
      throw;
    }
    summary();
  }

  AdvertOptions options_;
  std::string device_;
  std::optional<Fwk::U64> count_;  // 0: until it is told to stop
  std::optional<double> seconds_;
  std::unique_ptr<CaptureWriter> capture_;
};

}  // namespace

std::unique_ptr<Command> makeSendCommand() { return std::make_unique<SendCommand>(); }

}  // namespace Tool
