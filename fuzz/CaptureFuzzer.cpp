// Whatever a capture file holds, pcap or pcapng, `parse` ends with status 0, or with status 1 and a message. With
// --json it ends likewise, and each line of the output is valid JSON about the next packet. No control octet of the
// file reaches the output or a message.

#include <fuzz/ProgramOutput.h>

namespace {

/// The lines are numbered as the packets are, from 1.
void checkNumbers(std::string const& lines) {
  std::istringstream in(lines);
  std::string line;
  for (std::uint64_t number = 1; std::getline(in, line); ++number)
    FUZZ_CHECK(nlohmann::json::parse(line).at("packet") == number);
}

}  // namespace

std::size_t const fuzzGeneratedInputs = 1'000;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  ToolOutput::InputFile const input(data, size);
  ToolOutput::Result const words = ToolOutput::run({"parse", input.path()});
  ToolOutput::Result const json = ToolOutput::run({"parse", "--json", input.path()});
  FUZZ_CHECK(words.succeeded == json.succeeded);
  FUZZ_CHECK(words.out.empty() == json.out.empty());
  ToolOutput::checkJsonLines(json.out);
  checkNumbers(json.out);
  return 0;
}
