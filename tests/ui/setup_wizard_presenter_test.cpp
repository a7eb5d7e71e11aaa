#include "ui/setup_wizard_presenter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <stdexcept>

#include "document/path_variables.h"
#include "document/settings_file.h"
#include "environment/project_type.h"
#include "ui/wizard_world.h"

namespace txs {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class MainForm : public testing::Test {
 public:
  void Answer(MessageResult answer) { messages.answers.push_back(answer); }

  void Type(const char* box, const std::string& text) {
    presenter.TextEdited(FindTextBox(box), text);
  }

  // The buttons and the icon of the only message.
  [[nodiscard]] int OnlyButtons() const {
    return messages.shown.size() == 1 ? messages.shown[0].buttons : -1;
  }

  WizardWorld world;
  RecordingMessages& messages = world.messages;
  Application& application = world.application;
  SetupDocument& document = application.document;
  StepSettings& steps = document.steps;
  ScriptedSetupWizardView& view = world.view;
  SetupWizardPresenter& presenter = world.presenter;
};

// --- Loading

TEST_F(MainForm, ShowsTitleDocumentAndFiguresWhenItIsLoaded) {
  presenter.Load();

  EXPECT_THAT(view.diary, ElementsAre("title", "document", "figures"));
  EXPECT_EQ(view.title, "TavixStudio - Setup-Assistent: Projekt 'Demo'");
  EXPECT_FALSE(document.changed);
}

TEST_F(MainForm, NamesNoProjectInItsTitleWhenThereIsNone) {
  application.project = {};

  presenter.Load();

  EXPECT_EQ(view.title, "TavixStudio - Setup-Assistent");
}

TEST(MainFormInEnglish, HasAnEnglishTitle) {
  WizardWorld world(kEnglish);

  world.presenter.Load();

  EXPECT_EQ(world.view.title, "TavixStudio - Setup Wizard: Project 'Demo'");
}

TEST_F(MainForm, ShowsAnErrorThatHasNoMessageOfItsOwn) {
  view.before = [](const std::string&) { throw std::runtime_error("no window"); };

  presenter.Load();

  ASSERT_THAT(messages.Ids(), ElementsAre(1913));
  EXPECT_EQ(messages.shown[0].prompt,
            "Die Aktion konnte nicht ausgeführt werden!\r\n(51: no window)");
}

TEST(MainFormInEnglish, ShowsAnErrorThatHasNoMessageOfItsOwn) {
  WizardWorld world(kEnglish);
  world.view.before = [](const std::string&) { throw std::bad_alloc(); };

  world.presenter.Load();

  ASSERT_THAT(world.messages.Ids(), ElementsAre(1913));
  EXPECT_EQ(world.messages.shown[0].prompt,
            "The action could not be completed!\r\n(7: Out of memory)");
}

// --- Save

TEST_F(MainForm, SavesTheSettings) {
  Type("txtInfo11", "Mischanlage Süd");

  EXPECT_TRUE(presenter.Save());

  EXPECT_THAT(world.Get(kDemoSettings), HasSubstr("text1=Mischanlage Süd\r\n"));
  EXPECT_FALSE(document.changed);
  EXPECT_THAT(messages.Ids(), IsEmpty());
}

TEST_F(MainForm, SavesWithoutAChangeToo) {
  world.platform.files.Vanish(kDemoSettings);

  EXPECT_TRUE(presenter.Save());

  EXPECT_TRUE(world.platform.files.Has(kDemoSettings));
}

TEST_F(MainForm, SaysWhenTheDiskIsFullAndKeepsFileAndFlag) {
  const std::string before = world.Get(kDemoSettings);
  Type("txtInfo11", "Mischanlage");
  world.platform.files.SetFreeSpace(10);

  EXPECT_FALSE(presenter.Save());

  ASSERT_THAT(messages.Ids(), ElementsAre(911));
  EXPECT_THAT(messages.shown[0].prompt,
              StartsWith("Fehler beim Schreiben der Datei 'C:\\Demo\\Demo.swz'!\r\n(61: "));
  EXPECT_EQ(messages.shown[0].buttons, kButtonsOk | kIconExclamation);
  EXPECT_TRUE(document.changed);
  EXPECT_EQ(world.Get(kDemoSettings), before);
}

TEST_F(MainForm, SaysWhichCharacterCannotBeSaved) {
  Type("txtInfo21", "Čapek");

  EXPECT_FALSE(presenter.Save());

  ASSERT_THAT(messages.Ids(), ElementsAre(911));
  EXPECT_THAT(messages.shown[0].prompt, HasSubstr("U+010C"));
  EXPECT_TRUE(document.changed);
}

TEST_F(MainForm, SaysWhichRowCannotBeSaved) {
  presenter.EditCell(2, FileColumn::kDestination, "<ProjectDir>\\a,b");

  EXPECT_FALSE(presenter.Save());

  ASSERT_THAT(messages.Ids(), ElementsAre(911));
  EXPECT_THAT(messages.shown[0].prompt, HasSubstr("row 2"));
}

TEST(MainFormInEnglish, SaysInEnglishThatSavingFailed) {
  WizardWorld world(kEnglish);
  world.platform.files.FailPath(kDemoSettings, "ReplaceWhole", ErrorNumber::kPermissionDenied);
  world.presenter.TextEdited(FindTextBox("txtInfo11"), "x");

  EXPECT_FALSE(world.presenter.Save());

  ASSERT_THAT(world.messages.Ids(), ElementsAre(911));
  EXPECT_THAT(world.messages.shown[0].prompt,
              StartsWith("Error on writing the file 'C:\\Demo\\Demo.swz'!\r\n(70: "));
}

// --- Open Project

TEST_F(MainForm, OpensTheChosenProjectAtStep1) {
  world.Put("C:\\Anlagen\\Süd\\Süd.swz", "[setup]\r\ntext1=Werk Süd\r\n");
  view.projects = {"Süd"};

  presenter.OpenProject();

  EXPECT_THAT(messages.Ids(), IsEmpty());
  EXPECT_EQ(application.project.name, "Süd");
  EXPECT_EQ(application.project.directory, "C:\\Anlagen\\Süd");
  EXPECT_EQ(application.project.type, kProjectTypeServer);
  EXPECT_EQ(steps.info.german[0], "Werk Süd");
  EXPECT_THAT(view.diary, ElementsAre("choose project", "title", "document", "figures", "step 1"));
  EXPECT_EQ(view.title, "TavixStudio - Setup-Assistent: Projekt 'Süd'");
}

TEST_F(MainForm, LeavesNothingOfTheProjectBefore) {
  document.extra_todo_lines = {"SetVar(Reboot|1)"};
  document.system_files.resolved = {"Trend.ocx"};
  steps.use_jet = true;
  view.projects = {"Süd"};

  presenter.OpenProject();

  EXPECT_EQ(document.files.RowCount(), 0u);
  EXPECT_THAT(steps.user_directories, IsEmpty());
  EXPECT_EQ(document.program_name, "");
  EXPECT_FALSE(steps.use_jet);
  EXPECT_EQ(steps.designer, FormDesigner::kOther);
  EXPECT_THAT(document.extra_todo_lines, IsEmpty());
  EXPECT_THAT(document.system_files.resolved, IsEmpty());
  EXPECT_EQ(FromVariableForm(document.path_variables, "<ProjectDir>|<TempDir>|<UserDir1>"),
            "C:\\Anlagen\\Süd|C:\\Anlagen\\Süd\\~TEMP|<UserDir1>");
  EXPECT_FALSE(document.changed);
}

TEST_F(MainForm, ReadsTheExcludedSystemFilesAnewWithAProject) {
  world.Put("C:\\TavixStudio\\SetupKit\\TXDependencies.ini", "[Exclude]\r\n1=kernel32.dll\r\n");
  view.projects = {"Süd"};

  presenter.OpenProject();

  EXPECT_THAT(document.system_files.excluded, ElementsAre("kernel32.dll"));
}

TEST_F(MainForm, KeepsTheProjectWhenNoneIsChosen) {
  presenter.OpenProject();

  EXPECT_EQ(application.project.name, "Demo");
  EXPECT_EQ(document.files.RowCount(), 2u);
  EXPECT_THAT(view.diary, ElementsAre("choose project"));
}

TEST_F(MainForm, AsksBeforeOpeningOnlyWhenSomethingHasChanged) {
  Type("txtInfo11", "x");
  Answer(MessageResult::kNo);

  presenter.OpenProject();

  ASSERT_THAT(messages.Ids(), ElementsAre(1706));
  EXPECT_EQ(OnlyButtons(), kButtonsYesNoCancel | kIconQuestion);
  EXPECT_EQ(messages.shown[0].prompt,
            "Sollen die Einstellungen vor dem Öffnen eines neuen Projektes gespeichert werden?");
  EXPECT_EQ(messages.shown[0].title, "TavixStudio - Setup-Assistent   (Meldung 1706)");
}

TEST_F(MainForm, SavesBeforeOpeningOnYes) {
  Type("txtInfo11", "Werk Nord");
  Answer(MessageResult::kYes);
  view.projects = {"Süd"};

  presenter.OpenProject();

  EXPECT_THAT(world.Get(kDemoSettings), HasSubstr("text1=Werk Nord"));
  EXPECT_EQ(application.project.name, "Süd");
}

TEST_F(MainForm, OpensWithoutSavingOnNo) {
  const std::string before = world.Get(kDemoSettings);
  Type("txtInfo11", "Werk Nord");
  Answer(MessageResult::kNo);
  view.projects = {"Süd"};

  presenter.OpenProject();

  EXPECT_EQ(world.Get(kDemoSettings), before);
  EXPECT_EQ(application.project.name, "Süd");
  EXPECT_FALSE(document.changed);
}

TEST_F(MainForm, KeepsItsChangesWhenOpeningWasAnsweredNoAndNoProjectIsChosen) {
  Type("txtInfo11", "Werk Nord");
  Answer(MessageResult::kNo);

  presenter.OpenProject();

  EXPECT_EQ(steps.info.german[0], "Werk Nord");
  EXPECT_TRUE(document.changed);
}

TEST_F(MainForm, StopsOpeningOnCancel) {
  Type("txtInfo11", "Werk Nord");
  Answer(MessageResult::kCancel);
  view.projects = {"Süd"};

  presenter.OpenProject();

  EXPECT_THAT(view.diary, IsEmpty());
  EXPECT_EQ(application.project.name, "Demo");
  EXPECT_TRUE(document.changed);
}

// The user's lists were lost when the file had become readable again before the save.
TEST_F(MainForm, DoesNotSaveTheDefaultsOverSettingsThatCouldNotBeRead) {
  const std::string settings = "[setup]\r\ntext1=Werk Süd\r\n[file]\r\n01=a.dll,<WinSysDir>,1\r\n";
  const char* const path = "C:\\Anlagen\\Süd\\Süd.swz";
  world.Put(path, settings);
  world.platform.files.FailPath(path, "OpenForReading", ErrorNumber::kPermissionDenied);
  view.projects = {"Süd"};
  presenter.OpenProject();
  world.platform.files.StopFailing();
  Type("txtInfo11", "typed into the defaults");
  Answer(MessageResult::kOk);
  Answer(MessageResult::kYes);

  EXPECT_FALSE(presenter.Save());
  EXPECT_FALSE(presenter.MayClose());

  EXPECT_EQ(world.Get(path), settings);
  ASSERT_THAT(messages.Ids(), ElementsAre(901, 1931, 1703, 1931));
  EXPECT_THAT(messages.shown[1].prompt,
              StartsWith("Die Einstellungen wurden nicht gespeichert!\r\nDie Datei "
                         "'C:\\Anlagen\\Süd\\Süd.swz' wurde beim Öffnen des Projektes nicht "
                         "gelesen"));

  view.projects = {"Süd"};
  Answer(MessageResult::kNo);
  presenter.OpenProject();
  Type("txtInfo11", "Werk Nord");
  EXPECT_TRUE(presenter.Save());
  EXPECT_THAT(world.Get(path), HasSubstr("text1=Werk Nord"));
  EXPECT_THAT(world.Get(path), HasSubstr("01=a.dll,<WinSysDir>,1"));
}

TEST_F(MainForm, TakesATextThatWasNotAddedForAChangeAfterASaveToo) {
  view.holds_loose_text = true;
  presenter.LooseTextEdited();

  EXPECT_TRUE(presenter.Save());

  EXPECT_TRUE(document.changed);
  EXPECT_THAT(messages.Ids(), IsEmpty());
}

TEST_F(MainForm, StopsOpeningWhenSavingFails) {
  Type("txtInfo11", "Werk Nord");
  Answer(MessageResult::kYes);
  world.platform.files.SetFreeSpace(10);
  view.projects = {"Süd"};

  presenter.OpenProject();

  EXPECT_THAT(messages.Ids(), ElementsAre(1706, 911));
  EXPECT_THAT(view.diary, IsEmpty());
  EXPECT_EQ(application.project.name, "Demo");
  EXPECT_EQ(steps.info.german[0], "Werk Nord");
}

TEST_F(MainForm, ShowsTheDefaultsWhenTheSettingsCannotBeRead) {
  world.Put("C:\\Anlagen\\Süd\\Süd.swz", "[setup]\r\ntext1=Werk Süd\r\n");
  world.platform.files.FailPath("C:\\Anlagen\\Süd\\Süd.swz", "OpenForReading",
                                ErrorNumber::kPermissionDenied);
  view.projects = {"Süd"};

  presenter.OpenProject();

  ASSERT_THAT(messages.Ids(), ElementsAre(901));
  EXPECT_THAT(messages.shown[0].prompt, HasSubstr("(70: "));
  EXPECT_EQ(view.title, "TavixStudio - Setup-Assistent: Projekt 'Süd'");
  EXPECT_EQ(steps.info.german[0], "");
  EXPECT_EQ(steps.startmenu_link.german, "Süd");
  EXPECT_TRUE(view.Did("document"));
}

TEST_F(MainForm, KeepsTheProjectWhenTheChosenOneIsNoLongerRegistered) {
  view.projects = {"Nord"};

  presenter.OpenProject();

  ASSERT_THAT(messages.Ids(), ElementsAre(901));
  EXPECT_THAT(messages.shown[0].prompt, StartsWith("Das Projekt 'Nord' kann nicht"));
  EXPECT_EQ(application.project.name, "Demo");
  EXPECT_EQ(document.files.RowCount(), 2u);
}

// --- End, Help, Extras

TEST_F(MainForm, EndClosesTheForm) {
  presenter.End();

  EXPECT_THAT(view.diary, ElementsAre("close"));
}

TEST_F(MainForm, MenusShowTheirDialogs) {
  presenter.ShowHelpContents();
  presenter.ShowInfo();
  presenter.ShowOptions();

  EXPECT_THAT(view.diary, ElementsAre("help", "info", "options"));
}

TEST_F(MainForm, ClearsTheSettingsOnYes) {
  const std::string before = world.Get(kDemoSettings);
  Type("txtInfo11", "x");
  Answer(MessageResult::kYes);

  presenter.ClearSettings();

  ASSERT_THAT(messages.Ids(), ElementsAre(1704));
  EXPECT_EQ(OnlyButtons(), kButtonsYesNo | kIconQuestion);
  EXPECT_EQ(messages.shown[0].prompt, "Sollen wirklich alle Einstellungen gelöscht werden?");
  EXPECT_EQ(steps.info.german[0], "");
  EXPECT_EQ(document.files.RowCount(), 0u);
  EXPECT_FALSE(document.changed);
  EXPECT_THAT(view.diary, ElementsAre("title", "document", "figures"));
  EXPECT_EQ(world.Get(kDemoSettings), before);
}

TEST_F(MainForm, ShowsFiguresOfAnEmptyListAfterClearing) {
  Answer(MessageResult::kYes);

  presenter.ClearSettings();

  EXPECT_EQ(steps.file_count_label, "0");
  EXPECT_EQ(steps.total_bytes_label, "0");
  EXPECT_EQ(steps.disks_needed_label, "1");
}

TEST_F(MainForm, TakesThePathVariablesOfUserDirectoriesAwayOnClearing) {
  ASSERT_EQ(FromVariableForm(document.path_variables, "<UserDir1>"), "D:\\Rezepte");
  Answer(MessageResult::kYes);

  presenter.ClearSettings();

  EXPECT_EQ(FromVariableForm(document.path_variables, "<UserDir1>|<TempDir>"),
            "<UserDir1>|C:\\Demo\\~TEMP");
}

TEST_F(MainForm, ClearsNothingOnNo) {
  Answer(MessageResult::kNo);

  presenter.ClearSettings();

  EXPECT_EQ(document.files.RowCount(), 2u);
  EXPECT_THAT(view.diary, IsEmpty());
}

// --- Closing

TEST_F(MainForm, ClosesWithoutAQuestionWhenNothingHasChanged) {
  EXPECT_TRUE(presenter.MayClose());

  EXPECT_THAT(messages.Ids(), IsEmpty());
}

TEST_F(MainForm, SavesAndClosesOnYes) {
  Type("txtInfo11", "Werk Nord");
  Answer(MessageResult::kYes);

  EXPECT_TRUE(presenter.MayClose());

  ASSERT_THAT(messages.Ids(), ElementsAre(1703));
  EXPECT_EQ(OnlyButtons(), kButtonsYesNoCancel | kIconQuestion);
  EXPECT_THAT(world.Get(kDemoSettings), HasSubstr("text1=Werk Nord"));
}

TEST_F(MainForm, ClosesWithoutSavingOnNo) {
  const std::string before = world.Get(kDemoSettings);
  Type("txtInfo11", "Werk Nord");
  Answer(MessageResult::kNo);

  EXPECT_TRUE(presenter.MayClose());

  EXPECT_EQ(world.Get(kDemoSettings), before);
}

TEST_F(MainForm, StaysOpenOnCancel) {
  Type("txtInfo11", "Werk Nord");
  Answer(MessageResult::kCancel);

  EXPECT_FALSE(presenter.MayClose());

  EXPECT_TRUE(document.changed);
}

TEST_F(MainForm, StaysOpenWhenSavingFails) {
  Type("txtInfo11", "Werk Nord");
  Answer(MessageResult::kYes);
  world.platform.files.SetFreeSpace(10);

  EXPECT_FALSE(presenter.MayClose());

  EXPECT_THAT(messages.Ids(), ElementsAre(1703, 911));
  EXPECT_TRUE(document.changed);
}

// --- Changing the step

TEST_F(MainForm, ChangesTheStepWhenTheOneThatIsLeftIsRight) {
  for (const Step left :
       {Step::kTexts, Step::kDirectories, Step::kFunctions, Step::kFiles, Step::kMedium}) {
    EXPECT_TRUE(presenter.ChangeStep(left, Step::kTexts)) << static_cast<int>(left);
  }

  EXPECT_THAT(messages.Ids(), IsEmpty());
}

TEST_F(MainForm, ChecksOnlyTheStepThatIsLeft) {
  Type("txtBackgroundPicture1", "C:\\nirgends.bmp");

  EXPECT_TRUE(presenter.ChangeStep(Step::kFunctions, Step::kTexts));
  EXPECT_FALSE(presenter.ChangeStep(Step::kTexts, Step::kFunctions));

  EXPECT_THAT(messages.Ids(), ElementsAre(1707));
}

TEST_F(MainForm, StaysOnStep2WithoutADirectory) {
  Type("txtProjectDirectory", " ");

  EXPECT_FALSE(presenter.ChangeStep(Step::kDirectories, Step::kFunctions));

  EXPECT_THAT(messages.Ids(), ElementsAre(1708));
}

TEST_F(MainForm, StaysOnStep2WithADirectoryOfNoDrive) {
  Type("txtTavixDirectory", "TavixStudio");

  EXPECT_FALSE(presenter.ChangeStep(Step::kDirectories, Step::kFunctions));

  EXPECT_THAT(messages.Ids(), ElementsAre(1712));
}

// The first control of the step had the focus, whatever was wrong; of two pages the first one
// showed.
TEST_F(MainForm, LeadsToTheBoxOfWhatACheckFoundWrong) {
  struct Case {
    Step step;
    const char* box;
    const char* text;
  };
  for (const Case& one : {Case{Step::kTexts, "txtBackgroundPicture1", "C:\\nirgends.bmp"},
                          Case{Step::kTexts, "txtBackgroundPicture2", "C:\\nirgends.bmp"},
                          Case{Step::kTexts, "txtBackgroundPicture2", "<Schleife>\\a.bmp"},
                          Case{Step::kDirectories, "txtTavixDirectory", ""},
                          Case{Step::kDirectories, "txtProjectDirectory", " "},
                          Case{Step::kDirectories, "txtTavixDirectory", "TavixStudio"},
                          Case{Step::kDirectories, "txtProjectDirectory", "Demo"}}) {
    document.path_variables.push_back({"<Schleife>", "<Schleife><Schleife>"});
    std::string& field = FindTextBox(one.box).field(steps);
    const std::string before = field;
    view.diary.clear();
    Type(one.box, one.text);

    EXPECT_FALSE(presenter.ChangeStep(one.step, Step::kFunctions));

    EXPECT_TRUE(view.Did(std::string("box ") + one.box)) << one.text;
    EXPECT_FALSE(view.Did("step 1") || view.Did("step 2")) << one.text;
    Type(one.box, before);
  }
}

TEST_F(MainForm, LeadsToTheUserDirectoryThatACheckFoundWrong) {
  steps.user_directories = {{1, "D:\\Rezepte"}, {5, "Rezepte"}};

  EXPECT_FALSE(presenter.ChangeStep(Step::kDirectories, Step::kFunctions));

  EXPECT_THAT(messages.Ids(), ElementsAre(1712));
  EXPECT_TRUE(view.Did("directory 1"));
}

TEST_F(MainForm, StaysOnStep4AndShowsTheMarksOfMissingFiles) {
  world.platform.files.Vanish("C:\\Demo\\Trend.ocx");

  EXPECT_FALSE(presenter.ChangeStep(Step::kFiles, Step::kMedium));

  EXPECT_THAT(messages.Ids(), ElementsAre(1709));
  EXPECT_FALSE(document.files.Row(1).marked);
  EXPECT_TRUE(document.files.Row(2).marked);
  EXPECT_THAT(view.diary, ElementsAre("file list", "figures", "step 4"));
}

TEST_F(MainForm, StaysOnStep4AndShowsTheMarksOfMissingDestinations) {
  presenter.EditCell(1, FileColumn::kDestination, "");

  EXPECT_FALSE(presenter.ChangeStep(Step::kFiles, Step::kMedium));

  EXPECT_THAT(messages.Ids(), ElementsAre(1710));
  EXPECT_TRUE(document.files.Row(1).marked);
  EXPECT_TRUE(view.Did("file list"));
}

TEST_F(MainForm, RefreshesTheListOnEnteringStep4) {
  EXPECT_TRUE(presenter.ChangeStep(Step::kFunctions, Step::kFiles));

  EXPECT_THAT(view.diary, ElementsAre("file list"));
}

TEST_F(MainForm, ShowsTheFiguresOnEnteringStep5FromStep4) {
  EXPECT_TRUE(presenter.ChangeStep(Step::kFiles, Step::kMedium));

  EXPECT_THAT(view.diary, ElementsAre("figures"));
  EXPECT_EQ(steps.file_count_label, "2");
  EXPECT_EQ(steps.total_bytes_label, "5700");
  EXPECT_EQ(steps.disks_needed_label, "1");
}

// Straight after opening a project no length was known yet, and step 5 said "0 bytes".
TEST_F(MainForm, ShowsTheFiguresOnEnteringStep5FromAnyOtherStep) {
  for (const Step left : {Step::kTexts, Step::kDirectories, Step::kFunctions}) {
    steps.total_bytes_label.clear();
    for (FileRow& row : document.files.Rows()) row.length_bytes.reset();

    EXPECT_TRUE(presenter.ChangeStep(left, Step::kMedium));

    EXPECT_EQ(steps.total_bytes_label, "5700");
  }
}

TEST_F(MainForm, EntersStep5WithAFileMissingThatStep4WillAskFor) {
  world.platform.files.Vanish("C:\\Demo\\Trend.ocx");

  EXPECT_TRUE(presenter.ChangeStep(Step::kTexts, Step::kMedium));

  EXPECT_EQ(steps.total_bytes_label, "5000");
  EXPECT_FALSE(document.files.Row(2).marked);
  EXPECT_THAT(messages.Ids(), IsEmpty());
}

TEST_F(MainForm, MeasuresTheFilesOnceOnTheWayFromStep4ToStep5) {
  world.platform.files.diary.clear();

  EXPECT_TRUE(presenter.ChangeStep(Step::kFiles, Step::kMedium));

  EXPECT_EQ(world.platform.files.Times("Stamp"), 2u);
}

TEST_F(MainForm, StaysWhereItIsWhenTheListCannotBeShown) {
  view.before = [](const std::string&) { throw std::runtime_error("broken"); };

  EXPECT_FALSE(presenter.ChangeStep(Step::kTexts, Step::kFiles));

  EXPECT_THAT(messages.Ids(), ElementsAre(1913));
}

// --- Text boxes

TEST_F(MainForm, TakesAnEditOfEveryTextBox) {
  for (const TextBox& box : TextBoxes()) {
    document.changed = false;

    presenter.TextEdited(box, "neuer Text");

    EXPECT_EQ(box.field(steps), "neuer Text") << box.name;
    EXPECT_TRUE(document.changed) << box.name;
  }
}

TEST_F(MainForm, TakesARefillOfATextBoxForNoEdit) {
  for (const TextBox& box : TextBoxes()) {
    presenter.TextEdited(box, std::string(box.field(steps)));
  }

  EXPECT_FALSE(document.changed);
}

TEST_F(MainForm, TakesALooseEditForAChange) {
  presenter.LooseTextEdited();

  EXPECT_TRUE(document.changed);
}

TEST_F(MainForm, TidiesADirectoryThatIsLeft) {
  EXPECT_EQ(presenter.LeaveDirectory("  D:/Anlagen//Süd\\ "), "D:\\Anlagen\\Süd");
  EXPECT_EQ(presenter.LeaveDirectory("D:\\"), "D:\\");
  EXPECT_EQ(presenter.LeaveDirectory(""), "");
  EXPECT_FALSE(document.changed);
}

// --- Background pictures

TEST_F(MainForm, BrowsesForAPictureInTheProjectDirectory) {
  view.file_choices = {{"C:\\Demo\\Bilder\\Süd.bmp"}};

  EXPECT_EQ(presenter.BrowsePicture(FindTextBox("txtBackgroundPicture1")),
            "<ProjectDir>\\Bilder\\Süd.bmp");

  ASSERT_EQ(view.file_questions.size(), 1u);
  EXPECT_EQ(view.file_questions[0].title, "Hintergrundbild auswählen");
  EXPECT_THAT(view.file_questions[0].filter, StartsWith("Bilder|*.BMP;"));
  EXPECT_EQ(view.file_questions[0].directory, "C:\\Demo");
  EXPECT_FALSE(view.file_questions[0].several);
}

TEST(MainFormInEnglish, BrowsesForAPictureInEnglish) {
  WizardWorld world(kEnglish);

  EXPECT_EQ(world.presenter.BrowsePicture(FindTextBox("txtBackgroundPicture2")), "");

  ASSERT_EQ(world.view.file_questions.size(), 1u);
  EXPECT_EQ(world.view.file_questions[0].title, "Choose the background picture");
  EXPECT_THAT(world.view.file_questions[0].filter, EndsWith("|All Files|*.*"));
}

TEST_F(MainForm, LeavesThePictureToTheBoxThatShowsIt) {
  view.file_choices = {{"C:\\Demo\\Süd.bmp"}};

  static_cast<void>(presenter.BrowsePicture(FindTextBox("txtBackgroundPicture1")));

  EXPECT_EQ(steps.background_picture.german, "");
  EXPECT_FALSE(document.changed);
}

TEST_F(MainForm, TakesNoPictureWhenBrowsingIsCancelled) {
  EXPECT_EQ(presenter.BrowsePicture(FindTextBox("txtBackgroundPicture1")), "");
}

TEST_F(MainForm, BrowsesWhereTheCurrentPictureLies) {
  struct Case {
    const char* picture;
    const char* directory;
  };
  world.platform.files.AddFolder("C:\\Demo\\Bilder");
  for (const Case& c : std::vector<Case>{{"<ProjectDir>\\Bilder\\a.bmp", "C:\\Demo\\Bilder"},
                                         {"C:\\Anlagen\\a.bmp", "C:\\Anlagen"},
                                         {"C:\\a.bmp", "C:\\"},
                                         {"C:\\weg\\a.bmp", "C:\\Demo"},
                                         {"a.bmp", "C:\\Demo"},
                                         {"Bilder\\a.bmp", "C:\\Demo"},
                                         {"", "C:\\Demo"}}) {
    steps.background_picture.english = c.picture;

    static_cast<void>(presenter.BrowsePicture(FindTextBox("txtBackgroundPicture2")));

    EXPECT_EQ(view.file_questions.back().directory, c.directory) << c.picture;
  }
}

TEST_F(MainForm, BrowsesInTheProjectWhenThePictureCannotBeResolved) {
  // Each doubles the other.
  steps.user_directories = {{1, "<UserDir2><UserDir2>"}};
  for (long number = 2; number <= 30; ++number) {
    const std::string next = "<UserDir" + std::to_string(number + 1) + ">";
    steps.user_directories.push_back({number, next + next});
  }
  ExtendPathVariables(application);
  steps.background_picture.german = "<UserDir1>";

  static_cast<void>(presenter.BrowsePicture(FindTextBox("txtBackgroundPicture1")));

  ASSERT_EQ(view.file_questions.size(), 1u);
  EXPECT_EQ(view.file_questions[0].directory, "C:\\Demo");
}

TEST_F(MainForm, GivesAPictureThatTheCheckFinds) {
  world.Put("C:\\Demo\\Süd.bmp", "picture");
  for (const char* directory : {"C:\\Demo", "C:\\Demo\\"}) {
    application.project.directory = directory;
    SetPathVariable(document.path_variables, "<ProjectDir>", directory);
    view.file_choices = {{"C:\\Demo\\Süd.bmp"}};

    const std::string picture = presenter.BrowsePicture(FindTextBox("txtBackgroundPicture1"));
    Type("txtBackgroundPicture1", picture);

    EXPECT_EQ(picture, "<ProjectDir>\\Süd.bmp");
    EXPECT_TRUE(presenter.ChangeStep(Step::kTexts, Step::kDirectories));
  }
}

TEST_F(MainForm, NamesNoUserDirectoryInAPicture) {
  view.file_choices = {{"D:\\Rezepte\\a.bmp"}};

  EXPECT_EQ(presenter.BrowsePicture(FindTextBox("txtBackgroundPicture1")), "D:\\Rezepte\\a.bmp");
}

// --- User directories

TEST_F(MainForm, AddsAUserDirectory) {
  EXPECT_TRUE(presenter.AddUserDirectory(" D:/Archiv/ "));

  EXPECT_THAT(steps.user_directories,
              ElementsAre(UserDirectory{1, "D:\\Rezepte"}, UserDirectory{2, "D:\\Archiv"}));
  EXPECT_TRUE(document.changed);
  EXPECT_EQ(FromVariableForm(document.path_variables, "<UserDir2>"), "D:\\Archiv");
  EXPECT_THAT(view.diary, ElementsAre("user directories"));
}

TEST_F(MainForm, NumbersTheFirstUserDirectory1) {
  steps.user_directories.clear();

  EXPECT_TRUE(presenter.AddUserDirectory("D:\\Archiv"));

  EXPECT_THAT(steps.user_directories, ElementsAre(UserDirectory{1, "D:\\Archiv"}));
}

TEST_F(MainForm, NumbersAUserDirectoryAfterTheLastRow) {
  steps.user_directories = {{1, "D:\\a"}, {7, "D:\\b"}};

  EXPECT_TRUE(presenter.AddUserDirectory("D:\\c"));

  EXPECT_EQ(steps.user_directories.back().number, 8);
}

// Two rows of one number are one row after the next start.
TEST_F(MainForm, NeverGivesANumberTwice) {
  steps.user_directories = {{4, "D:\\a"}, {5, "D:\\b"}, {3, "D:\\c"}};

  EXPECT_TRUE(presenter.AddUserDirectory("D:\\d"));
  EXPECT_EQ(steps.user_directories.back().number, 6);

  steps.user_directories = {{1, "D:\\a"}, {std::numeric_limits<std::int32_t>::max(), "D:\\b"}};
  EXPECT_TRUE(presenter.AddUserDirectory("D:\\d"));
  EXPECT_EQ(steps.user_directories.back().number, 2);
}

TEST_F(MainForm, BeepsAtAUserDirectoryThatIsListed) {
  steps.user_directories = {{1, "D:\\Rezepte"}, {2, "D:\\Süd\\"}};

  EXPECT_FALSE(presenter.AddUserDirectory("d:\\rezepte"));
  EXPECT_FALSE(presenter.AddUserDirectory("D:/REZEPTE/"));
  EXPECT_FALSE(presenter.AddUserDirectory("D:\\SÜD"));

  EXPECT_EQ(view.beeps, 3);
  EXPECT_EQ(steps.user_directories.size(), 2u);
  EXPECT_FALSE(document.changed);
  EXPECT_FALSE(view.Did("user directories"));
}

TEST_F(MainForm, AddsNoUserDirectoryOfBlanksAndEmptiesTheBox) {
  EXPECT_TRUE(presenter.AddUserDirectory(" \t "));

  EXPECT_EQ(steps.user_directories.size(), 1u);
  EXPECT_EQ(view.beeps, 0);
  EXPECT_FALSE(document.changed);
}

TEST_F(MainForm, DeletesAUserDirectoryAndLeavesAGap) {
  steps.user_directories = {{1, "D:\\a"}, {2, "D:\\b"}, {3, "D:\\c"}};
  ExtendPathVariables(application);

  presenter.DeleteUserDirectory(1);

  EXPECT_THAT(steps.user_directories,
              ElementsAre(UserDirectory{1, "D:\\a"}, UserDirectory{3, "D:\\c"}));
  EXPECT_TRUE(document.changed);
  EXPECT_EQ(FromVariableForm(document.path_variables, "<UserDir2><UserDir3>"), "<UserDir2>D:\\c");
  EXPECT_THAT(view.diary, ElementsAre("user directories"));
}

TEST_F(MainForm, RenamesAUserDirectory) {
  presenter.RenameUserDirectory(0, "E:/Rezepte/");

  EXPECT_THAT(steps.user_directories, ElementsAre(UserDirectory{1, "E:\\Rezepte"}));
  EXPECT_TRUE(document.changed);
  EXPECT_EQ(FromVariableForm(document.path_variables, "<UserDir1>"), "E:\\Rezepte");
  EXPECT_THAT(view.diary, ElementsAre("user directories"));
}

TEST_F(MainForm, KeepsAUserDirectoryThatIsRenamedToItselfOrToNothing) {
  for (const char* text : {"D:\\Rezepte", "d:\\REZEPTE", "D:\\Rezepte\\", "", "  "}) {
    presenter.RenameUserDirectory(0, text);

    EXPECT_EQ(steps.user_directories[0].directory, "D:\\Rezepte") << text;
    EXPECT_FALSE(document.changed) << text;
  }
}

TEST_F(MainForm, PassesOverAUserDirectoryThatIsNotThere) {
  presenter.DeleteUserDirectory(1);
  presenter.RenameUserDirectory(1, "D:\\x");

  EXPECT_THAT(steps.user_directories, ElementsAre(UserDirectory{1, "D:\\Rezepte"}));
  EXPECT_FALSE(document.changed);
  EXPECT_THAT(messages.Ids(), IsEmpty());
}

// --- Check boxes and medium

TEST_F(MainForm, TellsToScanAgainWhenJetOrOdbcIsChecked) {
  presenter.SetUseJet(true);
  presenter.SetUseOdbc(true);

  EXPECT_TRUE(steps.use_jet);
  EXPECT_TRUE(steps.use_odbc);
  EXPECT_TRUE(document.changed);
  ASSERT_THAT(messages.Ids(), ElementsAre(1714, 1714));
  EXPECT_EQ(messages.shown[0].buttons, kButtonsOk | kIconInformation);
  EXPECT_EQ(messages.shown[0].prompt,
            "Betätigen Sie in Schritt 4 die Schaltfläche 'Durchsuchen', damit die zugehörigen "
            "Dateien gefunden werden.");
}

TEST_F(MainForm, SaysNothingWhenABoxIsUnchecked) {
  steps.use_jet = steps.use_odbc = steps.minimal_mdac = steps.service_pack = true;

  presenter.SetUseJet(false);
  presenter.SetUseOdbc(false);
  presenter.SetMinimalMdac(false);
  presenter.SetServicePack(false);

  EXPECT_FALSE(steps.use_jet || steps.use_odbc || steps.minimal_mdac || steps.service_pack);
  EXPECT_TRUE(document.changed);
  EXPECT_THAT(messages.Ids(), IsEmpty());
}

TEST_F(MainForm, WarnsOfTheMinimalMdac) {
  presenter.SetMinimalMdac(true);

  EXPECT_TRUE(steps.minimal_mdac);
  EXPECT_TRUE(document.changed);
  ASSERT_THAT(messages.Ids(), ElementsAre(1715));
  EXPECT_EQ(OnlyButtons(), kButtonsOk | kIconExclamation);
}

TEST_F(MainForm, TakesTheServicePackWithoutANotice) {
  presenter.SetServicePack(true);

  EXPECT_TRUE(steps.service_pack);
  EXPECT_TRUE(document.changed);
  EXPECT_THAT(messages.Ids(), IsEmpty());
}

TEST_F(MainForm, TakesARefillOfACheckBoxForNoEdit) {
  steps.use_jet = steps.minimal_mdac = true;

  presenter.SetUseJet(true);
  presenter.SetUseOdbc(false);
  presenter.SetMinimalMdac(true);
  presenter.SetServicePack(false);

  EXPECT_FALSE(document.changed);
  EXPECT_THAT(messages.Ids(), IsEmpty());
}

TEST_F(MainForm, RecomputesTheDisksNeededWhenAMediumIsChosen) {
  world.Put("C:\\Demo\\Demo.exe", std::string(5'000'000, 'x'));
  ASSERT_TRUE(presenter.ChangeStep(Step::kFiles, Step::kMedium));
  ASSERT_EQ(steps.disks_needed_label, "1");
  view.diary.clear();

  presenter.SetDiskSize(0);

  EXPECT_EQ(steps.disk_size_index, 0);
  EXPECT_EQ(steps.disks_needed_label, "3");
  EXPECT_TRUE(steps.disks_needed_is_estimate);
  EXPECT_TRUE(document.changed);
  EXPECT_THAT(view.diary, ElementsAre("figures"));
}

TEST_F(MainForm, TakesTheMediumThatIsChosenAlreadyForNoEdit) {
  presenter.SetDiskSize(1);

  EXPECT_FALSE(document.changed);
  EXPECT_TRUE(view.Did("figures"));
}

// --- The file list

TEST_F(MainForm, DeletesRows) {
  document.files.Append("<ProjectDir>\\c.dll", "<WinSysDir>", "0");

  presenter.DeleteRows({3, 1});

  EXPECT_THAT(world.Sources(), ElementsAre("<ProjectDir>\\Trend.ocx"));
  EXPECT_TRUE(document.changed);
  EXPECT_EQ(steps.file_count_label, "1");
  EXPECT_THAT(view.diary, ElementsAre("file list", "figures"));
}

TEST_F(MainForm, DeletesNothingWhenNoRowIsSelected) {
  presenter.DeleteRows({});
  presenter.DeleteRows({0, 9});

  EXPECT_EQ(document.files.RowCount(), 2u);
  EXPECT_FALSE(document.changed);
  EXPECT_THAT(view.diary, IsEmpty());
}

TEST_F(MainForm, TakesAnEditOfACellAndClearsTheMarkOfItsRow) {
  document.files.Row(1).marked = document.files.Row(2).marked = true;

  presenter.EditCell(2, FileColumn::kDestination, "<UserDir1>");

  EXPECT_EQ(document.files.Row(2).destination, "<UserDir1>");
  EXPECT_FALSE(document.files.Row(2).marked);
  EXPECT_TRUE(document.files.Row(1).marked);
  EXPECT_TRUE(document.changed);
}

TEST_F(MainForm, ShowsAnEditOfARowThatIsNotThere) {
  presenter.EditCell(3, FileColumn::kSource, "x");

  ASSERT_THAT(messages.Ids(), ElementsAre(1913));
  EXPECT_THAT(messages.shown[0].prompt, HasSubstr("(5: "));
  EXPECT_FALSE(document.changed);
}

// --- Questions and notices in English

TEST(MainFormInEnglish, AsksAndTellsInEnglish) {
  WizardWorld world(kEnglish);
  SetupWizardPresenter& presenter = world.presenter;
  world.messages.answers.assign(3, MessageResult::kCancel);
  presenter.LooseTextEdited();

  EXPECT_FALSE(presenter.MayClose());
  presenter.OpenProject();
  presenter.ClearSettings();
  presenter.SetUseJet(true);
  presenter.SetMinimalMdac(true);

  std::vector<std::string> prompts;
  for (const Message& message : world.messages.shown) prompts.push_back(message.prompt);
  EXPECT_THAT(
      prompts,
      ElementsAre("Save Settings before closing?", "Save Settings before opening a new project?",
                  "Do you really want to clear all settings?",
                  "Please click the command button 'Scan' on step 4 to find the associated files.",
                  "The Minimal Installation may lead to missing files of the Microsoft Data Access "
                  "Components, so that your program does not access any databases!"));
  EXPECT_EQ(world.messages.shown[0].title, "TavixStudio - Setup-Wizard   (Message 1703)");
}

// --- Whatever fails

// A form that fails in everything that it is told.
TEST_F(MainForm, LetsNothingOutOfAnyEvent) {
  const std::vector<std::function<void()>> events = {
      [&] { presenter.Load(); },
      [&] { presenter.OpenProject(); },
      [&] { presenter.End(); },
      [&] { presenter.ShowHelpContents(); },
      [&] { presenter.ShowInfo(); },
      [&] { presenter.ShowOptions(); },
      [&] { presenter.ClearSettings(); },
      [&] { static_cast<void>(presenter.ChangeStep(Step::kTexts, Step::kFiles)); },
      [&] { static_cast<void>(presenter.ChangeStep(Step::kTexts, Step::kMedium)); },
      [&] { static_cast<void>(presenter.BrowsePicture(FindTextBox("txtBackgroundPicture1"))); },
      [&] { static_cast<void>(presenter.AddUserDirectory("E:\\neu")); },
      [&] { static_cast<void>(presenter.AddUserDirectory("D:\\Rezepte")); },
      [&] { presenter.RenameUserDirectory(0, "E:\\anders"); },
      [&] { presenter.DeleteUserDirectory(0); },
      [&] { presenter.SetDiskSize(0); },
      [&] { presenter.AddFiles(); },
      [&] { presenter.AddFiles({"C:\\Demo\\Demo.exe"}); },
      [&] { presenter.Scan(); },
      [&] { presenter.Create(); },
      [&] { presenter.DeleteRows({1}); },
  };
  view.before = [](const std::string& what) { throw std::runtime_error(what); };
  for (std::size_t i = 0; i < events.size(); ++i) {
    ASSERT_TRUE(txs::OpenProject(application, "Demo"));
    messages.shown.clear();
    messages.answers.assign(1, MessageResult::kYes);

    EXPECT_NO_THROW(events[i]()) << i;

    EXPECT_THAT(messages.Ids(), Contains(1913)) << i;
    EXPECT_FALSE(presenter.IsRunning()) << i;
  }
}

}  // namespace
}  // namespace txs
