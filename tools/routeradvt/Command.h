#pragma once

#include <iosfwd>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Tool {

/// What the program ends with.
enum class ExitStatus : int {
  success = 0,
  failed = 1,  ///< what was asked for could not be done
  usage = 2,   ///< what was asked for makes no sense
};

/// Where a command writes. Results go to `out`; errors, warnings and traces to `err`.
struct Console {
  std::ostream& out;
  std::ostream& err;
};

/// What was asked for cannot be done; `what()` says why, ready to be shown.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The command line makes no sense, which only came out while the command ran.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// One subcommand: a file of its own, and a line in Commands.cpp.
class Command {
 public:
  virtual ~Command() = default;

  /// Adds the subcommand to the program, with its options and its help. Options are stored in this object.
  virtual CLI::App& addTo(CLI::App& program) = 0;

  /// Does what the options ask for. Throws `Failure` or `UsageError`.
  virtual void run(Console& console) = 0;
};

/// Every subcommand, in the order of the help.
std::vector<std::unique_ptr<Command>> makeCommands();

std::unique_ptr<Command> makeBuildCommand();
std::unique_ptr<Command> makeListenCommand();
std::unique_ptr<Command> makeMirrorCommand();
std::unique_ptr<Command> makeNeighborsCommand();
std::unique_ptr<Command> makeParseCommand();
std::unique_ptr<Command> makeSendCommand();
std::unique_ptr<Command> makeServeCommand();
std::unique_ptr<Command> makeShowCommand();
std::unique_ptr<Command> makeTypesCommand();

}  // namespace Tool
