#include <RouterPlatform/Base/BoundedText.h>
#include <RouterPlatform/Base/Name.h>
#include <RouterPlatform/Base/Text.h>
#include <RouterPlatform/Net/IntfId.h>
#include <RouterPlatform/Net/VrfName.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <memory>
#include <new>
#include <set>
#include <stdexcept>
#include <string>

namespace {

using namespace std::string_literals;

template <class T>
class BoundedText : public testing::Test {};
using Types = testing::Types<Fwk::Name, Net::IntfId, Net::VrfName>;
TYPED_TEST_SUITE(BoundedText, Types);

TYPED_TEST(BoundedText, IsEmptyByDefault) {
  TypeParam const value;
  EXPECT_TRUE(value.empty());
  EXPECT_TRUE(value.isDefault());
  EXPECT_EQ(value.view(), "");
  EXPECT_EQ(value, TypeParam(""));
}

TYPED_TEST(BoundedText, HoldsATextUpToItsBound) {
  std::string const full(TypeParam::maxSize, 'x');
  EXPECT_TRUE(TypeParam::fits(full));
  EXPECT_EQ(TypeParam(full).view(), full);
  EXPECT_EQ(TypeParam(full).size(), TypeParam::maxSize);
  EXPECT_EQ(TypeParam::parse(full)->view(), full);
}

TYPED_TEST(BoundedText, OfASizeThatNoTextHasShowsItsOwnOctetsAlone) {
  std::array<unsigned char, sizeof(TypeParam)> octets{};
  octets.fill(0xff);  // as another process may have left them in shared memory
  TypeParam value;
  std::memcpy(static_cast<void*>(&value), octets.data(), octets.size());
  EXPECT_FALSE(value.isSound());
  EXPECT_EQ(value.size(), TypeParam::maxSize);
  EXPECT_EQ(value.view().size(), TypeParam::maxSize);
  EXPECT_EQ(value.toString().size(), TypeParam::maxSize);
  EXPECT_TRUE(TypeParam("Ethernet1").isSound());
  EXPECT_TRUE(TypeParam(std::string(TypeParam::maxSize, 'x')).isSound());
}

TYPED_TEST(BoundedText, ThrowsForALongerTextAndNamesIt) {
  std::string const tooLong(TypeParam::maxSize + 1, 'x');
  EXPECT_FALSE(TypeParam::fits(tooLong));
  EXPECT_EQ(TypeParam::parse(tooLong), std::nullopt);
  try {
    TypeParam const value(tooLong);
    FAIL() << value.view();
  } catch (std::length_error const& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr(TypeParam::textTypeName));
    EXPECT_THAT(error.what(), testing::HasSubstr("\"" + tooLong + "\""));
  }
}

TYPED_TEST(BoundedText, EqualValuesAreEqualBytesWhateverWasThereBefore) {
  alignas(TypeParam) std::array<unsigned char, sizeof(TypeParam)> dirty;
  alignas(TypeParam) std::array<unsigned char, sizeof(TypeParam)> clean{};
  dirty.fill(0xff);
  new (dirty.data()) TypeParam("Ethernet1");
  new (clean.data()) TypeParam("Ethernet1"s);
  EXPECT_EQ(dirty, clean);

  auto* const reused = new (dirty.data()) TypeParam(std::string(TypeParam::maxSize, 'x'));
  *reused = "Ethernet1";
  EXPECT_EQ(dirty, clean);
}

TYPED_TEST(BoundedText, AllZeroBytesAreTheEmptyText) {
  TypeParam const empty;
  std::array<unsigned char, sizeof(TypeParam)> bytes;
  std::memcpy(bytes.data(), &empty, sizeof empty);
  EXPECT_THAT(bytes, testing::Each(0));
}

TYPED_TEST(BoundedText, ComparesWithTextWithoutABound) {
  TypeParam const value("a");
  EXPECT_TRUE(value == "a");
  EXPECT_TRUE("a"s == value);
  EXPECT_FALSE(value == std::string(1000, 'a'));
  EXPECT_TRUE(value != std::string_view("b"));
}

TYPED_TEST(BoundedText, OrdersAsUnsignedOctetsShorterFirst) {
  std::set<TypeParam> const ordered{"b", "a\xff", "a", "", "ab", "a\0"s};
  EXPECT_THAT(ordered, testing::ElementsAre("", "a", "a\0"s, "ab", "a\xff", "b"));
}

TYPED_TEST(BoundedText, ZeroOctetsBelongToTheText) {
  TypeParam const value("a\0b"s);
  EXPECT_EQ(value.size(), 3U);
  EXPECT_NE(value, TypeParam("a"));
  EXPECT_NE(TypeParam("a"), TypeParam("a\0"s));
  EXPECT_NE(TypeParam("a").hash(), TypeParam("a\0"s).hash());
}

TYPED_TEST(BoundedText, HashFollowsValueAndSeed) {
  EXPECT_EQ(TypeParam("Ethernet1").hash(7), TypeParam("Ethernet1"s).hash(7));
  EXPECT_NE(TypeParam("Ethernet1").hash(7), TypeParam("Ethernet2").hash(7));
  EXPECT_NE(TypeParam("Ethernet1").hash(7), TypeParam("Ethernet1").hash(8));
}

TYPED_TEST(BoundedText, ANullPointerIsNoText) {
  char const* const nothing = nullptr;
  EXPECT_THROW(TypeParam{nothing}, std::invalid_argument);
}

TYPED_TEST(BoundedText, PrintsItself) {
  std::string out = "on ";
  Trace::appendTexts(out, TypeParam("Ethernet1"));
  EXPECT_EQ(out, "on Ethernet1");
  EXPECT_EQ(TypeParam("Ethernet1").toString(), "Ethernet1");
}

TEST(Name, IsNotMadeOfAnInterfaceByAccident) {
  EXPECT_FALSE((std::is_convertible_v<Net::IntfId, Fwk::Name>));
  EXPECT_FALSE((std::is_constructible_v<Net::VrfName, Net::IntfId>));
}

}  // namespace
