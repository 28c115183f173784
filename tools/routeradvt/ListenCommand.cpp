#include <Ipv6RouterAdvt/RouterAdvtUtils/RaParser.h>
#include <RouterPlatform/Fwk/Attributes.h>
#include <tools/routeradvt/Command.h>
#include <tools/routeradvt/LinkWatch.h>
#include <tools/routeradvt/NeighborTable.h>
#include <tools/routeradvt/NumberOption.h>
#include <tools/routeradvt/RaSocket.h>
#include <tools/routeradvt/RaValidity.h>
#include <tools/routeradvt/RouterWatch.h>
#include <tools/routeradvt/StopSignals.h>
#include <tools/routeradvt/ValueOption.h>

#include <CLI/CLI.hpp>

#include <poll.h>
#include <sys/signalfd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <ostream>

namespace Tool {

namespace {

using Clock = std::chrono::steady_clock;
using Net::Ip6Addr;

struct Counts {
  Fwk::U64 heard = 0;    ///< valid ones
  Fwk::U64 notKept = 0;  ///< of these, those of a router too many
  Fwk::U64 dropped = 0;
  Fwk::U64 lost = 0;  ///< those that the kernel had no room for
};

/// Says what happens, in words or as JSON, a line or a few an event.
class Reporter final : public RouterWatch::Observer {
 public:
  Reporter(std::ostream& out, bool json) : out_(out), json_(json) {}

  void listening(std::string const& device) {
    if (!json_) say("listening on " + device + " for Router Advertisements\n");
  }

  void onRouter(Ip6Addr const& router) override { event("router", router, "is heard"); }
  void onRouterGone(Ip6Addr const& router) override { event("routerGone", router, "has withdrawn"); }

  void onChange(RouterAdvt::RaPacket const& packet, std::vector<RecordChange> const& changes) override {
    std::string const router = packet.srcIp6Addr().toString();
    if (json_)
      return say(Json{{"event", "change"},
                      {"router", router},
                      {"changes", changesJson(changes)},
                      {"record", recordJson(Fwk::objectRef(packet))}});
    bool const isFirst =
        std::ranges::all_of(changes, [](RecordChange const& change) { return change.before.is_null(); });
    say("router " + router +
        (isFirst ? " advertises\n" + recordText(Fwk::objectRef(packet))
                 : " advertises a change\n" + changesText(changes)));
  }

  void onTooManyRouters() override {
    constexpr Fwk::U32 most = RouterWatch::routersMax;
    if (json_) return say(Json{{"event", "tooManyRouters"}, {"routers", most}});
    say("more than " + std::to_string(most) + " routers: those beyond are only counted\n");
  }

  void dropped(Ip6Addr const& source, std::string const& reason) {
    if (json_) return say(Json{{"event", "dropped"}, {"source", source.toString()}, {"reason", reason}});
    say("dropped an advertisement from " + source.toString() + ": " + reason + '\n');
  }

  void summary(Counts const& counts, Fwk::U32 routers, Clock::duration time) {
    double const seconds = std::round(std::chrono::duration<double>(time).count() * 10) / 10;
    Json const shown(seconds);
    if (json_)
      return say(Json{{"event", "summary"},
                      {"advertisements", counts.heard},
                      {"dropped", counts.dropped},
                      {"notKept", counts.notKept},
                      {"lost", counts.lost},
                      {"routers", routers},
                      {"seconds", shown}});
    say(std::to_string(counts.heard) + (counts.heard == 1 ? " advertisement, " : " advertisements, ") +
        (counts.notKept > 0 ? std::to_string(counts.notKept) + " of routers too many, " : "") +
        std::to_string(counts.dropped) + " dropped, " +
        (counts.lost > 0 ? std::to_string(counts.lost) + " lost as they came too fast, " : "") +
        std::to_string(routers) + (routers == 1 ? " router" : " routers") + " at the end, in " + shown.dump() + " s\n");
  }

 private:
  void event(char const* name, Ip6Addr const& router, char const* words) {
    if (json_) return say(Json{{"event", name}, {"router", router.toString()}});
    say("router " + router.toString() + ' ' + words + '\n');
  }
  void say(Json const& json) { say(jsonText(json) + '\n'); }
  void say(std::string const& text) { out_ << text << std::flush; }

  std::ostream& out_;
  bool json_;
};

/// Becomes readable when a signal is pending that is to end the program. Such are held back meanwhile.
FileDescriptor stopDescriptor() {
  sigset_t signals;
  sigemptyset(&signals);
  for (int const signal : stopSignals()) sigaddset(&signals, signal);
  return FileDescriptor(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
}

class ListenCommand final : public Command {
 public:
  CLI::App& addTo(CLI::App& program) override {
    CLI::App& app = *program.add_subcommand("listen", "report the advertisements that arrive on an interface");
    namesA("interface", app.add_option("DEV", device_, "interface of this machine"))->required();
    addNumberOption(app, "--count", wanted_, {1, {}}, "N", "end after that many valid advertisements");
    addNumberOption(app, "--for", seconds_, {0.0, 1e9}, "SECONDS", "end after that time");
    app.add_flag("--json", json_, "one JSON object an event, a line each");
    app.footer(
        "Reports routers as they come and go, what changes in what they advertise, and what is dropped\n"
        "and why. An advertisement that says what the one before it said is counted and not shown.\n"
        "Keeps the table of neighbouring routers meanwhile, unless a daemon does: see 'neighbors'.\n"
        "Takes the right to open raw sockets (root, or CAP_NET_RAW). Ctrl-C ends it, with a summary.\n\n"
        "  routeradvt listen eth0\n"
        "  routeradvt listen eth0 --for 60 --json");
    return app;
  }

  void run(Console& console) override {
    NetworkInterface const device = lookUpInterface(device_);
    StopSignals signals;
    FileDescriptor const stop = stopDescriptor();
    RaSocket socket(device);
    LinkWatch const link(device);
    Reporter reporter(console.out, json_);
    RouterWatch watch(Net::IntfId(device.name), reporter);
    NeighborTable table;
    if (!table.problem().empty()) console.err << "the table of neighbours is not kept: " << table.problem() << '\n';
    auto const start = Clock::now();
    reporter.listening(device.name);
    auto const summary = [&] {
      counts_.lost = socket.lost();
      reporter.summary(counts_, watch.routers().linkLocalAddr().size(), Clock::now() - start);
    };
    try {
      while (!isEnough() && waitFor({socket.descriptor(), link.descriptor()}, stop, start)) {
        takeSome(socket, watch, reporter, table);
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
  void takeSome(RaSocket& socket, RouterWatch& watch, Reporter& reporter, NeighborTable& table) {
    for (int left = 64; left > 0 && !isEnough(); --left) {
      auto const received = socket.receive();
      if (!received) return;
      take(*received, watch, reporter, table);
    }
  }

  void take(RaSocket::Received const& received, RouterWatch& watch, Reporter& reporter, NeighborTable& table) {
    auto const& [source, message] = received;
    if (!message) return drop(reporter, source, reasonText(message.reason));
    if (std::string const reason = raInvalidity(message.info); !reason.empty()) return drop(reporter, source, reason);
    RouterAdvt::RaPacket const packet = RouterAdvt::makeRaPacketType(Net::IntfId(device_), message.info);
    if (!packet) return drop(reporter, source, "an option has length 0");
    ++counts_.heard;
    if (watch.hear(packet))
      table.hear(packet.intfId(), source);
    else
      ++counts_.notKept;
  }

  void drop(Reporter& reporter, Ip6Addr const& source, std::string const& reason) {
    ++counts_.dropped;
    reporter.dropped(source, reason);
  }

  std::string device_;
  std::optional<Fwk::U64> wanted_;
  std::optional<double> seconds_;
  bool json_ = false;
  Counts counts_;
};

}  // namespace

std::unique_ptr<Command> makeListenCommand() { return std::make_unique<ListenCommand>(); }

}  // namespace Tool
