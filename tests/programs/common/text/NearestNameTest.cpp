#include <gtest/gtest.h>

#include <programs/common/text/NearestName.h>

namespace Tool {

namespace {

TEST(NearestName, IsTheOneWithTheFewestChanges) {
  EXPECT_EQ(nearestName("raLifetme", {"hopLimit", "raLifetime", "raSuppress"}), "raLifetime");
}

TEST(NearestName, ASwapOfNeighboursIsOneChange) {
  EXPECT_EQ(nearestName("abdc", {"abxx", "abcd"}), "abcd");
  EXPECT_EQ(nearestNameHint("ba", {"ab"}), "; did you mean ab?");
}

TEST(NearestName, TheOtherCaseIsNearerThanAnotherLetter) { EXPECT_EQ(nearestName("mtU", {"mtx", "mtu"}), "mtu"); }

TEST(NearestName, OfEqualsTheFirst) { EXPECT_EQ(nearestName("ac", {"ab", "ad"}), "ab"); }

TEST(NearestName, NoneAmongNone) {
  EXPECT_EQ(nearestName("a", {}), "");
  EXPECT_EQ(nearestNameHint("a", {}), "");
}

TEST(NearestName, AFarOneIsNoSuggestion) {
  EXPECT_EQ(nearestNameHint("zzzzz", {"mtu"}), "; the nearest valid name is mtu");
}

TEST(NearestName, AHugeNameIsNoWork) { EXPECT_EQ(nearestName(std::string(10'000'000, 'm'), {"mac", "mmm"}), "mmm"); }

}  // namespace

}  // namespace Tool
