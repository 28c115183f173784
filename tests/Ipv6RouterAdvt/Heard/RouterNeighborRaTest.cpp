#include <Ipv6RouterAdvt/Heard/RouterNeighborRa.h>
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

/// What another user's program may have left in the table.
TEST(RouterNeighborRa, IsNotSoundWithANameLongerThanAName) {
  RouterNeighborRa row(keyOf("Ethernet1", "fe80::1"), 1);
  EXPECT_TRUE(row.isSound());
  reinterpret_cast<unsigned char*>(&row)[31] = 200;
  EXPECT_FALSE(row.isSound());
  EXPECT_LE(row.key().toStrep().size(), 31 + sizeof "-fe80::1");
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

struct HashRow {
  char const* intfId;
  char const* addr;
  U64 seed0;
  U64 seed1;
  U64 seedOfMany;
  friend void PrintTo(HashRow const& row, std::ostream* os) { *os << row.intfId << '-' << row.addr; }
};
class RouterNeighborRaKeyHash : public testing::TestWithParam<HashRow> {};
INSTANTIATE_TEST_SUITE_P(
    Keys, RouterNeighborRaKeyHash,
    testing::Values(HashRow{"", "::", 0x18d4b0264a9dcf8f, 0x0620ebc72d42d678, 0xd92e179d41cf0f1e},
                    HashRow{"Ethernet1", "fe80::1", 0xba2f4ea9849bd658, 0xb3c3aa5e85c92544, 0xe2a3d3b1b84d3fe4},
                    HashRow{"Ethernet1", "fe80::2", 0xf78193f70e68292b, 0x92330d98666f8258, 0x33e3b10e94f5546e},
                    HashRow{"Port-Channel1000.4094", "2001:db8::1", 0xf5eb32d9a6766339, 0x601a66367f29ef57,
                            0x6bf5649283644488}));

/// Programs that were built apart find rows by this hash. The numbers were computed from the words of the format's page
/// by another program.
TEST_P(RouterNeighborRaKeyHash, NeverChanges) {
  RouterNeighborRaKey const key = keyOf(GetParam().intfId, GetParam().addr);
  EXPECT_EQ(key.hash(), GetParam().seed0);
  EXPECT_EQ(key.hash(1), GetParam().seed1);
  EXPECT_EQ(key.hash(0x0123456789abcdef), GetParam().seedOfMany);
}

TEST(RouterNeighborRa, HasALayoutThatNeverChanges) {
  SharedTable::RowType const& type = SharedTable::rowTypeOf<RouterNeighborRa>();
  EXPECT_EQ(type.rowSize, 56u);
  EXPECT_EQ(type.keySize, 48u);
  EXPECT_EQ(type.layoutHash, 0x267bd4246124f367u);
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
