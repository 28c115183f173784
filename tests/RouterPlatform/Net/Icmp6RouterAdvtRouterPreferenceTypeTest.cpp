#include <RouterPlatform/Base/Text.h>
#include <RouterPlatform/Net/Icmp6RouterAdvtRouterPreferenceType.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using Preference = Net::Icmp6RouterAdvtRouterPreferenceType;

struct Row {
  char const* name;
  Preference value;
  int code;
  friend void PrintTo(Row const& r, std::ostream* os) { *os << r.name; }
};
Row const rows[] = {
    {"medium", Preference::medium, 0},
    {"high", Preference::high, 1},
    {"reserved_", Preference::reserved_, 2},
    {"low", Preference::low, 3},
};
class RouterPreference : public testing::TestWithParam<Row> {};
TEST_P(RouterPreference, HasItsCodeAndItsName) {
  EXPECT_EQ(static_cast<int>(GetParam().value), GetParam().code);
  std::string out;
  Trace::appendTexts(out, GetParam().value);
  EXPECT_EQ(out, GetParam().name);
}
TEST_P(RouterPreference, IsReadFromNameAndNumber) {
  auto value = Preference{77};
  EXPECT_TRUE(parseText(GetParam().name, value));
  EXPECT_EQ(value, GetParam().value);
  value = Preference{77};
  EXPECT_TRUE(parseText(std::to_string(GetParam().code), value));
  EXPECT_EQ(value, GetParam().value);
}
INSTANTIATE_TEST_SUITE_P(All, RouterPreference, testing::ValuesIn(rows),
                         [](auto const& row) { return row.param.name; });

TEST(RouterPreferenceText, HasTheNameOfItsType) {
  EXPECT_STREQ(textTypeNameOf(Preference::high), "Icmp6RouterAdvtRouterPreferenceType");
}

TEST(RouterPreferenceText, AnotherValueIsPrintedAsItsNumber) {
  std::string out;
  appendText(out, Preference{200});
  EXPECT_EQ(out, "200");
}

TEST(RouterPreferenceText, RejectsEveryOtherText) {
  auto value = Preference::low;
  for (std::string_view const text : {"", "4", "00", "-1", "Medium", "reserved", "high ", " 1"}) {
    EXPECT_FALSE(parseText(text, value)) << text;
    EXPECT_EQ(value, Preference::low);
  }
}

}  // namespace
