// Whatever a configuration file holds, reading it ends: in a model, or in errors that are told with places in their
// order. `show` says the same of it: it succeeds when there is a model, with and without --json. Its JSON is valid, and
// no control octet of the file reaches the output or a message.

#include <fuzz/ProgramOutput.h>
#include <programs/common/config/ConfigFile.h>

namespace {

void checkDiagnostics(std::vector<Tool::Diagnostic> const& diagnostics) {
  FUZZ_CHECK(std::ranges::is_sorted(diagnostics, {}, &Tool::Diagnostic::place));
  for (Tool::Diagnostic const& diagnostic : diagnostics) {
    std::string const line = Tool::diagnosticLine("f", diagnostic);
    ToolOutput::checkPrintable(line);
    FUZZ_CHECK(line.find('\n') == std::string::npos);
    FUZZ_CHECK(!diagnostic.text.empty());
  }
}

}  // namespace

std::size_t const fuzzGeneratedInputs = 1'000;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  std::string const text(reinterpret_cast<char const*>(data), size);
  Tool::ConfigFile const file = Tool::readConfigText("f", text);
  FUZZ_CHECK(static_cast<bool>(file) == static_cast<bool>(file.config));
  FUZZ_CHECK(file || file.links.empty());
  checkDiagnostics(file.errors);
  checkDiagnostics(file.warnings);

  ToolOutput::InputFile const input(data, size);
  ToolOutput::Result const words = ToolOutput::run({"show", input.path()});
  ToolOutput::Result const json = ToolOutput::run({"show", input.path(), "--json"});
  FUZZ_CHECK(words.succeeded == static_cast<bool>(file));
  FUZZ_CHECK(json.succeeded == static_cast<bool>(file));
  FUZZ_CHECK(words.succeeded != words.out.empty());
  if (json.succeeded)
    ToolOutput::checkJson(json.out);
  else
    FUZZ_CHECK(json.out.empty());
  return 0;
}
