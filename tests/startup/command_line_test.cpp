#include "startup/command_line.h"

#include <gtest/gtest.h>

#include <array>

namespace txs {
namespace {

using Kind = CommandLine::Kind;

struct Case {
  const char* text;
  Kind kind;
  const char* name;
  const char* directory;
  const char* file;
};

class CommandLineForms : public ::testing::TestWithParam<Case> {};

TEST_P(CommandLineForms, AreTakenApart) {
  const Case& expected = GetParam();

  const CommandLine line = ParseCommandLine(expected.text);

  EXPECT_EQ(line.kind, expected.kind);
  EXPECT_EQ(line.project_name, expected.name);
  EXPECT_EQ(line.project_directory, expected.directory);
  EXPECT_EQ(line.project_file, expected.file);
}

INSTANTIATE_TEST_SUITE_P(Empty, CommandLineForms,
                         ::testing::Values(Case{"", Kind::kEmpty, "", "", ""},
                                           Case{"   ", Kind::kEmpty, "", "", ""}));

INSTANTIATE_TEST_SUITE_P(
    Project, CommandLineForms,
    ::testing::Values(
        Case{"Demo", Kind::kProject, "Demo", "", "Demo"},
        Case{"Demo.txs", Kind::kProject, "Demo", "", "Demo"},
        Case{"Demo.swz", Kind::kProject, "Demo", "", "Demo"},
        Case{"Demo.any", Kind::kProject, "Demo", "", "Demo"},
        Case{"  Demo  ", Kind::kProject, "Demo", "", "Demo"},
        Case{"C:\\P\\Demo.swz", Kind::kProject, "Demo", "C:\\P", "C:\\P\\Demo.txs"},
        Case{"C:\\P\\Demo", Kind::kProject, "Demo", "C:\\P", "C:\\P\\Demo.txs"},
        Case{"C:\\My  P\\De mo.txs", Kind::kProject, "De mo", "C:\\My  P", "C:\\My  P\\De mo.txs"},
        Case{"\"C:\\My P\\Demo.txs\"", Kind::kProject, "Demo", "C:\\My P", "C:\\My P\\Demo.txs"},
        Case{" \"Demo\" ", Kind::kProject, "Demo", "", "Demo"},
        Case{"C:\\Demo.txs", Kind::kProject, "Demo", "C:", "C:\\Demo.txs"},
        Case{"\\\\server\\p\\Demo.txs", Kind::kProject, "Demo", "\\\\server\\p",
             "\\\\server\\p\\Demo.txs"},
        Case{"C:/P/Demo.txs", Kind::kProject, "Demo", "C:/P", "C:/P\\Demo.txs"},
        Case{"C:\\P\\Linie 2.1.txs", Kind::kProject, "Linie 2.1", "C:\\P", "C:\\P\\Linie 2.1.txs"},
        Case{"C:\\P\\Klär-Süd.swz", Kind::kProject, "Klär-Süd", "C:\\P", "C:\\P\\Klär-Süd.txs"},
        Case{"Demo-x", Kind::kProject, "Demo-x", "", "Demo-x"},
        Case{"c=Demo", Kind::kProject, "c=Demo", "", "c=Demo"}));

INSTANTIATE_TEST_SUITE_P(
    Unattended, CommandLineForms,
    ::testing::Values(Case{"/c=Demo", Kind::kUnattended, "Demo", "", "Demo"},
                      Case{"/C=Demo", Kind::kUnattended, "Demo", "", "Demo"},
                      Case{"-c=Demo", Kind::kUnattended, "Demo", "", "Demo"},
                      Case{"-C=Demo", Kind::kUnattended, "Demo", "", "Demo"},
                      Case{"  /c=Demo  ", Kind::kUnattended, "Demo", "", "Demo"},
                      Case{"/c=\"C:\\My P\\Demo.swz\"", Kind::kUnattended, "Demo", "C:\\My P",
                           "C:\\My P\\Demo.txs"},
                      Case{"/c=C:\\My P\\Demo.swz", Kind::kUnattended, "Demo", "C:\\My P",
                           "C:\\My P\\Demo.txs"},
                      // Only the whole line is trimmed.
                      Case{"/c= Demo", Kind::kUnattended, " Demo", "", " Demo"},
                      Case{"/c=C:\\P\\", Kind::kUnattended, "", "C:\\P", "C:\\P\\.txs"},
                      Case{"/c=", Kind::kUnattended, "", "", ""}));

INSTANTIATE_TEST_SUITE_P(
    Refused, CommandLineForms,
    ::testing::Values(
        Case{"/c", Kind::kRefused, "", "", ""}, Case{"-c", Kind::kRefused, "", "", ""},
        Case{"/c:Demo", Kind::kRefused, "", "", ""}, Case{"-x=Demo", Kind::kRefused, "", "", ""},
        Case{"/x", Kind::kRefused, "", "", ""}, Case{"/c =Demo", Kind::kRefused, "", "", ""},
        Case{"--c=Demo", Kind::kRefused, "", "", ""},
        Case{"\xE2\x80\x93", Kind::kProject, "\xE2\x80\x93", "", "\xE2\x80\x93"},
        Case{"/", Kind::kRefused, "", "", ""}, Case{"-", Kind::kRefused, "", "", ""},
        Case{"/srv/me/Demo.txs", Kind::kRefused, "", "", ""}));

TEST(CommandLine, BothSwitchesWorkOnTheSameProjectFileWhateverTheExtension) {
  const CommandLine settings = ParseCommandLine("/C=C:\\Projects\\Demo\\Demo.swz");
  const CommandLine project = ParseCommandLine("-c=C:\\Projects\\Demo\\Demo.txs");

  EXPECT_EQ(settings.project_file, "C:\\Projects\\Demo\\Demo.txs");
  EXPECT_EQ(project.project_file, "C:\\Projects\\Demo\\Demo.txs");
}

TEST(CommandLine, ClosingQuoteAloneIsKept) {
  const CommandLine line = ParseCommandLine("/c=C:\\P\\Demo\"");

  EXPECT_EQ(line.project_name, "Demo\"");
}

TEST(StripQuotes, TakesAPair) { EXPECT_EQ(StripQuotes("\"a b\""), "a b"); }

TEST(StripQuotes, TakesAnOpeningQuoteAlone) { EXPECT_EQ(StripQuotes("\"a b"), "a b"); }

TEST(StripQuotes, KeepsAClosingQuoteAlone) { EXPECT_EQ(StripQuotes("a b\""), "a b\""); }

TEST(StripQuotes, TakesOnePairOnly) { EXPECT_EQ(StripQuotes("\"\"a\"\""), "\"a\""); }

TEST(StripQuotes, LeavesNothingOfQuotesAlone) {
  EXPECT_EQ(StripQuotes("\""), "");
  EXPECT_EQ(StripQuotes("\"\""), "");
  EXPECT_EQ(StripQuotes(""), "");
}

TEST(JoinArguments, PutsOneBlankBetween) {
  const std::array<const char*, 4> argv = {"TXSetupWizard", "/c=C:\\My", "Projects\\Demo", "x"};

  EXPECT_EQ(JoinArguments(4, argv.data()), "/c=C:\\My Projects\\Demo x");
  EXPECT_EQ(JoinArguments(2, argv.data()), "/c=C:\\My");
  EXPECT_EQ(JoinArguments(1, argv.data()), "");
  EXPECT_EQ(JoinArguments(0, argv.data()), "");
}

TEST(BehindProgramName, StandsWhatFollowsTheFirstBlankOutsideQuotes) {
  EXPECT_EQ(BehindProgramName("wizard.exe /c=Demo"), "/c=Demo");
  EXPECT_EQ(BehindProgramName("\"C:\\My Tools\\wizard.exe\" \t /c=Demo "), "/c=Demo ");
  EXPECT_EQ(BehindProgramName("C:\\\"My Tools\"\\wizard.exe /c=Demo"), "/c=Demo");
  EXPECT_EQ(BehindProgramName("\"C:\\My Tools\"\\wizard.exe\t\"Demo Süd\""), "\"Demo Süd\"");
}

TEST(BehindProgramName, IsNothingWhereThereIsNoMore) {
  for (const char* line : {"", "wizard.exe", "wizard.exe  ", "\"C:\\My Tools\\wizard.exe\"",
                           "\"C:\\My Tools\\wizard.exe /c=Demo"}) {
    EXPECT_EQ(BehindProgramName(line), "") << line;
  }
}

TEST(BehindProgramName, ALineThatBeginsWithABlankHasNoProgramName) {
  EXPECT_EQ(BehindProgramName("  Demo"), "Demo");
}

TEST(UnquoteSwitch, RemovesTheQuotesAroundAWholeSwitch) {
  EXPECT_EQ(UnquoteSwitch("\"/c=C:\\Demo Süd\\Demo.txs\""), "/c=C:\\Demo Süd\\Demo.txs");
  EXPECT_EQ(UnquoteSwitch(" \"-C=Demo\" "), "-C=Demo");
}

TEST(UnquoteSwitch, LeavesEveryOtherTextAsItIs) {
  for (const char* text : {"", "\"", "\"\"", "/c=\"C:\\a b\"", "\"C:\\a b\"", "\"-x=Demo\"",
                           "\"/c=Demo", "\"/c=a\" \"b\"", " Demo "}) {
    EXPECT_EQ(UnquoteSwitch(text), text);
  }
}

}  // namespace
}  // namespace txs
