#include "ui/info_form.h"

#include <gtest/gtest.h>
#include <wx/button.h>
#include <wx/statbmp.h>

#include <algorithm>
#include <array>
#include <string>

#include "environment/installation.h"
#include "gui/gui_support.h"

namespace txs {
namespace {

std::string TextOf(FInfo& form, const std::string& name) {
  return FindControl(form, name)->GetLabel().utf8_string();
}

void Put16(std::string& bytes, std::size_t at, unsigned value) {
  bytes.resize(std::max(bytes.size(), at + 2));
  bytes[at] = static_cast<char>(value & 0xFF);
  bytes[at + 1] = static_cast<char>(value >> 8);
}

// The smallest program file that has a version: a 16-bit one, nothing in it but the resource.
std::string ProgramOfVersion(const std::array<unsigned, 4>& version) {
  constexpr std::size_t kHeader = 0x40;
  constexpr std::size_t kTable = 0x80;
  constexpr std::size_t kResource = 0x100;
  std::string image = "MZ";
  Put16(image, 0x3C, kHeader);
  Put16(image, 0x3E, 0);
  Put16(image, kHeader, 0x454E);
  Put16(image, kHeader + 0x24, kTable - kHeader);
  Put16(image, kTable, 4);           // units of 16 bytes
  Put16(image, kTable + 2, 0x8010);  // versions
  Put16(image, kTable + 4, 1);
  Put16(image, kTable + 10, kResource >> 4);
  Put16(image, kTable + 12, 0x60 >> 4);
  Put16(image, kTable + 22, 0);
  Put16(image, kHeader + 0x26, kTable + 24 - kHeader);
  Put16(image, kResource, 0x60);
  Put16(image, kResource + 2, 52);
  image += std::string("VS_VERSION_INFO\0", 16);
  const std::size_t fixed_info = image.size();
  Put16(image, fixed_info, 0x04BD);
  Put16(image, fixed_info + 2, 0xFEEF);
  for (std::size_t i = 0; i < version.size(); ++i) {
    // Each pair has its lower half in front.
    Put16(image, fixed_info + 8 + 2 * (i ^ 1), version[i]);
  }
  image.resize(kResource + 0x60);
  return image;
}

class FInfoInBothLanguages : public testing::TestWithParam<long> {};

TEST_P(FInfoInBothLanguages, ShowsEveryTextAndClipsNothing) {
  GuiWorld world(GetParam());
  const bool german = GetParam() == 1031;

  FInfo form(nullptr, world.application);
  ShowAndActivate(form);

  EXPECT_EQ(form.GetTitle().utf8_string(),
            german ? "Info über TavixStudio" : "Info about TavixStudio");
  EXPECT_EQ(TextOf(form, "lblInfo250"), "TavixStudio");
  EXPECT_EQ(TextOf(form, "lblInfo251"),
            german ? "für Visual Basic 5.0 und 6.0" : "for Visual Basic 5.0 and 6.0");
  EXPECT_EQ(TextOf(form, "lblInfo201"),
            german ? "Tavix®Studio Setup-Assistent" : "Tavix®Studio Setup Wizard");
  EXPECT_EQ(TextOf(form, "lblInfo203"),
            german ? "Tavix®Studio-Installation" : "Tavix®Studio Installation");
  EXPECT_EQ(TextOf(form, "lblInfo205"), german ? "Dateiversion" : "File Version");
  EXPECT_EQ(TextOf(form, "lblInfo202"), "Version");
  EXPECT_TRUE(Control<wxStaticBitmap>(form, "imgApplication").GetBitmap().IsOk());
  EXPECT_TRUE(WaitFor([&] { return ClippedControls(form).empty(); })) << ClippedControls(form);
  TakePicture(form, german ? "info_de" : "info_en");
}

TEST_P(FInfoInBothLanguages, SaysThatTheStudioVersionIsUnknownWhenTheRegistryHasNone) {
  GuiWorld world(GetParam());
  world.platform.registry.RemoveKey(Hive::kLocalMachine, kStudioKey);

  FInfo form(nullptr, world.application);

  EXPECT_EQ(TextOf(form, "lblStudioVersion"), GetParam() == 1031 ? "(unbekannt)" : "(unknown)");
}

INSTANTIATE_TEST_SUITE_P(Languages, FInfoInBothLanguages, testing::Values(1031L, 1033L),
                         [](const auto& test) {
                           return test.param == 1031 ? "German" : "English";
                         });

TEST(FInfo, ShowsTheStudioVersionOfTheRegistry) {
  GuiWorld world;

  FInfo form(nullptr, world.application);

  EXPECT_EQ(TextOf(form, "lblStudioVersion"), "4.0.12");
}

TEST(FInfo, ShowsTheVersionOfTheProgramsOwnFile) {
  GuiWorld world;
  world.platform.tools.Initialize({"C:\\TavixStudio\\Studio", "TXSetupWizard", "Setup Wizard"});
  world.platform.files.AddFile("C:\\TavixStudio\\Studio\\TXSetupWizard.exe",
                               ProgramOfVersion({4, 0, 12, 345}));

  FInfo form(nullptr, world.application);

  EXPECT_EQ(TextOf(form, "lblFileVersion"), "4.0.12.345");
}

TEST(FInfo, ShowsTheVersionOfTheBuildWhereTheProgramsFileHasNone) {
  GuiWorld world;
  world.platform.tools.Initialize({"Z:\\usr\\bin", "TXSetupWizard", "Setup Wizard"});

  FInfo form(nullptr, world.application);

  EXPECT_EQ(TextOf(form, "lblFileVersion"), TXS_VERSION);
}

TEST(FInfo, OkCloses) {
  GuiWorld world;
  FInfo form(nullptr, world.application);

  const int result = WhileModal(
      form, [&] { return form.ShowModal(); },
      [&] {
        Click(*FindControl(form, "cmdOK"));
        EndUnlessHidden(form);
      });

  EXPECT_EQ(result, wxID_OK);
}

TEST(FInfo, EnterAndEscapeAreOk) {
  for (const int key : {WXK_RETURN, WXK_ESCAPE}) {
    GuiWorld world;
    FInfo form(nullptr, world.application);

    const int result = WhileModal(
        form, [&] { return form.ShowModal(); },
        [&] {
          PressKey(key);
          EndUnlessHidden(form);
        });

    EXPECT_EQ(result, wxID_OK) << key;
  }
}

TEST(FInfo, F1OpensTheHelpFile) {
  GuiWorld world;
  world.platform.files.AddFile(world.application.installation.HelpFile(), "help");
  RecordingHelp help;
  FInfo form(nullptr, world.application, &help);
  ShowAndActivate(form);

  PressKey(WXK_F1);

  EXPECT_TRUE(WaitFor([&] { return help.opened.size() == 1; }));
}

}  // namespace
}  // namespace txs
