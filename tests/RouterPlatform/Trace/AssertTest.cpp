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

TEST(AssertDeathTest, NamesItsOwnPlace) {
  int const line = __LINE__ + 1;
  EXPECT_DEATH(ASSERT_AT(line < 0, Trace::Location::here()),
               "AssertTest.cpp:" + std::to_string(line) + ": TestBody: assertion \"line < 0\" failed\n$");
}

TEST(Assert, EvaluatesTheConditionOnceAndGoesOnWhenItHolds) {
  int evaluated = 0;
  ASSERT_AT(++evaluated == 1, Trace::Location{"s", 1, "f"});
  ASSERT_AT_TEXT(++evaluated == 2, Trace::Location{"s", 1, "f"}, "text");
  EXPECT_EQ(evaluated, 2);
}

}  // namespace
