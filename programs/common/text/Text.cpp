#include <RouterPlatform/Base/Printable.h>
#include <programs/common/text/Text.h>

#include <algorithm>
#include <clocale>
#include <cwchar>

namespace Tool {

std::string printable(std::string_view text) {
  std::string result;
  Trace::appendPrintable(result, text);
  return result;
}

std::string inQuotes(std::string_view text) {
  constexpr std::size_t sizeMax = 80;
  if (text.size() <= sizeMax) return '"' + std::string(text) + '"';
  std::size_t end = sizeMax;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xc0) == 0x80) --end;  // do not cut a UTF-8 character
  return '"' + std::string(text.substr(0, end)) + "...\"";
}

std::size_t displayWidth(std::string_view text) {
  if (std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; })) return text.size();
  // mbrtowc(3) and wcwidth(3) go by the locale of the thread; the text is UTF-8 in any locale.
  static locale_t const utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  locale_t const former = uselocale(utf8);
  std::size_t width = 0;
  mbstate_t state{};
  while (!text.empty()) {
    wchar_t character = 0;
    std::size_t size = mbrtowc(&character, text.data(), text.size(), &state);
    int columns = 1;
    if (size == 0 || size > text.size()) {  // NUL, or not UTF-8
      state = {};
      size = 1;
    } else {
      columns = wcwidth(character);
    }
    width += columns < 0 ? 1 : static_cast<std::size_t>(columns);
    text.remove_prefix(size);
  }
  uselocale(former);
  return width;
}

std::string padded(std::string text, std::size_t width) {
  if (std::size_t const own = displayWidth(text); own < width) text.append(width - own, ' ');
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
