#pragma once

#include <tools/routeradvt/Command.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Tool {

/// What the arguments may be, and who does what they ask for.
struct CommandLine {
  std::shared_ptr<CLI::App> program;
  std::vector<std::pair<CLI::App*, std::unique_ptr<Command>>> commands;
};
CommandLine makeCommandLine();

/// The whole program but for the process around it; `arguments` without the program's name.
ExitStatus runProgram(std::vector<std::string> arguments, Console console);

}  // namespace Tool
