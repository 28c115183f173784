#include <RouterPlatform/Base/Text.h>

#include <array>
#include <charconv>

namespace Trace {

namespace {

template <class T>
void appendNumber(std::string& out, T value) {
  std::array<char, 32> digits;  // the longest: -2.2250738585072014e-308, 24 characters
  auto const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  out.append(digits.data(), end);
}

}  // namespace

void detail::appendSigned(std::string& out, std::int64_t value) { appendNumber(out, value); }
void detail::appendUnsigned(std::string& out, std::uint64_t value) { appendNumber(out, value); }
void appendText(std::string& out, double value) { appendNumber(out, value); }

}  // namespace Trace
