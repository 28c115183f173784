#include <tools/routeradvt/Diagnostic.h>

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

std::string printable(std::string_view text) {
  static constexpr char digits[] = "0123456789abcdef";
  std::string result;
  for (char const c : text) {
    auto const octet = static_cast<unsigned char>(c);
    if (octet < 0x20 || octet == 0x7f) {
      result += "\\x";
      result += digits[octet >> 4];
      result += digits[octet & 15];
    } else {
      result += c;
    }
  }
  return result;
}

std::string inQuotes(std::string_view text) {
  constexpr std::size_t longest = 80;
  bool const cut = text.size() > longest;
  return '"' + printable(text.substr(0, longest)) + (cut ? "...\"" : "\"");
}

}  // namespace Tool
