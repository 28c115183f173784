// What reads as an address, an interface id or a router preference prints to a text that reads as an equal value with
// an equal hash, and that prints as itself: printing is canonical. An IPv6 address is read exactly when the C library
// reads it, as the same octets.

#include <RouterPlatform/Base/Name.h>
#include <RouterPlatform/Net/EthAddr.h>
#include <RouterPlatform/Net/Icmp6RouterAdvtRouterPreferenceType.h>
#include <RouterPlatform/Net/IntfId.h>
#include <RouterPlatform/Net/Ip6AddrWithMask.h>
#include <RouterPlatform/Net/VrfName.h>
#include <fuzz/Fuzzer.h>

#include <arpa/inet.h>

#include <array>
#include <string>
#include <string_view>

namespace {

template <class T>
void checkRoundTrip(std::string_view text) {
  auto const value = T::parse(text);
  if (!value) return;
  std::string const printed = value->toString();
  auto const again = T::parse(printed);
  FUZZ_CHECK(again.has_value());
  FUZZ_CHECK(*again == *value);
  FUZZ_CHECK(again->hash() == value->hash());
  FUZZ_CHECK(again->toString() == printed);
}

void checkAgainstLibc(std::string const& text) {
  if (text.find('\0') != std::string::npos) return;  // ends the text for libc
  std::array<Fwk::U8, Net::Ip6Addr::size> expected;
  bool const isAddress = inet_pton(AF_INET6, text.c_str(), expected.data()) == 1;
  auto const address = Net::Ip6Addr::parse(text);
  FUZZ_CHECK(address.has_value() == isAddress);
  if (isAddress) FUZZ_CHECK(address->octets() == expected);
}

void checkSubnet(std::string_view text) {
  auto const prefix = Net::Ip6AddrWithMask::parse(text);
  if (!prefix) return;
  auto const subnet = prefix->subnet();
  FUZZ_CHECK(subnet.subnet() == subnet);
  FUZZ_CHECK(prefix->contains(prefix->address()));
  FUZZ_CHECK(prefix->contains(subnet.address()));
  FUZZ_CHECK(subnet.contains(prefix->address()));
}

void checkPreference(std::string_view text) {
  auto value = Net::Icmp6RouterAdvtRouterPreferenceType{200};
  auto again = value;
  if (!parseText(text, value)) return;
  std::string printed;
  appendText(printed, value);
  FUZZ_CHECK(parseText(printed, again));
  FUZZ_CHECK(again == value);
}

}  // namespace

std::size_t const fuzzGeneratedInputs = 20'000;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  std::string_view const text(reinterpret_cast<char const*>(data), size);
  checkAgainstLibc(std::string(text));
  checkRoundTrip<Net::Ip6Addr>(text);
  checkRoundTrip<Net::Ip6AddrWithMask>(text);
  checkRoundTrip<Net::EthAddr>(text);
  checkRoundTrip<Net::IntfId>(text);
  checkRoundTrip<Net::VrfName>(text);
  checkRoundTrip<Fwk::Name>(text);
  checkSubnet(text);
  checkPreference(text);
  return 0;
}
