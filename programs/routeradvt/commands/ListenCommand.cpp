#include <Ipv6RouterAdvt/RouterAdvtUtils/RaParser.h>
#include <programs/common/frames/RaValidity.h>
#include <programs/common/linux/LinkWatch.h>
#include <programs/common/linux/RaSocket.h>
#include <programs/common/linux/StopSignals.h>
#include <programs/common/text/Text.h>
#include <programs/common/trees/ListenReport.h>
#include <programs/common/trees/NeighborTable.h>
#include <programs/routeradvt/cli/Options.h>
#include <programs/routeradvt/commands/Commands.h>

#include <poll.h>

#include <array>
#include <chrono>
#include <cmath>
#include <ostream>

namespace Tool {

namespace {

using Clock = std::chrono::steady_clock;
using Net::Ip6Addr;

class ListenCommand final : public Command {
 public:
  CommandText text() const override {
    return {"listen", "report the advertisements that arrive on an interface",
            "Reports routers that appear or withdraw, changes in their advertisements, and dropped messages with the "
            "reason. An advertisement that repeats the previous one is counted and not shown. Also keeps the table of "
            "neighbouring routers, unless another program does: see 'neighbors'. Needs the right to open raw sockets "
            "(root, or CAP_NET_RAW). Ctrl-C ends it, with a summary.\n\n"
            "  routeradvt listen eth0\n"
            "  routeradvt listen eth0 --for 60 --json"};
  }

  void addTo(Options& options) override {
    options.argument("DEV", device_, "interface", "interface of this machine");
    options.number("--count", "N", wanted_, {1, {}}, "end after that many valid advertisements");
    options.number("--for", "SECONDS", seconds_, {0.0, 1e9}, "end after that time");
    options.flag("--json", json_, "print one JSON object per event, each on a line");
  }

  void run(Console& console) override {
    NetworkInterface const device = lookUpInterface(device_);
    StopSignals signals;
    FileDescriptor const stop = signals.descriptor();
    RaSocket socket(device);
    LinkWatch const link(device);
    ListenReport report(console.out, json_);
    RouterWatch watch(Net::IntfId(device.name), report);
    NeighborTable table;
    if (!table.problem().empty())
      console.err << "the table of neighbours is not kept: " << printable(table.problem()) << '\n';
    auto const start = Clock::now();
    report.listening(device.name);
    auto const summary = [&] {
      counts_.lost = socket.lost();
      report.summary(counts_, watch.routers().linkLocalAddr().size(), Clock::now() - start);
    };
    try {
      while (!isEnough() && waitFor({socket.descriptor(), link.descriptor()}, stop, start)) {
        takeSome(socket, watch, report, table);
        link.check();
      }
      signals.waitUntil(Clock::now());  // takes what is pending: it is dealt with
    } catch (Failure const&) {
      summary();
      throw;
    }
    summary();
  }

 private:
  bool isEnough() const { return wanted_ && counts_.heard >= *wanted_; }

  /// Waits until there is something to read from one of two; false: it is to end.
  bool waitFor(std::array<int, 2> readable, FileDescriptor const& stop, Clock::time_point start) const {
    std::array<pollfd, 3> sources{{{stop.get(), POLLIN, 0}, {readable[0], POLLIN, 0}, {readable[1], POLLIN, 0}}};
    timespec left{};
    if (seconds_) {
      double const rest = *seconds_ - std::chrono::duration<double>(Clock::now() - start).count();
      if (rest <= 0) return false;
      left.tv_sec = static_cast<time_t>(rest);
      left.tv_nsec = static_cast<long>((rest - std::floor(rest)) * 1e9);
    }
    int const ready = ppoll(sources.data(), sources.size(), seconds_ ? &left : nullptr, nullptr);
    return ready != 0 && sources[0].revents == 0;
  }

  /// Takes what has come, up to a limit: a flood does not keep it from ending.
  void takeSome(RaSocket& socket, RouterWatch& watch, ListenReport& report, NeighborTable& table) {
    constexpr int messagesPerTurn = 64;
    for (int left = messagesPerTurn; left > 0 && !isEnough(); --left) {
      auto const received = socket.receive();
      if (!received) return;
      take(*received, watch, report, table);
    }
  }

  void take(RaSocket::Received const& received, RouterWatch& watch, ListenReport& report, NeighborTable& table) {
    auto const& [source, message] = received;
    if (!message) return drop(report, source, reasonText(message.reason));
    if (std::string const reason = raInvalidity(message.info); !reason.empty()) return drop(report, source, reason);
    RouterAdvt::RaPacket const packet = RouterAdvt::makeRaPacketType(Net::IntfId(device_), message.info);
    if (!packet) return drop(report, source, "an option has length 0");
    ++counts_.heard;
    if (watch.hear(packet))
      table.hear(packet.intfId(), source);
    else
      ++counts_.notKept;
  }

  void drop(ListenReport& report, Ip6Addr const& source, std::string const& reason) {
    ++counts_.dropped;
    report.dropped(source, reason);
  }

  std::string device_;
  std::optional<Fwk::U64> wanted_;
  std::optional<double> seconds_;
  bool json_ = false;
  ListenCounts counts_;
};

}  // namespace

std::unique_ptr<Command> makeListenCommand() { return std::make_unique<ListenCommand>(); }

}  // namespace Tool
