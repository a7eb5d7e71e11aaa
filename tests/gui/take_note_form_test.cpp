#include "ui/take_note_form.h"

#include <gtest/gtest.h>
#include <wx/button.h>
#include <wx/statbmp.h>
#include <wx/stattext.h>

#include <string>

#include "gui/gui_support.h"

namespace txs {
namespace {

// The text as it was before it was broken into lines.
std::string Unwrapped(const wxWindow& text) {
  wxString label = text.GetLabel();
  label.Replace("\n", " ");
  // Where a line ends in the middle of two blanks, one of them stays at its end.
  return label.utf8_string();
}

class FTakeNoteInBothLanguages : public testing::TestWithParam<long> {};

TEST_P(FTakeNoteInBothLanguages, ShowsEveryTextWhole) {
  GuiWorld world(GetParam());
  RecordingHelp help;

  FTakeNote form(nullptr, world.application, help);
  ShowAndActivate(form);

  const TextService& texts = world.application.texts;
  EXPECT_EQ(form.GetTitle().utf8_string(), texts.GetText(300));
  EXPECT_EQ(Unwrapped(*FindControl(form, "lblHeading")), texts.GetText(301));
  EXPECT_EQ(Unwrapped(*FindControl(form, "lblDevelopmentComputer")), texts.GetText(302));
  EXPECT_EQ(Unwrapped(*FindControl(form, "lblCompleteness")), texts.GetText(303));
  EXPECT_EQ(Unwrapped(*FindControl(form, "lblTips")), texts.GetText(304));
  EXPECT_TRUE(WaitFor([&] { return ClippedControls(form).empty(); })) << ClippedControls(form);
  TakePicture(form, GetParam() == 1031 ? "take_note_de" : "take_note_en");
}

INSTANTIATE_TEST_SUITE_P(Languages, FTakeNoteInBothLanguages, testing::Values(1031L, 1033L),
                         [](const auto& test) {
                           return test.param == 1031 ? "German" : "English";
                         });

TEST(FTakeNote, HasABoldHeadingAndAPicture) {
  GuiWorld world;
  RecordingHelp help;

  FTakeNote form(nullptr, world.application, help);

  EXPECT_EQ(FindControl(form, "lblHeading")->GetFont().GetWeight(), wxFONTWEIGHT_BOLD);
  EXPECT_TRUE(Control<wxStaticBitmap>(form, "imgNotice").GetBitmap().IsOk());
}

TEST(FTakeNote, OkCloses) {
  GuiWorld world;
  RecordingHelp help;
  FTakeNote form(nullptr, world.application, help);

  const int result = WhileModal(
      form, [&] { return form.ShowModal(); },
      [&] {
        Click(*FindControl(form, "cmdOK"));
        EndUnlessHidden(form);
      });

  EXPECT_EQ(result, wxID_OK);
}

TEST(FTakeNote, EnterEscapeAndTheCloseBoxAreOk) {
  struct Keys {
    int key_code;
    int modifiers;
  };
  for (const Keys keys : {Keys{WXK_RETURN, 0}, Keys{WXK_ESCAPE, 0}, Keys{WXK_F4, wxMOD_ALT}}) {
    GuiWorld world;
    RecordingHelp help;
    FTakeNote form(nullptr, world.application, help);

    const int result = WhileModal(
        form, [&] { return form.ShowModal(); },
        [&] {
          PressKey(keys.key_code, keys.modifiers);
          EndUnlessHidden(form);
        });

    EXPECT_EQ(result, wxID_OK) << keys.key_code;
  }
}

TEST(FTakeNote, HelpF1AndTheAccessKeyOpenTheHelpFile) {
  GuiWorld world;
  const std::string help_file = world.application.installation.HelpFile();
  world.platform.files.AddFile(help_file, "help");
  RecordingHelp help;
  FTakeNote form(nullptr, world.application, help);
  ShowAndActivate(form);

  Click(*FindControl(form, "cmdHelp"));
  EXPECT_TRUE(WaitFor([&] { return help.opened.size() == 1; }));
  PressKey(WXK_F1);
  EXPECT_TRUE(WaitFor([&] { return help.opened.size() == 2; }));
  PressKey('H', wxMOD_ALT);
  EXPECT_TRUE(WaitFor([&] { return help.opened.size() == 3; }));

  EXPECT_EQ(help.opened, std::vector<std::string>(3, help_file + "#0"));
}

}  // namespace
}  // namespace txs
