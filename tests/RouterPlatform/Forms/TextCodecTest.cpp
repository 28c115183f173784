#include <RouterPlatform/Base/Name.h>
#include <RouterPlatform/Forms/TextCodec.h>
#include <RouterPlatform/Net/Ip6AddrWithMask.h>
#include <tests/RouterPlatform/Fwk/TestModel.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Fwk::String;
using Fwk::TextCodec;
using Fwk::TextStatus;
using Fwk::U16;
using Fwk::U32;
using Fwk::U64;
using Fwk::U8;
using Fwk::ValueKind;

template <class T>
std::string print(T const& value) {
  std::string out = "=";
  TextCodec<T>::append(out, value);
  return out;
}

/// Reads into a value that is not the default, to see whether it is left alone.
template <class T>
TextStatus parse(std::string_view text, T& value) {
  return TextCodec<T>::parse(text, value);
}

TEST(TextCodecBool, PrintsAndReadsTrueAndFalse) {
  bool value = false;
  EXPECT_EQ(parse("true", value), TextStatus::ok);
  EXPECT_TRUE(value);
  EXPECT_EQ(print(value), "=true");
  EXPECT_EQ(parse("false", value), TextStatus::ok);
  EXPECT_FALSE(value);
  EXPECT_EQ(print(value), "=false");
}

TEST(TextCodecBool, ReadsNothingElse) {
  for (char const* const text : {"", "True", "TRUE", "1", "0", "yes", "true ", " true", "truee"}) {
    bool value = true;
    EXPECT_EQ(parse(text, value), TextStatus::malformed) << text;
    EXPECT_TRUE(value);
  }
}

template <class T>
class TextCodecInteger : public testing::Test {};
using Integers = testing::Types<U8, U16, U32, U64>;
TYPED_TEST_SUITE(TextCodecInteger, Integers);

TYPED_TEST(TextCodecInteger, PrintsAndReadsItsWholeRange) {
  for (TypeParam const number : {TypeParam{0}, TypeParam{7}, std::numeric_limits<TypeParam>::max()}) {
    TypeParam value = 1;
    EXPECT_EQ(parse(print(number).substr(1), value), TextStatus::ok);
    EXPECT_EQ(value, number);
  }
}

TYPED_TEST(TextCodecInteger, RefusesOneAboveItsRange) {
  TypeParam value = 7;
  std::string text = print(std::numeric_limits<TypeParam>::max()).substr(1);
  ++text.back();  // none of them ends in 9
  EXPECT_EQ(parse(text, value), TextStatus::outOfRange);
  EXPECT_EQ(parse("99999999999999999999999", value), TextStatus::outOfRange);
  EXPECT_EQ(value, 7);
}

TYPED_TEST(TextCodecInteger, ReadsDecimalDigitsOnly) {
  for (char const* const text :
       {"", " ", "-1", "+1", " 1", "1 ", "0x10", "1.0", "1e3", "one", "1,000", "99999999999999999999999x"}) {
    TypeParam value = 7;
    EXPECT_EQ(parse(text, value), TextStatus::malformed) << text;
    EXPECT_EQ(value, 7);
  }
}

TEST(TextCodecInteger, IsNamedByItsWidth) {
  EXPECT_STREQ(TextCodec<U8>::typeName, "U8");
  EXPECT_STREQ(TextCodec<U16>::typeName, "U16");
  EXPECT_STREQ(TextCodec<U32>::typeName, "U32");
  EXPECT_STREQ(TextCodec<U64>::typeName, "U64");
}

TEST(TextCodecDouble, ReadsBackWhatItPrints) {
  for (double const number : {0.0, -0.0, 12.5, 0.1, 1e300, 5e-324, std::numeric_limits<double>::max(),
                              std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()}) {
    double value = 7;
    EXPECT_EQ(parse(print(number).substr(1), value), TextStatus::ok) << number;
    EXPECT_EQ(value, number);
    EXPECT_EQ(std::signbit(value), std::signbit(number));
  }
  double value = 7;
  EXPECT_EQ(parse(print(std::nan("")).substr(1), value), TextStatus::ok);
  EXPECT_TRUE(std::isnan(value));
}

TEST(TextCodecDouble, RefusesWhatIsNoNumberAndWhatIsTooLarge) {
  double value = 7;
  for (char const* const text : {"", "x", "1x", " 1", "1 ", "0x1p3", "1,5", "--1"})
    EXPECT_EQ(parse(text, value), TextStatus::malformed) << text;
  EXPECT_EQ(parse("1e999", value), TextStatus::outOfRange);
  EXPECT_EQ(value, 7);
}

TEST(TextCodecString, TakesEveryTextAsItIs) {
  for (std::string const& text : {std::string(), std::string("a b"), std::string("'\n\0", 3)}) {
    String value("former");
    EXPECT_EQ(parse(text, value), TextStatus::ok);
    EXPECT_EQ(value, text);
    EXPECT_EQ(print(value), "=" + text);
  }
}

TEST(TextCodecEnum, UsesTheTextsThatTheEnumBrings) {
  using TestModel::Colour;
  Colour value = Colour::red;
  EXPECT_EQ(parse("green", value), TextStatus::ok);
  EXPECT_EQ(value, Colour::green);
  EXPECT_EQ(print(value), "=green");
  EXPECT_EQ(parse("blue", value), TextStatus::malformed);
  EXPECT_EQ(value, Colour::green);
  EXPECT_STREQ(TextCodec<Colour>::typeName, "TestModel::Colour");
}

TEST(TextCodecOfAType, UsesItsOwnTextAndReading) {
  Net::Ip6AddrWithMask value("::1/128");
  EXPECT_EQ(parse("2001:db8::/64", value), TextStatus::ok);
  EXPECT_EQ(print(value), "=2001:db8::/64");
  EXPECT_EQ(parse("2001:db8::/129", value), TextStatus::malformed);
  EXPECT_EQ(parse("2001:db8::", value), TextStatus::malformed);
  EXPECT_EQ(value, Net::Ip6AddrWithMask("2001:db8::/64"));

  EXPECT_EQ(TextCodec<Net::Ip6AddrWithMask>::parsePrinted("2001:db8::/256", value), TextStatus::malformed);
  EXPECT_EQ(value, Net::Ip6AddrWithMask("2001:db8::/64"));
  EXPECT_EQ(TextCodec<Net::Ip6AddrWithMask>::parsePrinted("2001:db8::/129", value), TextStatus::ok);
  EXPECT_EQ(print(value), "=2001:db8::/129");

  Fwk::Name name("former");
  EXPECT_EQ(parse(std::string(64, 'x'), name), TextStatus::malformed);
  EXPECT_EQ(name, "former");
  EXPECT_STREQ(TextCodec<Fwk::Name>::typeName, "Name");
}

TEST(TextCodec, KnowsTheKindOfValue) {
  EXPECT_EQ(TextCodec<bool>::kind, ValueKind::boolean);
  EXPECT_EQ(TextCodec<U8>::kind, ValueKind::integer);
  EXPECT_EQ(TextCodec<double>::kind, ValueKind::floating);
  EXPECT_EQ(TextCodec<String>::kind, ValueKind::text);
  EXPECT_EQ(TextCodec<TestModel::Colour>::kind, ValueKind::text);
  EXPECT_EQ(TextCodec<Fwk::Name>::kind, ValueKind::text);
}

}  // namespace
