#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <programs/common/frames/DnsNames.h>

namespace Tool {

namespace {

using namespace std::string_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

DnsNames decode(std::string const& octets) {
  std::vector<Fwk::U8> const bytes(octets.begin(), octets.end());
  return decodeDnsNames(PlacedOctets(bytes));
}

std::vector<std::string> texts(DnsNames const& names) {
  std::vector<std::string> result;
  for (DnsName const& name : names.names) result.push_back(name.text);
  return result;
}

TEST(DnsNames, AreSpelledOut) {
  DnsNames const names = decode("\7example\3com\0\1a\0\0\0\0"s);
  EXPECT_THAT(texts(names), ElementsAre("example.com", "a"));
  EXPECT_EQ(names.names[1].at, 13U);
  EXPECT_EQ(names.paddingAt, 16U);
}

TEST(DnsNames, PaddingIsNoName) { EXPECT_THAT(texts(decode("\0\0\0\0\0\0\0\0"s)), IsEmpty()); }

TEST(DnsNames, AZeroBeforeANameIsTheRoot) { EXPECT_THAT(texts(decode("\1a\0\0\1b\0\0"s)), ElementsAre("a", ".", "b")); }

TEST(DnsNames, EscapeWhatIsNotPrintable) {
  EXPECT_THAT(texts(decode("\6a.b\\\x1b\xff\0"s)), ElementsAre("a\\.b\\\\\\027\\255"));
}

TEST(DnsNames, ANameWithoutAnEndIsOdd) {
  DnsNames const names = decode("\3com"s);
  EXPECT_THAT(texts(names), ElementsAre("com"));
  EXPECT_THAT(names.names[0].oddities, ElementsAre("the name has no end"));
}

TEST(DnsNames, ALabelThatPassesTheEndIsOdd) {
  DnsNames const names = decode("\7com"s);
  EXPECT_THAT(texts(names), ElementsAre("com"));
  EXPECT_THAT(names.names[0].oddities, ElementsAre("the name passes the end of the option"));
}

TEST(DnsNames, ALabelOf64OctetsIsOdd) {
  DnsNames const names = decode("\x40"s + std::string(64, 'a') + "\0"s);
  EXPECT_THAT(texts(names), ElementsAre(std::string(64, 'a')));
  EXPECT_THAT(names.names[0].oddities, ElementsAre("a label says that it has 64 octets; 63 are possible"));
}

TEST(DnsNames, ALabelOf255OctetsIsReadWhole) {
  std::string const label(255, 'a');
  DnsNames const names = decode("\xff" + label + "\1b\0"s);
  EXPECT_THAT(texts(names), ElementsAre(label + ".b"));
  EXPECT_THAT(names.names[0].oddities, Contains("a label says that it has 255 octets; 63 are possible"));
}

// RFC 1035 2.3.4 counts the length octets and the root too.
std::string nameOf(std::size_t octets) {
  std::string name;
  while (name.size() + 65 < octets) name.append("\x3f").append(63, 'a');
  std::size_t const left = octets - name.size() - 2;
  return name.append(1, static_cast<char>(left)).append(left, 'b').append(1, '\0');
}

TEST(DnsNames, ANameOf255OctetsIsNotOdd) {
  ASSERT_EQ(nameOf(255).size(), 255U);
  EXPECT_THAT(decode(nameOf(255)).names[0].oddities, IsEmpty());
}

TEST(DnsNames, ANameOf256OctetsIsOdd) {
  EXPECT_THAT(decode(nameOf(256)).names[0].oddities, ElementsAre("the name has 256 octets; 255 are possible"));
}

}  // namespace

}  // namespace Tool
