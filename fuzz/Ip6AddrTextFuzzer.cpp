// Any text: an address is read exactly when the C library reads it, as the same address. What is read, address or
// prefix, is printed as a text that is read as an equal value, and that text is printed again as itself.

#include <RouterPlatform/Net/Ip6AddrWithMask.h>
#include <fuzz/Fuzzer.h>

#include <arpa/inet.h>

#include <algorithm>
#include <string>
#include <string_view>

std::size_t const fuzzGeneratedInputs = 20'000;

namespace {

void checkAgainstLibc(std::string const& text) {
  if (text.find('\0') != std::string::npos) return;  // ends the text for libc
  std::array<Fwk::U8, Net::Ip6Addr::size> expected;
  bool const isAddress = inet_pton(AF_INET6, text.c_str(), expected.data()) == 1;
  auto const address = Net::Ip6Addr::parse(text);
  FUZZ_CHECK(address.has_value() == isAddress);
  if (isAddress) FUZZ_CHECK(address->octets() == expected);
}

template <class T>
void checkRoundTrip(std::string_view text) {
  auto const value = T::parse(text);
  if (!value) return;
  std::string const printed = value->toString();
  auto const again = T::parse(printed);
  FUZZ_CHECK(again.has_value());
  FUZZ_CHECK(*again == *value && again->hash() == value->hash());
  FUZZ_CHECK(again->toString() == printed);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  std::string const text(data, data + size);
  checkAgainstLibc(text);
  checkRoundTrip<Net::Ip6Addr>(text);
  checkRoundTrip<Net::Ip6AddrWithMask>(text);
  return 0;
}
