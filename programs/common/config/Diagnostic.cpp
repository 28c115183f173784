#include <programs/common/config/Diagnostic.h>
#include <programs/common/text/Text.h>

#include <algorithm>

namespace Tool {

std::string diagnosticLine(std::string_view file, Diagnostic const& diagnostic, std::string_view label) {
  std::string line = printable(file);
  if (diagnostic.place.line > 0)
    line += ':' + std::to_string(diagnostic.place.line) + ':' + std::to_string(diagnostic.place.column);
  line += ": ";
  line += label;
  if (!diagnostic.path.empty()) line += printable(diagnostic.path) + ": ";
  return line + diagnostic.text;
}

void sortByPlace(std::vector<Diagnostic>& diagnostics) {
  std::ranges::stable_sort(diagnostics, {}, &Diagnostic::place);
}

}  // namespace Tool
