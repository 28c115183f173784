// What reads as a value of a type prints as the very text that was read, and that reads as an equal value: there is one
// text for a value. What does not read says an offset within the text. Whatever is in a value, it prints to a text that
// reads back as it.

#include <Ipv6RouterAdvt/Heard/RaPacketPrefixInfo.h>
#include <Ipv6RouterAdvt/Heard/RouterNeighbor.h>
#include <Ipv6RouterAdvt/Heard/RouterNeighborRa.h>
#include <Ipv6RouterAdvt/RouterAdvt/PrefixDefault.h>
#include <fuzz/Fuzzer.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <string>
#include <string_view>

namespace {

using namespace RouterAdvt;

template <class T>
bool isSame(T const& a, T const& b) {
  return a == b;
}
/// A time that is no number is unequal to itself, and still to be kept.
bool isSame(RouterNeighborRa const& a, RouterNeighborRa const& b) {
  return a.key() == b.key() && (a.lastRaReceived() == b.lastRaReceived() ||
                                (std::isnan(a.lastRaReceived()) && std::isnan(b.lastRaReceived())));
}

template <class T>
void checkValue(T const& value) {
  String const printed = valueToStrep(value);
  T const again = strepToValue<T>(printed, nullptr);
  FUZZ_CHECK(isSame(again, value));
  FUZZ_CHECK(valueToStrep(again) == printed);
}

template <class T>
void checkText(String const& text) {
  try {
    T const value = strepToValue<T>(text, nullptr);
    FUZZ_CHECK(valueToStrep(value) == text);
    checkValue(value);
  } catch (Fwk::ParseError const& error) {
    FUZZ_CHECK(error.offset() <= text.size());
    FUZZ_CHECK(!error.expected().empty());
  }
}

/// Values out of the input; zeros when it is used up.
class Input {
 public:
  explicit Input(std::string_view octets) : octets_(octets) {}

  template <class T>
  T number() {
    T value{};
    std::size_t const size = std::min(sizeof value, octets_.size());
    if (size > 0) std::memcpy(&value, octets_.data(), size);
    octets_.remove_prefix(size);
    return value;
  }
  bool flag() { return number<U8>() % 2 == 1; }
  template <class Text>
  Text text() {
    std::string_view const result = octets_.substr(0, std::min<std::size_t>(number<U8>() % 64, Text::maxSize));
    octets_.remove_prefix(result.size());
    return Text(result);
  }
  Ip6Addr address() { return Ip6Addr::fromBytes(number<std::array<U8, 16>>()); }

 private:
  std::string_view octets_;
};

void checkValues(Input input) {
  RaPacketPrefixInfo info(Ip6AddrWithMask(input.address(), input.number<U8>()));
  info.onLinkFlagIs(input.flag());
  info.autoConfigFlagIs(input.flag());
  info.validLifetimeIs(input.number<U32>());
  info.preferredLifetimeIs(input.number<U32>());
  checkValue(info);
  auto const intfId = input.text<IntfId>();
  auto const address = input.address();
  checkValue(RouterNeighbor(intfId, input.text<VrfName>(), address));
  checkValue(RouterNeighborRaKey(intfId, address));
  checkValue(RouterNeighborRa(RouterNeighborRaKey(intfId, address), input.number<double>()));
}

}  // namespace

std::size_t const fuzzGeneratedInputs = 20'000;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  std::string_view const octets(reinterpret_cast<char const*>(data), size);
  String const text{std::string(octets)};
  checkText<PrefixDefault>(text);
  checkText<RaPacketPrefixInfo>(text);
  checkText<RouterNeighbor>(text);
  checkText<RouterNeighborRaKey>(text);
  checkText<RouterNeighborRa>(text);
  checkValues(Input(octets));
  return 0;
}
