#include "ui/setup_wizard_form.h"

#include <gmock/gmock.h>

#include <string>

#include "gui/cell_editor.h"
#include "gui/main_form_support.h"
#include "ui/info_form.h"
#include "ui/options_form.h"
#include "ui/project_open_form.h"
#include "ui/state_create_form.h"
#include "ui/state_scan_form.h"
#include "ui/take_note_form.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

template <typename Window>
const std::function<bool(Window&)> kIsOver =
    [](Window& window) { return Control<wxButton>(window, "cmdOK").IsEnabled(); };

class MainForm : public MainFormTest {
 protected:
  wxMenuItem& Command(long text_id) {
    const wxString label = wxControl::RemoveMnemonics(ToWx(App().texts.GetText(text_id)));
    wxMenuBar& bar = *form_->GetMenuBar();
    for (std::size_t menu = 0; menu < bar.GetMenuCount(); ++menu) {
      for (wxMenuItem* const item : bar.GetMenu(menu)->GetMenuItems()) {
        if (item->GetItemLabelText() == label) return *item;
      }
    }
    throw std::runtime_error("no command " + std::to_string(text_id));
  }
};

TEST_F(MainForm, ShowsTheProjectInItsTitle) {
  Open();

  EXPECT_EQ(form_->GetTitle().utf8_string(), "TavixStudio - Setup-Assistent: Projekt 'Demo'");
}

TEST_F(MainForm, IsCaptionedInTheLanguageOfTheStudio) {
  for (const long language : {1031, 1033}) {
    Open(language);
    const auto text = [&](long id) {
      return wxControl::RemoveMnemonics(ToWx(App().texts.GetText(id))).utf8_string();
    };

    EXPECT_EQ(form_->GetTitle(), ToWx(App().texts.GetText(1001, {"Demo"})));
    const wxMenuBar& menus = *form_->GetMenuBar();
    EXPECT_EQ(menus.GetMenuCount(), 3u);
    EXPECT_EQ(menus.GetMenuLabelText(0).utf8_string(), text(1010));
    EXPECT_EQ(menus.GetMenuLabelText(1).utf8_string(), text(1030));
    EXPECT_EQ(menus.GetMenuLabelText(2).utf8_string(), text(1020));
    for (const long id : {1011, 1012, 1013, 1031, 1032, 1021, 1022}) {
      EXPECT_TRUE(Command(id).IsEnabled()) << id;
    }
    const auto& steps = Find<wxNotebook>("tabStep");
    for (std::size_t step = 0; step < steps.GetPageCount(); ++step) {
      EXPECT_EQ(steps.GetPageText(step).utf8_string(), text(1100 + 100 * static_cast<long>(step)));
    }
    const auto& languages = Find<wxNotebook>("tabLanguage");
    EXPECT_EQ(languages.GetPageText(0).utf8_string(), text(1107));
    EXPECT_EQ(languages.GetPageText(1).utf8_string(), text(1108));
    EXPECT_EQ(Button("cmdScan").GetLabelText().utf8_string(), text(1404));
    EXPECT_EQ(Button("cmdCreateSetup").GetLabelText().utf8_string(), text(1511));
    for (unsigned column = 0; column < 6; ++column) {
      EXPECT_EQ(Grid().GetColumn(column)->GetTitle().utf8_string(), text(1410 + column));
    }
    form_->Destroy();
    LetEventsRun();
  }
}

// --- File menu

TEST_F(MainForm, OpenProjectAsksAboutChangesAndCancelStops) {
  Open();
  TypeInto("txtInfo11", "changed");
  Answer(MessageResult::kCancel);

  PressKey('O', wxMOD_CONTROL);

  EXPECT_TRUE(MessagesAre({1706}));
  EXPECT_EQ(BoxText("txtInfo11"), "changed");
  EXPECT_THAT(SavedSettings(), Not(HasSubstr("changed")));
}

TEST_F(MainForm, OpenProjectSavesOnRequestAndShowsTheChosenProject) {
  Open();
  world_->platform.RegisterProject("Other", "C:\\Projects\\Other", "Single");
  Files().AddFile("C:\\Projects\\Other\\Other.swz", "[program]\r\ngroup=Anlage\r\n");
  TypeInto("txtInfo11", "kept");
  GoToStep(2);
  Answer(MessageResult::kYes);
  Meanwhile meanwhile;
  meanwhile.In<FProjectOpen>([](FProjectOpen& dialog) {
    auto& list = Control<wxListView>(dialog, "lvwRegisteredProjects");
    list.SetFocus();
    PressKey(WXK_END);
    PressKey(WXK_RETURN);
    EndUnlessHidden(dialog);
  });

  ChooseCommand('D', 'F');

  EXPECT_TRUE(WaitFor([&] { return App().project.name == "Other"; }));
  EXPECT_TRUE(MessagesAre({1706}));
  EXPECT_THAT(SavedSettings(), HasSubstr("kept"));
  EXPECT_EQ(form_->GetTitle().utf8_string(), "TavixStudio - Setup-Assistent: Projekt 'Other'");
  EXPECT_EQ(BoxText("txtStartmenuFolder1"), "Anlage");
  EXPECT_EQ(BoxText("txtInfo11"), "");
  EXPECT_TRUE(StepIs(1));
}

TEST_F(MainForm, OpenProjectKeepsTheProjectWhenNoneIsChosen) {
  Open();
  TypeInto("txtInfo11", "dropped?");
  Answer(MessageResult::kNo);
  Meanwhile meanwhile;
  meanwhile.In<FProjectOpen>([](FProjectOpen& dialog) {
    PressKey(WXK_ESCAPE);
    EndUnlessHidden(dialog);
  });

  PressKey('O', wxMOD_CONTROL);

  EXPECT_TRUE(WaitFor([&] { return meanwhile.IsDone() && form_->IsActive(); }));
  EXPECT_EQ(App().project.name, "Demo");
  EXPECT_EQ(BoxText("txtInfo11"), "dropped?");
}

TEST_F(MainForm, SaveWritesTheSettingsWithTheEditUnderWay) {
  Open();
  GoToStep(2);
  TypeInto("txtTavixDirectory", "C:/Studio/");

  PressKey('S', wxMOD_CONTROL);

  EXPECT_TRUE(WaitFor([&] { return !Document().changed; }));
  EXPECT_THAT(SavedSettings(), HasSubstr("tavix=C:\\Studio\r\n"));
  EXPECT_EQ(BoxText("txtTavixDirectory"), "C:\\Studio");
  EXPECT_TRUE(FocusIs("txtTavixDirectory"));
}

TEST_F(MainForm, SaveIsInTheFileMenu) {
  Open();
  TypeInto("txtInfo12", "by menu");

  ChooseCommand('D', 'S');

  EXPECT_TRUE(WaitFor([&] { return !Document().changed; }));
  EXPECT_THAT(SavedSettings(), HasSubstr("by menu"));
}

// --- Closing

TEST_F(MainForm, EndClosesTheFormWithoutAQuestionWhenNothingChanged) {
  Open();

  ChooseCommand('D', 'B');

  EXPECT_TRUE(WaitFor([&] { return form_ == nullptr; }));
  EXPECT_THAT(MessageIds(), IsEmpty());
}

TEST_F(MainForm, ClosingSavesOnYes) {
  Open();
  TypeInto("txtInfo11", "saved at the end");
  Answer(MessageResult::kYes);

  form_->Close();

  EXPECT_TRUE(WaitFor([&] { return form_ == nullptr; }));
  EXPECT_TRUE(MessagesAre({1703}));
  EXPECT_THAT(SavedSettings(), HasSubstr("saved at the end"));
}

TEST_F(MainForm, ClosingDropsTheChangesOnNo) {
  Open();
  TypeInto("txtInfo11", "dropped");
  Answer(MessageResult::kNo);

  form_->Close();

  EXPECT_TRUE(WaitFor([&] { return form_ == nullptr; }));
  EXPECT_THAT(SavedSettings(), Not(HasSubstr("dropped")));
}

TEST_F(MainForm, ClosingStaysOpenOnCancel) {
  Open();
  TypeInto("txtInfo11", "still here");
  Answer(MessageResult::kCancel);

  form_->Close();
  LetEventsRun();

  ASSERT_NE(form_, nullptr);
  EXPECT_TRUE(form_->IsShown());
  EXPECT_TRUE(Document().changed);
}

TEST_F(MainForm, ClosingTakesTheRenameUnderWay) {
  Open();
  GoToStep(2);
  Find<wxListView>("lvwUserDirectories").Select(0);
  Click(Button("cmdRenameUserDir"));
  EXPECT_TRUE(FocusIs("txtRenameUserDir"));
  PressKey('A', wxMOD_CONTROL);
  TypeText("E:\\Neu");
  Answer(MessageResult::kYes);

  form_->Close();

  EXPECT_TRUE(WaitFor([&] { return form_ == nullptr; }));
  EXPECT_THAT(SavedSettings(), HasSubstr("1=E:\\Neu\r\n"));
}

TEST_F(MainForm, ClosingTakesTheCellThatIsBeingEdited) {
  Open();
  GoToStep(4);
  Grid().StartEdit(1, FileColumn::kDestination);
  ASSERT_TRUE(WaitFor([&] { return Grid().IsEditing(); }));
  SetEditorText(Grid(), "<FontDir>");
  Answer(MessageResult::kYes);

  form_->Close();

  EXPECT_TRUE(WaitFor([&] { return form_ == nullptr; }));
  EXPECT_TRUE(MessagesAre({1703}));
  EXPECT_THAT(SavedSettings(), HasSubstr("01=<ProjectDir>\\Demo.exe,<FontDir>,0\r\n"));
}

// All directories were tidied, not only the one that was being left, and that counted as an edit.
TEST_F(MainForm, ClosingAsksNothingAboutADirectoryThatNobodyTouched) {
  Open();
  Steps().tavix_directory = "C:\\TavixStudio\\";
  form_->ShowDocument();

  form_->Close();

  EXPECT_TRUE(WaitFor([&] { return form_ == nullptr; }));
  EXPECT_THAT(MessageIds(), IsEmpty());
}

// --- Extras and Help

TEST_F(MainForm, F1ShowsTheContentsOfTheHelpOnceWhereverTheFocusIs) {
  Open();
  Files().AddFile("C:\\TavixStudio\\Common\\HelpFiles\\Projektmanagement.chm", "help");
  const std::string contents = "C:\\TavixStudio\\Common\\HelpFiles\\Projektmanagement.chm#0";
  for (const char* name : {"tabStep", "txtInfo11", "cmdBrowsePicture1"}) {
    help_.opened.clear();
    FindControl(*form_, name)->SetFocus();
    EXPECT_TRUE(FocusIs(name));

    PressKey(WXK_F1);

    EXPECT_TRUE(WaitFor([&] { return !help_.opened.empty(); })) << name;
    LetEventsRun();
    EXPECT_THAT(help_.opened, ElementsAre(contents)) << name;
  }
  GoToStep(4);
  Grid().SetFocus();
  help_.opened.clear();

  PressKey(WXK_F1);

  EXPECT_TRUE(WaitFor([&] { return !help_.opened.empty(); }));
  LetEventsRun();
  EXPECT_THAT(help_.opened, ElementsAre(contents));
}

TEST_F(MainForm, ContentShowsTheHelp) {
  Open();
  Files().AddFile("C:\\TavixStudio\\Common\\HelpFiles\\Projektmanagement.chm", "help");

  ChooseCommand('H', 'N');

  EXPECT_TRUE(WaitFor([&] { return help_.opened.size() == 1; }));
}

TEST_F(MainForm, InfoShowsTheInfoDialog) {
  Open();
  bool shown = false;
  Meanwhile meanwhile;
  meanwhile.In<FInfo>([&](FInfo& dialog) {
    shown = true;
    PressKey(WXK_ESCAPE);
    EndUnlessHidden(dialog);
  });

  ChooseCommand('H', 'I');

  EXPECT_TRUE(WaitFor([&] { return meanwhile.IsDone() && form_->IsActive(); }));
  EXPECT_TRUE(shown);
}

TEST_F(MainForm, OptionsShowsTheOptionsDialog) {
  Open();
  bool shown = false;
  Meanwhile meanwhile;
  meanwhile.In<FOptions>([&](FOptions& dialog) {
    shown = true;
    PressKey(WXK_ESCAPE);
    EndUnlessHidden(dialog);
  });

  ChooseCommand('X', 'O');

  EXPECT_TRUE(WaitFor([&] { return meanwhile.IsDone() && form_->IsActive(); }));
  EXPECT_TRUE(shown);
}

TEST_F(MainForm, ClearSettingsClearsEveryStepOnYes) {
  Open();
  Answer(MessageResult::kYes);

  ChooseCommand('X', 'E');

  EXPECT_TRUE(MessagesAre({1704}));
  EXPECT_EQ(BoxText("txtStartmenuFolder1"), Steps().startmenu_folder.german);
  EXPECT_NE(BoxText("txtStartmenuFolder1"), "Demo");
  EXPECT_EQ(Find<wxListView>("lvwUserDirectories").GetItemCount(), 0);
  EXPECT_EQ(Text("lblFileCount"), "0");
  EXPECT_TRUE(Find<wxRadioButton>("optDiskSize0").GetValue());
}

TEST_F(MainForm, ClearSettingsKeepsEverythingOnNo) {
  Open();
  Answer(MessageResult::kNo);

  ChooseCommand('X', 'E');

  EXPECT_TRUE(MessagesAre({1704}));
  EXPECT_EQ(BoxText("txtStartmenuFolder1"), "Demo");
  EXPECT_EQ(Document().files.RowCount(), 3u);
}

// --- Steps

TEST_F(MainForm, AClickOnATabShowsTheStepAndItsFirstControlTakesTheKeys) {
  Open();
  const std::vector<std::string> first = {"txtInfo11", "txtTavixDirectory", "chkVB5dbUseJet",
                                          "grdFiles", "optDiskSize1"};
  auto& steps = Find<wxNotebook>("tabStep");
  for (const int step : {2, 3, 4, 5, 1}) {
    ClickAt(TabOf(steps, step - 1));

    EXPECT_TRUE(StepIs(step));
    EXPECT_TRUE(FocusIs(first.at(static_cast<std::size_t>(step - 1))));
  }
}

TEST_F(MainForm, CtrlPageUpAndPageDownWalkThroughTheStepsFromTheInnerTabsToo) {
  Open();
  EXPECT_TRUE(FocusIs("txtInfo11"));

  PressKey(WXK_PAGEDOWN, wxMOD_CONTROL);
  EXPECT_TRUE(StepIs(2));
  PressKey(WXK_PAGEDOWN, wxMOD_CONTROL);
  EXPECT_TRUE(StepIs(3));
  PressKey(WXK_PAGEUP, wxMOD_CONTROL);
  PressKey(WXK_PAGEUP, wxMOD_CONTROL);
  EXPECT_TRUE(StepIs(1));
}

TEST_F(MainForm, ArrowKeysWalkAlongTheTabsWithoutLosingTheFocus) {
  Open();
  Find<wxNotebook>("tabStep").SetFocus();
  EXPECT_TRUE(FocusIs("tabStep"));

  PressKey(WXK_RIGHT);
  PressKey(WXK_RIGHT);

  EXPECT_TRUE(StepIs(3));
  EXPECT_EQ(FocusName(), "tabStep");
}

TEST_F(MainForm, AFailedCheckLeadsBackToTheStepThatWasLeftWithOneMessage) {
  Open();
  GoToStep(2);
  TypeInto("txtProjectDirectory", "nowhere");
  auto& steps = Find<wxNotebook>("tabStep");

  ClickAt(TabOf(steps, 4));

  EXPECT_TRUE(StepIs(2));
  EXPECT_TRUE(MessagesAre({1712}));
  TypeInto("txtProjectDirectory", "C:\\Demo");
  ClickAt(TabOf(steps, 4));
  EXPECT_TRUE(StepIs(5));
  EXPECT_TRUE(MessagesAre({1712}));
}

TEST_F(MainForm, AFailedCheckShowsThePageOfThePictureThatIsMissing) {
  Open();
  PressKey('E', wxMOD_ALT);
  EXPECT_TRUE(FocusIs("txtInfo21"));
  TypeInto("txtBackgroundPicture2", "C:\\gone.bmp");
  PressKey('C', wxMOD_ALT);
  EXPECT_TRUE(FocusIs("txtInfo11"));

  PressKey('3', wxMOD_ALT);

  EXPECT_TRUE(MessagesAre({1707}));
  EXPECT_TRUE(FocusIs("txtBackgroundPicture2"));
  EXPECT_EQ(Find<wxNotebook>("tabLanguage").GetSelection(), 1);
  EXPECT_TRUE(StepIs(1));
  TakePicture(*form_, "main_check_picture");
}

TEST_F(MainForm, AFailedCheckLeadsToTheDirectoryThatIsWrong) {
  Open();
  GoToStep(2);
  TypeInto("txtProjectDirectory", "nowhere");
  PressKey('3', wxMOD_ALT);
  EXPECT_TRUE(MessagesAre({1712}));
  EXPECT_TRUE(FocusIs("txtProjectDirectory"));
  TypeInto("txtProjectDirectory", "C:\\Demo");

  Steps().user_directories = {{1, "D:\\Rezepte"}, {2, "neither"}};
  form_->ShowUserDirectories();
  PressKey('3', wxMOD_ALT);

  EXPECT_TRUE(MessagesAre({1712, 1712}));
  auto& list = Find<wxListView>("lvwUserDirectories");
  EXPECT_TRUE(WaitFor([&] { return list.GetFirstSelected() == 1; }));
  EXPECT_TRUE(WaitFor([&] { return FocusIsIn(list); }));
  EXPECT_TRUE(StepIs(2));
}

// The message about the marked rows stood over a step that shows no rows.
TEST_F(MainForm, AFailedCheckShowsItsMessageOverTheStepThatWasLeft) {
  Open();
  GoToStep(4);
  Files().Vanish("C:\\Projects\\Demo\\Trend.ocx");
  int step = 0;
  world_->messages.SetListener([&](const Message&) { step = SelectedStep(); });

  ClickAt(TabOf(Find<wxNotebook>("tabStep"), 4));

  EXPECT_TRUE(MessagesAre({1709}));
  EXPECT_EQ(step, 4);
  EXPECT_TRUE(FocusIs("grdFiles"));
}

TEST_F(MainForm, LeavingStep4WithMissingFilesMarksThemAndStays) {
  Open();
  GoToStep(4);
  Files().Vanish("C:\\Projects\\Demo\\Trend.ocx");

  PressKey('5', wxMOD_ALT);

  EXPECT_TRUE(StepIs(4));
  EXPECT_TRUE(MessagesAre({1709}));
  EXPECT_TRUE(Document().files.Row(2).marked);
}

// --- Runs

TEST_F(MainForm, ScanFillsTheListWhileEverythingElseIsDisabled) {
  Open();
  GoToStep(4);
  bool disabled = false;
  bool stayed_open = false;
  Meanwhile meanwhile;
  meanwhile
      .In<FStateScan>([&](FStateScan&) {
        disabled = !Button("cmdScan").IsEnabled() && !Grid().IsEnabled() &&
                   !Command(1012).IsEnabled() && !Find<wxNotebook>("tabStep").IsEnabled();
        form_->Close();
        stayed_open = !form_->IsBeingDeleted() && form_->IsShown();
      })
      .When<FStateScan>(kIsOver<FStateScan>, [&](FStateScan& window) {
        TakePicture(window, "main_scan_window");
        PressKey(WXK_RETURN);
      });

  Click(Button("cmdScan"));

  EXPECT_TRUE(WaitFor([&] { return meanwhile.IsDone() && form_->IsActive(); }));
  EXPECT_TRUE(disabled);
  EXPECT_TRUE(stayed_open);
  EXPECT_TRUE(Command(1012).IsEnabled());
  EXPECT_NE(Document().files.Find("<ProjectDir>\\Demo.txs", FileColumn::kSource), 0u);
  EXPECT_EQ(Text("lblFileCount"), std::to_string(Document().files.RowCount()));
  EXPECT_TRUE(FocusIs("grdFiles"));
  EXPECT_FALSE(wxIsBusy());
}

TEST_F(MainForm, AScanAsksForAMissingFileInFrontOfItsStateWindow) {
  Open();
  App().use_runtime_setup = true;
  GoToStep(4);
  const wxWindow* asked_by = nullptr;
  const wxWindow* state_window = nullptr;
  Meanwhile meanwhile;
  for (int setup = 0; setup < 2; ++setup) {
    meanwhile.In<FSearchFile>([&](FSearchFile& dialog) {
      asked_by = dialog.GetParent();
      PressKey('I', wxMOD_ALT);
      EndUnlessHidden(dialog);
    });
  }
  meanwhile.When<FStateScan>(kIsOver<FStateScan>, [&](FStateScan& window) {
    state_window = &window;
    PressKey(WXK_RETURN);
  });

  PressKey(WXK_F5);

  EXPECT_TRUE(WaitFor([&] { return meanwhile.IsDone() && form_->IsActive(); }));
  EXPECT_EQ(asked_by, state_window);
  EXPECT_NE(state_window, nullptr);
}

TEST_F(MainForm, CreateBuildsTheInstallation) {
  Open();
  GoToStep(5);
  bool noted = false;
  Meanwhile meanwhile;
  meanwhile
      .In<FTakeNote>([&](FTakeNote& dialog) {
        noted = true;
        PressKey(WXK_RETURN);
        EndUnlessHidden(dialog);
      })
      .When<FStateCreate>(kIsOver<FStateCreate>, [&](FStateCreate&) { PressKey(WXK_RETURN); });

  Click(Button("cmdCreateSetup"));

  EXPECT_TRUE(WaitFor([&] { return meanwhile.IsDone() && form_->IsActive(); }));
  EXPECT_TRUE(noted);
  EXPECT_TRUE(Files().Has("C:\\Projects\\Demo\\Setup\\DISK1\\SETUP.STP"));
  EXPECT_TRUE(FocusIs("cmdCreateSetup"));
  EXPECT_FALSE(wxIsBusy());
}

TEST_F(MainForm, CreateThatFindsMarkedRowsLeadsToStep4) {
  Open();
  GoToStep(5);
  Files().Vanish("C:\\Projects\\Demo\\leer.txt");
  Meanwhile meanwhile;
  meanwhile
      .In<FTakeNote>([](FTakeNote& dialog) {
        PressKey(WXK_RETURN);
        EndUnlessHidden(dialog);
      })
      .When<FStateCreate>(kIsOver<FStateCreate>, [](FStateCreate&) { PressKey(WXK_RETURN); });

  PressKey('R', wxMOD_ALT);

  EXPECT_TRUE(WaitFor([&] { return SelectedStep() == 4; }));
  EXPECT_TRUE(MessagesAre({1709}));
  EXPECT_TRUE(FocusIs("grdFiles"));
  EXPECT_TRUE(Button("cmdScan").IsEnabled());
}

// --- The window

TEST_F(MainForm, OpensInTheSizeOfTheSessionBeforeWithItsColumns) {
  Open();
  form_->SetSize(form_->FromDIP(wxSize(900, 700)));
  Grid().SetColumnWidths({200, 150, 80, 70, 120, 90});
  EXPECT_TRUE(WaitFor([&] { return form_->GetSize() == form_->FromDIP(wxSize(900, 700)); }));
  form_->Close();
  EXPECT_TRUE(WaitFor([&] { return form_ == nullptr; }));

  Show();

  EXPECT_TRUE(WaitFor([&] { return form_->GetSize() == form_->FromDIP(wxSize(900, 700)); }));
  EXPECT_EQ(Grid().ColumnWidths(), (std::vector<int>{200, 150, 80, 70, 120, 90}));
}

TEST_F(MainForm, CutsNothingOffInItsSmallestSizeInEitherLanguage) {
  for (const long language : {1031, 1033}) {
    for (const std::string designer : {"Visual Basic 6.0", "Delphi 5.0"}) {
      Open(language, designer);
      form_->SetSize(form_->GetMinSize());
      EXPECT_TRUE(WaitFor([&] { return form_->GetSize() == form_->GetMinSize(); }));
      for (int step = 1; step <= 5; ++step) {
        GoToStep(step);
        EXPECT_EQ(ClippedControls(*form_), "") << language << " step " << step;
        TakePicture(*form_, "main_small_" + std::to_string(language) + "_" + std::to_string(step));
      }
      form_->Destroy();
      LetEventsRun();
    }
  }
}

TEST_F(MainForm, LooksLikeThis) {
  for (const long language : {1031, 1033}) {
    Open(language);
    for (int step = 1; step <= 5; ++step) {
      GoToStep(step);
      EXPECT_EQ(ClippedControls(*form_), "") << language << " step " << step;
      TakePicture(*form_, "main_" + std::to_string(language) + "_" + std::to_string(step));
    }
    form_->Destroy();
    LetEventsRun();
  }
}

}  // namespace
}  // namespace txs
