#include <RouterPlatform/Base/Hash.h>
#include <RouterPlatform/Base/Name.h>
#include <RouterPlatform/Net/IntfId.h>
#include <RouterPlatform/Net/Ip6AddrWithMask.h>

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <string>
#include <vector>

namespace {

using Fwk::HashAccumulator;
using Fwk::hashBytes;
using Fwk::hashOf;
using Fwk::U32;
using Fwk::U64;
using Fwk::U8;

// Hashes stand in files that other processes read, so these numbers never change. They were computed from the
// definition by another program, in arbitrary-precision arithmetic.

TEST(Hash, OfNumbersNeverChanges) {
  EXPECT_EQ(HashAccumulator(0).result(), 0x0bfe030e7fcdc72aU);
  EXPECT_EQ(HashAccumulator(1).result(), 0xab87e5aa068860fcU);
  EXPECT_EQ(HashAccumulator(0).mix(0).result(), 0x4c0f471c61fecfbcU);
  EXPECT_EQ(HashAccumulator(0).mix(1).result(), 0x8506df0523b56597U);
  EXPECT_EQ(HashAccumulator(0x0123456789abcdef).mix(1).mix(2).mix(~U64{0}).result(), 0xdb5c8ab2793d6871U);
  EXPECT_EQ(hashOf(U32{0}, 7), 0x2a59b1f5cac579fcU);
  EXPECT_EQ(hashOf(U32{1}, 7), 0xa69a182df86a3d50U);
  EXPECT_EQ(hashOf(U32{0xffffffff}, 7), 0x1e07755d9d92f252U);
  EXPECT_EQ(hashOf(~U64{0}, 7), 0xe9584b66fd6ce756U);
}

struct BytesRow {
  char const* text;
  U64 seed0;
  U64 seed42;
  friend void PrintTo(BytesRow const& row, std::ostream* os) { *os << '"' << row.text << '"'; }
};
class HashOfBytes : public testing::TestWithParam<BytesRow> {};
INSTANTIATE_TEST_SUITE_P(Texts, HashOfBytes,
                         testing::Values(BytesRow{"", 0x4c0f471c61fecfbc, 0x99904c7be1fa00ee},
                                         BytesRow{"a", 0x44b220df41313797, 0x1b9909a4703d3ee3},
                                         BytesRow{"Ethernet1", 0xc8b95b2469b44e56, 0xa7915c86758d7f2f},
                                         BytesRow{"01234567", 0x517bc81e2b6cfce2, 0x02f186794f348bea},
                                         BytesRow{"0123456789abcdef", 0x8d747e41916c6d61, 0xf6e7f8aa28bdf52c},
                                         BytesRow{"example.com", 0x15a01e6f14b72803, 0x8f3017a903768bb0}));

TEST_P(HashOfBytes, NeverChanges) {
  std::string_view const text = GetParam().text;
  EXPECT_EQ(hashBytes(text.data(), text.size(), 0), GetParam().seed0);
  EXPECT_EQ(hashOf(text, 0), GetParam().seed0);
  EXPECT_EQ(hashOf(Fwk::String(text), 42), GetParam().seed42);
}

TEST(Hash, OfNamesAndAddressesNeverChanges) {
  EXPECT_EQ(hashOf(Net::IntfId(), 7), 0x2b70f6a425834ea5U);
  EXPECT_EQ(hashOf(Net::IntfId("Ethernet1"), 7), 0xa13cb5eac01805b9U);
  EXPECT_EQ(hashOf(Fwk::Name("Ethernet1"), 7), 0x46baf5acdb384b0eU);
  EXPECT_EQ(hashOf(Net::Ip6Addr("2001:db8::1"), 7), 0xcf26c08c43aaa65dU);
  EXPECT_EQ(hashOf(Net::Ip6AddrWithMask("2001:db8::1/64"), 7), 0xb5f70c279f31903cU);
}

TEST(Hash, DoesNotDependOnWhereTheOctetsStand) {
  std::string const text = "0123456789abcdefghi";
  for (std::size_t offset = 0; offset < 8; ++offset) {
    std::string const shifted = std::string(offset, 'x') + text;
    EXPECT_EQ(hashBytes(shifted.data() + offset, text.size(), 3), hashBytes(text.data(), text.size(), 3));
  }
}

TEST(Hash, TellsTextsApartThatDifferInLengthOnly) {
  std::array<U8, 64> const zeros{};
  std::set<U64> hashes;
  for (std::size_t size = 0; size <= zeros.size(); ++size) hashes.insert(hashBytes(zeros.data(), size, 9));
  EXPECT_EQ(hashes.size(), zeros.size() + 1);
}

TEST(Hash, SpreadsKeysThatDifferInOneBitOverTheLowBits) {
  // 4,096 keys into 4,096 places fill 63 per cent of them when they fall at random.
  std::set<U64> places;
  for (U32 i = 0; i < 4096; ++i) places.insert(hashOf(i << 12, 1) % 4096);
  EXPECT_GT(places.size(), 4096 * 60 / 100);
}

TEST(Hash, TheSeedOfTheProcessStays) {
  U64 const seed = Fwk::processHashSeed();
  EXPECT_EQ(Fwk::processHashSeed(), seed);
}

template <class T>
concept Hashable = requires(T const& key) {
  hashOf(key, U64{});
};
struct MayThrow {
  U64 hash(U64 seed) const { return seed; }
};
struct Safe {
  U64 hash(U64 seed) const noexcept { return seed; }
};

// A table cannot go on when a key has no hash, so what fails inside one has to stop the process: `noexcept` says so.
TEST(Hash, OfAKeyIsOnlyTakenFromAnOperationThatCannotThrow) {
  EXPECT_TRUE(Hashable<Safe>);
  EXPECT_FALSE(Hashable<MayThrow>);
}

}  // namespace
