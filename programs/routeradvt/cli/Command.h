#pragma once

#include <programs/common/text/Failure.h>

#include <iosfwd>
#include <memory>

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

/// One subcommand: a file of its own, and a line in Commands.cpp.
class Command {
 public:
  virtual ~Command() = default;

  /// Adds the subcommand to the program, with its options and its help. Options are stored in this object.
  virtual CLI::App& addTo(CLI::App& program) = 0;

  /// Does what the options ask for. Throws `Failure` or `UsageError`.
  virtual void run(Console& console) = 0;
};

}  // namespace Tool
