#include <programs/routeradvt/cli/Program.h>
#include <programs/routeradvt/commands/Commands.h>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <iostream>
#include <string_view>

namespace {

/// Otherwise the first file that is opened would take the place of a closed standard stream, and its output with it.
/// Writing to such a stream fails.
void occupyClosedStreams() {
  int file = 0;
  while (file >= 0 && file <= STDERR_FILENO) file = open("/dev/null", O_RDONLY);
  if (file > STDERR_FILENO) close(file);
}

/// The width of the help: COLUMNS, else that of the terminal, else 80.
unsigned columns() {
  constexpr unsigned usual = 80, least = 20, most = 1000;
  auto const isUsable = [](unsigned count) { return count >= least && count <= most; };
  if (char const* const text = std::getenv("COLUMNS")) {
    std::string_view const digits = text;
    unsigned count = 0;
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), count);
    if (error == std::errc() && end == digits.data() + digits.size() && isUsable(count)) return count;
  }
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && isUsable(size.ws_col)) return size.ws_col;
  return usual;
}

}  // namespace

int main(int argc, char** argv) {
  occupyClosedStreams();
  std::ios::sync_with_stdio(false);
  return static_cast<int>(
      Tool::runProgram(Tool::makeCommands(), {argv + 1, argv + argc}, {std::cout, std::cerr, columns()}));
}
