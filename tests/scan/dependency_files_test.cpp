#include "scan/dependency_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "environment/runtime_error.h"
#include "fakes/memory_platform.h"
#include "scan/scan_world.h"

namespace txs {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::optional<DependencyEntries> Find(const std::vector<std::string>& lines,
                                      std::string_view name) {
  const ProfileDocument document(Lines(lines));
  return DependencyFile(document).Find(name);
}

TEST(RegistrationKind, MapsTheKnownTextsWithoutRegardToCase) {
  EXPECT_EQ(RegistrationKindOf(""), RegistrationKind::kNone);
  EXPECT_EQ(RegistrationKindOf("$(DLLSelfRegister)"), RegistrationKind::kInProcess);
  EXPECT_EQ(RegistrationKindOf("$(dllSELFregister)"), RegistrationKind::kInProcess);
  EXPECT_EQ(RegistrationKindOf("$(EXESelfRegister)"), RegistrationKind::kOutOfProcess);
  EXPECT_EQ(RegistrationKindOf("$(Remote)"), RegistrationKind::kRemote);
  EXPECT_EQ(RegistrationKindOf("$(TLBRegister)"), RegistrationKind::kTypeLibrary);
}

TEST(RegistrationKind, OfAnyOtherTextIsThree) {
  EXPECT_EQ(RegistrationKindOf("$(DLLSelfRegisterEx)"), RegistrationKind::kOther);
  EXPECT_EQ(RegistrationKindOf("odd"), RegistrationKind::kOther);
}

TEST(DependencyFile, GivesTheEntriesOfASectionOfAnyCase) {
  const auto entries = Find({"[Comp.OCX]", "Register=$(DLLSelfRegister)", "Uses1=a.dll",
                             "uses2=b.dll", "I1=SetVar(a|1)", "REPLACE=mdac_typ.exe"},
                            "COMP.ocx");

  ASSERT_TRUE(entries);
  EXPECT_EQ(entries->registration, RegistrationKind::kInProcess);
  EXPECT_EQ(entries->replace, "mdac_typ.exe");
  EXPECT_THAT(entries->uses, ElementsAre("a.dll", "b.dll"));
  EXPECT_THAT(entries->script_lines, ElementsAre("SetVar(a|1)"));
}

TEST(DependencyFile, EndsTheListAtAGap) {
  EXPECT_THAT(Find({"[x.dll]", "Uses1=a.dll", "Uses3=c.dll"}, "x.dll")->uses, ElementsAre("a.dll"));
}

TEST(DependencyFile, EndsTheListAtAnEmptyLastEntry) {
  EXPECT_THAT(Find({"[x.dll]", "Uses1=a.dll", "Uses2=", "Uses3=c.dll"}, "x.dll")->uses,
              ElementsAre("a.dll"));
}

TEST(DependencyFile, PassesOverValuesThatAreComments) {
  EXPECT_THAT(
      Find({"[x.dll]", "Uses1=;a.dll", "Uses2=b.dll ; needed", "Uses3=c;d.dll"}, "x.dll")->uses,
      ElementsAre("b.dll", "c;d.dll"));
}

TEST(DependencyFile, KeepsSemicolonsInsideScriptLines) {
  EXPECT_THAT(Find({"[x.dll]", "I1=;old", "I2=SetVar(a|b ;c)"}, "x.dll")->script_lines,
              ElementsAre("SetVar(a|b ;c)"));
}

TEST(DependencyFile, ReadsASectionWithACommentBehindItsHeader) {
  EXPECT_TRUE(Find({"[x.dll] ; the component"}, "x.dll"));
}

TEST(DependencyFile, DoesNotMistakeThePseudoSectionVersionForAFile) {
  EXPECT_FALSE(Find({"[Version]", "Version=6.0.81.69"}, "x.dll"));
}

TEST(DependencyFile, AddsGermanThenEnglishBehindThePlainSection) {
  const auto entries =
      Find({"[x.ocx <0009>]", "Uses1=english.dll", "[x.ocx <000C>]", "Uses1=french.dll",
            "[x.ocx <0007>]", "Uses1=german.dll", "Register=odd", "[x.ocx]", "Uses1=plain.dll",
            "Register=$(DLLSelfRegister)"},
           "x.ocx");

  ASSERT_TRUE(entries);
  EXPECT_THAT(entries->uses, ElementsAre("plain.dll", "german.dll", "english.dll"));
  EXPECT_EQ(entries->registration, RegistrationKind::kInProcess);
}

TEST(DependencyFile, TakesTheRegistrationFromALocalisedSectionWhereThePlainOneHasNone) {
  EXPECT_EQ(
      Find({"[x.ocx]", "[x.ocx <0007>]", "Register=$(EXESelfRegister)"}, "x.ocx")->registration,
      RegistrationKind::kOutOfProcess);
}

TEST(DependencyFile, TakesTheFirstOtherLanguageWhereNothingElseIs) {
  EXPECT_THAT(
      Find({"[x.ocx <000C>]", "Uses1=french.dll", "[x.ocx <000A>]", "Uses1=spanish.dll"}, "x.ocx")
          ->uses,
      ElementsAre("french.dll"));
}

TEST(DependencyFile, LeavesOtherLanguagesAloneBesideAPlainSection) {
  EXPECT_THAT(Find({"[x.ocx]", "[x.ocx <000C>]", "Uses1=french.dll"}, "x.ocx")->uses, IsEmpty());
}

TEST(DependencyFile, DoesNotTakeOddBracketsForALanguage) {
  EXPECT_FALSE(Find({"[x.ocx <German>]", "[x.ocx <>]", "[x.ocx <0007]"}, "x.ocx"));
  EXPECT_TRUE(Find({"[<0007>]"}, "<0007>"));
}

TEST(DependencyFile, SurvivesJunk) {
  std::mt19937 random(7);
  for (int round = 0; round < 300; ++round) {
    std::string bytes;
    const std::string alphabet = std::string("[]<>=;\"\r\n UsesI1Replace07\xE4\xFF") + '\0';
    for (auto i = random() % 400; i > 0; --i) bytes += alphabet[random() % alphabet.size()];
    bytes += "\n[x.dll]\nUses1=a.dll\n";
    const ProfileDocument document(bytes);

    EXPECT_TRUE(DependencyFile(document).Find("x.dll")) << round;
  }
}

TEST(DependencyFiles, ReadEachFileOnce) {
  MemoryPlatform platform;
  platform.files.AddFile("C:\\a.dep", Lines({"[x.dll]"}));
  DependencyFiles files(platform.files, platform.profiles);

  const DependencyFile* const first = files.Open("C:\\a.dep");
  const std::size_t operations = platform.files.OperationCount();
  const DependencyFile* const second = files.Open("C:\\A.DEP");

  EXPECT_NE(first, nullptr);
  EXPECT_EQ(first, second);
  EXPECT_EQ(platform.files.OperationCount(), operations);
}

TEST(DependencyFiles, OpenTheDepBesideAComponent) {
  MemoryPlatform platform;
  platform.files.AddFile("C:\\Srv\\Comp.dep", "");
  DependencyFiles files(platform.files, platform.profiles);

  EXPECT_NE(files.OpenOwn("C:\\Srv\\Comp.ocx"), nullptr);
  EXPECT_EQ(files.OpenOwn("C:\\Srv\\Other.ocx"), nullptr);
}

TEST(DependencyFiles, ReportAnUnreadableFileOnce) {
  MemoryPlatform platform;
  platform.files.AddFile("C:\\a.dep", "[x.dll]\n");
  platform.files.FailPath("C:\\a.dep", "OpenForReading", ErrorNumber::kPermissionDenied);
  DependencyFiles files(platform.files, platform.profiles);

  try {
    static_cast<void>(files.Open("C:\\a.dep"));
    FAIL() << "nothing was thrown";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::kPermissionDenied);
  }
  EXPECT_EQ(files.Open("C:\\a.dep"), nullptr);
}

}  // namespace
}  // namespace txs
