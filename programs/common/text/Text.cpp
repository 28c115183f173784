#include <programs/common/text/Text.h>

namespace Tool {

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

std::string padded(std::string text, std::size_t width) {
  if (text.size() < width) text.append(width - text.size(), ' ');
  return text;
}

std::string toHex(std::span<std::uint8_t const> octets) {
  std::string text;
  text.reserve(2 * octets.size());
  for (std::uint8_t const octet : octets) {
    text += "0123456789abcdef"[octet >> 4];
    text += "0123456789abcdef"[octet & 15];
  }
  return text;
}

}  // namespace Tool
