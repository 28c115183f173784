#include <Ipv6RouterAdvt/RouterAdvt/RouterNeighborRa.h>
#include <RouterPlatform/Fwk/Reflection.h>

#include <gmock/gmock.h>

#include <limits>
#include <sstream>

namespace {

using namespace RouterAdvt;

RouterNeighborRaKey keyOf(char const* intfId, char const* addr) {
  return RouterNeighborRaKey(IntfId(intfId), Ip6Addr(addr));
}

TEST(RouterNeighborRaKey, IsEmptyByDefault) {
  RouterNeighborRaKey const key;
  EXPECT_EQ(key.intfId(), IntfId());
  EXPECT_EQ(key.neighborAddr(), Ip6Addr());
}

TEST(RouterNeighborRaKey, IsEqualOnlyIfInterfaceAndAddressAre) {
  EXPECT_EQ(keyOf("Ethernet1", "fe80::1"), keyOf("Ethernet1", "fe80::1"));
  EXPECT_NE(keyOf("Ethernet1", "fe80::1"), keyOf("Ethernet2", "fe80::1"));
  EXPECT_NE(keyOf("Ethernet1", "fe80::1"), keyOf("Ethernet1", "fe80::2"));
}

TEST(RouterNeighborRaKey, OrdersByInterfaceAndThenByAddress) {
  EXPECT_LT(keyOf("Ethernet1", "fe80::1"), keyOf("Ethernet1", "fe80::2"));
  EXPECT_LT(keyOf("Ethernet1", "fe80::9"), keyOf("Ethernet2", "fe80::1"));
  EXPECT_FALSE(keyOf("Ethernet2", "fe80::1") < keyOf("Ethernet1", "fe80::9"));
  EXPECT_FALSE(keyOf("Ethernet1", "fe80::1") < keyOf("Ethernet1", "fe80::1"));
}

TEST(RouterNeighborRaKey, HashesInterfaceThenAddressIntoAnAccumulator) {
  RouterNeighborRaKey const key = keyOf("Ethernet1", "fe80::1");
  for (U64 const seed : {U64{0}, U64{1}, ~U64{0}})
    EXPECT_EQ(key.hash(seed), Fwk::HashAccumulator(seed)
                                  .mix(Fwk::hashOf(key.intfId(), seed))
                                  .mix(Fwk::hashOf(key.neighborAddr(), seed))
                                  .result());
  EXPECT_NE(key.hash(0), key.hash(1));
  EXPECT_NE(key.hash(0), keyOf("Ethernet1", "fe80::2").hash(0));
}

TEST(RouterNeighborRaKey, HasAShortTextOfInterfaceAndAddress) {
  EXPECT_EQ(keyOf("Ethernet1", "fe80::1").toStrep(), "Ethernet1-fe80::1");
  EXPECT_EQ(RouterNeighborRaKey().toStrep(), "-::");
}

TEST(RouterNeighborRaKey, IsReadFromItsShortText) {
  for (RouterNeighborRaKey const& key :
       {keyOf("Ethernet1", "fe80::1"), keyOf("br-lan", "2001:db8::1"), RouterNeighborRaKey()})
    EXPECT_EQ(RouterNeighborRaKey::parse(key.toStrep()), key);
  for (char const* text : {"", "Ethernet1", "Ethernet1-", "Ethernet1-x", "Ethernet1-fe80::1 "})
    EXPECT_EQ(RouterNeighborRaKey::parse(text), std::nullopt) << text;
}

TEST(RouterNeighborRaKey, ShowsItsComputedAttributesAfterTheStoredOnes) {
  RouterNeighborRaKey const key = keyOf("Ethernet1", "fe80::1");
  auto const read = [&](Fwk::AttrId attr) {
    std::string text;
    EXPECT_TRUE(Fwk::readAttribute(Fwk::objectRef(key), attr, text));
    return text;
  };
  EXPECT_EQ(read(258), "Ethernet1");
  EXPECT_EQ(read(259), "fe80::1");
  EXPECT_EQ(read(260), "Ethernet1-fe80::1");
  EXPECT_EQ(read(261), std::to_string(key.hash(0)));
}

TEST(RouterNeighborRaKey, HasATextForm) {
  RouterNeighborRaKey const key = keyOf("Ethernet1", "fe80::1");
  String const text = "Value('RouterAdvt::RouterNeighborRaKey', ** {'intfId': 'Ethernet1', 'neighborAddr': 'fe80::1'})";
  EXPECT_EQ(valueToStrep(key), text);
  std::ostringstream printed;
  printed << key;
  EXPECT_EQ(printed.str(), text);
  EXPECT_EQ(strepToValue<RouterNeighborRaKey>(text, nullptr), key);
}

TEST(RouterNeighborRa, HasADefaultKeyAndTimeZeroByDefault) {
  RouterNeighborRa const row;
  EXPECT_EQ(row.key(), RouterNeighborRaKey());
  EXPECT_EQ(row.lastRaReceived(), 0);
}

TEST(RouterNeighborRa, IsEqualIfKeyAndTimeAreAsNumbers) {
  RouterNeighborRaKey const key = keyOf("Ethernet1", "fe80::1");
  EXPECT_EQ(RouterNeighborRa(key, 1.5), RouterNeighborRa(key, 1.5));
  EXPECT_NE(RouterNeighborRa(key, 1.5), RouterNeighborRa(key, 1.25));
  EXPECT_NE(RouterNeighborRa(key, 1.5), RouterNeighborRa(keyOf("Ethernet2", "fe80::1"), 1.5));
  EXPECT_EQ(RouterNeighborRa(key, 0.0), RouterNeighborRa(key, -0.0));
  double const nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_NE(RouterNeighborRa(key, nan), RouterNeighborRa(key, nan));
}

TEST(RouterNeighborRa, HasATextFormWithItsKeyInFull) {
  RouterNeighborRa const row(keyOf("Ethernet1", "fe80::1"), 12.5);
  String const text =
      "Value('RouterAdvt::RouterNeighborRa', ** {'key': Value('RouterAdvt::RouterNeighborRaKey', ** {'intfId': "
      "'Ethernet1', 'neighborAddr': 'fe80::1'}), 'lastRaReceived': 12.5})";
  EXPECT_EQ(valueToStrep(row), text);
  std::ostringstream printed;
  printed << row;
  EXPECT_EQ(printed.str(), text);
  EXPECT_EQ(strepToValue<RouterNeighborRa>(text, nullptr), row);
}

TEST(RouterNeighborRa, SaysWhichAttributeCannotBeRead) {
  auto const wrongAttribute = [](String text, std::string const& from, std::string const& to) {
    text.replace(text.find(from), from.size(), to);
    try {
      strepToValue<RouterNeighborRa>(text, nullptr);
    } catch (Fwk::ParseError const& error) {
      return std::string(error.attribute());
    }
    return std::string("none");
  };
  String const text = valueToStrep(RouterNeighborRa(keyOf("Ethernet1", "fe80::1"), 12.5));
  EXPECT_EQ(wrongAttribute(text, "12.5", "soon"), "lastRaReceived");
  EXPECT_EQ(wrongAttribute(text, "fe80::1", "fe80:::1"), "key");
  EXPECT_EQ(wrongAttribute(text, "'neighborAddr': ", "'neighborAddr':"), "key");
  EXPECT_EQ(wrongAttribute(text, "'key': ", "'key':"), "");
}

}  // namespace
