#include <RouterPlatform/Base/Text.h>
#include <RouterPlatform/Forms/TextForm.h>

#include <charconv>
#include <cmath>

namespace Fwk {

namespace {

bool isPrintable(unsigned char c) { return c >= 0x20 && c < 0x7f; }

void appendEscaped(String& out, char character) {
  auto const c = static_cast<unsigned char>(character);
  if (c == '\\' || c == '\'') {
    out += '\\';
    out += character;
  } else if (isPrintable(c)) {
    out += character;
  } else {
    constexpr char const* digits = "0123456789abcdef";
    out += c == '\n' ? "\\n" : c == '\r' ? "\\r" : c == '\t' ? "\\t" : "\\x";
    if (c != '\n' && c != '\r' && c != '\t') {
      out += digits[c >> 4];
      out += digits[c & 15];
    }
  }
}

/// Takes one character of a quoted text off the front of `text`; nothing when it is malformed.
std::optional<char> takeUnescaped(std::string_view& text) {
  auto const take = [&](std::size_t count, char value) {
    text.remove_prefix(count);
    return value;
  };
  if (text.empty() || !isPrintable(static_cast<unsigned char>(text[0]))) return std::nullopt;
  if (text[0] != '\\') return take(1, text[0]);
  if (text.size() < 2) return std::nullopt;
  switch (text[1]) {
    case '\\':
    case '\'':
      return take(2, text[1]);
    case 'n':
      return take(2, '\n');
    case 'r':
      return take(2, '\r');
    case 't':
      return take(2, '\t');
    case 'x':
      break;
    default:
      return std::nullopt;
  }
  unsigned code = 0;
  if (text.size() < 4) return std::nullopt;
  auto const [end, error] = std::from_chars(text.data() + 2, text.data() + 4, code, 16);
  if (error != std::errc() || end != text.data() + 4) return std::nullopt;
  return take(4, static_cast<char>(code));
}

}  // namespace

ParseError::ParseError(String attribute, std::size_t offset, String expected)
    : std::runtime_error((attribute.empty() ? std::string() : attribute + ": ") + "offset " + std::to_string(offset) +
                         ": expected " + expected),
      attribute_(std::move(attribute)),
      offset_(offset),
      expected_(std::move(expected)) {}

String valueToStrep(U64 value) { return std::to_string(value); }

String valueToStrep(double value) {
  if (std::isnan(value)) return "nan";
  String text;
  Trace::appendText(text, value);
  if (std::isfinite(value) && text.find_first_of(".e") == String::npos) text += ".0";
  return text;
}

String valueToStrep(String const& value) {
  String out = "'";
  for (char const c : value) appendEscaped(out, c);
  out += '\'';
  return out;
}

void TextFormReader::literal(std::string_view text) {
  if (!rest().starts_with(text)) throw ParseError("", offset(), String(text));
  pos_ += static_cast<std::ptrdiff_t>(text.size());
}

bool TextFormReader::readBool(char const* name) {
  for (bool const value : {true, false}) {
    String const text = valueToStrep(value);
    if (!rest().starts_with(text)) continue;
    pos_ += static_cast<std::ptrdiff_t>(text.size());
    return value;
  }
  throw ParseError(name, offset(), "True or False");
}

U64 TextFormReader::readUnsigned(char const* name, U64 greatest) {
  std::string_view const text = rest();
  U64 value = 0;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  auto const size = static_cast<std::size_t>(end - text.data());
  if (error != std::errc() || value > greatest || (text[0] == '0' && size > 1))
    throw ParseError(name, offset(), "an integer from 0 to " + valueToStrep(greatest));
  pos_ += end - text.data();
  return value;
}

double TextFormReader::readDouble(char const* name) {
  std::string_view const text = rest();
  double value = 0;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  std::string_view const read = text.substr(0, static_cast<std::size_t>(end - text.data()));
  if (error != std::errc() || valueToStrep(value) != read) throw ParseError(name, offset(), "a floating-point number");
  pos_ += end - text.data();
  return value;
}

String const& TextFormReader::readQuoted(char const* name) {
  std::string_view text = rest();
  lastQuoted_.clear();
  if (text.starts_with('\'')) {
    text.remove_prefix(1);
    while (!text.starts_with('\'')) {
      std::optional<char> const c = takeUnescaped(text);
      if (!c) break;
      lastQuoted_ += *c;
    }
    String const printed = valueToStrep(lastQuoted_);
    if (rest().starts_with(printed)) {
      pos_ += static_cast<std::ptrdiff_t>(printed.size());
      return lastQuoted_;
    }
  }
  throw ParseError(name, offset(), "a quoted text");
}

}  // namespace Fwk
