#include <programs/common/config/Diagnostic.h>
#include <programs/common/text/Text.h>

#include <algorithm>

namespace Tool {

std::string diagnosticText(std::string_view file, Diagnostic const& diagnostic, std::string_view label) {
  std::string line(file);
  if (diagnostic.place.line > 0)
    line += ':' + std::to_string(diagnostic.place.line) + ':' + std::to_string(diagnostic.place.column);
  line += ": ";
  line += label;
  if (!diagnostic.path.empty()) line += diagnostic.path + ": ";
  return line + diagnostic.text;
}

std::string diagnosticLine(std::string_view file, Diagnostic const& diagnostic, std::string_view label) {
  return printable(diagnosticText(file, diagnostic, label));
}

void sortByPlace(std::vector<Diagnostic>& diagnostics) {
  std::ranges::stable_sort(diagnostics, {}, &Diagnostic::place);
}

}  // namespace Tool
