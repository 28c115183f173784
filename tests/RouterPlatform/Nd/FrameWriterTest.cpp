#include <RouterPlatform/Nd/FrameWriter.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace Net {
namespace {

using testing::Each;
using testing::ElementsAre;

using Word = std::array<U8, 4>;

struct FrameWriterTest : testing::Test {
  std::vector<U8> buffer = std::vector<U8>(12, 0xee);  // 8 octets of frame and 4 of slack
  FrameWriter out{buffer, 2, 8};
};

TEST_F(FrameWriterTest, GoesOnAtItsOffset) {
  EXPECT_EQ(out.offset(), 2U);
  EXPECT_EQ(out.frameLimit(), 8U);
  EXPECT_EQ(out.room(), 6U);
}

TEST_F(FrameWriterTest, GivesTheNextOctetsAsTheyAre) {
  Word* const word = out.append<Word>();
  ASSERT_NE(word, nullptr);
  EXPECT_EQ(word->data(), buffer.data() + 2);
  EXPECT_THAT(*word, Each(0xee));
  EXPECT_EQ(out.offset(), 6U);
}

TEST_F(FrameWriterTest, GivesNoHeaderThatPassesTheFrameLimit) {
  ASSERT_TRUE(out.append<Word>());
  EXPECT_EQ(out.append<Word>(), nullptr);
  EXPECT_EQ(out.offset(), 6U);
}

TEST_F(FrameWriterTest, TakesWhatFillsTheFrameExactly) {
  EXPECT_TRUE(out.fits(6));
  EXPECT_FALSE(out.fits(7));
  EXPECT_TRUE(out.append(std::string_view("abcdef")));
  EXPECT_EQ(out.room(), 0U);
  EXPECT_THAT(buffer, ElementsAre(0xee, 0xee, 'a', 'b', 'c', 'd', 'e', 'f', 0xee, 0xee, 0xee, 0xee));
}

TEST_F(FrameWriterTest, WritesNothingOfATextThatPassesTheFrameLimit) {
  EXPECT_FALSE(out.append(std::string_view("abcdefg")));
  EXPECT_EQ(out.offset(), 2U);
  EXPECT_THAT(buffer, Each(0xee));
}

TEST_F(FrameWriterTest, WritesOctets) {
  EXPECT_TRUE(out.append(Word{1, 2, 3, 4}));
  EXPECT_THAT(buffer, ElementsAre(0xee, 0xee, 1, 2, 3, 4, 0xee, 0xee, 0xee, 0xee, 0xee, 0xee));
}

TEST_F(FrameWriterTest, TakesNoOctetsWhereThereIsNoRoom) {
  ASSERT_TRUE(out.append(std::string_view("abcdef")));
  EXPECT_TRUE(out.append(std::span<U8 const>()));
  EXPECT_EQ(out.offset(), 8U);
}

TEST_F(FrameWriterTest, ZerosMayPassTheFrameLimit) {
  ASSERT_TRUE(out.append(std::string_view("abcde")));
  EXPECT_TRUE(out.appendZeros(5));
  EXPECT_EQ(out.offset(), 12U);
  EXPECT_EQ(out.room(), 0U);
  EXPECT_THAT(buffer, ElementsAre(0xee, 0xee, 'a', 'b', 'c', 'd', 'e', 0, 0, 0, 0, 0));
}

TEST_F(FrameWriterTest, ZerosKeepToTheHardLimit) {
  EXPECT_FALSE(out.appendZeros(11));
  EXPECT_EQ(out.offset(), 2U);
  EXPECT_THAT(buffer, Each(0xee));
}

TEST_F(FrameWriterTest, HasNoRoomBehindTheFrameLimit) {
  ASSERT_TRUE(out.appendZeros(8));
  EXPECT_EQ(out.room(), 0U);
  EXPECT_FALSE(out.fits(0));
  EXPECT_EQ(out.append<Word>(), nullptr);
}

TEST_F(FrameWriterTest, GivesWhatIsWrittenToBeFilledIn) {
  ASSERT_TRUE(out.append(std::string_view("abcd")));
  std::span<U8> const written = out.written(3);
  EXPECT_THAT(written, ElementsAre('b', 'c', 'd'));
  written[0] = 'x';
  EXPECT_EQ(buffer[3], 'x');
}

}  // namespace
}  // namespace Net
