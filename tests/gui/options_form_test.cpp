#include "ui/options_form.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/listctrl.h>
#include <wx/textctrl.h>

#include <functional>
#include <string>

#include "document/path_variables.h"
#include "environment/installation.h"
#include "gui/gui_support.h"

namespace txs {
namespace {

// A project is open.
struct StudioWithProject : GuiWorld {
  explicit StudioWithProject(long language_id = 1031) : GuiWorld(language_id) {
    application.document.path_variables =
        BuildPathVariables(application.installation, platform.tools, "C:\\Projects\\Demo & Test");
  }

  [[nodiscard]] std::int64_t StoredOption() const {
    return platform.tools.RegistryNumber(Hive::kCurrentUser, kWizardKey, "UseRuntimeSetup", -1);
  }

  RecordingHelp help;
};

wxListView& List(FOptions& form) { return Control<wxListView>(form, "lvwVariables"); }
wxCheckBox& Box(FOptions& form) { return Control<wxCheckBox>(form, "chkUseRuntimeSetup"); }

wxPoint OnRow(wxListView& list, long row) {
  wxRect at;
  EXPECT_TRUE(list.GetItemRect(row, at));
  return list.ClientToScreen(wxPoint(at.x + 20, at.y + at.height / 2));
}

int Answer(FOptions& form, const std::function<void()>& action) {
  return WhileModal(
      form, [&] { return form.ShowModal(); }, action);
}

class FOptionsInBothLanguages : public testing::TestWithParam<long> {};

TEST_P(FOptionsInBothLanguages, ShowsEveryTextAndClipsNothing) {
  StudioWithProject world(GetParam());
  const bool german = GetParam() == 1031;

  FOptions form(nullptr, world.application, world.help);
  ShowAndActivate(form);

  EXPECT_EQ(form.GetTitle().utf8_string(), german ? "TavixStudio - Setup-Assistent: Optionen"
                                                  : "TavixStudio - Setup Wizard: Options");
  EXPECT_EQ(FindControl(form, "fraVariables")->GetLabel().utf8_string(),
            german ? "Pfadvariablen für Quelldateien (Schritt 4)"
                   : "Path variables for source files (step 4)");
  EXPECT_EQ(FindControl(form, "fraOptions")->GetLabel().utf8_string(),
            german ? "Optionen für 'Durchsuchen' und 'Hinzufügen' (Schritt 4)"
                   : "Options for 'Scan' and 'Add' (step 4)");
  EXPECT_EQ(Box(form).GetLabelText().utf8_string(),
            german ? "Vordefiniertes Setup für Laufzeitkomponenten verwenden (empfohlen)"
                   : "Use pre-defined setup for runtime components (recommended)");
  wxListItem header;
  header.SetMask(wxLIST_MASK_TEXT);
  List(form).GetColumn(0, header);
  EXPECT_EQ(header.GetText(), "Variable");
  List(form).GetColumn(1, header);
  EXPECT_EQ(header.GetText(), german ? "Wert" : "Value");
  EXPECT_TRUE(WaitFor([&] { return ClippedControls(form).empty(); })) << ClippedControls(form);
  TakePicture(form, german ? "options_de" : "options_en");
}

INSTANTIATE_TEST_SUITE_P(Languages, FOptionsInBothLanguages, testing::Values(1031L, 1033L),
                         [](const auto& test) {
                           return test.param == 1031 ? "German" : "English";
                         });

TEST(FOptions, ListsThePathVariablesInTheirOrder) {
  StudioWithProject world;

  FOptions form(nullptr, world.application, world.help);

  std::string names;
  for (long row = 0; row < List(form).GetItemCount(); ++row) {
    names += List(form).GetItemText(row, 0).utf8_string();
  }
  EXPECT_EQ(names,
            "<ProjectDir><TavixCommonDir><TavixStudioDir><TavixMainDir><WinSysDir><FontDir><WinDir>"
            "<CommonFilesDir><ProgramFilesDir>");
  EXPECT_EQ(List(form).GetItemText(0, 1), "C:\\Projects\\Demo & Test");
  EXPECT_EQ(List(form).GetItemText(3, 1), "C:\\TavixStudio");
}

TEST(FOptions, WithoutAProjectTheListIsEmpty) {
  GuiWorld world;
  RecordingHelp help;

  FOptions form(nullptr, world.application, help);
  ShowAndActivate(form);

  EXPECT_EQ(List(form).GetItemCount(), 0);
  EXPECT_TRUE(WaitFor([&] { return ClippedControls(form).empty(); })) << ClippedControls(form);
}

TEST(FOptions, TheBoxShowsTheOption) {
  StudioWithProject world;
  world.application.use_runtime_setup = false;
  FOptions off(nullptr, world.application, world.help);
  world.application.use_runtime_setup = true;
  FOptions on(nullptr, world.application, world.help);

  EXPECT_TRUE(Box(on).GetValue());
  EXPECT_FALSE(Box(off).GetValue());
}

TEST(FOptions, OkKeepsTheOptionInTheRegistry) {
  StudioWithProject world;
  FOptions form(nullptr, world.application, world.help);

  const int result = Answer(form, [&] {
    Click(Box(form));
    EXPECT_TRUE(WaitFor([&] { return !Box(form).GetValue(); }));
    Click(*FindControl(form, "cmdOK"));
    EndUnlessHidden(form);
  });

  EXPECT_EQ(result, wxID_OK);
  EXPECT_EQ(world.StoredOption(), 0);
  EXPECT_FALSE(world.application.use_runtime_setup);
}

TEST(FOptions, CancelChangesNothing) {
  StudioWithProject world;
  FOptions form(nullptr, world.application, world.help);

  const int result = Answer(form, [&] {
    Click(Box(form));
    EXPECT_TRUE(WaitFor([&] { return !Box(form).GetValue(); }));
    Click(*FindControl(form, "cmdCancel"));
    EndUnlessHidden(form);
  });

  EXPECT_EQ(result, wxID_CANCEL);
  EXPECT_EQ(world.StoredOption(), -1);
  EXPECT_TRUE(world.application.use_runtime_setup);
}

TEST(FOptions, EscapeAndTheCloseBoxAreCancel) {
  struct Keys {
    int key_code;
    int modifiers;
  };
  for (const Keys keys : {Keys{WXK_ESCAPE, 0}, Keys{WXK_F4, wxMOD_ALT}}) {
    StudioWithProject world;
    FOptions form(nullptr, world.application, world.help);

    const int result = Answer(form, [&] {
      Click(Box(form));
      EXPECT_TRUE(WaitFor([&] { return !Box(form).GetValue(); }));
      PressKey(keys.key_code, keys.modifiers);
      EndUnlessHidden(form);
    });

    EXPECT_EQ(result, wxID_CANCEL) << keys.key_code;
    EXPECT_EQ(world.StoredOption(), -1) << keys.key_code;
  }
}

TEST(FOptions, TheKeyboardAloneTogglesAndConfirms) {
  StudioWithProject world;
  FOptions form(nullptr, world.application, world.help);

  const int result = Answer(form, [&] {
    PressKey('V', wxMOD_ALT);
    EXPECT_TRUE(WaitFor([&] { return !Box(form).GetValue(); }));
    List(form).SetFocus();
    PressKey(WXK_RETURN);
    EndUnlessHidden(form);
  });

  EXPECT_EQ(result, wxID_OK);
  EXPECT_EQ(world.StoredOption(), 0);
}

TEST(FOptions, ARegistryThatRefusesIsSaidAndTheDialogStays) {
  StudioWithProject world;
  FOptions form(nullptr, world.application, world.help);
  bool stays = false;

  const int result = Answer(form, [&] {
    Click(Box(form));
    EXPECT_TRUE(WaitFor([&] { return !Box(form).GetValue(); }));
    world.platform.registry.refuse_changes = ErrorNumber::kPermissionDenied;
    Click(*FindControl(form, "cmdOK"));
    EXPECT_TRUE(WaitFor([&] { return !world.messages.shown.empty(); }));
    stays = form.IsShown();
    world.platform.registry.refuse_changes.reset();
    PressKey(WXK_ESCAPE);
    EndUnlessHidden(form);
  });

  EXPECT_TRUE(stays);
  EXPECT_EQ(result, wxID_CANCEL);
  EXPECT_EQ(world.messages.Ids(), std::vector<long>{1942});
  EXPECT_THAT(world.messages.shown.at(0).prompt, testing::HasSubstr(kWizardKey));
  EXPECT_THAT(world.messages.shown.at(0).prompt, testing::HasSubstr("(70: "));
  EXPECT_TRUE(world.application.use_runtime_setup);
}

TEST(FOptions, ADoubleClickOnAVariableDoesNothing) {
  StudioWithProject world;
  FOptions form(nullptr, world.application, world.help);
  bool open = false;
  bool edited = true;

  const int result = Answer(form, [&] {
    DoubleClickAt(OnRow(List(form), 1));
    EXPECT_TRUE(WaitFor([&] { return List(form).GetFirstSelected() == 1; }));
    open = form.IsShown();
    edited = FindControl(form, "txtVariable")->IsShown();
    PressKey(WXK_ESCAPE);
    EndUnlessHidden(form);
  });

  EXPECT_TRUE(open);
  EXPECT_FALSE(edited);
  EXPECT_EQ(result, wxID_CANCEL);
}

TEST(FOptions, TheTextBoxIsHiddenAndHidesWheneverItLosesTheFocus) {
  StudioWithProject world;
  FOptions form(nullptr, world.application, world.help);
  ShowAndActivate(form);
  auto& box = Control<wxTextCtrl>(form, "txtVariable");
  const bool hidden_at_first = !box.IsShown();
  box.Show();
  form.Layout();
  box.SetFocus();
  EXPECT_TRUE(WaitFor([&] { return box.HasFocus(); }));

  ClickAt(OnRow(List(form), 0));

  EXPECT_TRUE(hidden_at_first);
  EXPECT_TRUE(WaitFor([&] { return !box.IsShown(); }));
}

TEST(FOptions, ControlCCopiesTheValueOfTheSelectedVariable) {
  StudioWithProject world;
  FOptions form(nullptr, world.application, world.help);
  ShowAndActivate(form);
  ClickAt(OnRow(List(form), 0));
  EXPECT_TRUE(WaitFor([&] { return List(form).GetFirstSelected() == 0; }));

  EXPECT_EQ(TextCopiedBy([] { PressKey('C', wxMOD_CONTROL); }), "C:\\Projects\\Demo & Test");
}

TEST(FOptions, HelpAndF1OpenTheHelpFile) {
  StudioWithProject world;
  const std::string help_file = world.application.installation.HelpFile();
  world.platform.files.AddFile(help_file, "help");
  FOptions form(nullptr, world.application, world.help);
  ShowAndActivate(form);

  Click(*FindControl(form, "cmdHelp"));
  EXPECT_TRUE(WaitFor([&] { return world.help.opened.size() == 1; }));
  List(form).SetFocus();
  PressKey(WXK_F1);
  EXPECT_TRUE(WaitFor([&] { return world.help.opened.size() == 2; }));

  EXPECT_EQ(world.help.opened, std::vector<std::string>(2, help_file + "#0"));
}

TEST(FOptions, TheListGrowsWithTheDialogAndItsSizeIsThatOfTheLastTime) {
  StudioWithProject world;
  wxSize before;
  bool grown = false;
  {
    FOptions form(nullptr, world.application, world.help);
    Answer(form, [&] {
      const wxSize list = List(form).GetSize();
      form.SetSize(form.GetSize() + form.FromDIP(wxSize(90, 70)));
      grown = WaitFor([&] { return List(form).GetSize() == list + form.FromDIP(wxSize(90, 70)); });
      EXPECT_TRUE(WaitFor([&] { return IsInPlace(form); }));
      before = form.GetSize();
      PressKey(WXK_ESCAPE);
      EndUnlessHidden(form);
    });
  }

  FOptions again(nullptr, world.application, world.help);
  ShowAndActivate(again);

  EXPECT_TRUE(grown);
  EXPECT_TRUE(WaitFor([&] { return again.GetSize() == before; }));
}

}  // namespace
}  // namespace txs
