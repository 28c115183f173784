#include <Ipv6RouterAdvt/Heard/RouterNeighborRa.h>
#include <Ipv6RouterAdvt/RouterAdvt/LifeTimeHashMap.h>
#include <RouterPlatform/Fwk/TypeRegistry.h>
#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>

#include <iomanip>
#include <limits>
#include <memory>
#include <sstream>

// The text forms of the seven value types, by themselves and through their type records.

namespace {

using namespace ModelTest;
using namespace RouterAdvt;
using Fwk::ParseError;

/// An object of a value type that is known by its record alone.
class AnyValue {
 public:
  explicit AnyValue(char const* typeName)
      : type_(*Fwk::typeRegistry().find(typeName)->value), room_(new std::byte[type_.size]) {
    type_.construct(room_.get());
  }
  AnyValue(AnyValue const&) = delete;
  AnyValue& operator=(AnyValue const&) = delete;
  ~AnyValue() { type_.destruct(room_.get()); }

  void parse(String const& text) { type_.parse(text, room_.get()); }
  String text() const { return type_.text(room_.get()); }
  bool operator==(AnyValue const& other) const { return type_.equal(room_.get(), other.room_.get()); }

 private:
  Fwk::ValueTypeRecord const& type_;
  std::unique_ptr<std::byte[]> room_;
};

/// What a type's reader says of a text, and the parts of it; `attribute` is "none" when it is read.
struct Refusal {
  std::string attribute;
  std::size_t offset = 0;
  std::string expected = {};
  bool operator==(Refusal const&) const = default;
  friend void PrintTo(Refusal const& r, std::ostream* os) {
    *os << r.attribute << '@' << r.offset << ": " << r.expected;
  }
};
Refusal refusalOf(char const* typeName, String const& text) {
  AnyValue value(typeName);
  String const before = value.text();
  try {
    value.parse(text);
  } catch (ParseError const& error) {
    EXPECT_EQ(value.text(), before) << "a value that cannot be read is left as it was";
    return {error.attribute(), error.offset(), error.expected()};
  }
  return {"none"};
}

template <class T>
std::string streamed(T const& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

/// Expects of all three ways of printing that they give `text`.
template <class T>
void expectPrinted(T const& value, std::string const& text) {
  EXPECT_EQ(valueToStrep(value), text);
  EXPECT_EQ(streamed(value), text);
  EXPECT_EQ(T::typeRecord().value->text(&value), text);
}

/// The same, and of all three ways of reading that they give `value` back.
template <class T>
void expectBothWays(T const& value, std::string const& text) {
  expectPrinted(value, text);
  EXPECT_EQ(strepToValue<T>(text, nullptr), value);
  T read{};
  T::typeRecord().value->parse(text, &read);
  EXPECT_EQ(read, value);
  String const longer(text + "rest");
  String::IteratorConst pos = longer.begin();
  EXPECT_EQ(T(pos, longer.end()), value);
  EXPECT_EQ(std::string(pos, longer.end()), "rest");
}

RaPacketPrefixInfo prefixInfo(char const* prefix, bool onLink, bool autoConfig, U32 valid, U32 preferred) {
  RaPacketPrefixInfo info(prefixOf(prefix));
  info.onLinkFlagIs(onLink);
  info.autoConfigFlagIs(autoConfig);
  info.validLifetimeIs(valid);
  info.preferredLifetimeIs(preferred);
  return info;
}

RaPacket fullPacket() {
  RaPacket packet("Ethernet1");
  packet.curHopLimitIs(64);
  packet.managedConfigFlagIs(true);
  packet.reachableTimeIs(30000);
  packet.retransTimerIs(1000);
  packet.mtuSpecifiedIs(true);
  packet.mtuIs(1500);
  packet.srcIp6AddrIs(addrOf("fe80::1"));
  packet.routerLifeTimeIs(1800);
  return packet;
}

constexpr char const* fullPacketText =
    "Value('RouterAdvt::RaPacket', ** {'intfId': 'Ethernet1', 'curHopLimit': 64, 'managedConfigFlag': True, "
    "'otherConfigFlag': False, 'reachableTime': 30000, 'retransTimer': 1000, 'mtuSpecified': True, 'mtu': 1500, "
    "'srcIp6Addr': 'fe80::1', 'routerLifeTime': 1800, 'prefixInfo': None})";

constexpr char const* prefixInfoText =
    "Value('RouterAdvt::RaPacketPrefixInfo', ** {'prefix': '2001:db8::/64', 'onLinkFlag': True, 'autoConfigFlag': "
    "False, 'validLifetime': 2592000, 'preferredLifetime': 604800})";
constexpr char const* routerText =
    "Value('RouterAdvt::RouterNeighbor', ** {'intfId': 'Ethernet1', 'vrf': 'blue', 'linkLocalAddr': 'fe80::1'})";
constexpr char const* keyText =
    "Value('RouterAdvt::RouterNeighborRaKey', ** {'intfId': 'Ethernet1', 'neighborAddr': 'fe80::1'})";
constexpr char const* rowText =
    "Value('RouterAdvt::RouterNeighborRa', ** {'key': Value('RouterAdvt::RouterNeighborRaKey', ** {'intfId': "
    "'Ethernet1', 'neighborAddr': 'fe80::1'}), 'lastRaReceived': 12.5})";

TEST(ValueText, OfAPrefixInfoHasItsFiveAttributes) {
  expectBothWays(prefixInfo("2001:db8::/64", true, false, 2592000, 604800), prefixInfoText);
  expectBothWays(prefixInfo("2001:db8::1/128", false, true, 4294967295, 4294967295),
                 "Value('RouterAdvt::RaPacketPrefixInfo', ** {'prefix': '2001:db8::1/128', 'onLinkFlag': False, "
                 "'autoConfigFlag': True, 'validLifetime': 4294967295, 'preferredLifetime': 4294967295})");
}

TEST(ValueText, OfTheDefaultPrefixInfoReadsBackToo) {
  expectBothWays(RaPacketPrefixInfo(),
                 "Value('RouterAdvt::RaPacketPrefixInfo', ** {'prefix': '::/0', 'onLinkFlag': False, 'autoConfigFlag': "
                 "False, 'validLifetime': 0, 'preferredLifetime': 0})");
}

TEST(ValueText, OfAPrefixInfoKeepsALengthAbove128AsItWasReceived) {
  RaPacketPrefixInfo const info(Ip6AddrWithMask(addrOf("2001:db8::"), 200));
  expectBothWays(info,
                 "Value('RouterAdvt::RaPacketPrefixInfo', ** {'prefix': '2001:db8::/200', 'onLinkFlag': False, "
                 "'autoConfigFlag': False, 'validLifetime': 0, 'preferredLifetime': 0})");
}

TEST(ValueText, OfAPacketHasEveryScalarThatIsStored) { expectPrinted(fullPacket(), fullPacketText); }

TEST(ValueText, OfAPacketWidensItsSmallIntegersAndIsNoneForItsPrefixes) {
  RaPacket packet("");
  packet.curHopLimitIs(255);
  packet.routerLifeTimeIs(65535);
  packet.mtuIs(4294967295);
  packet.otherConfigFlagIs(true);
  expectPrinted(packet,
                "Value('RouterAdvt::RaPacket', ** {'intfId': '', 'curHopLimit': 255, 'managedConfigFlag': False, "
                "'otherConfigFlag': True, 'reachableTime': 0, 'retransTimer': 0, 'mtuSpecified': False, 'mtu': "
                "4294967295, 'srcIp6Addr': '::', 'routerLifeTime': 65535, 'prefixInfo': None})");
}

TEST(ValueText, OfAPacketIsNoneForItsPrefixesAlsoWhenItHoldsTwo) {
  RaPacket packet = fullPacket();
  packet.prefixInfoIs(prefixOf("2001:db8:1::/64"), prefixInfo("2001:db8:1::/64", true, true, 1, 1));
  packet.prefixInfoIs(prefixOf("2001:db8:2::/64"), prefixInfo("2001:db8:2::/64", true, true, 1, 1));
  expectPrinted(packet, fullPacketText);
}

TEST(ValueText, OfAPacketSaysNothingOfWhetherItIsADeathPacket) {
  RaPacket packet = fullPacket();
  packet.routerLifeTimeIs(0);
  EXPECT_TRUE(packet.isDeathPacket());
  EXPECT_EQ(valueToStrep(packet).find("isDeathPacket"), String::npos);
}

TEST(ValueText, OfARouterHasItsThreeAttributes) {
  expectBothWays(RouterNeighbor("Ethernet1", "blue", addrOf("fe80::1")), routerText);
  expectBothWays(RouterNeighbor(),
                 "Value('RouterAdvt::RouterNeighbor', ** {'intfId': '', 'vrf': '', 'linkLocalAddr': '::'})");
  expectBothWays(RouterNeighbor("it's", std::string("\\\n\xff", 3), addrOf("::ffff:192.0.2.1")),
                 R"(Value('RouterAdvt::RouterNeighbor', ** {'intfId': 'it\'s', 'vrf': '\\\n\xff', )"
                 R"('linkLocalAddr': '::ffff:192.0.2.1'}))");
}

TEST(ValueText, OfATableKeyHasInterfaceAndRouter) {
  expectBothWays(RouterNeighborRaKey("Ethernet1", addrOf("fe80::1")), keyText);
  expectBothWays(RouterNeighborRaKey(),
                 "Value('RouterAdvt::RouterNeighborRaKey', ** {'intfId': '', 'neighborAddr': '::'})");
}

RouterNeighborRa rowAt(Seconds time) {
  return RouterNeighborRa(RouterNeighborRaKey("Ethernet1", addrOf("fe80::1")), time);
}

TEST(ValueText, OfATableRowHasItsKeyInFull) {
  expectBothWays(rowAt(12.5), rowText);
  expectBothWays(RouterNeighborRa(),
                 "Value('RouterAdvt::RouterNeighborRa', ** {'key': Value('RouterAdvt::RouterNeighborRaKey', ** "
                 "{'intfId': '', 'neighborAddr': '::'}), 'lastRaReceived': 0.0})");
}

TEST(ValueText, OfATableRowHoldsAnyTime) {
  auto const textAt = [](char const* time) {
    String text = rowText;
    return String(text.replace(text.find("12.5"), 4, time));
  };
  double const inf = std::numeric_limits<double>::infinity();
  expectBothWays(rowAt(inf), textAt("inf"));
  expectBothWays(rowAt(-inf), textAt("-inf"));
  expectBothWays(rowAt(1e300), textAt("1e+300"));
  expectBothWays(rowAt(1764757443.123456), textAt("1764757443.123456"));
  expectPrinted(rowAt(std::numeric_limits<double>::quiet_NaN()), textAt("nan"));
  RouterNeighborRa const read = strepToValue<RouterNeighborRa>(textAt("nan"), nullptr);
  EXPECT_NE(read.lastRaReceived(), read.lastRaReceived());
  EXPECT_EQ(read.key(), rowAt(0).key());
}

TEST(ValueText, OfALifetimeMapIsNoneWhateverItHolds) {
  LifeTimeHashMap map;
  expectPrinted(map, "None");
  map.visitedIs(300, true);
  map.visitedIs(600, false);
  expectPrinted(map, "None");
}

TEST(ValueText, OfAPrefixDefaultIsEmptyAndReadsBack) { expectBothWays(PrefixDefault(), ""); }

TEST(ValueText, OfAPrefixDefaultIsNothingElse) {
  for (char const* const text : {" ", "None", "Value('RouterAdvt::PrefixDefault', ** {})", ")"})
    EXPECT_EQ(refusalOf("RouterAdvt::PrefixDefault", text), (Refusal{"", 0, "the end of the text"}));
}

/// A text form of one type, and the literals that it must have, in order.
struct LiteralRow {
  char const* typeName;
  char const* text;
  std::vector<char const*> literals;
  friend void PrintTo(LiteralRow const& r, std::ostream* os) { *os << r.typeName; }
};
LiteralRow const literalRows[] = {
    {"RouterAdvt::RaPacketPrefixInfo",
     prefixInfoText,
     {"Value('RouterAdvt::RaPacketPrefixInfo', ** {", "'prefix': ", ", 'onLinkFlag': ", ", 'autoConfigFlag': ",
      ", 'validLifetime': ", ", 'preferredLifetime': ", "})"}},
    {"RouterAdvt::RouterNeighbor",
     routerText,
     {"Value('RouterAdvt::RouterNeighbor', ** {", "'intfId': ", ", 'vrf': ", ", 'linkLocalAddr': ", "})"}},
    {"RouterAdvt::RouterNeighborRaKey",
     keyText,
     {"Value('RouterAdvt::RouterNeighborRaKey', ** {", "'intfId': ", ", 'neighborAddr': ", "})"}},
};

class ValueTextLiterals : public testing::TestWithParam<LiteralRow> {};
INSTANTIATE_TEST_SUITE_P(All, ValueTextLiterals, testing::ValuesIn(literalRows), [](auto const& row) {
  return std::string(row.param.typeName).substr(std::string_view("RouterAdvt::").size());
});

TEST_P(ValueTextLiterals, HaveToStandThereToTheOctet) {
  String const text = GetParam().text;
  std::size_t from = 0;
  for (char const* const literal : GetParam().literals) {
    std::size_t const at = text.find(literal, from);
    ASSERT_NE(at, String::npos) << literal;
    for (std::size_t i = 0; literal[i] != '\0'; ++i) {
      String missing = text, other = text;
      missing.erase(at + i, 1);
      other[at + i] = '#';
      EXPECT_EQ(refusalOf(GetParam().typeName, missing), (Refusal{"", at, literal})) << missing;
      EXPECT_EQ(refusalOf(GetParam().typeName, other), (Refusal{"", at, literal})) << other;
    }
    from = at + 1;
  }
}

TEST_P(ValueTextLiterals, AreNotReadWithTheBlankAfterAColonMissing) {
  String const text = GetParam().text;
  for (auto colon = text.find(": "); colon != String::npos; colon = text.find(": ", colon + 1)) {
    String missing = text;
    missing.erase(colon + 1, 1);
    EXPECT_NE(refusalOf(GetParam().typeName, missing).attribute, "none") << missing;
  }
}

/// A part of a text form that is replaced by another, and what is then said.
struct FieldRow {
  char const* name;
  char const* typeName;
  char const* text;
  char const* part;
  char const* replacement;
  char const* attribute;
  char const* expected;
  std::ptrdiff_t offsetInPart = 0;
  friend void PrintTo(FieldRow const& r, std::ostream* os) { *os << r.name; }
};
constexpr char const* u32Text = "an integer from 0 to 4294967295";
FieldRow const fieldRows[] = {
    {"PrefixWithoutQuotes", "RouterAdvt::RaPacketPrefixInfo", prefixInfoText, "'2001:db8::/64'", "2001:db8::/64",
     "prefix", "a quoted text"},
    {"PrefixWithoutLength", "RouterAdvt::RaPacketPrefixInfo", prefixInfoText, "'2001:db8::/64'", "'2001:db8::'",
     "prefix", "Ip6AddrWithMask"},
    {"PrefixWithLengthAbove255", "RouterAdvt::RaPacketPrefixInfo", prefixInfoText, "'2001:db8::/64'",
     "'2001:db8::/256'", "prefix", "Ip6AddrWithMask"},
    {"FlagInLowerCase", "RouterAdvt::RaPacketPrefixInfo", prefixInfoText, "True", "true", "onLinkFlag",
     "True or False"},
    {"FlagAsANumber", "RouterAdvt::RaPacketPrefixInfo", prefixInfoText, "False", "0", "autoConfigFlag",
     "True or False"},
    {"LifetimeOf2To32", "RouterAdvt::RaPacketPrefixInfo", prefixInfoText, "2592000", "4294967296", "validLifetime",
     u32Text},
    {"LifetimeBelow0", "RouterAdvt::RaPacketPrefixInfo", prefixInfoText, "604800", "-1", "preferredLifetime", u32Text},
    {"LifetimeWithAZeroInFront", "RouterAdvt::RaPacketPrefixInfo", prefixInfoText, "604800", "0604800",
     "preferredLifetime", u32Text},
    {"LifetimeAbove2To64", "RouterAdvt::RaPacketPrefixInfo", prefixInfoText, "2592000", "99999999999999999999",
     "validLifetime", u32Text},
    {"InterfaceTooLong", "RouterAdvt::RouterNeighbor", routerText, "'Ethernet1'", "'a-name-of-thirty-two-octets-long'",
     "intfId", "IntfId"},
    {"VrfNotClosed", "RouterAdvt::RouterNeighbor", routerText, "'blue'", "'blue", "", ", 'linkLocalAddr': ", 8},
    {"VrfWithAnEscapeOfAPrintable", "RouterAdvt::RouterNeighbor", routerText, "'blue'", R"('\x62lue')", "vrf",
     "a quoted text"},
    {"AddressInUpperCase", "RouterAdvt::RouterNeighbor", routerText, "'fe80::1'", "'FE80::1'", "linkLocalAddr",
     "Ip6Addr"},
    {"AddressNotShortest", "RouterAdvt::RouterNeighborRaKey", keyText, "'fe80::1'", "'fe80:0::1'", "neighborAddr",
     "Ip6Addr"},
    {"TimeWithoutAPoint", "RouterAdvt::RouterNeighborRa", rowText, "12.5", "12", "lastRaReceived",
     "a floating-point number"},
    {"TimeInWords", "RouterAdvt::RouterNeighborRa", rowText, "12.5", "infinity", "lastRaReceived",
     "a floating-point number"},
    {"AddressInTheKey", "RouterAdvt::RouterNeighborRa", rowText, "'fe80::1'", "'fe80::x'", "key", "Ip6Addr"},
    {"HeadOfTheKey", "RouterAdvt::RouterNeighborRa", rowText, "Value('RouterAdvt::RouterNeighborRaKey'",
     "Value('RouterAdvt::RouterNeighbor'", "key", "Value('RouterAdvt::RouterNeighborRaKey', ** {"},
    {"SeparatorInTheKey", "RouterAdvt::RouterNeighborRa", rowText, ", 'neighborAddr': ", ", 'neighborAddr':", "key",
     ", 'neighborAddr': "},
    {"TailOfTheKey", "RouterAdvt::RouterNeighborRa", rowText, "}), ", "), ", "key", "})"},
    {"HeadOfTheRow", "RouterAdvt::RouterNeighborRa", rowText, "Value('RouterAdvt::RouterNeighborRa'",
     "Value('RouterAdvt::RouterNeighborRb'", "", "Value('RouterAdvt::RouterNeighborRa', ** {"},
    {"SeparatorOfTheKey", "RouterAdvt::RouterNeighborRa", rowText, "'key': ", "'key':", "", "'key': "},
    {"SeparatorOfTheTime", "RouterAdvt::RouterNeighborRa", rowText, ", 'lastRaReceived': ", ",'lastRaReceived': ", "",
     ", 'lastRaReceived': "},
    {"TailOfTheRow", "RouterAdvt::RouterNeighborRa", rowText, "12.5})", "12.5}", "", "})", 4},
};

class ValueTextField : public testing::TestWithParam<FieldRow> {};
INSTANTIATE_TEST_SUITE_P(All, ValueTextField, testing::ValuesIn(fieldRows),
                         [](auto const& row) { return row.param.name; });

TEST_P(ValueTextField, IsNamedWithItsOffsetAndWhatWasExpected) {
  FieldRow const& row = GetParam();
  String text = row.text;
  std::size_t const at = text.find(row.part);
  ASSERT_NE(at, String::npos);
  text.replace(at, std::string_view(row.part).size(), row.replacement);
  EXPECT_EQ(refusalOf(row.typeName, text),
            (Refusal{row.attribute, at + static_cast<std::size_t>(row.offsetInPart), row.expected}));
}

TEST(ValueText, WithAnythingLeftOverIsNotRead) {
  for (LiteralRow const& row : literalRows)
    for (char const* const more : {" ", ")", "\n", row.text}) {
      String const text = row.text + std::string(more);
      EXPECT_EQ(refusalOf(row.typeName, text), (Refusal{"", std::string_view(row.text).size(), "the end of the text"}));
    }
}

TEST(ValueText, CutAtAnyOctetIsNotRead) {
  for (String cut = rowText; !cut.empty();) {
    cut.pop_back();
    EXPECT_NE(refusalOf("RouterAdvt::RouterNeighborRa", cut).attribute, "none") << cut;
  }
}

TEST(ValueText, OfOneTypeIsNotReadAsAnother) {
  for (LiteralRow const& row : literalRows)
    for (LiteralRow const& other : literalRows)
      EXPECT_EQ(refusalOf(row.typeName, other.text).attribute == "none", row.typeName == other.typeName);
}

TEST(ValueText, ReadThroughTheTypeRecordIsAssigned) {
  AnyValue one("RouterAdvt::RouterNeighborRa"), other("RouterAdvt::RouterNeighborRa");
  one.parse(rowText);
  EXPECT_FALSE(one == other);
  other.parse(one.text());
  EXPECT_TRUE(one == other);
}

/// The line that the assertion of an unreadable type leaves, and nothing before it.
std::string assertion(std::string const& type) {
  std::string const line = type == "RaPacket" ? "105" : "91";
  std::string const function =
      "RouterAdvt::" + type + "::" + type + "\\(String::IteratorConst&, String::IteratorConst const&\\)";
  return "^Ipv6RouterAdvt/RouterAdvt:" + line + ": " + function + ": assertion \"!\"No String constructor for " + type +
         " - has collection\"\" failed\n$";
}

TEST(ValueText, IsWrittenWithoutThePaddingOfAStream) {
  std::ostringstream out;
  out << std::setfill('*') << std::setw(12) << RouterAdvt::PrefixDefault() << std::setw(12) << LifeTimeHashMap()
      << std::setw(400) << RaPacket() << '|';
  EXPECT_EQ(out.str(), "None" + valueToStrep(RaPacket()) + '|');
}

TEST(ValueTextDeathTest, APacketCannotBeRead) {
  EXPECT_DEATH(strepToValue<RaPacket>(fullPacketText, nullptr), assertion("RaPacket"));
  EXPECT_DEATH(strepToValue<RaPacket>("", nullptr), assertion("RaPacket"));
  EXPECT_DEATH(AnyValue("RouterAdvt::RaPacket").parse(fullPacketText), assertion("RaPacket"));
}

TEST(ValueTextDeathTest, ALifetimeMapCannotBeRead) {
  EXPECT_DEATH(strepToValue<LifeTimeHashMap>("None", nullptr), assertion("LifeTimeHashMap"));
  EXPECT_DEATH(strepToValue<LifeTimeHashMap>("", nullptr), assertion("LifeTimeHashMap"));
  EXPECT_DEATH(AnyValue("RouterAdvt::LifeTimeHashMap").parse("None"), assertion("LifeTimeHashMap"));
}

}  // namespace
