#include "document/path_variables.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "environment/runtime_error.h"
#include "fakes/memory_platform.h"

namespace txs {
namespace {

using ::testing::ElementsAre;

// A project inside the studio's directory, as the list of an opened project has it.
PathVariableList Variables() {
  return {
      {"<ProjectDir>", "C:\\TavixStudio\\Projects\\Demo"},
      {"<TavixCommonDir>", "C:\\TavixStudio\\Common"},
      {"<TavixStudioDir>", "C:\\TavixStudio"},
      {"<TavixMainDir>", "C:\\Tavix"},
      {"<WinSysDir>", "C:\\Windows\\System32"},
      {"<FontDir>", "C:\\Windows\\Fonts"},
      {"<WinDir>", "C:\\Windows"},
      {"<CommonFilesDir>", "C:\\Program Files\\Common Files"},
      {"<ProgramFilesDir>", "C:\\Program Files"},
  };
}

std::string WholePath(std::string_view path) {
  return ToVariableForm(Variables(), path, VariableForm::kWholePath);
}

std::string DirectoryOnly(std::string_view path) {
  return ToVariableForm(Variables(), path, VariableForm::kDirectoryOnly);
}

TEST(ToVariableForm, WritesAFileUnderTheProjectDirectoryWithItsVariable) {
  EXPECT_EQ(WholePath("C:\\TavixStudio\\Projects\\Demo\\Bilder\\Logo.bmp"),
            "<ProjectDir>\\Bilder\\Logo.bmp");
  EXPECT_EQ(WholePath("C:\\TavixStudio\\Projects\\Demo\\Demo.txs"), "<ProjectDir>\\Demo.txs");
}

TEST(ToVariableForm, GivesTheDirectoryAloneWhenAsked) {
  EXPECT_EQ(DirectoryOnly("C:\\Windows\\System32\\x.dll"), "<WinSysDir>");
  EXPECT_EQ(DirectoryOnly("C:\\Windows\\System32\\drivers\\x.sys"), "<WinSysDir>\\drivers");
}

TEST(ToVariableForm, GivesTheSystemDirectoryForADirectoryOnAnotherDrive) {
  EXPECT_EQ(DirectoryOnly("D:\\Fremd\\x.dll"), "<WinSysDir>");
}

TEST(ToVariableForm, KeepsTheWholePathOfAFileOnAnotherDrive) {
  EXPECT_EQ(WholePath("D:\\Fremd\\x.dll"), "D:\\Fremd\\x.dll");
}

TEST(ToVariableForm, MatchesWithoutRegardToCase) {
  const PathVariableList variables = {{"<ProjectDir>", "C:\\KLÄRANLAGE"}};

  EXPECT_EQ(ToVariableForm(variables, "c:\\Kläranlage\\Süd\\X.dll", VariableForm::kWholePath),
            "<ProjectDir>\\Süd\\X.dll");
}

TEST(ToVariableForm, TakesTheFirstMatchOfTheList) {
  EXPECT_EQ(WholePath("C:\\TavixStudio\\Projects\\Demo\\x.dll"), "<ProjectDir>\\x.dll");
  EXPECT_EQ(WholePath("C:\\Windows\\Fonts\\x.ttf"), "<FontDir>\\x.ttf");
}

TEST(ToVariableForm, TakesAShorterFirstMatchBeforeALongerLaterOne) {
  const PathVariableList variables = {{"<A>", "C:\\Demo"}, {"<B>", "C:\\Demo\\Tief"}};

  EXPECT_EQ(ToVariableForm(variables, "C:\\Demo\\Tief\\x", VariableForm::kWholePath),
            "<A>\\Tief\\x");
}

TEST(ToVariableForm, MatchesADirectoryThatOnlyBeginsLikeTheValue) {
  EXPECT_EQ(WholePath("C:\\TavixStudio\\Projects\\Demo2\\x.dll"), "<ProjectDir>2\\x.dll");
  EXPECT_EQ(DirectoryOnly("C:\\TavixStudio\\Projects\\Demo2\\x.dll"), "<ProjectDir>2");
}

TEST(ToVariableForm, MatchesEveryDirectoryWithAnEmptyValue) {
  PathVariableList variables = Variables();
  SetPathVariable(variables, "<TavixCommonDir>", "");

  EXPECT_EQ(ToVariableForm(variables, "D:\\Fremd\\x.dll", VariableForm::kWholePath),
            "<TavixCommonDir>D:\\Fremd\\x.dll");
  EXPECT_EQ(ToVariableForm(variables, "x.dll", VariableForm::kDirectoryOnly), "<TavixCommonDir>");
  EXPECT_EQ(
      ToVariableForm(variables, "C:\\TavixStudio\\Projects\\Demo\\x.dll", VariableForm::kWholePath),
      "<ProjectDir>\\x.dll");
}

TEST(ToVariableForm, ComparesWithTheDirectoryWithoutItsTrailingBackslash) {
  const PathVariableList variables = {{"<ProjectDir>", "C:\\Demo\\"}};

  EXPECT_EQ(ToVariableForm(variables, "C:\\Demo\\x.dll", VariableForm::kWholePath),
            "C:\\Demo\\x.dll");
  EXPECT_EQ(ToVariableForm(variables, "C:\\Demo\\Sub\\x.dll", VariableForm::kWholePath),
            "<ProjectDir>Sub\\x.dll");
}

TEST(ToVariableForm, IsEmptyForAnUnknownForm) {
  EXPECT_EQ(ToVariableForm(Variables(), "C:\\Windows\\x", static_cast<VariableForm>(2)), "");
}

TEST(FromVariableForm, GivesBackTheDirectoryThatMatched) {
  for (const char* path : {
           "C:\\TavixStudio\\Projects\\Demo\\Bilder\\Logo.bmp",
           "C:\\TavixStudio\\Projects\\Demo2\\x.dll",
           "C:\\Windows\\System32\\x.dll",
           "C:\\Program Files\\Common Files\\Microsoft\\x.dll",
           "D:\\Fremd\\x.dll",
       }) {
    EXPECT_EQ(FromVariableForm(Variables(), WholePath(path)), path);
  }
}

TEST(FromVariableForm, ReplacesEveryOccurrenceWithoutRegardToCase) {
  EXPECT_EQ(FromVariableForm(Variables(), "<windir>\\a|<WINDIR>\\b|<FontDir>"),
            "C:\\Windows\\a|C:\\Windows\\b|C:\\Windows\\Fonts");
}

TEST(FromVariableForm, LeavesUnknownNamesAndLoneBracketsAlone) {
  EXPECT_EQ(FromVariableForm(Variables(), "<ProjektDir>\\<x"), "<ProjektDir>\\<x");
  EXPECT_EQ(FromVariableForm(Variables(), "<<WinDir>>"), "<C:\\Windows>");
  EXPECT_EQ(FromVariableForm(Variables(), ""), "");
}

TEST(FromVariableForm, ReplacesInListOrderOneVariableAfterTheOther) {
  const PathVariableList variables = {{"<A>", "<B>\\a"}, {"<B>", "<A>\\b"}};

  EXPECT_EQ(FromVariableForm(variables, "<A>"), "<A>\\b\\a");
  EXPECT_EQ(FromVariableForm(variables, "<B>"), "<A>\\b");
}

TEST(FromVariableForm, EndsForAValueThatHoldsItsOwnName) {
  const PathVariableList variables = {{"<A>", "<A><A>"}};

  EXPECT_EQ(FromVariableForm(variables, "<A>x<A>"), "<A><A>x<A><A>");
}

TEST(FromVariableForm, RefusesValuesThatDoubleTheTextWithoutEnd) {
  PathVariableList variables;
  for (int n = 1; n <= 60; ++n) {
    const std::string next = "<UserDir" + std::to_string(n + 1) + ">";
    variables.push_back({"<UserDir" + std::to_string(n) + ">", next + next});
  }

  try {
    (void)FromVariableForm(variables, "<UserDir1>");
    FAIL() << "no error was thrown";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::kOutOfMemory);
  }
}

TEST(FromVariableForm, ResolvesALongTextWithManyNames) {
  constexpr std::size_t kNames = 200000;
  std::string text;
  std::string expected;
  for (std::size_t i = 0; i < kNames; ++i) {
    text += "<WinDir>;";
    expected += "C:\\Windows;";
  }

  EXPECT_EQ(FromVariableForm(Variables(), text), expected);
}

TEST(PathVariables, OfAProjectAreNineInTheirOrder) {
  MemoryPlatform memory;
  InstallationSettings installation;
  installation.common_directory = "C:\\TavixStudio\\Common";
  installation.studio_directory = "C:\\TavixStudio";
  installation.main_directory = "C:\\Tavix";

  EXPECT_EQ(BuildPathVariables(installation, memory.tools, "C:\\TavixStudio\\Projects\\Demo"),
            Variables());
}

// The studio registers projects with a trailing backslash: nothing in their directory itself was
// written with its variable.
TEST(PathVariables, HoldDirectoriesWithoutTheirTrailingBackslashes) {
  MemoryPlatform memory;
  InstallationSettings installation;
  installation.main_directory = "C:\\TavixStudio\\";

  const PathVariableList variables = BuildPathVariables(installation, memory.tools, "C:\\Demo\\\\");

  EXPECT_EQ(variables[0], (PathVariable{"<ProjectDir>", "C:\\Demo"}));
  EXPECT_EQ(variables[3], (PathVariable{"<TavixMainDir>", "C:\\TavixStudio"}));
  for (const char* path : {"C:\\Demo\\x.dll", "C:\\Demo\\Sub\\x.dll", "C:\\Demo2\\x.dll"}) {
    const std::string form = ToVariableForm(variables, path, VariableForm::kWholePath);
    EXPECT_TRUE(form.starts_with("<ProjectDir>")) << form;
    EXPECT_EQ(FromVariableForm(variables, form), path);
  }
}

// Builds are called with "/" and with doubled backslashes; a Scan tidies what it finds.
TEST(PathVariables, KnowTheFilesOfADirectoryHoweverItIsSpelled) {
  MemoryPlatform memory;
  InstallationSettings installation;
  installation.main_directory = "C:\\TavixStudio";
  installation.studio_directory = installation.main_directory;
  installation.common_directory = "C:\\TavixStudio\\Common";
  for (const char* spelling : {"C:/Projects/Demo", "C:\\Projects\\\\Demo",
                               "C:\\Projects\\.\\Demo\\", "C:\\Projects\\Other\\..\\Demo"}) {
    const PathVariableList variables = BuildPathVariables(installation, memory.tools, spelling);

    EXPECT_EQ(ToVariableForm(variables, "C:\\Projects\\Demo\\x.dll", VariableForm::kDirectoryOnly),
              "<ProjectDir>")
        << spelling;
    EXPECT_EQ(
        ToVariableForm(variables, std::string(spelling) + "\\Setup", VariableForm::kWholePath),
        "<ProjectDir>\\Setup")
        << spelling;
  }
}

TEST(PathVariables, KnowAProjectInTheRootOfADrive) {
  MemoryPlatform memory;

  const PathVariableList variables = BuildPathVariables({}, memory.tools, "D:\\");

  EXPECT_EQ(ToVariableForm(variables, "D:\\x.dll", VariableForm::kWholePath),
            "<ProjectDir>\\x.dll");
  EXPECT_EQ(FromVariableForm(variables, "<ProjectDir>\\x.dll"), "D:\\x.dll");
}

TEST(PathVariables, ValueOfBackslashesOnlyDoesNotMatchEveryDirectory) {
  PathVariableList variables;

  SetPathVariable(variables, "<UserDir1>", "\\");
  SetPathVariable(variables, "<UserDir2>", ".");

  EXPECT_EQ(ToVariableForm(variables, "C:\\x.dll", VariableForm::kWholePath), "C:\\x.dll");
}

TEST(PathVariables, AreSetUnderTheirNameInAnyCaseElseAppended) {
  PathVariableList variables = {{"<TempDir>", "C:\\Alt"}};

  SetPathVariable(variables, "<TEMPDIR>", "C:\\Neu");
  SetPathVariable(variables, "<UserDir1>", "D:\\Messwerte");

  EXPECT_THAT(variables, ElementsAre(PathVariable{"<TempDir>", "C:\\Neu"},
                                     PathVariable{"<UserDir1>", "D:\\Messwerte"}));
}

}  // namespace
}  // namespace txs
