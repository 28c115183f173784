#include <programs/routeradvt/commands/Commands.h>

namespace Tool {

Commands makeCommands() {
  Commands commands;
  commands.push_back(makeBuildCommand());
  commands.push_back(makeSendCommand());
  commands.push_back(makeParseCommand());
  commands.push_back(makeListenCommand());
  commands.push_back(makeNeighborsCommand());
  commands.push_back(makeServeCommand());
  commands.push_back(makeMirrorCommand());
  commands.push_back(makeShowCommand());
  commands.push_back(makeTypesCommand());
  return commands;
}

}  // namespace Tool
