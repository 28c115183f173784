#include <programs/common/linux/StopSignals.h>
#include <programs/common/mirror/MirrorClient.h>
#include <programs/common/text/Text.h>
#include <programs/common/trees/TreeReport.h>
#include <programs/routeradvt/cli/Options.h>
#include <programs/routeradvt/commands/Commands.h>

#include <asio/signal_set.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <ostream>

namespace Tool {

namespace {

using namespace std::chrono_literals;
using Roots = std::vector<Fwk::Ptr<Fwk::Entity>>;

void failIfNoneIsKnown(std::string const& path, Roots const& roots) {
  if (std::ranges::none_of(roots, [](auto const& root) { return static_cast<bool>(root); }))
    throw Failure(path + ": serves no tree that this program knows");
}

/// Prints the trees once they are there.
class Once final : public MirrorClient::Observer {
 public:
  Once(asio::io_context& context, std::string const& path, std::ostream& out, bool json)
      : context_(context), path_(path), out_(out), json_(json), patience_(context) {
    wait();
  }

  void onAttached() override {}
  void onMissing(std::string const& why) override { throw Failure(path_ + ": " + why); }
  void onOctets() override { wait(); }
  void onSynchronized(Roots const& roots) override {
    failIfNoneIsKnown(path_, roots);
    if (json_)
      out_ << jsonText(treesJson(roots), 2) << '\n';
    else
      out_ << treesText(roots);
    context_.stop();
  }

 private:
  void wait() {
    patience_.expires_after(10s);
    patience_.async_wait([this](std::error_code aborted) {
      if (!aborted)
        throw Failure(path_ + ": nothing has come for 10 seconds; it may have as many mirrors as it serves");
    });
  }

  asio::io_context& context_;
  std::string const& path_;
  std::ostream& out_;
  bool json_;
  asio::steady_timer patience_;
};

/// Prints the trees, and every change from then on.
class Following final : public MirrorClient::Observer {
 public:
  Following(std::string const& path, Console& console, bool json) : path_(path), console_(console), json_(json) {}

  void onAttached() override {
    if (std::exchange(missing_, false)) tell("attached" + std::string(shown_.empty() ? "" : " again"));
  }
  void onMissing(std::string const& why) override {
    if (std::exchange(missing_, true)) return;
    tell(why + "; waiting");
    if (json_ && !shown_.empty()) say(Json{{"event", "detached"}});
    flush();
    detached_ = !shown_.empty();
  }
  void onOctets() override {}
  void onSynchronized(Roots const& roots) override {
    failIfNoneIsKnown(path_, roots);
    if (roots != shown_) {
      show(roots);
    } else {
      if (json_ && detached_) say(Json{{"event", "attached"}});
      for (TreeChange const& change : watch_.take()) json_ ? say(changeJson(change)) : say(changeText(change));
    }
    detached_ = false;
    flush();
  }

 private:
  void show(Roots const& roots) {
    shown_ = roots;
    watch_.rootsAre(roots);
    json_ ? say(Json{{"event", "attached"}, {"trees", treesJson(roots)}}) : say(treesText(roots));
  }
  void tell(std::string const& what) { console_.err << printable(path_ + ": " + what) << std::endl; }
  void say(Json const& json) { say(jsonText(json) + '\n'); }
  void say(std::string const& text) { console_.out << text; }
  void flush() {
    if (!console_.out.flush()) throw Failure("the output could not be written");
  }

  std::string const& path_;
  Console& console_;
  bool json_;
  bool missing_ = false;
  bool detached_ = false;
  Roots shown_;
  TreeWatch watch_;
};

class MirrorCommand final : public Command {
 public:
  CommandText text() const override {
    return {
        "mirror", "show the trees that 'serve' holds, and how they change",
        "Without --follow, it shows the trees and ends. With --follow, it also waits for a server that is not there "
        "yet or that ended, and then shows the differences. Ctrl-C ends it.\n\n"
        "  routeradvt mirror /run/routeradvt.sock\n"
        "  routeradvt mirror /run/routeradvt.sock --follow --json"};
  }

  void addTo(Options& options) override {
    options.argument("PATH", path_, "socket", "Unix socket that 'serve' listens on");
    options.flag("--follow", follow_, "go on, and show every change when it happens");
    options.flag("--json", json_, "print one JSON object; with --follow one per event, each on a line");
  }

  void run(Console& console) override {
    asio::io_context context(1);
    if (follow_) {
      asio::signal_set signals(context);
      for (int const signal : stopSignals()) signals.add(signal);
      signals.async_wait([&](std::error_code, int) { context.stop(); });
      Following following(path_, console, json_);
      MirrorClient const client(context, path_, following);
      context.run();
    } else {
      Once once(context, path_, console.out, json_);
      MirrorClient const client(context, path_, once);
      context.run();
    }
  }

 private:
  std::string path_;
  bool follow_ = false;
  bool json_ = false;
};

}  // namespace

std::unique_ptr<Command> makeMirrorCommand() { return std::make_unique<MirrorCommand>(); }

}  // namespace Tool
