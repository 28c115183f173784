#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <RouterPlatform/Fwk/TypeRegistry.h>
#include <programs/common/config/ConfigFile.h>

#include <cstdio>
#include <fstream>
#include <ostream>

namespace Tool {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> linesOf(std::vector<Diagnostic> const& diagnostics) {
  std::vector<std::string> lines;
  for (Diagnostic const& diagnostic : diagnostics) lines.push_back(diagnosticLine("f", diagnostic));
  return lines;
}

std::vector<std::string> errorsOf(std::string const& text) { return linesOf(readConfigText("f", text).errors); }
std::vector<std::string> warningsOf(std::string const& text) { return linesOf(readConfigText("f", text).warnings); }

/// A file that has `line` as line 4, among the attributes of an interface, at column 7.
std::string intfFile(std::string const& line) { return "config:\n  intf:\n    Ethernet1:\n      " + line + "\n"; }
/// A file that has `line` as line 4, among the keys of a link, at column 5.
std::string linkFile(std::string const& line) {
  return "config: {intf: {Ethernet1: {}}}\nlinks:\n  Ethernet1:\n    " + line + "\n";
}

std::string repeated(std::string const& text, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}
/// A file whose first line is a list of `values`; each of the `aliases` lines that follow repeats it.
std::string repeatingFile(int aliases, int values) {
  return "a: &a [" + repeated("x,", values) + "]\n" + repeated("b: *a\n", aliases);
}

struct ErrorRow {
  char const* name;
  std::string text;
  std::string error;
  friend void PrintTo(ErrorRow const& row, std::ostream* os) { *os << row.name; }
};

class ConfigFileError : public testing::TestWithParam<ErrorRow> {};

TEST_P(ConfigFileError, IsToldWithItsPlace) { EXPECT_THAT(errorsOf(GetParam().text), ElementsAre(GetParam().error)); }

TEST_P(ConfigFileError, LeavesNothingBuilt) {
  ConfigFile const file = readConfigText("f", GetParam().text);
  EXPECT_FALSE(file);
  EXPECT_FALSE(file.config);
  EXPECT_THAT(file.links, IsEmpty());
}

ErrorRow const attributeErrors[] = {
    {"UnknownAttribute", intfFile("raLifetme: 5"),
     "f:4:7: config/intf[Ethernet1]/raLifetme: there is no such attribute; did you mean raLifetime?"},
    {"UnknownAttributeInTheOtherCase", intfFile("ralifetime: 5"),
     "f:4:7: config/intf[Ethernet1]/ralifetime: there is no such attribute; did you mean raLifetime?"},
    {"UnknownAttributeFarFromAll", "config: {zzz: 5}",
     "f:1:10: config/zzz: there is no such attribute; valid names: intf, hopLimit, raConsistency, prefixProfiles"},
    {"ConstantIsNoCandidate", intfFile("hopLimitMx: 5"),
     "f:4:7: config/intf[Ethernet1]/hopLimitMx: there is no such attribute; did you mean hopLimit?"},
    {"Constant", intfFile("hopLimitMax: 5"),
     "f:4:7: config/intf[Ethernet1]/hopLimitMax: is a constant of the model, and cannot be set"},
    {"Computed", intfFile("validHopLimit: 5"),
     "f:4:7: config/intf[Ethernet1]/validHopLimit: is computed from other attributes, and cannot be set"},
    {"BaseAttribute", intfFile("fullName: x"),
     "f:4:7: config/intf[Ethernet1]/fullName: is computed from other attributes, and cannot be set"},
    {"Key", intfFile("intfId: Ethernet1"),
     "f:4:7: config/intf[Ethernet1]/intfId: is the key of the mapping, and cannot be set here"},
    {"AttributeWithoutDescriptor", intfFile("numPrefixesToAdvertise: 1"),
     "f:4:7: config/intf[Ethernet1]/numPrefixesToAdvertise: cannot be set"},
    {"DuplicateAttribute", "config:\n  hopLimit: 1\n  hopLimit: 2\n",
     "f:3:3: config: duplicate key \"hopLimit\"; the first is in line 2"},
};
INSTANTIATE_TEST_SUITE_P(Attribute, ConfigFileError, testing::ValuesIn(attributeErrors));

ErrorRow const valueErrors[] = {
    {"NumberAboveTheType", intfFile("raLifetime: 4294967296"),
     "f:4:19: config/intf[Ethernet1]/raLifetime: \"4294967296\" is out of range; expected a whole number from 0 to "
     "4294967295"},
    {"NumberBelowTheType", intfFile("raLifetime: -1"),
     "f:4:19: config/intf[Ethernet1]/raLifetime: \"-1\" is not a whole number from 0 to 4294967295"},
    {"NumberThatIsNone", intfFile("raLifetime: 5s"),
     "f:4:19: config/intf[Ethernet1]/raLifetime: \"5s\" is not a whole number from 0 to 4294967295"},
    {"BoolThatIsNone", intfFile("raSuppress: yes"),
     "f:4:19: config/intf[Ethernet1]/raSuppress: \"yes\" is not true or false; did you mean true?"},
    {"BoolInOtherLetters", intfFile("raSuppress: False"),
     "f:4:19: config/intf[Ethernet1]/raSuppress: \"False\" is not true or false; did you mean false?"},
    {"BoolThatIsNothingLikeOne", intfFile("raSuppress: 2"),
     "f:4:19: config/intf[Ethernet1]/raSuppress: \"2\" is not true or false"},
    {"ListForAValue", intfFile("raLifetime: [1, 2]"),
     "f:4:19: config/intf[Ethernet1]/raLifetime: expected a whole number from 0 to 4294967295, found a list"},
    {"MappingForAValue", intfFile("raLifetime: {a: 1}"),
     "f:4:19: config/intf[Ethernet1]/raLifetime: expected a whole number from 0 to 4294967295, found a mapping"},
    {"NothingForAValue", intfFile("raLifetime:"),
     "f:4:7: config/intf[Ethernet1]/raLifetime: expected a whole number from 0 to 4294967295, found nothing"},
    {"ReservedPreference", intfFile("routerPreference: reserved_"),
     "f:4:25: config/intf[Ethernet1]/routerPreference: \"reserved_\" is the reserved router preference, which is never "
     "sent (RFC 4191 2.1); expected medium, high or low"},
    {"ReservedPreferenceAsNumber", intfFile("routerPreference: 2"),
     "f:4:25: config/intf[Ethernet1]/routerPreference: \"2\" is the reserved router preference, which is never sent "
     "(RFC 4191 2.1); expected medium, high or low"},
    {"PreferenceThatIsNone", intfFile("routerPreference: 4"),
     "f:4:25: config/intf[Ethernet1]/routerPreference: \"4\" is not medium, high or low, or the number of one of them "
     "(0, 1, 3)"},
};
INSTANTIATE_TEST_SUITE_P(Value, ConfigFileError, testing::ValuesIn(valueErrors));

ErrorRow const memberErrors[] = {
    {"BadAddress", intfFile("dnsServers: {2001:db8::g: {}}"),
     "f:4:20: config/intf[Ethernet1]/dnsServers[2001:db8::g]: \"2001:db8::g\" is not an IPv6 address such as "
     "2001:db8::53"},
    {"PrefixWithoutLength", intfFile("prefixes: {\"2001:db8::\": {}}"),
     "f:4:18: config/intf[Ethernet1]/prefixes[2001:db8::]: \"2001:db8::\" is not an IPv6 address with a mask length "
     "from 0 to 128, such as 2001:db8::/64"},
    {"PrefixLengthAbove128", intfFile("prefixes: {2001:db8::/129: {}}"),
     "f:4:18: config/intf[Ethernet1]/prefixes[2001:db8::/129]: \"2001:db8::/129\" is not an IPv6 address with a mask "
     "length from 0 to 128, such as 2001:db8::/64"},
    {"InterfaceNameTooLong", "config: {intf: {EthernetWithANameOfThirtyTwoOcts: {}}}",
     "f:1:17: config/intf[EthernetWithANameOfThirtyTwoOcts]: \"EthernetWithANameOfThirtyTwoOcts\" is not an interface "
     "name of at most 31 octets"},
    {"InterfaceWithoutAName", "config: {intf: {\"\": {}}}",
     "f:1:17: config/intf[]: the empty name stands for no interface"},
    {"DuplicateMember", intfFile("prefixes: {2001:db8::/64: {}, 2001:db8::/64: {}}"),
     "f:4:37: config/intf[Ethernet1]/prefixes: duplicate key \"2001:db8::/64\"; the first is in line 4"},
    {"DuplicateMemberInOtherWords", intfFile("prefixes: {2001:db8::/64: {}, 2001:DB8:0::/64: {}}"),
     "f:4:37: config/intf[Ethernet1]/prefixes: duplicate key \"2001:DB8:0::/64\", which is the same as "
     "\"2001:db8::/64\" in line 4"},
    {"ListForMembers", intfFile("prefixes: [2001:db8::/64]"),
     "f:4:17: config/intf[Ethernet1]/prefixes: expected a mapping with keys such as 2001:db8::/64, found a list"},
    {"ValueForInterfaces", "config: {intf: Ethernet1}",
     "f:1:16: config/intf: expected a mapping with keys such as Ethernet1, found a single value"},
    {"MergeKey", "config: {intf: {Ethernet1: &a {hopLimit: 3}, Ethernet2: {<<: *a}}}",
     "f:1:58: config/intf[Ethernet2]: merge keys (<<) are not supported; write the keys of the other mapping here"},
    {"ValueForAMember", intfFile("dnsServers: {2001:db8::53: yes}"),
     "f:4:34: config/intf[Ethernet1]/dnsServers[2001:db8::53]: expected a mapping with attributes such as lifetime, "
     "found a single value"},
    {"KeyThatIsAList", intfFile("dnsServers: {[a]: {}}"),
     "f:4:20: config/intf[Ethernet1]/dnsServers: expected a text as key, found a list"},
    {"DeepInside", intfFile("prefixes: {2001:db8::/64: {validLifetime: x}}"),
     "f:4:49: config/intf[Ethernet1]/prefixes[2001:db8::/64]/validLifetime: \"x\" is not a whole number from 0 to "
     "4294967295"},
};
INSTANTIATE_TEST_SUITE_P(Member, ConfigFileError, testing::ValuesIn(memberErrors));

ErrorRow const linkErrors[] = {
    {"UnknownKey", linkFile("adresses: []"),
     "f:4:5: links[Ethernet1]/adresses: there is no such key of a link; did you mean addresses?"},
    {"BadMac", linkFile("mac: 02:00:00:00:00"),
     "f:4:10: links[Ethernet1]/mac: \"02:00:00:00:00\" is not an Ethernet address such as 02:00:00:00:00:01"},
    {"GroupMac", linkFile("mac: 03:00:00:00:00:01"),
     "f:4:10: links[Ethernet1]/mac: 03:00:00:00:00:01 is a group address, which cannot be a source"},
    {"MtuBelowTheFixedPart", linkFile("mtu: 85"),
     "f:4:10: links[Ethernet1]/mtu: 85 is out of range; expected 86 to 2147483647 octets; every advertisement takes "
     "86"},
    {"MtuAboveTheType", linkFile("mtu: 2147483648"),
     "f:4:10: links[Ethernet1]/mtu: 2147483648 is out of range; expected 86 to 2147483647 octets; every advertisement "
     "takes 86"},
    {"AddressesNoList", linkFile("addresses: fe80::1/64"),
     "f:4:16: links[Ethernet1]/addresses: expected a list of addresses, found a single value"},
    {"BadAddress", linkFile("addresses: [fe80::1/64, fe80::2]"),
     "f:4:29: links[Ethernet1]/addresses[1]: \"fe80::2\" is not an IPv6 address with a mask length from 0 to 128, such "
     "as 2001:db8::/64"},
    {"DuplicateAddress", linkFile("addresses: [fe80::1/64, FE80::1/64]"),
     "f:4:29: links[Ethernet1]/addresses[1]: fe80::1/64 is a duplicate; the first is in line 4"},
    {"BadInterval", linkFile("nsRetransmitInterval: 1s"),
     "f:4:27: links[Ethernet1]/nsRetransmitInterval: \"1s\" is not a whole number from 0 to 4294967295"},
    {"BadVirtualRouterPrefix", linkFile("virtualRouter: [x]"),
     "f:4:21: links[Ethernet1]/virtualRouter[0]: \"x\" is not an IPv6 address with a mask length from 0 to 128, such "
     "as 2001:db8::/64"},
    {"DuplicateLink", "config: {}\nlinks:\n  a: {}\n  a: {}\n",
     "f:4:3: links: duplicate key \"a\"; the first is in line 3"},
    {"LinkWithoutAName", "config: {}\nlinks: {\"\": {}}\n", "f:2:9: links[]: the empty name stands for no interface"},
    {"DuplicateVirtualRouterPrefix", linkFile("virtualRouter: [2001:db8::/64, 2001:DB8::/64]"),
     "f:4:36: links[Ethernet1]/virtualRouter[1]: 2001:db8::/64 is a duplicate; the first is in line 4"},
    {"LinksThatAreAList", "config: {}\nlinks: [E1]\n",
     "f:2:8: links: expected a mapping from interfaces to their links, found a list"},
    {"LinkThatIsAText", "config: {}\nlinks: {E1: foo}\n",
     "f:2:13: links[E1]: expected a mapping with keys such as mac, found a single value"},
    {"LinkNameTooLong", "config: {}\nlinks: {EthernetWithANameOfThirtyTwoOcts: {}}\n",
     "f:2:9: links[EthernetWithANameOfThirtyTwoOcts]: \"EthernetWithANameOfThirtyTwoOcts\" is not an interface name of "
     "at most 31 octets"},
};
INSTANTIATE_TEST_SUITE_P(Link, ConfigFileError, testing::ValuesIn(linkErrors));

ErrorRow const fileErrors[] = {
    {"Empty", "", "f:1:1: the file holds no values; expected a section config"},
    {"OnlyAComment", "# nothing\n", "f:1:1: the file holds no values; expected a section config"},
    {"OnlyTabs", std::string(1000, '\t'), "f:1:1: the file holds no values; expected a section config"},
    {"OnlyAnchorsWithoutANameOrAValue", std::string(1000, '&'),
     "f:1:1: the file holds no values; expected a section config"},
    {"OnlyAValue", "hello", "f:1:1: expected a mapping with the sections config and links, found a single value"},
    {"WithoutConfig", "links: {}\n", "f:1:1: there is no section config"},
    {"UnknownSection", "config: {}\nlink: {}\n", "f:2:1: link: there is no such section; did you mean links?"},
    {"SectionTwice", "config: {}\nlinks: {}\nconfig: {intf: {Ethernet1: {}}}\n",
     "f:3:1: duplicate key \"config\"; the first is in line 1"},
    {"SectionThatIsAList", "config: []\n",
     "f:1:9: config: expected a mapping with attributes such as intf, found a list"},
    {"TwoDocuments", "config: {}\n---\nconfig: {}\n", "f:3:1: a second document begins; expected one"},
    {"AnEmptySecondDocument", "config: {}\n---\n", "f:3:1: a second document begins; expected one"},
    {"ThreeDocuments", "config: {}\n---\n---\nconfig: {}\n", "f:3:1: a second document begins; expected one"},
    {"OnlyAComma", ",", "f:1:1: unexpected comma"},
    {"CommaBeforeTheDocument", "# JSON\n,{\"config\": {}}\n", "f:2:1: unexpected comma"},
    {"CommaBehindTheDocument", "{\"config\": {}},\n", "f:1:15: unexpected comma"},
    {"CommaBetweenDocuments", "{\"config\": {}},\n{}\n", "f:1:15: unexpected comma"},
    {"CommaBeforeAText", ",x", "f:1:1: unexpected comma"},
    {"AnAliasWithinWhatItNames", "config: &a\n  intf: {E1: *a}\n", "f:2:14: an alias stands within its own anchor"},
    {"AliasesThatRepeatTooMuch", repeatingFile(12, 20000), "f:11:4: aliases repeat more than 200000 values"},
    {"AliasesOfAliasesThatRepeatTooMuch",
     "a: &a [x, x, x, x, x, x, x, x, x, x]\nb: &b [*a, *a, *a, *a, *a, *a, *a, *a, *a, *a]\n"
     "c: &c [*b, *b, *b, *b, *b, *b, *b, *b, *b, *b]\nd: &d [*c, *c, *c, *c, *c, *c, *c, *c, *c, *c]\n"
     "e: &e [*d, *d, *d, *d, *d, *d, *d, *d, *d, *d]\nf: [*e, *e, *e, *e, *e, *e, *e, *e, *e, *e]\n",
     "f:6:5: aliases repeat more than 200000 values"},
    {"TooManyValues", "config: [" + repeated("x,", 1'000'000) + "]\n",
     "f:1:2000004: the file has more than 1000000 values"},
    {"TabAsIndentation", "config:\n  intf:\n\n    E1:\n    \traLifetime: 5\n",
     "f:5:16: not YAML: illegal map value; line 5 begins with a tab; YAML takes only blanks as indentation"},
    {"TabBehindAValueIsNoMistake", "config:\t{}\n\t\nlinks: {a\n", "f:4:1: not YAML: end of map flow not found"},
    {"Binary",
     std::string("\x7f"
                 "ELF\2\1\1\0\0",
                 9),
     "f: is not a text file"},
    {"BinaryBehindAText", std::string("config: {}\n\0", 12), "f: is not a text file"},
    {"SyntaxError", "config:\n  intf: {a: {}\n", "f:3:1: not YAML: end of map flow not found"},
    {"UnknownAlias", "config: *a\n", "f:1:9: not YAML: the referenced anchor is not defined"},
    {"NestedTooDeeply", std::string(10000, '['), "f:1:1: nested too deeply"},
    {"NestedTooDeeplyFurtherOn", "config: {} # \xc3\xa4\nlinks: " + repeated("{ a: ", 1001),
     "f:2:8: nested too deeply"},
    {"NestedTooDeeplyInIndentedLines", "config:\n  " + repeated("- ", 1000) + "a\n", "f:1:1: nested too deeply"},
};
INSTANTIATE_TEST_SUITE_P(File, ConfigFileError, testing::ValuesIn(fileErrors));

TEST(ConfigFile, BracketsThatAreClosedAgainNestNothing) {
  EXPECT_THAT(errorsOf("config: {} # " + repeated("[]{}", 1000) + "\n"), testing::IsEmpty());
  EXPECT_THAT(errorsOf("config: {} # " + repeated("[", 1000) + "\n"), testing::IsEmpty());
}

TEST(ConfigFile, TellsAllErrorsInTheirOrder) {
  EXPECT_THAT(
      errorsOf("config:\n  hopLimt: 1\n  raConsistency: 7\nlinks:\n  a: {mtu: 1}\n"),
      ElementsAre(testing::StartsWith("f:2:3: config/hopLimt: "), testing::StartsWith("f:3:18: config/raConsistency: "),
                  testing::StartsWith("f:5:12: links[a]/mtu: ")));
}

TEST(ConfigFile, TellsNoMoreThanAThousandErrors) {
  std::string text = "config: {";
  for (int i = 0; i < 2000; ++i) text += "x" + std::to_string(i) + ",\n";
  std::vector<std::string> const errors = errorsOf(text + "}");
  ASSERT_THAT(errors, testing::SizeIs(1001));
  EXPECT_THAT(errors[999], testing::StartsWith("f:1000:1: config/x999: there is no such attribute"));
  EXPECT_EQ(errors[1000], "f:1000:1: there may be more errors; only the first 1000 are listed");
}

TEST(ConfigFile, ControlCharactersDoNotReachTheTerminal) {
  EXPECT_THAT(errorsOf("config: {\"a\\e[31m\": 1}"),
              ElementsAre("f:1:10: config/a\\x1b[31m: there is no such attribute; valid names: intf, hopLimit, "
                          "raConsistency, prefixProfiles"));
}

TEST(ConfigFile, AFileThatIsNotThereIsAnError) {
  EXPECT_THAT(linesOf(loadConfigFile("/no/such/file.yaml").errors),
              ElementsAre("f: cannot be opened: No such file or directory"));
}

TEST(ConfigFile, AFolderIsAnError) {
  EXPECT_THAT(linesOf(loadConfigFile("/").errors), ElementsAre("f: cannot be read: Is a directory"));
}

TEST(ConfigFile, IsReadFromAFile) {
  std::string const name = testing::TempDir() + "ConfigFileTest" + std::to_string(getpid()) + ".yaml";
  std::ofstream(name) << "config: {hopLimit: 7}\n";
  ConfigFile const file = loadConfigFile(name);
  std::remove(name.c_str());
  ASSERT_THAT(linesOf(file.errors), IsEmpty());
  EXPECT_EQ(file.name, name);
  EXPECT_EQ(file.config->hopLimit(), 7U);
}

constexpr char const* wholeFile = R"(
config:
  hopLimit: 32
  raConsistency: true
  prefixProfiles:
    guest: { validLifetime: 3600 }
    staff:
  intf:
    Ethernet2:
    Ethernet1:
      routerPreference: low
      networkBootFileUrl: "tftp://[2001:db8::1]/x"
      prefixes:
        2001:db8:2::/64: { profile: guest, noAutoConfig: true }
        2001:db8:1::/64:
      dnsServers: { 2001:db8::53: , "::1": { lifetime: 5, lifetimeConfigured: true } }
      dnsSuffixes: { example.com: {}, "": {} }
links:
  Ethernet1:
    mac: "02:00:00:00:00:01"
    mtu: 1280
    nsRetransmitInterval: 1000
    addresses: [fe80::1/64, "2001:db8:1::1/64"]
    virtualRouter: []
)";

TEST(ConfigFile, ScalarsAreSet) {
  ConfigFile const file = readConfigText("f", wholeFile);
  ASSERT_THAT(linesOf(file.errors), IsEmpty());
  EXPECT_EQ(file.config->hopLimit(), 32U);
  EXPECT_TRUE(file.config->raConsistency());
  EXPECT_EQ(file.config->prefixProfiles("guest")->validLifetime(), 3600U);
  auto const intf = file.config->intf("Ethernet1");
  EXPECT_EQ(intf->routerPreference(), Net::Icmp6RouterAdvtRouterPreferenceType::low);
  EXPECT_EQ(intf->networkBootFileUrl(), "tftp://[2001:db8::1]/x");
  EXPECT_TRUE(intf->prefixes(Net::Ip6AddrWithMask("2001:db8:2::/64"))->noAutoConfig());
  EXPECT_EQ(intf->dnsServers(Net::Ip6Addr("::1"))->lifetime(), 5U);
}

TEST(ConfigFile, MembersKeepTheOrderOfTheFile) {
  ConfigFile const file = readConfigText("f", wholeFile);
  std::vector<std::string> intfs, prefixes, suffixes;
  for (auto const& [key, intf] : file.config->intf()) intfs.push_back(key.toString());
  for (auto const& [key, prefix] : file.config->intf("Ethernet1")->prefixes()) prefixes.push_back(key.toString());
  for (auto const& [key, suffix] : file.config->intf("Ethernet1")->dnsSuffixes()) suffixes.push_back(key);
  EXPECT_THAT(intfs, ElementsAre("Ethernet2", "Ethernet1"));
  EXPECT_THAT(prefixes, ElementsAre("2001:db8:2::/64", "2001:db8:1::/64"));
  EXPECT_THAT(suffixes, ElementsAre("example.com", ""));
}

TEST(ConfigFile, NothingBehindAKeyMeansAnEmptyMapping) {
  ConfigFile const file = readConfigText("f", wholeFile);
  EXPECT_TRUE(file.config->prefixProfiles("staff"));
  EXPECT_TRUE(file.config->intf("Ethernet2"));
  EXPECT_TRUE(file.config->intf("Ethernet1")->dnsServers(Net::Ip6Addr("2001:db8::53")));
}

TEST(ConfigFile, ALinkIsRead) {
  ConfigFile const file = readConfigText("f", wholeFile);
  LinkConfig const* const link = file.link("Ethernet1");
  ASSERT_TRUE(link);
  EXPECT_EQ(link->mac, Net::EthAddr("02:00:00:00:00:01"));
  EXPECT_EQ(link->mtu, 1280);
  EXPECT_EQ(link->nsRetransmitInterval, 1000U);
  EXPECT_THAT(link->addresses,
              ElementsAre(Net::Ip6AddrWithMask("fe80::1/64"), Net::Ip6AddrWithMask("2001:db8:1::1/64")));
  ASSERT_TRUE(link->virtualRouter);
  EXPECT_THAT(*link->virtualRouter, IsEmpty());
  EXPECT_FALSE(file.link("Ethernet2"));
}

TEST(ConfigFile, WithoutAListThereIsNoVirtualRouter) {
  EXPECT_FALSE(readConfigText("f", linkFile("mtu: 1500")).link("Ethernet1")->virtualRouter);
}

TEST(ConfigFile, AnAnchorCanBeReferredTo) {
  ConfigFile const file = readConfigText("f", "config: {intf: {E1: &a {hopLimit: 3}, E2: *a}}");
  ASSERT_THAT(linesOf(file.errors), IsEmpty());
  EXPECT_EQ(file.config->intf("E2")->hopLimit(), 3U);
}

TEST(ConfigFile, MayHaveCharactersOf16Bits) {
  std::string text = "\xff\xfe";
  for (char const c : std::string("config: {hopLimit: 7}")) text += {c, '\0'};
  ConfigFile const file = readConfigText("f", text);
  ASSERT_THAT(linesOf(file.errors), IsEmpty());
  EXPECT_EQ(file.config->hopLimit(), 7U);
}

TEST(ConfigFile, PlacesOfWhatTheFileNamesAreKept) {
  ConfigFile const file = readConfigText("f", wholeFile);
  EXPECT_EQ(file.placeOf("config/intf[Ethernet1]/routerPreference"), (Place{11, 7}));
  EXPECT_EQ(file.placeOf("config/intf[Ethernet1]/prefixes[2001:db8:1::/64]"), (Place{15, 9}));
  EXPECT_EQ(file.placeOf("links[Ethernet1]/mtu"), (Place{21, 5}));
}

TEST(ConfigFile, WhatTheFileDoesNotNameHasThePlaceOfWhatIsAboveIt) {
  ConfigFile const file = readConfigText("f", wholeFile);
  EXPECT_EQ(file.placeOf("config/intf[Ethernet1]/prefixes[2001:db8:1::/64]/validLifetime"), (Place{15, 9}));
  EXPECT_EQ(file.placeOf("links[Ethernet2]"), (Place{18, 1}));
}

TEST(ConfigFile, EverySettableAttributeOfTheModelCanBeConfigured) {
  ConfigFile const file = readConfigText("f", wholeFile);
  for (char const* name : {"RouterAdvt::Config", "RouterAdvt::IntfConfig"}) {
    Fwk::TypeRecord const* const type = Fwk::typeRegistry().find(name);
    ASSERT_TRUE(type) << name;
    for (Fwk::AttributeRecord const& attr : type->attributes) {
      if (!attr.settable()) continue;
      std::string value;
      Fwk::Ptr<Fwk::Entity> const fresh = type->create("x");
      attr.append(fresh.get(), value);
      std::string const line = std::string(attr.name) + ": \"" + value + "\"";
      bool const isRoot = std::string_view(type->name) == "RouterAdvt::Config";
      EXPECT_THAT(errorsOf(isRoot ? "config:\n  " + line : intfFile(line)), IsEmpty()) << line;
    }
  }
}

TEST(ConfigFileWarning, ALifetimeWithoutItsSwitch) {
  EXPECT_THAT(warningsOf(intfFile("dnsServers: {2001:db8::53: {lifetime: 600}}")),
              ElementsAre("f:4:45: config/intf[Ethernet1]/dnsServers[2001:db8::53]/lifetime: has no effect without "
                          "lifetimeConfigured: true"));
}

TEST(ConfigFileWarning, AnInterfaceLifetimeWithoutItsSwitch) {
  EXPECT_THAT(warningsOf(intfFile("dnsSuffixesLifetime: 600")),
              ElementsAre("f:4:28: config/intf[Ethernet1]/dnsSuffixesLifetime: has no effect without "
                          "dnsSuffixesLifetimeConfigured: true"));
}

TEST(ConfigFileWarning, ALifetimeWithItsSwitchOff) {
  EXPECT_THAT(warningsOf(intfFile("dnsServers: {2001:db8::53: {lifetimeConfigured: false, lifetime: 600}}")),
              ElementsAre(testing::HasSubstr("/lifetime: has no effect")));
}

TEST(ConfigFileWarning, NoneForALifetimeWithItsSwitchOn) {
  EXPECT_THAT(warningsOf(intfFile("dnsServers: {2001:db8::53: {lifetime: 600, lifetimeConfigured: true}}")), IsEmpty());
}

TEST(ConfigFileWarning, NoneForPrefixLifetimes) {
  EXPECT_THAT(warningsOf(intfFile("prefixes: {2001:db8::/64: {validLifetime: 600}}")), IsEmpty());
}

TEST(ConfigFileWarning, ALinkWithoutItsInterface) {
  EXPECT_THAT(warningsOf("config: {intf: {Ethernet1: {}}}\nlinks: {Ethernet11: {}}\n"),
              ElementsAre("f:2:9: links[Ethernet11]: has no effect: there is no such interface in config/intf; "
                          "did you mean Ethernet1?"));
}

TEST(ConfigFileWarning, NoNearestNameAmongMoreThanAHundred) {
  std::string text = "config: {intf: {";
  for (int i = 0; i < 101; ++i) text += "E" + std::to_string(i) + ": {}, ";
  EXPECT_THAT(warningsOf(text + "}}\nlinks: {E1O: {}}\n"),
              ElementsAre("f:2:9: links[E1O]: has no effect: there is no such interface in config/intf"));
}

TEST(ConfigFileWarning, AnMtuThatIsTooSmallForIPv6) {
  EXPECT_THAT(warningsOf(linkFile("mtu: 1279")),
              ElementsAre("f:4:10: links[Ethernet1]/mtu: IPv6 needs links of at least 1280 octets (RFC 8200 5)"));
}

}  // namespace

}  // namespace Tool
