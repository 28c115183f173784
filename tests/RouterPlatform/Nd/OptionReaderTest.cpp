#include <RouterPlatform/Nd/OptionReader.h>
#include <tests/RouterPlatform/Nd/RaMessage.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace RouterAdvt {
namespace {

using Net::OptionReader;
using Net::U16;
using Net::U32;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<U16> offsetsOf(Octets const& message) {
  std::vector<U16> result;
  for (OptionReader reader(message); reader.next();) result.push_back(reader.offset());
  return result;
}

U32 stepsOver(Octets const& message) {
  OptionReader reader(message);
  while (reader.next()) continue;
  return reader.count();
}

TEST(OptionReader, FindsNoOptionInAHeaderAlone) { EXPECT_THAT(offsetsOf(raHeader), IsEmpty()); }

TEST(OptionReader, FindsNoOptionInLessThanAHeader) {
  for (std::size_t size = 0; size < raHeader.size(); ++size) EXPECT_THAT(offsetsOf(Octets(size, 1)), IsEmpty()) << size;
}

TEST(OptionReader, GoesFromOptionToOptionByTheirLengths) {
  EXPECT_THAT(offsetsOf(raHeader + mtuOption(1) + prefixOption() + otherOption(25, 3) + mtuOption(2)),
              ElementsAre(16, 24, 56, 80));
}

TEST(OptionReader, GivesTypeAndLength) {
  Octets const message = raHeader + otherOption(25, 3);
  OptionReader reader(message);
  ASSERT_TRUE(reader.next());
  EXPECT_EQ(reader.type(), 25);
  EXPECT_EQ(reader.length(), 3);
  EXPECT_FALSE(reader.next());
}

TEST(OptionReader, PassesOverASingleOctetAtTheEnd) {
  EXPECT_THAT(offsetsOf(raHeader + mtuOption(1) + Octets{3}), ElementsAre(16));
}

TEST(OptionReader, ComesToAnOptionOfTwoOctets) {
  EXPECT_THAT(offsetsOf(raHeader + mtuOption(1) + Octets{3, 4}), ElementsAre(16, 24));
}

TEST(OptionReader, SaysWhetherAllOfAnOptionIsThere) {
  Octets const whole = raHeader + prefixOption();
  for (std::size_t size = raHeader.size() + 2; size <= whole.size(); ++size) {
    Octets const cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    OptionReader reader(cut);
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.size(), 32U);
    EXPECT_EQ(reader.complete(), size == whole.size()) << size;
  }
}

TEST(OptionReader, AnOptionOfLengthZeroIsNotComplete) {
  Octets const message = raHeader + otherOption(1, 0);
  OptionReader reader(message);
  ASSERT_TRUE(reader.next());
  EXPECT_FALSE(reader.complete());
}

TEST(OptionReader, StaysAtAnOptionOfLengthZeroAndEndsAllTheSame) {
  EXPECT_EQ(stepsOver(raHeader + otherOption(1, 0)), OptionReader::optionsMax);
}

TEST(OptionReader, WrapsItsOffsetAt16Bits) {
  // The last option but the wrap begins at 65528 and has 32 octets: 65560 becomes 24.
  Octets message = raHeader + otherOption(1, 1) + times(8'187, otherOption(1, 1)) + otherOption(2, 1) + prefixOption();
  ASSERT_EQ(message.size() % 65536, 24U);
  message[65528 + 1] = 4;
  OptionReader reader(message);
  U16 offset = 0;
  while (reader.next() && reader.offset() >= offset) offset = reader.offset();
  EXPECT_EQ(offset, 65528);
  EXPECT_EQ(reader.offset(), 24);
}

TEST(OptionReader, EndsAWalkThatRepeatsItself) {
  Octets message = raHeader + times(9'000, otherOption(1, 1));
  message[65528 + 1] = 4;
  EXPECT_EQ(stepsOver(message), OptionReader::optionsMax);
}

TEST(OptionReader, EndsInAMessageOf16MiB) {
  Octets const message = raHeader + Octets((1U << 24) - 16, 1);
  EXPECT_EQ(stepsOver(message), OptionReader::optionsMax);
}

// Time is steps, and a step takes the same time wherever it is.
TEST(OptionReader, TakesAsManyStepsAsThereAreOptions) {
  for (std::size_t const count : {1U, 10U, 100U, 1'000U, 2'000U, 4'000U, 8'000U})
    EXPECT_EQ(stepsOver(raHeader + times(count, mtuOption(1400))), count);
  for (std::size_t const count : {500U, 1'000U, 2'000U})
    EXPECT_EQ(stepsOver(raHeader + times(count, prefixOption())), count);
}

TEST(OptionReader, TakesAStepForEachOptionOf64KiB) {
  EXPECT_EQ(stepsOver(raHeader + times(8'189, mtuOption(1400))), 8'189U);
}

// 128,000 octets: the offset wraps, and the walk ends where it would only repeat itself.
TEST(OptionReader, TakesBoundedStepsOver4000EqualPrefixes) {
  EXPECT_EQ(stepsOver(raHeader + times(4'000, prefixOption())), OptionReader::optionsMax);
}

}  // namespace
}  // namespace RouterAdvt
