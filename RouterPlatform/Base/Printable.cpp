#include <RouterPlatform/Base/Printable.h>

#include <algorithm>
#include <cstddef>

namespace Trace {

namespace {

struct Character {
  std::size_t size;  // octets
  char32_t code;
};

constexpr std::size_t sizeByLead(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead < 0xc0) return 0;  // a continuation octet
  if (lead < 0xe0) return 2;
  if (lead < 0xf0) return 3;
  return lead < 0xf8 ? 4 : 0;
}

/// The first character of a text that is not empty; size 0: its first octet begins no character (RFC 3629 3 and 4).
Character firstCharacter(std::string_view text) {
  constexpr Character malformed{0, 0};
  auto const lead = static_cast<unsigned char>(text[0]);
  std::size_t const size = sizeByLead(lead);
  if (size == 0 || size > text.size()) return malformed;
  char32_t code = size == 1 ? lead : lead & (0x7fu >> size);
  for (char const c : text.substr(1, size - 1)) {
    auto const octet = static_cast<unsigned char>(c);
    if ((octet & 0xc0) != 0x80) return malformed;
    code = code << 6 | (octet & 0x3f);
  }
  constexpr char32_t leastOfSize[] = {0, 0, 0x80, 0x800, 0x10000};
  bool const isSurrogate = code >= 0xd800 && code <= 0xdfff;
  return code < leastOfSize[size] || code > 0x10ffff || isSurrogate ? malformed : Character{size, code};
}

bool isEscaped(char32_t code) {
  struct Range {
    char32_t first;
    char32_t last;
  };
  constexpr Range escaped[] = {{0, 0x1f},        {0x7f, 0x9f},     {0x61c, 0x61c},
                               {0x200e, 0x200f}, {0x2028, 0x202e}, {0x2066, 0x2069}};
  return std::ranges::any_of(escaped, [code](Range range) { return range.first <= code && code <= range.last; });
}

void appendEscaped(std::string& out, std::string_view octets) {
  constexpr char digits[] = "0123456789abcdef";
  for (char const c : octets) {
    auto const octet = static_cast<unsigned char>(c);
    out += "\\x";
    out += digits[octet >> 4];
    out += digits[octet & 15];
  }
}

}  // namespace

void appendPrintable(std::string& out, std::string_view text) {
  while (!text.empty()) {
    auto const [size, code] = firstCharacter(text);
    std::string_view const octets = text.substr(0, std::max<std::size_t>(size, 1));
    text.remove_prefix(octets.size());
    if (size == 0 || isEscaped(code))
      appendEscaped(out, octets);
    else
      out += code == U'\\' ? std::string_view("\\\\") : octets;
  }
}

}  // namespace Trace
