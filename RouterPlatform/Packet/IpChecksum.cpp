#include <RouterPlatform/Packet/IpChecksum.h>

#include <bit>
#include <cstring>

namespace Net {

namespace {

// Two 64-bit lanes, which every 64-bit target of the compilers has in a register. On 1500 octets this shape was the
// fastest of those tried: adding with carry costs twice as much, 128-bit sums 1.8 times, four 64-bit lanes without the
// vector type 1.3 times.
using Lanes = U64 __attribute__((vector_size(16)));

/// Sums words modulo 2^64, and their high halves apart, from which the sum of the low halves follows: no carry is lost
/// and none needs a look.
struct Sum {
  Lanes words{};
  Lanes highHalves{};

  void add(U8 const* at) noexcept {
    Lanes both;
    std::memcpy(&both, at, sizeof both);
    words += both;
    highHalves += both >> 32;
  }
};

constexpr U64 foldedOnce(U64 sum, int bits) { return (sum >> bits) + (sum & ((U64{1} << bits) - 1)); }

}  // namespace

void IpChecksumAccumulator::add(void const* data, std::size_t size) noexcept {
  auto const* at = static_cast<U8 const*>(data);
  Sum even, odd;
  for (; size >= 32; at += 32, size -= 32) {
    even.add(at);
    odd.add(at + 16);
  }
  Lanes const words = even.words + odd.words;
  Lanes const highHalves = even.highHalves + odd.highHalves;
  words_ += words[0] + words[1];
  highHalves_ += highHalves[0] + highHalves[1];
  while (size > 0) {
    std::size_t const step = size < 8 ? size : 8;
    U64 word = 0;
    std::memcpy(&word, at, step);
    words_ += word;
    highHalves_ += word >> 32;
    at += step;
    size -= step;
  }
}

IpChecksum IpChecksumAccumulator::result() const noexcept {
  U64 const lowHalves = words_ - (highHalves_ << 32);
  U64 sum = foldedOnce(foldedOnce(lowHalves, 32) + foldedOnce(highHalves_, 32), 32);
  sum = foldedOnce(foldedOnce(sum, 16), 16);
  // The sum's octets are in the order in which they were loaded, whatever that is, RFC 1071 2 (B).
  auto const complement = static_cast<U16>(~sum);
  return IpChecksum(std::bit_cast<NetU16>(complement));
}

}  // namespace Net
