#pragma once

#include <fuzz/Fuzzer.h>
#include <programs/routeradvt/cli/Program.h>
#include <programs/routeradvt/commands/Commands.h>

#include <nlohmann/json.hpp>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

// What the fuzz targets of the command line share.

namespace ToolOutput {

/// No control octet but the newline: none of them may reach a terminal.
inline void checkPrintable(std::string_view text) {
  FUZZ_CHECK(std::ranges::none_of(text, [](unsigned char c) { return (c < 0x20 && c != '\n') || c == 0x7f; }));
}

/// Valid, and in UTF-8 without the control characters from U+0080 to U+009F as well.
inline void checkJson(std::string_view text) {
  checkPrintable(text);
  for (std::size_t at = 0; (at = text.find('\xc2', at)) != std::string_view::npos; ++at)
    FUZZ_CHECK(at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) >= 0xa0);
  FUZZ_CHECK(nlohmann::json::accept(text));
}

/// One JSON text per line.
inline void checkJsonLines(std::string_view text) {
  while (!text.empty()) {
    std::size_t const end = text.find('\n');
    FUZZ_CHECK(end != std::string_view::npos);
    checkJson(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
}

/// A file in memory with these octets, for as long as this lives.
class InputFile {
 public:
  InputFile(std::uint8_t const* data, std::size_t size) : descriptor_(memfd_create("input", MFD_CLOEXEC)) {
    FUZZ_CHECK(descriptor_ >= 0);
    FUZZ_CHECK(write(descriptor_, data, size) == static_cast<ssize_t>(size));
  }
  InputFile(InputFile const&) = delete;
  InputFile& operator=(InputFile const&) = delete;
  ~InputFile() { close(descriptor_); }

  std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};

struct Result {
  bool succeeded;
  std::string out;
};

/// Runs the command line, which succeeds without a message or fails with one. The exit status is never another.
inline Result run(std::vector<std::string> arguments) {
  std::ostringstream out, err;
  Tool::ExitStatus const status = Tool::runProgram(Tool::makeCommands(), std::move(arguments), {out, err});
  FUZZ_CHECK(status == Tool::ExitStatus::success || status == Tool::ExitStatus::failed);
  bool const succeeded = status == Tool::ExitStatus::success;
  FUZZ_CHECK(succeeded == err.str().empty());
  checkPrintable(err.str());
  checkPrintable(out.str());
  return {succeeded, out.str()};
}

}  // namespace ToolOutput
