#include <programs/common/linux/FileWatch.h>
#include <programs/common/linux/StopSignals.h>
#include <programs/common/mirror/MirrorServer.h>
#include <programs/common/mirror/ServedModel.h>
#include <programs/common/text/Text.h>
#include <programs/routeradvt/cli/Options.h>
#include <programs/routeradvt/commands/Commands.h>

#include <asio/posix/stream_descriptor.hpp>
#include <asio/post.hpp>
#include <asio/signal_set.hpp>

#include <csignal>

#include <chrono>
#include <exception>
#include <filesystem>
#include <optional>
#include <ostream>

namespace Tool {

namespace {

using namespace std::chrono_literals;

constexpr double pollDefault = 5;  // seconds

/// What goes on while `serve` runs: the file is watched, the kernel's files are captured again and again.
class Service {
 public:
  Service(asio::io_context& context, std::string const& fileName, ServedModel& model, std::chrono::milliseconds poll,
          Console& console)
      : context_(context),
        fileName_(fileName),
        model_(model),
        poll_(poll),
        console_(console),
        watch_(fileName),
        changed_(context),
        settled_(context),
        nextCapture_(context),
        signals_(context) {
    std::signal(SIGPIPE, SIG_IGN);  // whoever read what is told may go; those who mirror stay
    if (watch_.descriptor() >= 0) changed_.assign(dup(watch_.descriptor()));
    for (int const signal : stopSignals()) signals_.add(signal);
    signals_.async_wait([&](std::error_code, int) { context_.stop(); });
    awaitChange();
    reload();  // what changed before the watch began
    capture();
  }

 private:
  // Whoever writes a file, or a few of a directory, is given the time to come to an end.
  static constexpr auto settleTime = 50ms;

  void awaitChange() {
    if (!changed_.is_open()) return;
    changed_.async_wait(asio::posix::stream_descriptor::wait_read, [this](std::error_code error) {
      if (error) return;
      settled_.expires_after(settleTime);
      settled_.async_wait([this](std::error_code aborted) {
        if (aborted) return;
        watch_.restart();
        reload();
        awaitChange();
      });
    });
  }

  void reload() {
    bool isApplied = false;
    try {
      isApplied = applyChanges();
    } catch (std::exception const&) {  // there was no memory for a message
      console_.err << "the file is not read now: memory ran out" << std::endl;
    }
    if (isApplied) capture();
  }

  /// Whether there were changes and all of them are applied.
  bool applyChanges() {
    switch (model_.reload(console_.err)) {
      case ServedModel::Reload::unchanged:
        return false;
      case ServedModel::Reload::applied:
        console_.out << "reloaded " << printable(fileName_) << std::endl;
        return true;
      case ServedModel::Reload::refused:
        console_.err << printable(fileName_) << ": what is served stays as it was" << std::endl;
        return false;
      case ServedModel::Reload::interrupted:
        console_.err << printable(fileName_) << ": what is served is partly old and partly new until it is read again"
                     << std::endl;
    }
    return false;
  }

  void capture() {
    nextCapture_.cancel();
    bool const done = model_.captureSome();
    nextCapture_.expires_after(done ? poll_ : 0ms);
    nextCapture_.async_wait([this, done](std::error_code aborted) {
      if (aborted) return;
      if (done) watch_.lookAgain();
      if (done && isQuiet()) reload();
      capture();
    });
  }

  /// Whether nobody has written the file for a while. On file systems that tell nothing of changes, looking is all
  /// there is, and a file that is half written must not pass for one that is short.
  bool isQuiet() const {
    std::error_code error;
    auto const written = std::filesystem::last_write_time(fileName_, error);
    auto const age = std::filesystem::file_time_type::clock::now() - written;
    return !error && (age > 2s || age < 0s);  // a time to come says nothing
  }

  asio::io_context& context_;
  std::string const& fileName_;
  ServedModel& model_;
  std::chrono::milliseconds poll_;
  Console& console_;
  FileWatch watch_;
  asio::posix::stream_descriptor changed_;
  asio::steady_timer settled_;
  asio::steady_timer nextCapture_;
  asio::signal_set signals_;
};

class ServeCommand final : public Command {
 public:
  CommandText text() const override {
    return {"serve", "hold a configuration file as live trees that other processes mirror",
            "Serves two trees: the configuration, and a status. The status holds the kernel's files in "
            "/proc/sys/net/ipv6/conf and /proc/sys/net/ipv6/neigh for each configured interface that this machine has. "
            "The file is read again when it changes; only the differences are applied. A file with an error changes "
            "nothing, and its errors go to standard error. Ctrl-C ends it.\n\n"
            "  routeradvt serve office.yaml --socket /run/routeradvt.sock\n"
            "  routeradvt mirror /run/routeradvt.sock --follow"};
  }

  void addTo(Options& options) override {
    options.argument("FILE", fileName_, "file", "configuration file");
    options.name("--socket", "PATH", socketPath_, "socket", "Unix socket to listen on", Need::required);
    options.number("--poll", "SECONDS", poll_, {0.01, 1e6},
                   "time between two readings of the kernel's files; default 5 seconds");
  }

  void run(Console& console) override {
    if (fileName_ == "-") throw UsageError("expected a file that can be read again, not standard input");
    ServedModel model(fileName_, console.err);
    asio::io_context context(1);
    SocketPath path(socketPath_);
    MirrorServer server(context, path, model.roots());
    auto const poll = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::duration<double>(poll_.value_or(pollDefault)));
    Service service(context, fileName_, model, poll, console);
    console.out << "serving " << printable(fileName_) << " on " << printable(socketPath_) << std::endl;
    context.run();
  }

 private:
  std::string fileName_;
  std::string socketPath_;
  std::optional<double> poll_;
};

}  // namespace

std::unique_ptr<Command> makeServeCommand() { return std::make_unique<ServeCommand>(); }

}  // namespace Tool
