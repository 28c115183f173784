#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <RouterPlatform/Fwk/TypeRegistry.h>
#include <programs/routeradvt/cli/Program.h>
#include <programs/routeradvt/commands/Commands.h>

#include <nlohmann/json.hpp>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <ostream>
#include <sstream>

namespace Tool {

namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::StartsWith;

struct Outcome {
  ExitStatus status;
  std::string out;
  std::string err;
};

Outcome run(std::vector<std::string> const& arguments) {
  std::ostringstream out, err;
  ExitStatus const status = runProgram(makeCommands(), arguments, {out, err});
  return {status, out.str(), err.str()};
}

/// The help of a command, or with an empty name of the program.
std::string helpOf(std::string const& command, unsigned columns) {
  std::ostringstream out, err;
  std::vector<std::string> arguments{"--help"};
  if (!command.empty()) arguments.insert(arguments.begin(), command);
  runProgram(makeCommands(), arguments, {out, err, columns});
  return out.str();
}

std::string wideHelp(std::string const& command) { return helpOf(command, 1000); }

/// A configuration file that lives as long as this.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::string const& text)
      : name_(testing::TempDir() + "ProgramTest" + std::to_string(getpid()) + ".yaml") {
    std::ofstream(name_) << text;
  }
  ~TemporaryFile() { std::remove(name_.c_str()); }
  std::string const& name() const { return name_; }

 private:
  std::string name_;
};

constexpr char const* smallFile = R"(config:
  prefixProfiles: {guest: {validLifetime: 3600, preferredLifetime: 1800}}
  intf:
    E1:
      raLifetime: 70000
      prefixes: {2001:db8::/64: {profile: guest}}
    E2: {}
links:
  E1: {mac: "02:00:00:00:00:01", addresses: ["2001:db8::1/64", "fe80::5/64"]}
)";

struct HelpRow {
  char const* name;
  std::vector<std::string> arguments;
  friend void PrintTo(HelpRow const& row, std::ostream* os) { *os << row.name; }
};
class ProgramHelp : public testing::TestWithParam<HelpRow> {};
TEST_P(ProgramHelp, GoesToStandardOutputAndSucceeds) {
  Outcome const outcome = run(GetParam().arguments);
  EXPECT_EQ(outcome.status, ExitStatus::success);
  EXPECT_THAT(outcome.out, HasSubstr("Usage: routeradvt"));
  EXPECT_EQ(outcome.err, "");
}
INSTANTIATE_TEST_SUITE_P(Row, ProgramHelp,
                         testing::Values(HelpRow{"Program", {"--help"}}, HelpRow{"Build", {"build", "--help"}},
                                         HelpRow{"Send", {"send", "-h"}}, HelpRow{"Show", {"show", "--help"}},
                                         HelpRow{"Types", {"types", "--help"}}, HelpRow{"InWords", {"help"}}));

TEST(ProgramHelp, OnACommandIsTheCommandsOwn) { EXPECT_EQ(run({"help", "build"}).out, run({"build", "--help"}).out); }

TEST(ProgramHelp, ThatCannotBeWrittenFails) {
  std::ostringstream out, err;
  out.setstate(std::ios::badbit);
  EXPECT_EQ(runProgram(makeCommands(), {"--help"}, {out, err}), ExitStatus::failed);
  EXPECT_EQ(err.str(), "routeradvt: the output could not be written\n");
}

TEST(ProgramHelp, UsageHasWhatIsRequired) {
  EXPECT_THAT(run({"send", "--help"}).out, HasSubstr("\nUsage: routeradvt send --via DEV [OPTION...] FILE INTF\n"));
  EXPECT_THAT(run({"serve", "--help"}).out, HasSubstr("\nUsage: routeradvt serve --socket PATH [OPTION...] FILE\n"));
  EXPECT_THAT(run({"show", "--help"}).out, HasSubstr("\nUsage: routeradvt show [OPTION...] FILE [INTF]\n"));
}

TEST(Program, TellsItsVersion) {
  Outcome const outcome = run({"--version"});
  EXPECT_EQ(outcome.status, ExitStatus::success);
  EXPECT_THAT(outcome.out, testing::MatchesRegex("routeradvt [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

struct UsageRow {
  char const* name;
  std::vector<std::string> arguments;
  std::string error;
  friend void PrintTo(UsageRow const& row, std::ostream* os) { *os << row.name; }
};
class ProgramUsage : public testing::TestWithParam<UsageRow> {};
TEST_P(ProgramUsage, ErrorHasItsExitStatus) {
  Outcome const outcome = run(GetParam().arguments);
  EXPECT_EQ(outcome.status, ExitStatus::usage);
  EXPECT_THAT(outcome.err, HasSubstr(GetParam().error));
  EXPECT_EQ(outcome.out, "");
}
TEST_P(ProgramUsage, ErrorBeginsWithTheProgramAndEndsWithItsHelp) {
  EXPECT_THAT(run(GetParam().arguments).err,
              testing::MatchesRegex("routeradvt: [^\n]+\nsee 'routeradvt( [a-z]+)? --help'\n"));
}
UsageRow const usageRows[] = {
    {"NoCommand", {}, "a command is required, one of build, send, "},
    {"NoCommandButAnOption", {"--colour"}, "there is no option \"--colour\"; "},
    {"UnknownCommand", {"bild"}, "there is no command \"bild\"; did you mean build?"},
    {"EmptyCommand", {""}, "there is no command \"\"; "},
    {"HelpOnAnUnknownCommand", {"help", "bild"}, "there is no command \"bild\"; did you mean build?"},
    {"UnknownOption", {"show", "--jsn", "x"}, "there is no option \"--jsn\"; did you mean --json?"},
    {"UnknownOptionWithAValue", {"build", "a", "b", "--srcc", "fe80::1"}, "\"--srcc\"; did you mean --src?"},
    {"UnknownOptionJoinedToItsValue", {"build", "a", "b", "--mut=1500"}, "\"--mut\"; did you mean --mtu?"},
    {"UnknownOptionInPlaceOfARequiredOne", {"send", "a", "b", "--vai", "c"}, "\"--vai\"; did you mean --via?"},
    {"UnknownOptionBeforeTheCommand", {"--jsn", "show"}, "there is no option \"--jsn\"; "},
    {"OptionBeforeItsCommand", {"--json", "show", "x"}, "\"--json\" is an option of show, and goes behind it\n"},
    {"FlagWithAValue", {"build", "x", "y", "--death=maybe"}, "--death = maybe: the option takes no value\n"},
    {"SortByNothingKnown", {"neighbors", "--sort", "x"}, "--sort: \"x\" is neither intf nor age\n"},
    {"UnknownShortOption", {"show", "x", "-j"}, "there is no option \"-j\"; "},
    {"UnexpectedArgument", {"build", "a", "b", "c", "d"}, "routeradvt: unexpected argument \"c\"\n"},
    {"UnexpectedArgumentBehindTheDashes", {"build", "a", "b", "--", "c"}, "routeradvt: unexpected argument \"c\"\n"},
    {"OptionWithoutItsValue", {"build", "a", "b", "--mtu"}, "--mtu: expected one value, and the option only once"},
    {"OptionTwice", {"build", "a", "b", "--mtu", "90", "--mtu", "91"}, "--mtu: expected one value"},
    {"NoFile", {"build"}, "FILE is required"},
    {"NoInterface", {"build", "x.yaml"}, "INTF is required"},
    {"NoDevice", {"send", "x.yaml", "E1"}, "--via is required"},
    {"BadAddress", {"build", "x", "y", "--src", "1.2.3.4"}, "--src: \"1.2.3.4\" is not an IPv6 address"},
    {"BadMac", {"build", "x", "y", "--dst-mac", "1"}, "--dst-mac: \"1\" is not an Ethernet address"},
    {"GroupMac",
     {"build", "x", "y", "--src-mac", "33:33:00:00:00:01"},
     "--src-mac: 33:33:00:00:00:01 is a group address, which cannot be a source"},
    {"GroupMacToSendFrom",
     {"send", "x", "y", "--via", "z", "--src-mac", "01:00:00:00:00:00"},
     "--src-mac: 01:00:00:00:00:00 is a group address"},
    {"MtuTooSmall",
     {"build", "x", "y", "--mtu", "85"},
     "--mtu: \"85\" is out of range; expected a whole number from 86 to 2147483647"},
    {"MtuTooLarge",
     {"build", "x", "y", "--mtu", "2147483648"},
     "--mtu: \"2147483648\" is out of range; expected a whole number from 86 to 2147483647"},
    {"MtuNoNumber", {"build", "x", "y", "--mtu", "abc"}, "--mtu: \"abc\" is not a whole number from 86 to 2147483647"},
    {"MtuNotWhole", {"build", "x", "y", "--mtu", "1500.5"}, "--mtu: \"1500.5\" is not a whole number"},
    {"BadTraceLevels", {"build", "x", "y", "--trace", "E/99"}, "--trace"},
    {"EmptyWrite", {"build", "x", "y", "--write", ""}, "--write: the empty name stands for no file"},
    {"EmptyFile", {"show", ""}, "FILE: the empty name stands for no file"},
    {"EmptyCapture", {"parse", ""}, "FILE: the empty name stands for no file"},
    {"EmptyIntf", {"parse", "x", "--intf", ""}, "--intf: the empty name stands for no interface"},
    {"IntervalTooShort",
     {"send", "x", "y", "--via", "z", "--interval", "0"},
     "--interval: \"0\" is out of range; expected a number from 0.001 to 1000000"},
    {"IntervalTooLong",
     {"send", "x", "y", "--via", "z", "--interval", "1000000.5"},
     "--interval: \"1000000.5\" is out"},
    {"IntervalNan",
     {"send", "x", "y", "--via", "z", "--interval", "nan"},
     "--interval: \"nan\" is not a number from 0.001 to 1000000"},
    {"IntervalInfinite", {"send", "x", "y", "--via", "z", "--interval", "inf"}, "--interval: \"inf\" is not a number"},
    {"IntervalNoNumber", {"send", "x", "y", "--via", "z", "--interval", "abc"}, "--interval: \"abc\" is not a number"},
    {"IntervalWithAUnit", {"send", "x", "y", "--via", "z", "--interval", "3s"}, "--interval: \"3s\" is not a number"},
    {"BadCount", {"send", "x", "y", "--via", "z", "--count", "-1"}, "--count: \"-1\" is not a whole number from 0 on"},
    {"CountThatNothingHolds",
     {"send", "x", "y", "--via", "z", "--count", "99999999999999999999"},
     "--count: \"99999999999999999999\" is out of range; expected a whole number from 0 on"},
    {"ListenToNothing",
     {"listen", "z", "--count", "0"},
     "--count: \"0\" is out of range; expected a whole number from 1 on"},
    {"ListenCountThatNothingHolds",
     {"listen", "z", "--count", "99999999999999999999"},
     "--count: \"99999999999999999999\" is out of range; expected a whole number from 1 on"},
    {"ListenForNan", {"listen", "z", "--for", "nan"}, "--for: \"nan\" is not a number from 0 to 1000000000"},
    {"ListenForNothing", {"listen", "z", "--for", ""}, "--for: \"\" is not a number from 0 to 1000000000"},
    {"PollNan",
     {"serve", "x", "--socket", "y", "--poll", "nan"},
     "--poll: \"nan\" is not a number from 0.01 to 1000000"},
    {"PollInfinite", {"serve", "x", "--socket", "y", "--poll", "inf"}, "--poll: \"inf\" is not a number"},
    {"PollOfNoTime",
     {"serve", "x", "--socket", "y", "--poll", "0"},
     "--poll: \"0\" is out of range; expected a number from 0.01"},
    {"PollBackwards", {"serve", "x", "--socket", "y", "--poll", "-5"}, "--poll: \"-5\" is out of range"},
    {"PollTooLong", {"serve", "x", "--socket", "y", "--poll", "1e300"}, "--poll: \"1e300\" is out of range"},
    {"PollEmpty", {"serve", "x", "--socket", "y", "--poll", ""}, "--poll: \"\" is not a number"},
    {"MtuEmpty", {"build", "x", "y", "--mtu", ""}, "--mtu: \"\" is not a whole number"},
    {"CountEmpty", {"listen", "z", "--count", ""}, "--count: \"\" is not a whole number"},
    {"CountNan", {"listen", "z", "--count", "nan"}, "--count: \"nan\" is not a whole number"},
    {"IntervalBackwards", {"send", "x", "y", "--via", "z", "--interval", "-1"}, "--interval: \"-1\" is out of range"},
    {"IntervalEmpty", {"send", "x", "y", "--via", "z", "--interval", ""}, "--interval: \"\" is not a number"},
    {"ServeTheEmptyName", {"serve", "", "--socket", "y"}, "FILE: the empty name stands for no file"},
    {"ServeOnTheEmptyName", {"serve", "x", "--socket", ""}, "--socket: the empty name stands for no socket"},
    {"MirrorTheEmptyName", {"mirror", ""}, "PATH: the empty name stands for no socket"},
    {"ShowTheEmptyInterface", {"show", "x", ""}, "INTF: the empty name stands for no interface"},
    {"BuildTheEmptyInterface", {"build", "x", ""}, "INTF: the empty name stands for no interface"},
    {"ListenOnTheEmptyInterface", {"listen", ""}, "DEV: the empty name stands for no interface"},
    {"SendOnTheEmptyInterface", {"send", "x", "y", "--via", ""}, "--via: the empty name stands for no interface"},
    {"NeighborsOfTheEmptyInterface", {"neighbors", "--intf", ""}, "--intf: the empty name stands for no interface"},
    {"NeighborsOfALongInterface",
     {"neighbors", "--intf", std::string(32, 'x')},
     "--intf: \"" + std::string(32, 'x') + "\" is not an interface name of at most 31 octets"},
    {"NeighborsOfTheEmptyOwner", {"neighbors", "--owner", ""}, "--owner: the empty name stands for no user"},
    {"TheEmptyType", {"types", ""}, "NAME: the empty name stands for no type"},
    {"ListenBackwards", {"listen", "z", "--for", "-1"}, "--for: \"-1\" is out of range; expected a number from 0"},
};
INSTANTIATE_TEST_SUITE_P(Row, ProgramUsage, testing::ValuesIn(usageRows));

TEST(SendCommand, HelpNamesTheValuesOfTheDevice) {
  EXPECT_THAT(wideHelp("send"),
              AllOf(ContainsRegex("--src ADDR .*link-local address, else that of DEV, else the one made from"),
                    ContainsRegex("--src-mac MAC .*; default: the link's mac, else that of DEV\n"),
                    ContainsRegex("--mtu OCTETS .*; default: the link's, else that of DEV \\(86 or more\\)\n"),
                    HasSubstr("default 1, with --interval 0 (0 or more)\n")));
}

TEST(BuildCommand, HelpKnowsNoDevice) {
  EXPECT_THAT(wideHelp("build"), AllOf(testing::Not(HasSubstr("DEV")), HasSubstr("else 1500 (86 or more)\n")));
}

TEST(ProgramHelp, NamesTheBoundsOfANumber) {
  EXPECT_THAT(wideHelp("listen"),
              AllOf(HasSubstr("advertisements (1 or more)\n"), HasSubstr("end after that time (0 to 1000000000)\n")));
}

std::size_t longestLine(std::string const& text) {
  std::istringstream lines(text);
  std::size_t longest = 0;
  for (std::string line; std::getline(lines, line);) longest = std::max(longest, line.size());
  return longest;
}

class ProgramHelpAtWidth : public testing::TestWithParam<unsigned> {};
TEST_P(ProgramHelpAtWidth, HasNoLongerLine) {
  for (std::string const name : {"", "build", "listen", "serve", "types"}) {
    std::string help = helpOf(name, GetParam());
    help = help.substr(0, help.find("\n  routeradvt "));  // examples stay as they are
    EXPECT_LE(longestLine(help), GetParam()) << help;
    EXPECT_GE(longestLine(help), GetParam() - 12) << help;
  }
}
INSTANTIATE_TEST_SUITE_P(Columns, ProgramHelpAtWidth, testing::Values(60, 80, 90));

TEST(ProgramHelp, FoldedTextStartsBelowTheTextAbove) {
  EXPECT_THAT(helpOf("listen", 60), HasSubstr("\n  --count N             end after that many valid\n"
                                              "                        advertisements (1 or more)\n"));
}

TEST(ProgramHelp, KeepsTheLinesOfExamples) {
  EXPECT_THAT(helpOf("build", 30), HasSubstr("\n  routeradvt build office.yaml Ethernet1 --write ra.pcap\n"));
}

TEST(Program, AFileThatCannotBeReadFails) {
  Outcome const outcome = run({"show", "/no/such/file"});
  EXPECT_EQ(outcome.status, ExitStatus::failed);
  EXPECT_EQ(outcome.err, "/no/such/file: cannot be opened: No such file or directory\n");
}

TEST(Program, OutputThatCannotBeWrittenFails) {
  std::ostringstream out, err;
  out.setstate(std::ios::badbit);
  EXPECT_EQ(runProgram(makeCommands(), {"types"}, {out, err}), ExitStatus::failed);
  EXPECT_THAT(err.str(), HasSubstr("the output could not be written"));
}

TEST(BuildCommand, HexIsOneLine) {
  TemporaryFile const file(smallFile);
  Outcome const outcome = run({"build", file.name(), "E1", "--hex"});
  EXPECT_EQ(outcome.status, ExitStatus::success);
  EXPECT_THAT(outcome.out, testing::MatchesRegex("[0-9a-f]+\n"));
}

TEST(BuildCommand, SourceIsTheLinksFirstLinkLocalAddress) {
  TemporaryFile const file(smallFile);
  EXPECT_THAT(run({"build", file.name(), "E1"}).out, HasSubstr("source                  fe80::5\n"));
}

TEST(BuildCommand, SourceIsMadeFromTheMacWithoutALinkLocalAddress) {
  TemporaryFile const file(smallFile);
  EXPECT_THAT(run({"build", file.name(), "E2", "--src-mac", "02:11:22:33:44:55"}).out,
              AllOf(HasSubstr("source                  fe80::11:22ff:fe33:4455\n"),
                    HasSubstr("link-layer address      02:11:22:33:44:55\n")));
}

TEST(BuildCommand, AGroupGivesTheDestinationMac) {
  TemporaryFile const file(smallFile);
  EXPECT_THAT(run({"build", file.name(), "E1", "--dst", "ff02::1:ff00:1234"}).out,
              HasSubstr("destination             33:33:ff:00:12:34\n"));
}

TEST(BuildCommand, ADestinationThatIsNoGroupNeedsItsMac) {
  TemporaryFile const file(smallFile);
  Outcome const outcome = run({"build", file.name(), "E1", "--dst", "fe80::9"});
  EXPECT_EQ(outcome.status, ExitStatus::usage);
  EXPECT_EQ(outcome.err,
            "routeradvt: --dst-mac is needed: fe80::9 is not multicast, so its MAC address is not known\n"
            "see 'routeradvt build --help'\n");
}

TEST(BuildCommand, OptionsReachTheFrame) {
  TemporaryFile const file(smallFile);
  Outcome const outcome = run({"build", file.name(), "E1", "--src", "fe80::7", "--dst", "fe80::9", "--src-mac",
                               "02:00:00:00:00:07", "--dst-mac", "02:00:00:00:00:09", "--mtu", "9000"});
  EXPECT_THAT(outcome.out, AllOf(HasSubstr("fe80::7"), HasSubstr("fe80::9"), HasSubstr("02:00:00:00:00:07"),
                                 HasSubstr("02:00:00:00:00:09"), HasSubstr("9000 octets")));
}

struct LifetimeRow {
  char const* name;
  char const* option;
  friend void PrintTo(LifetimeRow const& row, std::ostream* os) { *os << row.name; }
};
class BuildCommandLifetime : public testing::TestWithParam<LifetimeRow> {};
TEST_P(BuildCommandLifetime, IsZero) {
  TemporaryFile const file(smallFile);
  EXPECT_THAT(run({"build", file.name(), "E1", GetParam().option}).out, HasSubstr("0 s (not a default router)"));
}
INSTANTIATE_TEST_SUITE_P(Row, BuildCommandLifetime,
                         testing::Values(LifetimeRow{"NoLifetime", "--no-lifetime"}, LifetimeRow{"Death", "--death"},
                                         LifetimeRow{"VirtualRouterThatIsNotThere", "--virtual-router"}));

TEST(BuildCommand, WarnsAboutWhatIsNotSentAsWritten) {
  TemporaryFile const file(smallFile);
  Outcome const outcome = run({"build", file.name(), "E1", "--hex"});
  EXPECT_THAT(outcome.err, AllOf(HasSubstr(":5:7: warning: config/intf[E1]/raLifetime: 70000 s is more than"),
                                 HasSubstr(":6:34: warning: config/intf[E1]/prefixes[2001:db8::/64]/profile: ")));
}

TEST(BuildCommand, WarnsOfASourceThatIsNotLinkLocal) {
  TemporaryFile const file(smallFile);
  EXPECT_THAT(run({"build", file.name(), "E1", "--src", "2001:db8::1"}).err,
              StartsWith("warning: --src: 2001:db8::1 is not link-local; receivers drop the advertisement (RFC 4861 "
                         "6.1.2)\n"));
}

TEST(BuildCommand, WarnsAboutTheLink) {
  TemporaryFile const file("config: {intf: {E1: {}}}\nlinks: {E1: {mac: \"02:00:00:00:00:01\", mtu: 1000}}\n");
  EXPECT_EQ(run({"build", file.name(), "E1", "--hex"}).err,
            file.name() + ":2:45: warning: links[E1]/mtu: IPv6 needs links of at least 1280 octets (RFC 8200 5)\n");
}

TEST(BuildCommand, AnUnknownInterfaceComesWithTheNearest) {
  TemporaryFile const file(smallFile);
  Outcome const outcome = run({"build", file.name(), "E3"});
  EXPECT_EQ(outcome.status, ExitStatus::failed);
  EXPECT_EQ(outcome.err, file.name() + ":3:3: config/intf: there is no interface \"E3\"; did you mean E1?\n");
}

TEST(BuildCommand, AnInterfaceWithoutALinkNeedsItsMac) {
  TemporaryFile const file(smallFile);
  Outcome const outcome = run({"build", file.name(), "E2"});
  EXPECT_EQ(outcome.status, ExitStatus::failed);
  EXPECT_EQ(outcome.err, file.name() +
                             ":8:1: links: there is no link \"E2\", which would give the mac; add it to the "
                             "section links, or give --src-mac; did you mean E1?\n");
}

TEST(BuildCommand, ALinkWithoutAMacNeedsOne) {
  TemporaryFile const file("config: {intf: {E1: {}}}\nlinks: {E1: {mtu: 1500}}\n");
  Outcome const outcome = run({"build", file.name(), "E1"});
  EXPECT_EQ(outcome.status, ExitStatus::failed);
  EXPECT_EQ(outcome.err, file.name() + ":2:9: links[E1]: there is no mac; give one here, or --src-mac\n");
}

TEST(BuildCommand, WithoutAnyLinkTheMacIsMissedAtTheInterface) {
  TemporaryFile const file("config:\n  intf: {E1: {}}\n");
  EXPECT_EQ(run({"build", file.name(), "E1"}).err,
            file.name() +
                ":2:10: config/intf[E1]: there is no link \"E1\", which would give the mac; add it to the "
                "section links, or give --src-mac\n");
}

TEST(BuildCommand, WarnsWhenThereIsNoVirtualRouter) {
  TemporaryFile const file(smallFile);
  EXPECT_THAT(run({"build", file.name(), "E1", "--virtual-router"}).err,
              HasSubstr(":9:3: warning: links[E1]: there is no virtualRouter here: "));
}

TEST(BuildCommand, ALinkAloneIsNotAdvertised) {
  TemporaryFile const file("config: {intf: {E1: {}}}\nlinks: {E2: {}}\n");
  EXPECT_THAT(run({"build", file.name(), "E2"}).err,
              HasSubstr("config/intf: there is no interface \"E2\", only a link of that name; with 'E2: {}' here it is "
                        "advertised by the defaults\n"));
}

TEST(BuildCommand, AFileWithErrorsBuildsNothing) {
  TemporaryFile const file("config: {intf: {E1: {hopLimit: x}}}\nlinks: {E1: {mac: y}}\n");
  Outcome const outcome = run({"build", file.name(), "E1"});
  EXPECT_EQ(outcome.status, ExitStatus::failed);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, AllOf(HasSubstr(":1:32: config/intf[E1]/hopLimit: "), HasSubstr(":2:19: links[E1]/mac: ")));
}

TEST(BuildCommand, ACaptureFileThatCannotBeWrittenFails) {
  TemporaryFile const file(smallFile);
  Outcome const outcome = run({"build", file.name(), "E1", "--write", "/no/such/folder/x.pcap"});
  EXPECT_EQ(outcome.status, ExitStatus::failed);
  EXPECT_THAT(outcome.err,
              testing::EndsWith("\n/no/such/folder/x.pcap: cannot be written: No such file or directory\n"));
}

TEST(SendCommand, AnUnknownDeviceIsTold) {
  TemporaryFile const file(smallFile);
  Outcome const outcome = run({"send", file.name(), "E1", "--via", "loo"});
  EXPECT_EQ(outcome.status, ExitStatus::failed);
  EXPECT_THAT(outcome.err, HasSubstr("there is no interface \"loo\" on this machine"));
}

TEST(SendCommand, ADeviceWithoutEthernetIsTold) {
  TemporaryFile const file(smallFile);
  Outcome const outcome = run({"send", file.name(), "E1", "--via", "lo"});
  EXPECT_EQ(outcome.status, ExitStatus::failed);
  EXPECT_THAT(outcome.err, HasSubstr("lo is not an Ethernet interface\n"));
}

TEST(ShowCommand, MarksDefaultsAndEffectiveValues) {
  TemporaryFile const file(smallFile);
  Outcome const outcome = run({"show", file.name()});
  EXPECT_EQ(outcome.status, ExitStatus::success);
  EXPECT_THAT(outcome.out,
              AllOf(ContainsRegex("\n    raLifetime +70000\n"), ContainsRegex("\n    raSuppress +false +default\n"),
                    ContainsRegex("\n    hopLimit +64 +default, effective 64\n"),
                    ContainsRegex("\n      validLifetime +2592000 +default, effective 3600\n"),
                    ContainsRegex("\n      useProfile +true +computed\n"),
                    ContainsRegex("\n    dnsServers +none +default\n"), ContainsRegex("\n  mtu +1500 +default\n")));
}

TEST(ShowCommand, AnDnsEntrysEffectiveLifetimeIsThatOfItsInterface) {
  TemporaryFile const file(
      "config: {intf: {E1: {raIntervalMaxMsec: 4000, dnsServers: {\"::1\": }, dnsSuffixes: {a: "
      "{lifetime: 9, lifetimeConfigured: true}}}}}");
  EXPECT_THAT(run({"show", file.name()}).out, AllOf(ContainsRegex("\n      lifetime +300 +default, effective 6\n"),
                                                    ContainsRegex("\n      lifetime +9 +effective 9\n")));
}

TEST(ShowCommand, WarningsComeLast) {
  TemporaryFile const file(smallFile);
  EXPECT_THAT(run({"show", file.name()}).out,
              HasSubstr("\nwarnings\n  " + file.name() + ":5:7: config/intf[E1]/raLifetime: "));
}

/// More prefixes than an advertisement has room for.
std::string manyPrefixes() {
  std::string text;
  for (int i = 1; i <= 46; ++i) text += "\"2001:db8:" + std::to_string(i) + "::/64\", ";
  return text;
}

TEST(ShowCommand, WarnsAboutWhatDoesNotFitOnBehalfOfTheVirtualRouter) {
  TemporaryFile const file("config: {intf: {E1: {dnsServers: {\"::1\": {}}}}}\nlinks: {E1: {virtualRouter: [" +
                           manyPrefixes() + "]}}\n");
  std::string const out = run({"show", file.name()}).out;
  EXPECT_THAT(out, HasSubstr(":2:14: links[E1]/virtualRouter: with --virtual-router: 2 prefixes do not fit in 1500 "
                             "octets: 2001:db8:45::/64, 2001:db8:46::/64\n"));
  EXPECT_THAT(out,
              HasSubstr("dnsServers[::1]: with --virtual-router: a DNS server does not fit in 1500 octets: ::1\n"));
}

TEST(ShowCommand, SaysOnceWhatFitsInNeitherAdvertisement) {
  TemporaryFile const file("config: {intf: {E1: {networkBootFileUrl: \"tftp://x/" + std::string(2000, 'y') +
                           "\"}}}\nlinks: {E1: {virtualRouter: []}}\n");
  std::string const out = run({"show", file.name()}).out;
  EXPECT_THAT(out, HasSubstr("networkBootFileUrl: does not fit in 1500 octets: its first 1400 octets are sent\n"));
  EXPECT_THAT(out, testing::Not(HasSubstr("--virtual-router")));
}

TEST(ShowCommand, OneInterfaceAlone) {
  TemporaryFile const file(smallFile);
  Outcome const outcome = run({"show", file.name(), "E2"});
  EXPECT_THAT(outcome.out, StartsWith("config/intf[E2]\n"));
  EXPECT_THAT(outcome.out, testing::Not(HasSubstr("E1")));
}

TEST(ShowCommand, JsonHasTheModelsNamesAndTypes) {
  TemporaryFile const file(smallFile);
  auto const json = nlohmann::json::parse(run({"show", file.name(), "--json"}).out);
  auto const& intf = json["config"]["intf"]["E1"];
  EXPECT_EQ(intf["raLifetime"], 70000);
  EXPECT_EQ(intf["raSuppress"], false);
  EXPECT_EQ(intf["routerPreference"], "medium");
  EXPECT_EQ(intf["prefixes"]["2001:db8::/64"]["validLifetimeValue"], 3600);
  EXPECT_EQ(json["warnings"][0]["line"], 5);
}

TEST(TypesCommand, ListsEveryRegisteredType) {
  std::string const out = run({"types"}).out;
  for (Fwk::TypeRecord const* type : Fwk::typeRegistry().types()) EXPECT_THAT(out, HasSubstr(type->name));
}

TEST(TypesCommand, ListsAttributesWithNumberKindAndType) {
  Outcome const outcome = run({"types", "IntfConfig"});
  EXPECT_EQ(outcome.status, ExitStatus::success);
  EXPECT_THAT(outcome.out,
              AllOf(ContainsRegex("\n253 +name +computed +Name\n"), ContainsRegex("\n258 +intfId +key +IntfId\n"),
                    ContainsRegex("\n259 +raSuppress +scalar +bool +settable\n"),
                    ContainsRegex("\n277 +prefixes +collection +Ip6AddrWithMask to RouterAdvt::PrefixConfigEntry\n"),
                    ContainsRegex("\n279 +numPrefixesToAdvertise +- +- +not reached by reflection\n"),
                    ContainsRegex("\n297 +hopLimitMax +constant +U32\n"),
                    ContainsRegex("\n298 +validHopLimit +computed +U32\n")));
}

TEST(TypesCommand, TakesTheQualifiedNameToo) {
  EXPECT_EQ(run({"types", "RouterAdvt::IntfConfig"}).out, run({"types", "IntfConfig"}).out);
}

TEST(TypesCommand, KnowsTheTypesOfThePlatform) {
  EXPECT_THAT(run({"types", "SharedTable::CollectionControl"}).out, ContainsRegex("\n258 +mountStatus +scalar "));
  EXPECT_THAT(run({"types", "Fwk::Entity"}).out, ContainsRegex("\n257 +entity +computed +Fwk::Entity\n"));
}

TEST(TypesCommand, AShortNameThatThePlatformHasTooMeansTheModelsType) {
  EXPECT_EQ(run({"types", "IntfStatus"}).out, run({"types", "RouterAdvt::IntfStatus"}).out);
  EXPECT_NE(run({"types", "IntfStatus"}).out, run({"types", "Ip6::IntfStatus"}).out);
}

TEST(TypesCommand, NamesTheTypeOfAnArgumentAndAReference) {
  EXPECT_THAT(run({"types", "DNSServerConfigEntry"}).out,
              ContainsRegex("\n262 +validLifetime +computed +U32 +takes an argument: U32\n"));
  EXPECT_THAT(run({"types", "Table::RouterNeighborRaStatus"}).out,
              ContainsRegex("\n259 +routerNeighborRaControl +scalar +SharedTable::CollectionControl +reference\n"));
}

TEST(TypesCommand, AnUnknownTypeComesWithTheNearest) {
  Outcome const outcome = run({"types", "IntfConf"});
  EXPECT_EQ(outcome.status, ExitStatus::failed);
  EXPECT_EQ(outcome.err, "there is no type \"IntfConf\"; did you mean IntfConfig?\n");
}

}  // namespace

}  // namespace Tool
