#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tools/routeradvt/DnsNames.h>

namespace Tool {

namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

DnsNames decode(std::string const& octets) {
  std::vector<Fwk::U8> const bytes(octets.begin(), octets.end());
  return decodeDnsNames(Octets(bytes));
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

}  // namespace

}  // namespace Tool
