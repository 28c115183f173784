#pragma once

#include <programs/common/text/Failure.h>

#include <iosfwd>
#include <memory>
#include <vector>

namespace Tool {

class Options;

enum class ExitStatus : int {
  success = 0,
  failed = 1,  ///< the command could not do its work
  usage = 2,   ///< the command line makes no sense
};

/// Where a command writes. Results go to `out`; errors, warnings and traces to `err`.
struct Console {
  std::ostream& out;
  std::ostream& err;
  unsigned columns = 80;  ///< the help is folded to that many
};

/// The words of a command in the help.
struct CommandText {
  char const* name;
  char const* summary;
  /// Follows the options: paragraphs, which are folded, with an empty line between them, and examples, which are
  /// indented.
  char const* details;
};

/// One subcommand: a file of its own, and a line in Commands.cpp.
class Command {
 public:
  virtual ~Command() = default;

  virtual CommandText text() const = 0;
  /// Adds the options and arguments. Their values are stored in this object.
  virtual void addTo(Options& options) = 0;
  /// Does what the options ask for. Throws `Failure` or `UsageError`.
  virtual void run(Console& console) = 0;
};

using Commands = std::vector<std::unique_ptr<Command>>;

}  // namespace Tool
