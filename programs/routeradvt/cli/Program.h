#pragma once

#include <programs/routeradvt/cli/Command.h>

#include <string>
#include <vector>

namespace Tool {

/// The whole program but for the process around it; `arguments` without the program's name.
ExitStatus runProgram(Commands const& commands, std::vector<std::string> arguments, Console console);

}  // namespace Tool
