#pragma once

#include <programs/routeradvt/cli/Command.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Tool {

using Commands = std::vector<std::unique_ptr<Command>>;

/// What the arguments may be, and who does what they ask for.
struct CommandLine {
  std::shared_ptr<CLI::App> program;
  std::vector<std::pair<CLI::App*, std::unique_ptr<Command>>> commands;
};
CommandLine makeCommandLine(Commands commands);

/// The whole program but for the process around it; `arguments` without the program's name.
ExitStatus runProgram(Commands commands, std::vector<std::string> arguments, Console console);

}  // namespace Tool
