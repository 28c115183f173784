#pragma once

#include <programs/routeradvt/cli/Command.h>

#include <string>
#include <vector>

namespace Tool {

/// What a command line asks for: a command, or a text to print.
struct Request {
  Command* command = nullptr;  ///< its options are set; null when there is nothing to run
  std::string name;            ///< of the command; empty: none was recognized
  std::string text;            ///< without a command: the help, the version, or why the arguments are refused
  ExitStatus status = ExitStatus::success;
};

/// Reads the arguments, which come without the program's name, and sets the options of the command that they name.
/// `columns`: the help is folded to that many.
Request parseArguments(Commands const& commands, std::vector<std::string> arguments, unsigned columns);

}  // namespace Tool
