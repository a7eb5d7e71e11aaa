// The main form without the mouse: every control is reached and works by keys alone.
#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "gui/main_form_support.h"
#include "ui/project_open_form.h"
#include "ui/state_create_form.h"
#include "ui/state_scan_form.h"
#include "ui/take_note_form.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class MainFormKeys : public MainFormTest {
 protected:
  // The key that the caption of `text_id` marks.
  char AccessKey(long text_id) {
    const std::string text = App().texts.GetText(text_id);
    const std::size_t mark = text.find('&');
    EXPECT_NE(mark, std::string::npos) << text_id;
    const char key = text.at(mark + 1);
    EXPECT_TRUE(std::isalpha(static_cast<unsigned char>(key))) << text_id;
    return static_cast<char>(std::toupper(static_cast<unsigned char>(key)));
  }
  // Names of what Tab leads to, from the first control of the step until it comes round.
  std::vector<std::string> TabOrder() {
    std::vector<std::string> names = {NameOf(wxWindow::FindFocus())};
    constexpr int kMoreThanAnyStepHas = 20;
    for (int i = 0; i < kMoreThanAnyStepHas; ++i) {
      PressKey(WXK_TAB);
      const std::string name = NameOf(wxWindow::FindFocus());
      if (name == names.front()) break;
      names.push_back(name);
    }
    return names;
  }
  // The rows of a list are a window within it.
  static std::string NameOf(const wxWindow* window) {
    if (window == nullptr) return "nothing";
    const auto* const list = dynamic_cast<const wxListCtrl*>(window->GetParent());
    return (list != nullptr ? list->GetName() : window->GetName()).utf8_string();
  }
  void OnLanguagesDo(const std::function<void()>& check) {
    for (const long language : {1031, 1033}) {
      Open(language);
      check();
      form_->Destroy();
      LetEventsRun();
    }
  }
};

TEST_F(MainFormKeys, AccessKeysOfTheBoxesMoveTheFocus) {
  struct Case {
    int step;
    long text_id;
    const char* control;
  };
  const Case cases[] = {
      {1, 1101, "txtInfo11"},          {1, 1103, "txtStartmenuFolder1"},
      {1, 1104, "txtStartmenuLink1"},  {1, 1105, "txtBackgroundPicture1"},
      {2, 1202, "txtTavixDirectory"},  {2, 1203, "txtProjectDirectory"},
      {2, 1204, "lvwUserDirectories"}, {5, 1502, "txtSetupDirectory"},
  };
  OnLanguagesDo([&] {
    for (const Case& one : cases) {
      GoToStep(one.step);
      Find<wxNotebook>("tabStep").SetFocus();

      PressKey(AccessKey(one.text_id), wxMOD_ALT);

      EXPECT_TRUE(WaitFor([&] { return NameOf(wxWindow::FindFocus()) == one.control; }, 5))
          << one.control << " " << FocusName();
    }
  });
}

TEST_F(MainFormKeys, AccessKeysLeadToTheBoxesOfTheOtherLanguageOnItsPage) {
  OnLanguagesDo([&] {
    PressKey(AccessKey(1108), wxMOD_ALT);

    PressKey(AccessKey(1103), wxMOD_ALT);
    EXPECT_TRUE(FocusIs("txtStartmenuFolder2"));
    PressKey(AccessKey(1105), wxMOD_ALT);
    EXPECT_TRUE(FocusIs("txtBackgroundPicture2"));
  });
}

TEST_F(MainFormKeys, AccessKeysOfChecksAndOptionsSwitchThem) {
  OnLanguagesDo([&] {
    GoToStep(3);
    PressKey(AccessKey(1305), wxMOD_ALT);
    EXPECT_TRUE(WaitFor([&] { return Steps().use_jet; }));
    PressKey(AccessKey(1306), wxMOD_ALT);
    EXPECT_TRUE(WaitFor([&] { return Steps().use_odbc; }));
    GoToStep(5);
    PressKey(AccessKey(1503), wxMOD_ALT);
    EXPECT_TRUE(WaitFor([&] { return Steps().disk_size_index == 0; }));
    PressKey(AccessKey(1504), wxMOD_ALT);
    EXPECT_TRUE(WaitFor([&] { return Steps().disk_size_index == 1; }));
    PressKey(AccessKey(1513), wxMOD_ALT);
    EXPECT_TRUE(WaitFor([&] { return Steps().minimal_mdac; }));
    PressKey(AccessKey(1514), wxMOD_ALT);
    EXPECT_TRUE(WaitFor([&] { return Steps().service_pack; }));
  });
}

TEST_F(MainFormKeys, NoTwoCaptionsOfAStepShareAnAccessKey) {
  const std::vector<long> menus = {1010, 1030, 1020};
  const std::vector<std::vector<long>> steps = {
      {1101, 1103, 1104, 1105, 1106, 1107, 1108},
      {1202, 1203, 1204, 1205, 1206, 1207},
      {1304, 1305, 1306},
      {},
      {1106, 1502, 1503, 1504, 1511, 1513, 1514},
  };
  OnLanguagesDo([&] {
    for (const std::vector<long>& captions : steps) {
      std::multiset<char> keys;
      for (const long id : menus) keys.insert(AccessKey(id));
      for (const long id : captions) keys.insert(AccessKey(id));
      EXPECT_EQ(std::set<char>(keys.begin(), keys.end()).size(), keys.size())
          << std::string(keys.begin(), keys.end());
    }
  });
}

TEST_F(MainFormKeys, TabLeadsThroughEveryControlInReadingOrder) {
  Open();
  Steps().user_directories = {{1, "D:\\A"}};
  form_->ShowUserDirectories();

  EXPECT_THAT(TabOrder(), ElementsAre("txtInfo11", "txtInfo12", "txtInfo13", "txtStartmenuFolder1",
                                      "txtStartmenuLink1", "txtBackgroundPicture1",
                                      "cmdBrowsePicture1", "tabStep", "tabLanguage"));
  GoToStep(2);
  EXPECT_THAT(TabOrder(),
              ElementsAre("txtTavixDirectory", "txtProjectDirectory", "lvwUserDirectories",
                          "cmdDeleteUserDir", "cmdRenameUserDir", "txtUserDirectory", "tabStep"));
  GoToStep(3);
  EXPECT_THAT(TabOrder(), ElementsAre("chkVB5dbUseJet", "chkVB5dbUseODBC", "tabStep"));
  GoToStep(5);
  EXPECT_THAT(TabOrder(),
              ElementsAre("optDiskSize1", "txtSetupDirectory", "cmdBrowseSetupDirectory",
                          "chkMinimalMDAC", "chkServicePack", "cmdCreateSetup", "tabStep"));
}

TEST_F(MainFormKeys, EveryControlThatTakesKeysHasAName) {
  OnLanguagesDo([&] {
    for (int step = 1; step <= 5; ++step) {
      GoToStep(step);
      const std::string first = NameOf(wxWindow::FindFocus());
      for (int i = 0; i < 12; ++i) {
        const std::string control = NameOf(wxWindow::FindFocus());
        if (control != "tabStep" && control != "tabLanguage") {
          EXPECT_NE(NameOfFocus(*form_), "") << control;
        }
        PressKey(WXK_TAB);
      }
    }
  });
}

// From an open project to the finished installation, and on to another project.
TEST_F(MainFormKeys, TheWholeJobIsDoneWithoutTheMouse) {
  Open();
  world_->platform.RegisterProject("Other", "C:\\Projects\\Other", "Single");

  // Step 1: texts in both languages.
  TypeText("Guten Tag");
  PressKey('O', wxMOD_ALT);
  TypeText("Anlage");
  PressKey('E', wxMOD_ALT);
  TypeText("Hello");
  EXPECT_TRUE(WaitFor([&] { return Steps().info.english[0] == "Hello"; }));
  EXPECT_EQ(Steps().info.german[0], "Guten Tag");
  EXPECT_EQ(Steps().startmenu_folder.german, "Anlage");

  // Step 2: a directory more, one renamed.
  PressKey(WXK_PAGEDOWN, wxMOD_CONTROL);
  PressKey('W', wxMOD_ALT);
  PressKey(WXK_F2);
  EXPECT_TRUE(FocusIs("txtRenameUserDir"));
  TypeText("E:\\Neu");
  PressKey(WXK_RETURN);
  EXPECT_TRUE(WaitFor([&] { return NameOf(wxWindow::FindFocus()) == "lvwUserDirectories"; }));
  for (int control = 0; control < 3; ++control) PressKey(WXK_TAB);
  EXPECT_TRUE(FocusIs("txtUserDirectory"));
  TypeText("F:\\Mehr");
  PressKey('Z', wxMOD_ALT);
  const std::vector<UserDirectory> directories = {{1, "E:\\Neu"}, {2, "F:\\Mehr"}};
  EXPECT_TRUE(WaitFor([&] { return Steps().user_directories == directories; }));

  // Step 3: a check box.
  PressKey(WXK_PAGEDOWN, wxMOD_CONTROL);
  EXPECT_TRUE(FocusIs("chkVB5dbUseJet"));
  PressKey(WXK_SPACE);
  EXPECT_TRUE(WaitFor([&] { return Steps().use_jet; }));

  // Step 4: Scan, then a row less.
  PressKey(WXK_PAGEDOWN, wxMOD_CONTROL);
  {
    Meanwhile meanwhile;
    meanwhile.When<FStateScan>(
        [](FStateScan& window) { return Control<wxButton>(window, "cmdOK").IsEnabled(); },
        [](FStateScan&) { PressKey(WXK_RETURN); });
    PressKey(WXK_F5);
    EXPECT_TRUE(WaitFor([&] { return meanwhile.IsDone() && form_->IsActive(); }));
  }
  EXPECT_TRUE(FocusIs("grdFiles"));
  const std::size_t scanned = Document().files.RowCount();
  EXPECT_GT(scanned, 3u);
  PressKey(WXK_END);
  EXPECT_TRUE(WaitFor([&] { return Grid().SelectedRows() == std::vector<std::size_t>{scanned}; }));
  PressKey(WXK_DELETE);
  EXPECT_TRUE(WaitFor([&] { return Document().files.RowCount() == scanned - 1; }));

  // Step 5: the other medium, then Create.
  PressKey(WXK_PAGEDOWN, wxMOD_CONTROL);
  EXPECT_TRUE(FocusIs("optDiskSize1"));
  PressKey(WXK_UP);
  EXPECT_TRUE(WaitFor([&] { return Steps().disk_size_index == 0; }));
  {
    Meanwhile meanwhile;
    meanwhile
        .In<FTakeNote>([](FTakeNote& dialog) {
          PressKey(WXK_RETURN);
          EndUnlessHidden(dialog);
        })
        .When<FStateCreate>(
            [](FStateCreate& window) { return Control<wxButton>(window, "cmdOK").IsEnabled(); },
            [](FStateCreate&) { PressKey(WXK_RETURN); });
    PressKey('R', wxMOD_ALT);
    EXPECT_TRUE(WaitFor([&] { return meanwhile.IsDone() && form_->IsActive(); }));
  }
  EXPECT_TRUE(Files().Has("C:\\Projects\\Demo\\Setup\\DISK1\\SETUP.STP"));

  // Save, another project, the end.
  ChooseCommand('D', 'S');
  EXPECT_TRUE(WaitFor([&] { return !Document().changed; }));
  EXPECT_THAT(SavedSettings(), HasSubstr("2=F:\\Mehr\r\n"));
  {
    Meanwhile meanwhile;
    meanwhile.In<FProjectOpen>([](FProjectOpen& dialog) {
      PressKey(WXK_END);
      PressKey(WXK_RETURN);
      EndUnlessHidden(dialog);
    });
    PressKey('O', wxMOD_CONTROL);
    EXPECT_TRUE(WaitFor([&] { return App().project.name == "Other" && form_->IsActive(); }));
  }
  ChooseCommand('D', 'B');
  EXPECT_TRUE(WaitFor([&] { return form_ == nullptr; }));
  EXPECT_EQ(MessageIds(), std::vector<long>{1714});
}

}  // namespace
}  // namespace txs
