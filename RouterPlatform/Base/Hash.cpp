#include <RouterPlatform/Base/Hash.h>

#include <sys/random.h>
#include <chrono>

namespace Fwk {

U64 hashBytes(void const* data, std::size_t size, U64 seed) noexcept {
  auto const* p = static_cast<unsigned char const*>(data);
  HashAccumulator accumulator(seed);
  accumulator.mix(size);
  for (; size >= 8; p += 8, size -= 8) {
    U64 word;
    std::memcpy(&word, p, 8);
    accumulator.mix(word);
  }
  if (size > 0) {
    U64 word = 0;
    std::memcpy(&word, p, size);
    accumulator.mix(word);
  }
  return accumulator.result();
}

U64 processHashSeed() noexcept {
  static U64 const seed = [] {
    U64 value = 0;
    if (getrandom(&value, sizeof value, GRND_NONBLOCK) != static_cast<ssize_t>(sizeof value))
      value = static_cast<U64>(std::chrono::steady_clock::now().time_since_epoch().count());
    return value;
  }();
  return seed;
}

}  // namespace Fwk
