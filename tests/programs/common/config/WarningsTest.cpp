#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <programs/common/config/Warnings.h>

#include <ostream>

namespace Tool {

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<std::string> linesOf(std::vector<Diagnostic> const& diagnostics) {
  std::vector<std::string> lines;
  for (Diagnostic const& diagnostic : diagnostics) lines.push_back(diagnosticLine("f", diagnostic));
  return lines;
}

/// `line`: line 3 of a file, attributes of the interface.
std::string fileWith(std::string const& line, std::string const& rest = {}) {
  return "config:\n  intf: {E: {\n" + line + "\n  }}\n" + rest;
}

std::vector<std::string> warningsOf(std::string const& text) {
  ConfigFile const file = readConfigText("f", text);
  EXPECT_THAT(linesOf(file.errors), IsEmpty());
  return file ? linesOf(intfWarnings(file, *file.config->intf("E"))) : std::vector<std::string>();
}

struct Row {
  char const* name;
  std::string line;
  std::string warning;
  friend void PrintTo(Row const& row, std::ostream* os) { *os << row.name; }
};
class IntfWarning : public testing::TestWithParam<Row> {};
TEST_P(IntfWarning, IsToldWithItsPlace) {
  EXPECT_THAT(warningsOf(fileWith(GetParam().line)), ElementsAre(GetParam().warning));
}

Row const rows[] = {
    {"LifetimeAbove16Bits", "raLifetime: 70000",
     "f:3:1: config/intf[E]/raLifetime: 70000 s is more than the field's 16 bits hold; 4464 is sent"},
    {"LifetimeBelowTheInterval", "raLifetime: 199",
     "f:3:1: config/intf[E]/raLifetime: 199 s is less than raIntervalMaxMsec, 200000 ms; hosts forget the router "
     "between two advertisements (RFC 4861 6.2.1)"},
    {"HopLimitAbove255", "hopLimit: 1000", "f:3:1: config/intf[E]/hopLimit: 1000 is above 255; 255 is sent"},
    {"MinAboveMaxInterval", "raIntervalMinMsec: 200001",
     "f:3:1: config/intf[E]/raIntervalMinMsec: 200001 ms is above raIntervalMaxMsec, 200000 ms"},
    {"NsInterval", "nsIntervalMsec: 5",
     "f:3:1: config/intf[E]/nsIntervalMsec: is not sent; the Retrans Timer is nsRetransmitInterval of the link"},
    {"PreferredAboveValid", "prefixes: {2001:db8::/64: {validLifetime: 5}}",
     "f:3:12: config/intf[E]/prefixes[2001:db8::/64]/preferredLifetime: 604800 s is above validLifetime, 5 s; hosts "
     "form no address from such a prefix (RFC 4862 5.5.3)"},
    {"HostBits", "prefixes: {2001:db8::1/64: {}}",
     "f:3:12: config/intf[E]/prefixes[2001:db8::1/64]: has bits set behind the prefix length; they are sent, and "
     "receivers ignore them"},
    {"LinkLocalPrefix", "prefixes: {fe80::/64: {}}",
     "f:3:12: config/intf[E]/prefixes[fe80::/64]: is link-local; receivers ignore it (RFC 4861 4.6.2)"},
    {"MulticastPrefix", "prefixes: {ff02::/64: {}}",
     "f:3:12: config/intf[E]/prefixes[ff02::/64]: is multicast; receivers ignore it, no interface has such an address"},
    {"PrefixOfAnotherLengthToMakeAddressesOf", "prefixes: {2001:db8::/48: {}}",
     "f:3:12: config/intf[E]/prefixes[2001:db8::/48]: has 48 bits; hosts form addresses only from prefixes of 64 bits "
     "(RFC 4862 5.5.3); noAutoConfig: true tells them not to"},
    {"MulticastServer", "dnsServers: {ff02::fb: {}}",
     "f:3:14: config/intf[E]/dnsServers[ff02::fb]: is multicast; no DNS server answers there"},
    {"UnspecifiedServer", "dnsServers: {\"::\": {}}",
     "f:3:14: config/intf[E]/dnsServers[::]: is the unspecified address; no DNS server answers there"},
    {"LoopbackServer", "dnsServers: {\"::1\": {}}",
     "f:3:14: config/intf[E]/dnsServers[::1]: is the loopback address; every host would ask itself"},
    {"Suppressed", "raSuppress: true",
     "f:3:1: config/intf[E]/raSuppress: suppresses advertisements of the router; 'build' and 'send' make one "
     "nevertheless"},
    {"EmptySuffix", "dnsSuffixes: {\"\": {}}",
     "f:3:15: config/intf[E]/dnsSuffixes[]: is empty, and sent as a name without labels"},
    {"EmptyLabel", "dnsSuffixes: {a..b: {}}",
     "f:3:15: config/intf[E]/dnsSuffixes[a..b]: has an empty label, which is sent and ends the name for receivers (RFC "
     "1035 3.1)"},
    {"DotAtTheEnd", "dnsSuffixes: {x.: {}}",
     "f:3:15: config/intf[E]/dnsSuffixes[x.]: the dot at the end is sent as one more empty label; without it the name "
     "is the same"},
    {"LabelOf64Octets", "dnsSuffixes: {a." + std::string(64, 'b') + ".c: {}}",
     "f:3:15: config/intf[E]/dnsSuffixes[a." + std::string(64, 'b') + ".c]: the label \"" + std::string(64, 'b') +
         "\" has 64 octets; receivers take at most 63 (RFC 1035 2.3.4)"},
    {"ProfileThatIsMissing", "prefixes: {2001:db8::/64: {profile: guest}}",
     "f:3:28: config/intf[E]/prefixes[2001:db8::/64]/profile: there is no profile \"guest\""},
};
INSTANTIATE_TEST_SUITE_P(Row, IntfWarning, testing::ValuesIn(rows));

TEST(IntfWarnings, NoneAtTheBounds) {
  EXPECT_THAT(warningsOf(fileWith("raLifetime: 65535, hopLimit: 255, raIntervalMinMsec: 200000, "
                                  "dnsSuffixes: {" +
                                  std::string(63, 'b') + ".c: {}}")),
              IsEmpty());
}

TEST(IntfWarnings, NoneForALifetimeOfZeroOrOfTheInterval) {
  EXPECT_THAT(warningsOf(fileWith("raLifetime: 0")), IsEmpty());
  EXPECT_THAT(warningsOf(fileWith("raLifetime: 200")), IsEmpty());
}

TEST(IntfWarnings, NoneForAPrefixOfAnotherLengthThatIsNotForAddresses) {
  EXPECT_THAT(warningsOf(fileWith("prefixes: {2001:db8::/48: {noAutoConfig: true}}")), IsEmpty());
}

TEST(IntfWarnings, NoneForWhatAPrefixThatIsNotAdvertisedIs) {
  EXPECT_THAT(warningsOf(fileWith("prefixes: {fe80::/64: {noAdvertise: true}, 2001:db8::/48: {noAdvertise: true}}")),
              IsEmpty());
}

TEST(IntfWarnings, NoneForALinkLocalServer) {
  EXPECT_THAT(warningsOf(fileWith("dnsServers: {fe80::53: {}}")), IsEmpty());
}

TEST(IntfWarnings, AMulticastAddressOfTheLinkIsToldWithItsPlace) {
  EXPECT_THAT(warningsOf(fileWith("", "links: {E: {addresses: [\"fe80::1/64\", \"ff02::1/64\"]}}")),
              ElementsAre("f:5:39: links[E]/addresses[1]: ff02::1/64 is multicast; no interface has such an address"));
}

TEST(IntfWarnings, PrefixesOfTheVirtualRouterThatReceiversIgnoreAreTold) {
  EXPECT_THAT(
      warningsOf(fileWith("", "links: {E: {virtualRouter: [\"2001:db8::/64\", \"fe80::/64\", \"ff02::/64\"]}}")),
      ElementsAre("f:5:46: links[E]/virtualRouter[1]: fe80::/64 is link-local; receivers ignore it (RFC 4861 4.6.2)",
                  HasSubstr("links[E]/virtualRouter[2]: ff02::/64 is multicast; ")));
}

TEST(IntfWarnings, AMissingProfileComesWithTheNearestOne) {
  EXPECT_THAT(
      warningsOf("config:\n  prefixProfiles: {guest: {}}\n  intf: {E: {prefixes: {\"::/64\": {profile: gest}}}}"),
      ElementsAre("f:3:35: config/intf[E]/prefixes[::/64]/profile: there is no profile \"gest\"; did you mean guest?"));
}

TEST(IntfWarnings, AMissingProfileComesWithoutTheNearestOneOfMoreThanAHundred) {
  std::string text = "config: {prefixProfiles: {";
  for (int i = 0; i < 101; ++i) text += "guest" + std::to_string(i) + ": {}, ";
  EXPECT_THAT(warningsOf(text + "},\n intf: {E: {prefixes: {\"::/64\": {profile: gest1}}}}}"),
              ElementsAre("f:2:34: config/intf[E]/prefixes[::/64]/profile: there is no profile \"gest1\""));
}

TEST(IntfWarnings, AProfileThatDiffersFromWhatIsSentIsTold) {
  EXPECT_THAT(warningsOf("config:\n  prefixProfiles: {guest: {noAdvertise: true, validLifetime: 5, preferredLifetime: "
                         "604800}}\n  intf: {E: {prefixes: {\"::/64\": {profile: guest}}}}"),
              ElementsAre("f:3:35: config/intf[E]/prefixes[::/64]/profile: profiles do not apply to advertisements, "
                          "which have noAdvertise false instead of true, validLifetime 2592000 instead of 5"));
}

TEST(IntfWarnings, NoneForAProfileThatAgreesWithWhatIsSent) {
  EXPECT_THAT(
      warningsOf("config:\n  prefixProfiles: {guest: {}}\n  intf: {E: {prefixes: {\"::/64\": {profile: guest}}}}"),
      IsEmpty());
}

TEST(FileWarnings, ThoseOfAnInterfaceAndItsLinkAreItsOwn) {
  ConfigFile const file = readConfigText("f",
                                         "config: {intf: {E: {dnsServersLifetime: 5}, E2: {dnsServersLifetime: 5}}}\n"
                                         "links: {E: {mtu: 1000}, E2: {mtu: 1000}}");
  EXPECT_THAT(linesOf(fileWarningsOf(file, *file.config->intf("E"))),
              ElementsAre(HasSubstr("config/intf[E]/dnsServersLifetime: "), HasSubstr("links[E]/mtu: ")));
}

std::vector<std::string> virtualRouterWarningsOf(std::string const& rest, bool useVirtualRouter) {
  ConfigFile const file = readConfigText("f", fileWith("", rest));
  AdvertOptions options;
  options.intf = "E";
  options.srcMac = Net::EthAddr("02:00:00:00:00:01");
  options.virtualRouter = useVirtualRouter;
  return linesOf(virtualRouterWarnings(file, makeAdvertRequest(file, options)));
}

TEST(VirtualRouterWarnings, ALinkWithoutOneIsTold) {
  EXPECT_THAT(virtualRouterWarningsOf("links: {E: {mtu: 1500}}", true),
              ElementsAre("f:5:9: links[E]: there is no virtualRouter here: no prefix is sent, and Router Lifetime 0"));
}

TEST(VirtualRouterWarnings, AMissingLinkIsTold) {
  EXPECT_THAT(virtualRouterWarningsOf("", true), ElementsAre(HasSubstr("f: links[E]: there is no virtualRouter here")));
}

TEST(VirtualRouterWarnings, NoneForOneWithoutPrefixes) {
  EXPECT_THAT(virtualRouterWarningsOf("links: {E: {virtualRouter: []}}", true), IsEmpty());
}

TEST(VirtualRouterWarnings, NoneUnlessItIsAskedFor) {
  EXPECT_THAT(virtualRouterWarningsOf("links: {E: {}}", false), IsEmpty());
}

TEST(ConfigWarnings, TheSystemsHopLimitIsNotSent) {
  EXPECT_THAT(linesOf(configWarnings(readConfigText("f", "config: {hopLimit: 3}"))),
              ElementsAre("f:1:10: config/hopLimit: is not sent; each interface has a hopLimit of its own"));
}

TEST(ConfigWarnings, AProfilesLifetimesAreCompared) {
  EXPECT_THAT(
      linesOf(configWarnings(readConfigText("f", "config: {prefixProfiles: {p: {validLifetime: 1}}}"))),
      ElementsAre(HasSubstr("config/prefixProfiles[p]/preferredLifetime: 604800 s is above validLifetime, 1 s")));
}

std::vector<std::string> fitsOf(std::string const& text, AdvertOptions options = {}) {
  ConfigFile const file = readConfigText("f", text);
  EXPECT_THAT(linesOf(file.errors), IsEmpty());
  if (!file) return {};
  options.intf = "E";
  options.srcMac = Net::EthAddr("02:00:00:00:00:01");
  RouterAdvt::AdvertRequest const request = makeAdvertRequest(file, options);
  RouterAdvt::LeftOut leftOut;
  RouterAdvt::build(request, &leftOut);
  return linesOf(fitWarnings(file, request, leftOut));
}

AdvertOptions withMtu(Fwk::S32 mtu) {
  AdvertOptions options;
  options.mtu = mtu;
  return options;
}

std::string prefixList(int count) {
  std::string text = "prefixes: {";
  for (int i = 1; i <= count; ++i) text += "\"2001:db8:" + std::to_string(i) + "::/64\": {}, ";
  return text + "}";
}

TEST(FitWarnings, NoneWhenAllFits) {
  EXPECT_THAT(fitsOf(fileWith(prefixList(3) + ", dnsServers: {\"::1\": {}}, dnsSuffixes: {example.com: {}}, "
                                              "networkBootFileUrl: \"tftp://x/y\"")),
              IsEmpty());
}

TEST(FitWarnings, PrefixesThatDoNotFitAreNamedInOneLine) {
  EXPECT_THAT(fitsOf(fileWith(prefixList(3)), withMtu(86 + 32)),
              ElementsAre("f:3:35: config/intf[E]/prefixes[2001:db8:2::/64]: 2 prefixes do not fit in 118 octets: "
                          "2001:db8:2::/64, 2001:db8:3::/64"));
}

TEST(FitWarnings, OnePrefixThatDoesNotFitIsNamed) {
  EXPECT_THAT(fitsOf(fileWith(prefixList(2)), withMtu(86 + 32)),
              ElementsAre(EndsWith(": a prefix does not fit in 118 octets: 2001:db8:2::/64")));
}

TEST(FitWarnings, AWithheldPrefixIsNotMissed) {
  EXPECT_THAT(fitsOf(fileWith("prefixes: {\"::/64\": {}, \"2001:db8::/64\": {noAdvertise: true}, \"fd00::/64\": {}}"),
                     withMtu(86 + 32)),
              ElementsAre(EndsWith(": a prefix does not fit in 118 octets: fd00::/64")));
}

TEST(FitWarnings, PrefixesOfAddressesThatDoNotFitAreNamed) {
  EXPECT_THAT(
      fitsOf(fileWith("", "links: {E: {addresses: [\"2001:db8:1::1/64\", \"2001:db8:2::1/64\"]}}"), withMtu(86 + 32)),
      ElementsAre("f:5:13: links[E]/addresses: a prefix does not fit in 118 octets: 2001:db8:2::/64"));
}

TEST(FitWarnings, PrefixesOfAVirtualRouterThatDoNotFitAreNamed) {
  AdvertOptions options = withMtu(86 + 32);
  options.virtualRouter = true;
  EXPECT_THAT(fitsOf(fileWith("", "links: {E: {virtualRouter: [\"2001:db8:1::/64\", \"2001:db8:2::/64\"]}}"), options),
              ElementsAre(EndsWith("links[E]/virtualRouter: a prefix does not fit in 118 octets: 2001:db8:2::/64")));
}

TEST(FitWarnings, ServersThatDoNotFitAreNamed) {
  EXPECT_THAT(
      fitsOf(fileWith("dnsServers: {\"::1\": {}, \"::2\": {}, \"::3\": {lifetime: 1, lifetimeConfigured: true}}"),
             withMtu(86 + 24)),
      ElementsAre(EndsWith("dnsServers[::1]: 2 DNS servers do not fit in 110 octets: ::1, ::2")));
}

TEST(FitWarnings, SuffixesThatDoNotFitAreNamed) {
  EXPECT_THAT(fitsOf(fileWith("dnsSuffixes: {example.com: {}}"), withMtu(86 + 16)),
              ElementsAre(EndsWith("dnsSuffixes[example.com]: a DNS suffix does not fit in 102 octets: example.com")));
}

TEST(FitWarnings, ASuffixThatLosesLabelsIsNamedWithWhatIsLeft) {
  // Eight suffixes are estimated 8 octets too short, so the last ones lose their labels.
  std::string suffixes;
  for (char c = 'a'; c <= 'g'; ++c) suffixes += std::string(1, c) + ": {}, ";
  EXPECT_THAT(fitsOf(fileWith("dnsSuffixes: {" + suffixes + "h.i: {}}"), withMtu(86 + 8 + 24)),
              ElementsAre(EndsWith("a DNS suffix does not fit in 118 octets: h.i (cut to h)")));
}

TEST(FitWarnings, AUrlThatIsCutIsTold) {
  EXPECT_THAT(
      fitsOf(fileWith("networkBootFileUrl: \"tftp://example.com/boot\""), withMtu(86 + 16)),
      ElementsAre("f:3:1: config/intf[E]/networkBootFileUrl: does not fit in 102 octets: its first 8 octets are "
                  "sent"));
}

TEST(FitWarnings, AUrlThatIsLeftOutIsTold) {
  EXPECT_THAT(fitsOf(fileWith("networkBootFileUrl: \"tftp://example.com/boot\""), withMtu(86)),
              ElementsAre(EndsWith("networkBootFileUrl: does not fit in 86 octets: it is left out")));
}

}  // namespace

}  // namespace Tool
