// The controls of the five steps, each with the mouse or the keys that a user would take.
#include <gmock/gmock.h>
#include <wx/dnd.h>
#include <wx/filedlg.h>

#include <fstream>
#include <string>

#include "fakes/noise.h"
#include "fakes/temp_folder.h"
#include "gui/main_form_support.h"
#include "ui/step_controls.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// Answers the platform's own dialogs in place of the user, without showing them.
class DialogAnswer : public wxModalDialogHook {
 public:
  explicit DialogAnswer(std::function<int(wxFileDialog&)> answer) : answer_(std::move(answer)) {
    Register();
  }
  int Enter(wxDialog* dialog) override {
    auto* const files = dynamic_cast<wxFileDialog*>(dialog);
    return files == nullptr ? wxID_NONE : answer_(*files);
  }

 private:
  std::function<int(wxFileDialog&)> answer_;
};

class MainFormSteps : public MainFormTest {
 protected:
  wxListView& List() { return Find<wxListView>("lvwUserDirectories"); }
  wxTextCtrl& Edit() { return Box("txtRenameUserDir"); }
  std::string Cell(long row, int column) { return List().GetItemText(row, column).utf8_string(); }
  bool DirectoriesAre(const std::vector<std::string>& expected) {
    return WaitFor([&] { return Directories() == expected; }, 5);
  }
  std::vector<std::string> Directories() {
    std::vector<std::string> cells;
    for (long row = 0; row < List().GetItemCount(); ++row) cells.push_back(Cell(row, 1));
    return cells;
  }
  // The middle of a row's directory.
  wxPoint CellOf(long row) {
    wxRect cell;
    EXPECT_TRUE(List().GetSubItemRect(row, 1, cell));
    return List().ClientToScreen(wxPoint(cell.x + cell.width / 2, cell.y + cell.height / 2));
  }
  void OpenStep2With(const std::vector<std::string>& directories) {
    Open();
    Steps().user_directories.clear();
    long number = 0;
    for (const std::string& directory : directories) {
      Steps().user_directories.push_back({++number, directory});
    }
    form_->ShowUserDirectories();
    GoToStep(2);
    Document().changed = false;
  }
};

// --- All text boxes

TEST_F(MainFormSteps, EveryTextBoxShowsItsFieldAndEditsIt) {
  Open();
  int step = 1;
  int language = 1;
  for (const TextBox& box : TextBoxes()) {
    const std::string name = box.name;
    const bool is_info = name.starts_with("txtInfo");
    const int box_language =
        name.starts_with("txtInfo2") || (!is_info && name.ends_with('2')) ? 2 : 1;
    if (static_cast<int>(box.step) != step) GoToStep(step = static_cast<int>(box.step));
    if (step == 1 && box_language != language) {
      language = box_language;
      PressKey(language == 2 ? 'E' : 'C', wxMOD_ALT);
    }
    EXPECT_EQ(BoxText(name), box.field(Steps())) << name;
    Document().changed = false;
    Box(name).SetFocus();
    EXPECT_TRUE(FocusIs(name));
    Box(name).SetInsertionPointEnd();
    const std::string text = BoxText(name) + "q";

    PressKey('q');

    EXPECT_TRUE(WaitFor([&] { return box.field(Steps()) == text; })) << name;
    EXPECT_TRUE(Document().changed) << name;
    // A picture that does not exist would keep the form in step 1.
    if (name.starts_with("txtBackgroundPicture")) Box(name).Clear();
  }
}

// --- Step 1

TEST_F(MainFormSteps, TheAccessKeysOfTheLanguagesShowTheirPages) {
  for (const long language : {1031, 1033}) {
    Open(language);
    auto& languages = Find<wxNotebook>("tabLanguage");

    PressKey(language == 1031 ? 'E' : 'N', wxMOD_ALT);

    EXPECT_TRUE(FocusIs("txtInfo21"));
    EXPECT_EQ(languages.GetSelection(), 1);
    PressKey(language == 1031 ? 'C' : 'M', wxMOD_ALT);
    EXPECT_TRUE(FocusIs("txtInfo11"));
    EXPECT_EQ(languages.GetSelection(), 0);
    form_->Destroy();
    LetEventsRun();
  }
}

TEST_F(MainFormSteps, ACancelledBrowseLeavesThePictureAsItIs) {
  Open();
  std::string title;
  const DialogAnswer dialogs([&](wxFileDialog& dialog) {
    title = dialog.GetMessage().utf8_string();
    return wxID_CANCEL;
  });

  Click(Button("cmdBrowsePicture1"));

  EXPECT_TRUE(WaitFor([&] { return title == "Hintergrundbild auswählen"; }));
  EXPECT_EQ(BoxText("txtBackgroundPicture1"), "");
  EXPECT_FALSE(Document().changed);
}

TEST_F(MainFormSteps, BrowsePutsTheChosenPictureIntoItsBox) {
  const TempFolder folder;
  std::ofstream(folder.Path() / "back.bmp") << "picture";
  Open();
  world_->platform.host_paths.drive_c = folder.Path().string();
  Meanwhile meanwhile;
  meanwhile.In<wxFileDialog>([&](wxFileDialog& dialog) {
    TypeText(folder.Path().string() + "/back.bmp");
    PressKey(WXK_RETURN);
    EndUnlessHidden(dialog);
  });

  PressKey('U', wxMOD_ALT);

  EXPECT_TRUE(WaitFor([&] { return BoxText("txtBackgroundPicture1") == "C:\\back.bmp"; }));
  EXPECT_EQ(Steps().background_picture.german, "C:\\back.bmp");
  EXPECT_TRUE(Document().changed);
}

TEST_F(MainFormSteps, ALongPathShowsWholeInATooltip) {
  Open();
  const std::string path = "C:\\" + std::string(300, 'p') + ".bmp";
  wxTextCtrl& box = Box("txtBackgroundPicture1");

  box.SetValue(ToWx(path));
  EXPECT_EQ(box.GetToolTipText().utf8_string(), path);
  box.SetValue("C:\\short.bmp");
  EXPECT_EQ(box.GetToolTipText().utf8_string(), "");
}

// --- Step 2

TEST_F(MainFormSteps, ADirectoryIsNormalisedWhenItsBoxIsLeft) {
  Open();
  GoToStep(2);
  TypeInto("txtTavixDirectory", " C:/Tavix//Studio/ ");

  PressKey(WXK_TAB);

  EXPECT_TRUE(WaitFor([&] { return BoxText("txtTavixDirectory") == "C:\\Tavix\\Studio"; }));
  EXPECT_EQ(Steps().tavix_directory, "C:\\Tavix\\Studio");
  TypeInto("txtUserDirectory", "D:/Rezepte/Neu/");
  PressKey(WXK_TAB);
  EXPECT_TRUE(WaitFor([&] { return BoxText("txtUserDirectory") == "D:\\Rezepte\\Neu"; }));
}

TEST_F(MainFormSteps, AddIsEnabledOnlyWhileTheBoxHoldsText) {
  OpenStep2With({});
  EXPECT_FALSE(Button("cmdAddUserDir").IsEnabled());

  TypeInto("txtUserDirectory", "E:\\A");
  EXPECT_TRUE(Button("cmdAddUserDir").IsEnabled());
  PressKey('A', wxMOD_CONTROL);
  PressKey(WXK_BACK);
  EXPECT_TRUE(WaitFor([&] { return !Button("cmdAddUserDir").IsEnabled(); }));
  EXPECT_TRUE(Document().changed);
}

TEST_F(MainFormSteps, AddAppendsARowWithTheNextNumberAndEmptiesTheBox) {
  OpenStep2With({"D:\\A", "D:\\B"});
  Steps().user_directories[1].number = 7;
  form_->ShowUserDirectories();
  TypeInto("txtUserDirectory", "D:\\C");

  Click(Button("cmdAddUserDir"));

  EXPECT_TRUE(DirectoriesAre({"D:\\A", "D:\\B", "D:\\C"}));
  EXPECT_EQ(Cell(2, 0), "<UserDir8>");
  EXPECT_EQ(BoxText("txtUserDirectory"), "");
  EXPECT_FALSE(Button("cmdAddUserDir").IsEnabled());
  EXPECT_TRUE(Document().changed);
}

TEST_F(MainFormSteps, EnterInTheBoxAddsAndTheNextDirectoryCanBeTyped) {
  OpenStep2With({});
  TypeInto("txtUserDirectory", "D:\\A");
  PressKey(WXK_RETURN);
  TypeText("D:\\B");
  PressKey(WXK_RETURN);

  EXPECT_TRUE(WaitFor([&] { return List().GetItemCount() == 2; }));
  EXPECT_TRUE(DirectoriesAre({"D:\\A", "D:\\B"}));
  EXPECT_EQ(FocusName(), "txtUserDirectory");
}

TEST_F(MainFormSteps, ADirectoryThatIsListedAlreadyIsNotAddedAndStaysInTheBox) {
  OpenStep2With({"D:\\Rezepte"});
  TypeInto("txtUserDirectory", "d:\\rezepte");

  PressKey(WXK_RETURN);

  LetEventsRun();
  EXPECT_EQ(List().GetItemCount(), 1);
  EXPECT_EQ(BoxText("txtUserDirectory"), "d:\\rezepte");
}

TEST_F(MainFormSteps, AClickOnARowEnablesDeleteAndRename) {
  OpenStep2With({"D:\\A", "D:\\B"});
  EXPECT_FALSE(Button("cmdDeleteUserDir").IsEnabled());
  EXPECT_FALSE(Button("cmdRenameUserDir").IsEnabled());

  ClickAt(CellOf(1));

  EXPECT_TRUE(WaitFor([&] { return Button("cmdDeleteUserDir").IsEnabled(); }));
  EXPECT_TRUE(Button("cmdRenameUserDir").IsEnabled());
}

TEST_F(MainFormSteps, DeleteRemovesTheRowAndLeavesTheOtherNumbers) {
  OpenStep2With({"D:\\A", "D:\\B", "D:\\C"});
  ClickAt(CellOf(1));

  Click(Button("cmdDeleteUserDir"));

  EXPECT_TRUE(DirectoriesAre({"D:\\A", "D:\\C"}));
  EXPECT_EQ(Cell(1, 0), "<UserDir3>");
  EXPECT_TRUE(Document().changed);
}

// The list got the focus back, selected the row that followed, and Delete was ready to take it.
TEST_F(MainFormSteps, ADoubleClickOnDeleteDeletesOneDirectory) {
  OpenStep2With({"D:\\Eins", "D:\\Zwei", "D:\\Drei"});
  ClickAt(CellOf(0));
  wxButton& button = Button("cmdDeleteUserDir");
  ASSERT_TRUE(WaitFor([&] { return button.IsEnabled(); }));
  const wxRect area = button.GetScreenRect();

  DoubleClickAt(area.GetPosition() + area.GetSize() / 2);

  EXPECT_TRUE(WaitFor([&] { return List().GetItemCount() < 3; }));
  LetEventsRun();
  EXPECT_THAT(Directories(), ElementsAre("D:\\Zwei", "D:\\Drei"));
  EXPECT_EQ(List().GetFirstSelected(), -1);
  EXPECT_FALSE(button.IsEnabled());
  PressKey(WXK_DOWN);
  EXPECT_TRUE(WaitFor([&] { return List().GetFirstSelected() >= 0; }));
}

// Closing dropped the text without a word: the save had taken back that something changed.
TEST_F(MainFormSteps, ADirectoryThatWasTypedAndNotAddedIsAChangeAfterASaveToo) {
  OpenStep2With({});
  TypeInto("txtUserDirectory", "D:\\Neu");

  PressKey('S', wxMOD_CONTROL);

  EXPECT_TRUE(
      WaitFor([&] { return SavedSettings().find("\r\n1=D:\\Rezepte") == std::string::npos; }));
  EXPECT_TRUE(Document().changed);
  EXPECT_EQ(BoxText("txtUserDirectory"), "D:\\Neu");
  Answer(MessageResult::kCancel);
  form_->Close();
  EXPECT_TRUE(MessagesAre({1703}));
}

TEST_F(MainFormSteps, TheDeleteKeyDeletesTheSelectedRowOnce) {
  OpenStep2With({"D:\\A", "D:\\B", "D:\\C"});
  ClickAt(CellOf(0));

  PressKey(WXK_DELETE);
  PressKey(WXK_DELETE);

  EXPECT_TRUE(DirectoriesAre({"D:\\B", "D:\\C"}));
  EXPECT_FALSE(Button("cmdDeleteUserDir").IsEnabled());
}

TEST_F(MainFormSteps, RenameLaysTheEditBoxOverTheDirectoryOfTheRow) {
  OpenStep2With({"D:\\A", "D:\\B"});
  EXPECT_TRUE(WaitFor([&] { return !Edit().IsShown(); }));
  ClickAt(CellOf(1));

  Click(Button("cmdRenameUserDir"));

  EXPECT_TRUE(FocusIs("txtRenameUserDir"));
  EXPECT_TRUE(Edit().IsShownOnScreen());
  EXPECT_EQ(Edit().GetValue(), "D:\\B");
  wxRect cell;
  ASSERT_TRUE(List().GetSubItemRect(1, 1, cell));
  cell.SetPosition(List().ClientToScreen(cell.GetPosition()));
  EXPECT_EQ(Edit().GetScreenRect(), cell);
  TakePicture(*form_, "main_rename");
}

TEST_F(MainFormSteps, EscapeHidesTheEditBoxWithoutChange) {
  OpenStep2With({"D:\\A"});
  DoubleClickAt(CellOf(0));
  EXPECT_TRUE(FocusIs("txtRenameUserDir"));
  PressKey('A', wxMOD_CONTROL);
  TypeText("E:\\X");

  PressKey(WXK_ESCAPE);

  EXPECT_TRUE(WaitFor([&] { return !Edit().IsShown(); }));
  EXPECT_TRUE(DirectoriesAre({"D:\\A"}));
  EXPECT_EQ(Steps().user_directories[0].directory, "D:\\A");
}

TEST_F(MainFormSteps, EnterTakesTheNewDirectory) {
  OpenStep2With({"D:\\A", "D:\\B"});
  ClickAt(CellOf(1));
  PressKey(WXK_F2);
  EXPECT_TRUE(FocusIs("txtRenameUserDir"));
  PressKey('A', wxMOD_CONTROL);
  TypeText("E:\\X");

  PressKey(WXK_RETURN);

  EXPECT_TRUE(WaitFor([&] { return !Edit().IsShown(); }));
  EXPECT_TRUE(DirectoriesAre({"D:\\A", "E:\\X"}));
  EXPECT_EQ(Cell(1, 0), "<UserDir2>");
  EXPECT_TRUE(Document().changed);
  EXPECT_TRUE(WaitFor([&] { return List().GetFirstSelected() == 1; }));
}

TEST_F(MainFormSteps, LeavingTheEditBoxTakesTheNewDirectory) {
  OpenStep2With({"D:\\A"});
  DoubleClickAt(CellOf(0));
  EXPECT_TRUE(FocusIs("txtRenameUserDir"));
  PressKey('A', wxMOD_CONTROL);
  TypeText("E:\\Left");

  Click(Box("txtProjectDirectory"));

  EXPECT_TRUE(WaitFor([&] { return !Edit().IsShown(); }));
  EXPECT_TRUE(DirectoriesAre({"E:\\Left"}));
  EXPECT_TRUE(FocusIs("txtProjectDirectory"));
}

TEST_F(MainFormSteps, ADirectoryThatDiffersInCaseOnlyIsNotTaken) {
  OpenStep2With({"D:\\A"});
  DoubleClickAt(CellOf(0));
  EXPECT_TRUE(FocusIs("txtRenameUserDir"));
  PressKey('A', wxMOD_CONTROL);
  TypeText("d:\\a");

  PressKey(WXK_RETURN);

  EXPECT_TRUE(WaitFor([&] { return !Edit().IsShown(); }));
  EXPECT_TRUE(DirectoriesAre({"D:\\A"}));
}

// --- Step 3

TEST_F(MainFormSteps, CheckingADaoTypeSuggestsToScanAgain) {
  Open();
  GoToStep(3);

  Click(*FindControl(*form_, "chkVB5dbUseJet"));

  EXPECT_TRUE(WaitFor([&] { return Steps().use_jet; }));
  EXPECT_TRUE(MessagesAre({1714}));
  EXPECT_EQ(world_->messages.shown[0].buttons, kButtonsOk | kIconInformation);
  Click(*FindControl(*form_, "chkVB5dbUseODBC"));
  EXPECT_TRUE(WaitFor([&] { return Steps().use_odbc; }));
  EXPECT_TRUE(MessagesAre({1714, 1714}));
  Click(*FindControl(*form_, "chkVB5dbUseODBC"));
  EXPECT_TRUE(WaitFor([&] { return !Steps().use_odbc; }));
  EXPECT_TRUE(MessagesAre({1714, 1714}));
  EXPECT_TRUE(Document().changed);
}

TEST_F(MainFormSteps, AdoIsShownForVisualBasicAndNeverEnabled) {
  Open();
  GoToStep(3);

  EXPECT_TRUE(FindControl(*form_, "chkADO")->IsShownOnScreen());
  EXPECT_FALSE(FindControl(*form_, "chkADO")->IsEnabled());
  EXPECT_TRUE(FindControl(*form_, "lblChooseFunctions")->IsShownOnScreen());
  EXPECT_FALSE(FindControl(*form_, "lblNoFunctions")->IsShown());
}

TEST_F(MainFormSteps, OtherDesignersHaveNothingToSetInStep3) {
  Open(1031, "Delphi 5.0");
  GoToStep(3);

  for (const char* name : {"fraDAO", "chkVB5dbUseJet", "chkVB5dbUseODBC", "chkADO"}) {
    EXPECT_FALSE(FindControl(*form_, name)->IsShownOnScreen()) << name;
  }
  EXPECT_FALSE(FindControl(*form_, "lblChooseFunctions")->IsShown());
  EXPECT_EQ(Text("lblNoFunctions"), "Hier sind keine Einstellungen notwendig.");
  EXPECT_TRUE(FindControl(*form_, "lblNoFunctions")->IsShownOnScreen());
  TakePicture(*form_, "main_step3_nothing");
}

TEST_F(MainFormSteps, DaoTypesAreDisabledForClients) {
  Open();
  EXPECT_TRUE(FindControl(*form_, "chkVB5dbUseJet")->IsEnabled());
  App().project.type = 4;

  form_->ShowDocument();

  EXPECT_FALSE(FindControl(*form_, "chkVB5dbUseJet")->IsEnabled());
  EXPECT_FALSE(FindControl(*form_, "chkVB5dbUseODBC")->IsEnabled());
}

// --- Step 4

TEST_F(MainFormSteps, TheGridShowsTheFileList) {
  Open();
  GoToStep(4);

  EXPECT_EQ(Grid().GetColumnCount(), 6u);
  EXPECT_TRUE(Grid().IsShownOnScreen());
  EXPECT_FALSE(FindControl(*form_, "lblEmptyList")->IsShown());
}

TEST_F(MainFormSteps, DeleteIsEnabledExactlyWhileRowsAreSelected) {
  Open();
  GoToStep(4);
  EXPECT_FALSE(Button("cmdDeleteFile").IsEnabled());

  Grid().SelectRows({1, 3});
  EXPECT_TRUE(WaitFor([&] { return Button("cmdDeleteFile").IsEnabled(); }));
  Grid().SelectRows({});
  EXPECT_TRUE(WaitFor([&] { return !Button("cmdDeleteFile").IsEnabled(); }));
}

TEST_F(MainFormSteps, DeleteRemovesTheSelectedRows) {
  Open();
  GoToStep(4);
  Grid().SelectRows({1, 3});

  Click(Button("cmdDeleteFile"));

  EXPECT_TRUE(WaitFor([&] { return Document().files.RowCount() == 1; }));
  EXPECT_EQ(Document().files.Row(1).source, "<ProjectDir>\\Trend.ocx");
  EXPECT_FALSE(Button("cmdDeleteFile").IsEnabled());
  EXPECT_TRUE(Document().changed);
  EXPECT_TRUE(FocusIs("grdFiles"));
}

TEST_F(MainFormSteps, DeletingTheLastRowShowsTheHintAndLeadsToScan) {
  Open();
  GoToStep(4);
  Grid().SetFocus();
  PressKey('A', wxMOD_CONTROL);
  EXPECT_TRUE(WaitFor([&] { return Grid().SelectedRows().size() == 3; }));

  PressKey(WXK_DELETE);

  EXPECT_TRUE(WaitFor([&] { return Document().files.RowCount() == 0; }));
  EXPECT_TRUE(FindControl(*form_, "lblEmptyList")->IsShownOnScreen());
  EXPECT_TRUE(FocusIs("cmdScan"));
  TakePicture(*form_, "main_empty_list");
}

TEST_F(MainFormSteps, AnEditedCellChangesTheDocumentAndClearsTheMark) {
  Open();
  GoToStep(4);
  Document().files.Row(1).marked = true;
  form_->RefreshFileList();
  Document().changed = false;

  Grid().StartEdit(1, FileColumn::kDestination);
  LetEventsRun();
  TypeText("<WinDir>");
  PressKey(WXK_RETURN);

  EXPECT_TRUE(WaitFor([&] { return Document().files.Row(1).destination == "<WinDir>"; }));
  EXPECT_FALSE(Document().files.Row(1).marked);
  EXPECT_TRUE(Document().changed);
}

TEST_F(MainFormSteps, SaveTakesTheCellThatIsBeingEdited) {
  Open();
  GoToStep(4);
  Grid().StartEdit(1, FileColumn::kDestination);
  LetEventsRun();
  TypeText("<FontDir>");

  PressKey('S', wxMOD_CONTROL);

  EXPECT_TRUE(WaitFor([&] { return SavedSettings().find("<FontDir>") != std::string::npos; }));
  EXPECT_FALSE(Document().changed);
  EXPECT_TRUE(FocusIs("grdFiles"));
}

TEST_F(MainFormSteps, AddAsksThePlatformForFiles) {
  Open();
  GoToStep(4);
  std::string title;
  const DialogAnswer dialogs([&](wxFileDialog& dialog) {
    title = dialog.GetMessage().utf8_string();
    return wxID_CANCEL;
  });

  Click(Button("cmdAddFile"));

  EXPECT_TRUE(WaitFor([&] { return title == "Datei hinzufügen"; }));
  EXPECT_EQ(Document().files.RowCount(), 3u);
  title.clear();
  PressKey(WXK_INSERT);
  EXPECT_TRUE(WaitFor([&] { return title == "Datei hinzufügen"; }));
}

TEST_F(MainFormSteps, DroppedFilesAreAddedWhenTheyLieOnADriveOfTheStudio) {
  Open();
  Files().AddFile("C:\\Projects\\Demo\\more.txt", "more");
  world_->platform.host_paths.drive_c = "/studio";
  GoToStep(4);
  auto* const target = dynamic_cast<wxFileDropTarget*>(Grid().GetDropTarget());
  ASSERT_NE(target, nullptr);
  wxArrayString dropped;
  dropped.Add("/studio/Projects/Demo/more.txt");
  dropped.Add("/elsewhere/other.txt");

  EXPECT_TRUE(target->OnDropFiles(5, 5, dropped));

  EXPECT_TRUE(WaitFor([&] { return Document().files.RowCount() == 4; }));
  EXPECT_THAT(Document().files.Row(4).source, HasSubstr("more.txt"));
  EXPECT_TRUE(MessagesAre({1925}));
  EXPECT_TRUE(Document().changed);
  EXPECT_FALSE(wxIsBusy());
}

// --- Step 5

TEST_F(MainFormSteps, ADiskSizeIsChosenAndTheDisksAreCountedAnew) {
  Open();
  Files().AddFile("C:\\Projects\\Demo\\Demo.exe", Noise(4'000'000, 2));
  GoToStep(5);
  EXPECT_EQ(Text("lblFileCount"), "3");
  EXPECT_EQ(Text("lblTotalBytes"), "4000700");
  EXPECT_EQ(Text("lblDisksNeeded"), "1");

  Click(*FindControl(*form_, "optDiskSize0"));

  EXPECT_TRUE(WaitFor([&] { return Steps().disk_size_index == 0; }));
  EXPECT_EQ(Text("lblDisksNeeded"), "3");
  EXPECT_EQ(Text("lblApproximately"), "(ca.)");
  EXPECT_TRUE(FindControl(*form_, "lblApproximately")->IsShown());
  EXPECT_TRUE(Document().changed);
}

TEST_F(MainFormSteps, MinimalMdacWarnsWhenItIsChecked) {
  Open();
  GoToStep(5);

  Click(*FindControl(*form_, "chkMinimalMDAC"));

  EXPECT_TRUE(WaitFor([&] { return Steps().minimal_mdac; }));
  EXPECT_TRUE(MessagesAre({1715}));
  EXPECT_EQ(world_->messages.shown[0].buttons, kButtonsOk | kIconExclamation);
  Click(*FindControl(*form_, "chkMinimalMDAC"));
  EXPECT_TRUE(WaitFor([&] { return !Steps().minimal_mdac; }));
  EXPECT_TRUE(MessagesAre({1715}));
}

TEST_F(MainFormSteps, TheServicePackIsCheckedWithoutANotice) {
  Open();
  GoToStep(5);

  Click(*FindControl(*form_, "chkServicePack"));

  EXPECT_TRUE(WaitFor([&] { return Steps().service_pack; }));
  EXPECT_TRUE(Document().changed);
  EXPECT_THAT(MessageIds(), IsEmpty());
}

}  // namespace
}  // namespace txs
