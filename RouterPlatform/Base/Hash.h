#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Export.h>

#include <concepts>
#include <cstring>
#include <string_view>

namespace Fwk {

/// Collects hashes into one. The result depends only on the seed and the mixed values, in order: it is the same in
/// every process and every binary, so it may stand in shared memory.
class HashAccumulator {
 public:
  explicit constexpr HashAccumulator(U64 seed) noexcept : state_(seed ^ 0x9e3779b97f4a7c15U) {}

  constexpr HashAccumulator& mix(U64 value) noexcept {
    state_ = multiplyFold(state_ ^ value, 0xd6e8feb86659fd93U);
    return *this;
  }

  constexpr U64 result() const noexcept { return multiplyFold(state_, 0xa0761d6478bd642fU); }

 private:
  /// High and low half of the 128-bit product, folded; the added constant keeps a zero operand from absorbing.
  static constexpr U64 multiplyFold(U64 a, U64 b) noexcept {
    __extension__ using U128 = unsigned __int128;
    U128 const product = static_cast<U128>(a + 0x2d358dccaa6c78a5U) * b;
    return static_cast<U64>(product) ^ static_cast<U64>(product >> 64);
  }

  U64 state_;
};

/// Hash of `size` octets, stable across processes and binaries.
ROUTER_PLATFORM_EXPORT U64 hashBytes(void const* data, std::size_t size, U64 seed) noexcept;

/// A key type that brings its hash along.
template <class T>
concept HasHash = requires(T const& v) {
  { v.hash(U64{}) }
  noexcept->std::same_as<U64>;
};

/// Hash of a key. A key type brings `hash(seed)` as a member; integers and texts are served here.
template <HasHash T>
U64 hashOf(T const& key, U64 seed) noexcept {
  return key.hash(seed);
}

template <std::integral T>
constexpr U64 hashOf(T key, U64 seed) noexcept {
  return HashAccumulator(seed).mix(static_cast<U64>(key)).result();
}

inline U64 hashOf(std::string_view key, U64 seed) noexcept { return hashBytes(key.data(), key.size(), seed); }

/// Seed of this process's own hash tables, random at start: keys come from the link, and a sender must not be able to
/// choose colliding ones.
ROUTER_PLATFORM_EXPORT U64 processHashSeed() noexcept;

}  // namespace Fwk
