#include <programs/routeradvt/manual/Roff.h>

#include <algorithm>
#include <sstream>

namespace Tool {

namespace {

std::string escaped(std::string_view text) {
  std::string result;
  for (char const c : text) switch (c) {
      case '\\':
        result += "\\(rs";
        break;
      case '-':
        result += "\\-";
        break;
      case '\'':
        result += "\\(aq";
        break;
      case '"':
        result += "\\(dq";
        break;
      case '`':
        result += "\\(ga";
        break;
      case '^':
        result += "\\(ha";
        break;
      case '~':
        result += "\\(ti";
        break;
      default:
        result += c;
    }
  return result;
}

/// How much of a word is the name of an option; what comes behind may be a comma.
std::size_t optionSize(std::string_view word) {
  if (!word.starts_with("--")) return 0;
  std::size_t const size = std::min(word.find_first_not_of("abcdefghijklmnopqrstuvwxyz-"), word.size());
  return size > 2 ? size : 0;
}

}  // namespace

std::string roffLine(std::string_view text) { return (text.starts_with('.') ? "\\&" : "") + escaped(text); }

std::string roffWords(std::string_view text) {
  std::istringstream words{std::string(text)};
  std::string result, word;
  while (words >> word) {
    std::size_t const size = optionSize(word);
    if (!result.empty()) result += ' ';
    result += size == 0 ? roffLine(word) : roffBold(word.substr(0, size)) + escaped(word.substr(size));
  }
  return result;
}

std::string roffBold(std::string_view text) { return "\\fB" + escaped(text) + "\\fP"; }
std::string roffItalic(std::string_view text) { return "\\fI" + escaped(text) + "\\fP"; }

}  // namespace Tool
