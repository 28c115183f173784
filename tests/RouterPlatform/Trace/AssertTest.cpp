#include <RouterPlatform/Packet/PktManager.h>
#include <RouterPlatform/Trace/Assert.h>

#include <gtest/gtest.h>

namespace {

TEST(AssertDeathTest, PrintsSourceLineFunctionAndTheConditionAsWritten) {
  int const size = 3;
  EXPECT_DEATH(ASSERT_AT(size == 4 && size > 0, Trace::Location{"Some/Source", 42, "someFunction"}),
               "^Some/Source:42: someFunction: assertion \"size == 4 && size > 0\" failed\n$");
}

TEST(AssertDeathTest, PrintsATextOfItsOwn) {
  bool const holds = false;
  EXPECT_DEATH(ASSERT_AT_TEXT(holds, Trace::Location{"Some/Source", 7, "f"}, "p->x( y )->z()"),
               "^Some/Source:7: f: assertion \"p->x\\( y \\)->z\\(\\)\" failed\n$");
}

// On one line of its own: of a macro's arguments that span lines, compilers differ in which line they report.
constexpr int assertingLine = __LINE__ + 1;
void assertNegative(int value) { ASSERT_AT(value < 0, Trace::Location::here()); }

TEST(AssertDeathTest, NamesItsOwnPlaceFromTheRootOfTheTree) {
  EXPECT_DEATH(assertNegative(1), "^tests/RouterPlatform/Trace/AssertTest.cpp:" + std::to_string(assertingLine) +
                                      ": assertNegative: assertion \"value < 0\" failed\n$");
}

TEST(AssertDeathTest, NamesAPlaceInsideTheLibraryFromTheRootOfTheTree) {
  auto const pkt = Net::globalPktManager().newPkt();
  EXPECT_DEATH(pkt->trimTailData(1), "^RouterPlatform/Packet/Pkt.cpp:[0-9]+: ");
}

TEST(Assert, EvaluatesTheConditionOnceAndGoesOnWhenItHolds) {
  int evaluated = 0;
  ASSERT_AT(++evaluated == 1, Trace::Location{"s", 1, "f"});
  ASSERT_AT_TEXT(++evaluated == 2, Trace::Location{"s", 1, "f"}, "text");
  EXPECT_EQ(evaluated, 2);
}

}  // namespace
