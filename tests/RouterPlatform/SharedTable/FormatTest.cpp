#include <RouterPlatform/Net/IntfId.h>
#include <RouterPlatform/Net/Ip6Addr.h>
#include <RouterPlatform/SharedTable/Format.h>
#include <RouterPlatform/SharedTable/RowType.h>

#include <gmock/gmock.h>

namespace {

using namespace SharedTable;

TEST(SharedTableFormat, ABucketWordGivesBackWhatItWasMadeOf) {
  BucketWord const word = BucketWord::of(0x123456, 0xab, 0x789abc);
  EXPECT_EQ(word.slot(), 0x123456u);
  EXPECT_EQ(word.tag(), 0xabu);
  EXPECT_EQ(word.generation(), 0x789abcu);
  EXPECT_EQ(word.bits & 0x00ffffffffffffff, 0x00789abcab123456u);
  EXPECT_TRUE(word.isIntact());
  EXPECT_FALSE(word.empty());
  EXPECT_FALSE(word.tombstone());
}

TEST(SharedTableFormat, ZeroesAreAnIntactEmptyBucket) {
  EXPECT_TRUE(BucketWord{}.empty());
  EXPECT_TRUE(BucketWord{}.isIntact());
}

TEST(SharedTableFormat, TheNextWordOfABucketHasTheNextGenerationAndWraps) {
  BucketWord const word = BucketWord::of(5, 1, 0xffffff);
  EXPECT_EQ(word.next(7, 2).bits, BucketWord::of(7, 2, 0).bits);
  EXPECT_TRUE(word.next(0, 0).empty());
  EXPECT_TRUE(word.next(BucketWord::tombstoneSlot, 0).tombstone());
}

TEST(SharedTableFormat, EveryDamagedOctetOfASealedWordShows) {
  U64 const words[] = {0, BucketWord::of(1, 0, 1).bits, BucketWord::of(0xffffff, 0xff, 0xffffff).bits,
                       ActiveWord::of(0x123456789, 21).bits};
  for (U64 const word : words)
    for (unsigned octet = 0; octet < 8; ++octet)
      for (U64 change = 1; change < 256; ++change) ASSERT_FALSE(intact(word ^ change << 8 * octet)) << word;
}

TEST(SharedTableFormat, AnActiveWordGivesBackWhatItWasMadeOf) {
  ActiveWord const word = ActiveWord::of(0x123456789abd, 21);
  EXPECT_EQ(word.epoch(), 0x123456789abdu);
  EXPECT_EQ(word.indexBits(), 21u);
  EXPECT_EQ(word.half(), 1u);
  EXPECT_TRUE(intact(word.bits));
}

TEST(SharedTableFormat, EveryDamagedBitOfACheckedNumberShows) {
  for (U32 const value : {0u, 1u, 4096u, 0xffffffffu}) {
    CheckedNumber const number = CheckedNumber::of(value);
    EXPECT_EQ(number.value(), value);
    EXPECT_TRUE(number.isIntact());
    for (unsigned bit = 0; bit < 64; ++bit) EXPECT_FALSE(CheckedNumber{number.bits ^ U64{1} << bit}.isIntact());
  }
}

TEST(SharedTableFormat, TheCrcIsTheOneOfIeee802) { EXPECT_EQ(crc32("123456789", 9), 0xcbf43926u); }

TEST(SharedTableFormat, TheDefaultTableStandsAtThesePlaces) {
  Capacity const capacity;
  Geometry const g = Geometry::of(72, 48, capacity.maxRows, Geometry::indexBitsFor(capacity.initialRows));
  EXPECT_EQ(g.minIndexBits, 13u);
  EXPECT_EQ(g.maxIndexBits, 21u);
  EXPECT_EQ(g.indexOffset[0], 2u << 20);
  EXPECT_EQ(g.indexOffset[1], 18u << 20);
  EXPECT_EQ(g.slotsOffset, 34u << 20);
  EXPECT_EQ(g.slotSize(), 80u);
  EXPECT_EQ(g.slotOffset(1), g.slotsOffset);
  EXPECT_EQ(g.slotOffset(3), g.slotsOffset + 160);
  EXPECT_EQ(g.bucketOffset(1, 2), g.indexOffset[1] + 16);
  EXPECT_EQ(g.fileSize, 119541760u);
}

TEST(SharedTableFormat, ASmallTableStandsRightBehindItsHeader) {
  Geometry const g = Geometry::of(72, 48, 1024, 4);
  EXPECT_EQ(g.indexOffset[0], 4096u);
  EXPECT_EQ(g.indexOffset[1], 4096u + 16384u);
  EXPECT_EQ(g.slotsOffset, 4096u + 32768u);
}

TEST(SharedTableFormat, AnIndexHasAtLeastTwiceAsManyBucketsAsRows) {
  for (U32 const rows : {1u, 4u, 5u, 1000u, 1024u, 1025u, 1048576u, Capacity::largestMaxRows})
    EXPECT_GE(U64{1} << Geometry::indexBitsFor(rows), U64{2} * rows) << rows;
}

TEST(SharedTableFormat, AnIndexOfTwiceTheSizeKeepsTheOrderOfTheHomes) {
  for (U64 const hash : {U64{0x0123456789abcdef}, U64{0xfedcba9876543210}, U64{0}, ~U64{0}})
    EXPECT_EQ(homeBucket(hash, 14) >> 1, homeBucket(hash, 13));
}

/// Computed from the words of the format's page by another program.
TEST(SharedTableFormat, AHashIsPlacedByTheSecretOfTheFile) {
  constexpr HashSecret secret{{0x8796a5b4c3d2e1f0, 0x0f1e2d3c4b5a6978}, {0x8899aabbccddeeff, 0x0011223344556677}};
  EXPECT_EQ(secret.place(0), 0x0011223344556677u);
  EXPECT_EQ(secret.place(1), 0x0f2f4f6f8fafcff0u);
  EXPECT_EQ(secret.place(~U64{0}), 0x78899aabbccddeefu);
  EXPECT_EQ(secret.place(0x18d4b0264a9dcf8f), 0x00b76e24db9248ffu);
  EXPECT_EQ(secret.place(0xba2f4ea9849bd658), 0x211406f9ecdfd2c4u);
}

U64 checkOf(std::array<U64, 9> const& words, U64 seed = 1, U32 slot = 1) {
  RowCheck check(seed, slot);
  for (U64 const word : words) check.add(word);
  return check.result();
}

TEST(SharedTableFormat, TheCheckWordShowsEveryDamagedOctet) {
  std::array<U64, 9> words{};
  for (std::size_t i = 0; i < words.size(); ++i) words[i] = i * 0x0102030405060708;
  U64 const whole = checkOf(words);
  for (U64& word : words)
    for (unsigned octet = 0; octet < 8; ++octet)
      for (U64 change = 1; change < 256; ++change) {
        word ^= change << 8 * octet;
        ASSERT_NE(checkOf(words), whole);
        word ^= change << 8 * octet;
      }
}

TEST(SharedTableFormat, TheCheckWordIsOfOneFileAndOneSlotAndOneOrder) {
  std::array<U64, 9> const words{1, 2, 3, 4, 5, 6, 7, 8, 9};
  EXPECT_NE(checkOf(words, 1, 1), checkOf(words, 2, 1));
  EXPECT_NE(checkOf(words, 1, 1), checkOf(words, 1, 2));
  EXPECT_NE(checkOf({1, 2}), checkOf({2, 1}));
}

constexpr std::array twoFields{field<U64>("a"), field<U32>("b"), field<U32>("c")};

TEST(SharedTableLayout, TheHashTellsFromNamesSizesOrderAndKey) {
  U64 const hash = layoutHashOf(twoFields, 16, 8);
  EXPECT_NE(hash, layoutHashOf(std::array{field<U64>("a"), field<U32>("b"), field<U32>("d")}, 16, 8));
  EXPECT_NE(hash, layoutHashOf(std::array{field<U64>("a"), field<U32>("c"), field<U32>("b")}, 16, 8));
  EXPECT_NE(hash, layoutHashOf(std::array{field<U32>("a"), field<U64>("b"), field<U32>("c")}, 16, 8));
  EXPECT_NE(hash, layoutHashOf(twoFields, 24, 8));
  EXPECT_NE(hash, layoutHashOf(twoFields, 16, 16));
}

template <class A, class B>
bool tellsApart() {
  static_assert(sizeof(A) == sizeof(B));
  return layoutHashOf(std::array{field<A>("a")}, sizeof(A), 8) != layoutHashOf(std::array{field<B>("a")}, sizeof(B), 8);
}

TEST(SharedTableLayout, TheHashTellsFieldsOfOneSizeApartByWhatTheyAre) {
  enum class Unsigned : U64 {};
  EXPECT_TRUE((tellsApart<U64, double>()));
  EXPECT_TRUE((tellsApart<U64, Fwk::S64>()));
  EXPECT_TRUE((tellsApart<U64, std::array<U32, 2>>()));
  EXPECT_TRUE((tellsApart<std::array<U8, 32>, Net::IntfId>()));
  EXPECT_TRUE((tellsApart<std::array<U64, 2>, Net::Ip6Addr>()));
  EXPECT_FALSE((tellsApart<U64, Unsigned>()));
  EXPECT_FALSE((tellsApart<U64, std::array<std::array<U64, 1>, 1>>()));
}

/// Computed from the words of the format's page by another program.
TEST(SharedTableLayout, TheHashIsTheSameInEveryBinary) {
  EXPECT_EQ(layoutHashOf(twoFields, 16, 8), 0x476274747f14555eu);
}

TEST(SharedTableLayout, TheKeyIsMadeOfTheFirstFields) {
  EXPECT_TRUE(fieldsBeginWithKey(twoFields, 8));
  EXPECT_TRUE(fieldsBeginWithKey(twoFields, 12));
  EXPECT_FALSE(fieldsBeginWithKey(twoFields, 4));
  EXPECT_FALSE(fieldsBeginWithKey(twoFields, 24));
}

struct RowWithLateKey {
  U64 time = 0;
  U64 key_ = 0;
  U64 const& key() const { return key_; }
  bool operator==(RowWithLateKey const&) const = default;
  static constexpr std::array tableFields{field<U64>("time"), field<U64>("key")};
};

TEST(SharedTableLayoutDeathTest, ARowWhoseKeyDoesNotStandFirstFailsAnAssertion) {
  EXPECT_DEATH(rowTypeOf<RowWithLateKey>(),
               "RowType.h:[0-9]+: rowTypeOf.*: assertion \"keyStandsFirst<R>\\(\\)\" failed");
}

TEST(SharedTableLayout, PaddingBetweenOrBehindFieldsIsNoticed) {
  EXPECT_TRUE(fieldsFillRow(twoFields, 16));
  EXPECT_FALSE(fieldsFillRow(std::array{field<U32>("a"), field<U64>("b")}, 16));
  EXPECT_FALSE(fieldsFillRow(std::array{field<U64>("a"), field<U32>("b")}, 16));
  EXPECT_FALSE(fieldsFillRow(std::array{field<U64>("a")}, 16));
}

}  // namespace
