#include <RouterPlatform/Forms/StreamCodec.h>

#include <array>

namespace Fwk {

/// Most blocks are short: their size takes one octet, which is reserved.
void OctetSink::closeBlock(std::size_t sizeAt) {
  U64 size = to_.size() - sizeAt - 1;
  if (size < 0x80) {
    to_[sizeAt] = static_cast<U8>(size);
    return;
  }
  std::array<U8, numberSizeMax> encoded;
  std::size_t count = 0;
  for (; size >= 0x80; size >>= 7) encoded[count++] = static_cast<U8>(size | 0x80);
  encoded[count++] = static_cast<U8>(size);
  to_[sizeAt] = encoded[0];
  auto const behind = to_.begin() + static_cast<std::ptrdiff_t>(sizeAt) + 1;
  to_.insert(behind, encoded.begin() + 1, encoded.begin() + static_cast<std::ptrdiff_t>(count));
}

bool OctetSource::number(U64& value) noexcept {
  value = 0;
  U8 octet = 0;
  for (int shift = 0; shift < 64; shift += 7) {
    if (!this->octet(octet)) return false;
    U64 const bits = octet & 0x7f;
    if (shift == 63 && bits > 1) return false;  // more than 64 bits
    value |= bits << shift;
    if (octet < 0x80) return octet != 0 || shift == 0;  // a last octet of zero is not the shortest form
  }
  return false;
}

bool OctetSource::fixed64(U64& value) noexcept {
  Octets octets;
  if (!this->octets(8, octets)) return false;
  value = 0;
  for (U8 const octet : octets) value = value << 8 | octet;
  return true;
}

}  // namespace Fwk
