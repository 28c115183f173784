#include <programs/common/text/Text.h>
#include <programs/common/trees/NeighborReport.h>
#include <programs/routeradvt/cli/Options.h>
#include <programs/routeradvt/commands/Commands.h>

#include <nlohmann/json.hpp>

#include <pwd.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <ostream>
#include <string_view>
#include <thread>

namespace Tool {

namespace {

using namespace std::chrono_literals;
using RouterAdvt::RouterNeighborRaReader;
using SharedTable::Errc;
using SharedTable::WaitResult;

Fwk::Seconds now() {
  return std::chrono::duration<Fwk::Seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

/// A user whom --owner names may cut the table's file short while it is mapped; the next access is then a SIGBUS. The
/// handler calls async-signal-safe functions only (signal-safety(7)).
void endWhenTheFileIsCutShort() {
  struct sigaction action {};
  action.sa_handler = [](int) {
    constexpr std::string_view message = "the table cannot be read: its owner has cut the file short\n";
    [[maybe_unused]] ssize_t const written = write(STDERR_FILENO, message.data(), message.size());
    _exit(static_cast<int>(ExitStatus::failed));
  };
  sigaction(SIGBUS, &action, nullptr);
}

class NeighborsCommand final : public Command {
 public:
  CommandText text() const override {
    return {
        "neighbors", "show which routers were heard, and when",
        "Reads the table that a router advertisement agent, or 'listen' while it runs, keeps in shared memory: "
        "interface, router, and the age of its last advertisement. Says so when the program that keeps the table is "
        "not alive. --watch follows the table from one program to the next; Ctrl-C ends it.\n\n"
        "  routeradvt neighbors\n"
        "  routeradvt neighbors --watch --intf Ethernet1 --sort age"};
  }

  void addTo(Options& options) override {
    options.flag("--watch", watch_, "go on, and show the table again whenever it changes");
    options.flag("--json", json_, "print one JSON object; with --watch one per change, each on a line");
    options.value("--intf", "NAME", intf_, "show this interface only");
    auto const takeSort = [this](std::string const& key) {
      sort_ = key;
      return key == "intf" || key == "age" ? std::string() : inQuotes(key) + " is neither intf nor age";
    };
    options.add("--sort", "KEY", takeSort,
                "by interface (intf), or the latest advertisement first (age); default intf");
    options.name("--owner", "USER", owner_, "user", "owner that the table may have besides root and yourself");
  }

  void run(Console& console) override {
    if (!owner_.empty()) endWhenTheFileIsCutShort();
    RouterNeighborRaReader reader({ownerId(), {}});
    if (SharedTable::Error const error = reader.attach(); error && !watch_) {
      if (error.code != Errc::noTable) throw Failure("the table cannot be read: " + error.text);
      throw Failure("there is no table: no program keeps one (" + reader.path() + ")");
    }
    if (watch_)
      follow(reader, console.out);
    else
      show(reader, console.out);
  }

 private:
  std::optional<uid_t> ownerId() const {
    if (owner_.empty()) return std::nullopt;
    if (passwd const* const user = getpwnam(owner_.c_str())) return user->pw_uid;
    throw UsageError("there is no user " + inQuotes(owner_));
  }

  void show(RouterNeighborRaReader const& reader, std::ostream& out) const {
    NeighborReport::Order const order = sort_ == "age" ? NeighborReport::Order::age : NeighborReport::Order::intf;
    NeighborReport const report = readNeighbors(reader, intf_.value_or(Net::IntfId()), order, now());
    if (json_)
      out << jsonText(neighborsJson(report), watch_ ? -1 : 2) << '\n';
    else
      out << neighborsText(report) << (watch_ ? "\n" : "");
    out.flush();
  }

  /// Shows the table now and after each change, until a signal ends the program or the output is gone.
  void follow(RouterNeighborRaReader& reader, std::ostream& out) const {
    // Changes that come in a burst are shown together.
    constexpr auto burst = 200ms;
    while (out) {
      Fwk::U64 const seen = reader.changeCount();
      show(reader, out);
      while (reader.wait(seen, 1h) == WaitResult::timedOut) continue;
      std::this_thread::sleep_for(burst);
    }
    throw Failure("the output could not be written");
  }

  bool watch_ = false;
  bool json_ = false;
  std::optional<Net::IntfId> intf_;
  std::string sort_ = "intf";
  std::string owner_;
};

}  // namespace

std::unique_ptr<Command> makeNeighborsCommand() { return std::make_unique<NeighborsCommand>(); }

}  // namespace Tool
