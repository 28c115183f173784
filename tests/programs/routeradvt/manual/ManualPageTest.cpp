#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <programs/common/text/Failure.h>
#include <programs/routeradvt/cli/HelpFormatter.h>
#include <programs/routeradvt/manual/ManualPage.h>
#include <programs/routeradvt/manual/Roff.h>

#include <ostream>

namespace Tool {

namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

struct LineRow {
  char const* name;
  char const* text;
  char const* roff;
  friend void PrintTo(LineRow const& row, std::ostream* os) { *os << row.name; }
};
class RoffLine : public testing::TestWithParam<LineRow> {};
TEST_P(RoffLine, SaysNothingButTheText) { EXPECT_EQ(roffLine(GetParam().text), GetParam().roff); }
INSTANTIATE_TEST_SUITE_P(Row, RoffLine,
                         testing::Values(LineRow{"Request", ".so x", "\\&.so x"}, LineRow{"Quote", "'br", "\\(aqbr"},
                                         LineRow{"Backslash", "a\\nb", "a\\(rsnb"},
                                         LineRow{"Hyphens", "--src-mac", "\\-\\-src\\-mac"},
                                         LineRow{"QuotesOfAnArgument", "say \"x\"", "say \\(dqx\\(dq"},
                                         LineRow{"Accents", "`~^", "\\(ga\\(ti\\(ha"}, LineRow{"Nothing", "", ""}));

TEST(RoffWords, AreOnOneLine) { EXPECT_EQ(roffWords("  one\ntwo   .three"), "one two \\&.three"); }

TEST(RoffWords, ShowOptionsInBold) { EXPECT_EQ(roffWords("--to-b, -- and -"), "\\fB\\-\\-to\\-b\\fP, \\-\\- and \\-"); }

/// A program of one command.
class ManualPage : public testing::Test {
 protected:
  ManualPage() {
    program_.set_version_flag("--version", "tool 1.2", "print the version");
    program_.set_help_flag("-h,--help", "print this help");
    program_.footer("One is chosen.\nExit status: 0 success.");
    command_.set_help_flag("-h,--help", "print this help");
    command_.add_option("FILE", file_, "what it is about")->required();
    command_.add_option("REST", rest_, "the rest");
  }
  std::string of(CLI::App const& app, std::string const& prose = {}) { return manualPage(app, prose); }

  CLI::App program_{"Does it.", "tool"};
  CLI::App& command_ = *program_.add_subcommand("do", "do it");
  std::string file_, rest_, value_;
  bool loud_ = false;
};

TEST_F(ManualPage, OfACommandIsWhatItsHelpSays) {
  command_.add_option("--to", value_, "where\nit goes")->type_name("PLACE")->required();
  command_.footer("With --to it goes there.\n\n  tool do this --to .there\n  tool do that");
  EXPECT_EQ(of(command_),
            ".\\\" Made from the help of tool do.\n"
            ".TH \"TOOL\\-DO\" 1 \"\" \"tool 1.2\"\n"
            ".nr HY 0\n.ss 12 0\n.ad l\n"
            ".SH NAME\ntool\\-do \\- do it\n"
            ".SH SYNOPSIS\n.SY \"tool do\"\n\\fB\\-\\-to\\fP\\ \\fIPLACE\\fP \\fIFILE\\fP [\\fIREST\\fP]\n.YS\n"
            ".SH DESCRIPTION\nWith \\fB\\-\\-to\\fP it goes there.\n"
            ".SH OPTIONS\n"
            ".TP\n\\fIFILE\\fP\nwhat it is about\n"
            ".TP\n\\fIREST\\fP\nthe rest\n"
            ".TP\n\\fB\\-h\\fP, \\fB\\-\\-help\\fP\nprint this help\n"
            ".TP\n\\fB\\-\\-to\\fP\\ \\fIPLACE\\fP\nwhere it goes\n"
            ".SH EXIT STATUS\n0 success.\n"
            ".SH EXAMPLES\n.EX\ntool do this \\-\\-to .there\ntool do that\n.EE\n"
            ".SH SEE ALSO\n.BR tool (1)\n");
}

TEST_F(ManualPage, OfAProgramHasItsCommands) {
  EXPECT_EQ(manualPageName(program_), "tool");
  EXPECT_EQ(manualPageName(command_), "tool-do");
  EXPECT_THAT(of(program_),
              AllOf(HasSubstr(".SH NAME\ntool \\- does it\n"),
                    HasSubstr("[\\fB\\-\\-version\\fP] \\fICOMMAND\\fP ...\n.YS\n.SH DESCRIPTION\nDoes it.\n"),
                    HasSubstr(".SH COMMANDS\n.TP\n.BR tool\\-do (1)\ndo it\n.PP\nOne is chosen.\n"),
                    HasSubstr(".SH EXIT STATUS\n0 success.\n.SH SEE ALSO\n.BR tool\\-do (1)\n")));
}

TEST_F(ManualPage, SaysWhatAValueMayBeAndWhatHoldsWithoutOne) {
  command_.add_option("--n", value_, "how many")->type_name("N")->default_str("3")->check(CLI::Validator("1 to 6"));
  EXPECT_THAT(of(command_), HasSubstr("\\fB\\-\\-n\\fP\\ \\fIN\\fP\nhow many; else 3 (1 to 6)\n"));
}

TEST_F(ManualPage, ShowsNoHiddenOption) {
  command_.add_option("--secret", value_, "not told")->group("");
  EXPECT_THAT(of(command_), AllOf(Not(HasSubstr("secret")), Not(HasSubstr("not told"))));
}

TEST_F(ManualPage, ShowsGroupsOfOptions) {
  command_.add_flag("--loud", loud_, "say it")->group("Output");
  EXPECT_THAT(of(command_), HasSubstr("print this help\n.SS Output\n.TP\n\\fB\\-\\-loud\\fP\nsay it\n.SH"));
}

TEST_F(ManualPage, PutsProseBehindTheHelpInTheOrderOfSections) {
  command_.footer("From the help.");
  std::string const page = of(command_,
                              ".SH SEE ALSO\n.BR other (1)\n.SH SPELLS\n.B one\n.SH FILES\nnone\n.SH CURSES\ntwo\n"
                              ".SH DESCRIPTION\nFrom the prose.\nAll of it.\n");
  EXPECT_THAT(page, HasSubstr(".SH DESCRIPTION\nFrom the help.\n.PP\nFrom the prose.\nAll of it.\n.SH OPTIONS\n"));
  EXPECT_THAT(page, HasSubstr(".SH SPELLS\n.B one\n.SH CURSES\ntwo\n.SH EXIT STATUS\n0 success.\n.SH FILES\nnone\n"
                              ".SH SEE ALSO\n.BR tool (1),\n.BR other (1)\n"));
}

TEST_F(ManualPage, TakesNoProseForWhatIsTheHelpsToSay) {
  for (char const* section : {"NAME", "SYNOPSIS", "OPTIONS", "COMMANDS"})
    EXPECT_THROW(of(command_, ".SH " + std::string(section) + "\nx\n"), Failure) << section;
}

TEST_F(ManualPage, TakesNoProseOutsideOfSections) { EXPECT_THROW(of(command_, "x\n.SH NOTES\ny\n"), Failure); }

}  // namespace

}  // namespace Tool
