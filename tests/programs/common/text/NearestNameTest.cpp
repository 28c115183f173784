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

struct HintRow {
  char const* name;
  std::vector<std::string_view> candidates;
  char const* hint;
};
TEST(NearestNameHint, SuggestsANameOnlyWhenItIsNear) {
  HintRow const rows[] = {
      {"raLifetme", {"hopLimit", "raLifetime"}, "; did you mean raLifetime?"},
      {"Ethernet9", {"Ethernet1", "Ethernet2"}, "; did you mean Ethernet1?"},
      {"MTU", {"mac", "mtu"}, "; valid names: mac, mtu"},
      {"mtuu", {"mac", "mtu"}, "; did you mean mtu?"},
      {"bogus", {"build", "send"}, "; valid names: build, send"},
      {"a", {"config", "links"}, "; valid names: config, links"},
      {"nodev", {"lo", "eth0"}, "; valid names: lo, eth0"},
      {"", {"lo", "eth0"}, "; valid names: lo, eth0"},
      {"zzzzz", {"mtu"}, "; the only valid name is mtu"},
  };
  for (HintRow const& row : rows) EXPECT_EQ(nearestNameHint(row.name, row.candidates), row.hint) << row.name;
}

TEST(NearestNameHint, DoesNotListManyNames) {
  EXPECT_EQ(nearestNameHint("zzzzz", std::vector<std::string_view>(10, "mtu")).substr(0, 21), "; valid names: mtu, m");
  EXPECT_EQ(nearestNameHint("zzzzz", std::vector<std::string_view>(11, "mtu")), "");
}

TEST(NearestName, AHugeNameIsNoWork) { EXPECT_EQ(nearestName(std::string(10'000'000, 'm'), {"mac", "mmm"}), "mmm"); }

}  // namespace

}  // namespace Tool
