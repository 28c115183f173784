#include <RouterPlatform/SharedTable/Format.h>

namespace SharedTable {
namespace {

constexpr std::array<U32, 256> makeCrcTable() {
  std::array<U32, 256> table{};
  for (U32 octet = 0; octet < 256; ++octet) {
    U32 crc = octet;
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xedb88320U : 0U);
    table[octet] = crc;
  }
  return table;
}

constexpr std::array<U32, 256> crcTable = makeCrcTable();

}  // namespace

U32 crc32(void const* data, std::size_t size) noexcept {
  auto const* octets = static_cast<unsigned char const*>(data);
  U32 crc = 0xffffffffU;
  for (std::size_t i = 0; i < size; ++i) crc = (crc >> 8) ^ crcTable[(crc ^ octets[i]) & 0xff];
  return ~crc;
}

}  // namespace SharedTable
