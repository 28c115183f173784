#include <programs/routeradvt/cli/Program.h>
#include <programs/routeradvt/commands/Commands.h>

#include <fcntl.h>
#include <unistd.h>

#include <iostream>

namespace {

/// A standard stream that is closed must not become the first file that is opened, and its output go there. What is
/// written to such a stream fails.
void occupyClosedStreams() {
  int file = 0;
  while (file >= 0 && file <= STDERR_FILENO) file = open("/dev/null", O_RDONLY);
  if (file > STDERR_FILENO) close(file);
}

}  // namespace

int main(int argc, char** argv) {
  occupyClosedStreams();
  std::ios::sync_with_stdio(false);
  return static_cast<int>(Tool::runProgram(Tool::makeCommands(), {argv + 1, argv + argc}, {std::cout, std::cerr}));
}
