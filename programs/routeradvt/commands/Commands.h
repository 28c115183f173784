#pragma once

#include <programs/routeradvt/cli/Command.h>

#include <memory>

namespace Tool {

/// Every subcommand, in the order of the help.
Commands makeCommands();

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
