#include "ui/project_open_form.h"

#include <gtest/gtest.h>
#include <wx/button.h>
#include <wx/listctrl.h>
#include <wx/stattext.h>
#include <wx/uiaction.h>

#include <functional>
#include <string>

#include "environment/installation.h"
#include "gui/gui_support.h"

namespace txs {
namespace {

// A studio with three projects.
struct StudioWithProjects : GuiWorld {
  explicit StudioWithProjects(long language_id = 1031) : GuiWorld(language_id) {
    platform.files.AddDrive('D');
    platform.RegisterProject("Abfüllung", "C:\\Projects\\Abfüllung", "Single");
    platform.RegisterProject("Kessel & Pumpe", "C:\\Projects\\Halle 2\\Kessel", "Server");
    platform.RegisterProject("Werk", "D:\\Werk", "Group");
  }
};

wxListView& List(FProjectOpen& form) { return Control<wxListView>(form, "lvwRegisteredProjects"); }

bool OpenIsEnabled(FProjectOpen& form) { return Control<wxButton>(form, "cmdOpen").IsEnabled(); }

wxPoint OnRow(wxListView& list, long row) {
  wxRect at;
  EXPECT_TRUE(list.GetItemRect(row, at));
  return list.ClientToScreen(wxPoint(at.x + 20, at.y + at.height / 2));
}

wxPoint BelowTheRows(wxListView& list) {
  const wxRect at = list.GetScreenRect();
  return wxPoint(at.x + 40, at.GetBottom() - 20);
}

std::string Choose(FProjectOpen& form, const std::function<void()>& action) {
  std::string name;
  WhileModal(
      form,
      [&] {
        name = form.ProjectName();
        return 0;
      },
      action);
  return name;
}

class FProjectOpenInBothLanguages : public testing::TestWithParam<long> {};

TEST_P(FProjectOpenInBothLanguages, ShowsEveryTextAndClipsNothing) {
  StudioWithProjects world(GetParam());
  const bool german = GetParam() == 1031;

  FProjectOpen form(nullptr, world.application);
  ShowAndActivate(form);

  EXPECT_EQ(form.GetTitle().utf8_string(), german ? "TavixStudio - Setup-Assistent:  Projekt öffnen"
                                                  : "TavixStudio - Setup Wizard:  Open Project");
  wxListItem header;
  header.SetMask(wxLIST_MASK_TEXT);
  std::string headers;
  for (int column = 0; column < 3; ++column) {
    List(form).GetColumn(column, header);
    headers += header.GetText().utf8_string() + "|";
  }
  EXPECT_EQ(headers, german ? "Name|Verzeichnis|Typ|" : "Name|Directory|Type|");
  EXPECT_EQ(Control<wxButton>(form, "cmdOpen").GetLabel().utf8_string(),
            german ? "Ö&ffnen" : "&Open");
  EXPECT_EQ(Control<wxButton>(form, "cmdCancel").GetLabel(), german ? "Abbrechen" : "Cancel");
  EXPECT_TRUE(WaitFor([&] { return ClippedControls(form).empty(); })) << ClippedControls(form);
  TakePicture(form, german ? "project_open_de" : "project_open_en");
}

TEST_P(FProjectOpenInBothLanguages, SaysInTheEmptyListThatNoProjectIsRegistered) {
  GuiWorld world(GetParam());
  const bool german = GetParam() == 1031;

  FProjectOpen form(nullptr, world.application);
  ShowAndActivate(form);

  const wxWindow& hint = *FindControl(form, "lblNoProjects");
  EXPECT_TRUE(hint.IsShownOnScreen());
  EXPECT_EQ(hint.GetLabel().BeforeFirst('\n'),
            german ? "Es ist noch kein Projekt registriert." : "No project is registered yet.");
  EXPECT_TRUE(List(form).GetScreenRect().Contains(hint.GetScreenRect()));
  EXPECT_TRUE(WaitFor([&] { return ClippedControls(form).empty(); })) << ClippedControls(form);
  TakePicture(form, german ? "project_open_empty_de" : "project_open_empty_en");
}

// Drive F is away. Whoever reads that no project is registered creates them all anew.
void RegisterProjectsOutOfReach(GuiWorld& world) {
  for (const char* const name : {"Klärwerk", "Netz"}) {
    const std::string key = std::string(kProjectsKey) + "\\" + name;
    world.platform.registry.Write(Hive::kLocalMachine, key, "Path", std::string("F:\\") + name);
    world.platform.registry.Write(Hive::kLocalMachine, key, "ProjectType", "Single");
  }
}

TEST_P(FProjectOpenInBothLanguages, SaysBelowTheEmptyListThatAllProjectsAreOutOfReach) {
  GuiWorld world(GetParam());
  RegisterProjectsOutOfReach(world);
  const bool german = GetParam() == 1031;

  FProjectOpen form(nullptr, world.application);
  ShowAndActivate(form);

  EXPECT_FALSE(FindControl(form, "lblNoProjects")->IsShown());
  const wxWindow& away = *FindControl(form, "lblUnreachable");
  EXPECT_TRUE(away.IsShownOnScreen());
  EXPECT_EQ(away.GetLabel().BeforeFirst('\n').utf8_string(),
            german ? "Registrierte Projekte, die gerade nicht erreichbar sind: 2"
                   : "Registered projects that are out of reach now: 2");
  EXPECT_TRUE(WaitFor([&] { return ClippedControls(form).empty(); })) << ClippedControls(form);
  TakePicture(form, german ? "project_open_away_de" : "project_open_away_en");
}

TEST_P(FProjectOpenInBothLanguages, SaysBelowItsRowsThatOthersAreOutOfReach) {
  StudioWithProjects world(GetParam());
  RegisterProjectsOutOfReach(world);
  const bool german = GetParam() == 1031;

  FProjectOpen form(nullptr, world.application);
  ShowAndActivate(form);

  EXPECT_EQ(List(form).GetItemCount(), 3);
  EXPECT_TRUE(FindControl(form, "lblUnreachable")->IsShownOnScreen());
  EXPECT_TRUE(WaitFor([&] { return ClippedControls(form).empty(); })) << ClippedControls(form);
  TakePicture(form, german ? "project_open_some_away_de" : "project_open_some_away_en");
}

INSTANTIATE_TEST_SUITE_P(Languages, FProjectOpenInBothLanguages, testing::Values(1031L, 1033L),
                         [](const auto& test) {
                           return test.param == 1031 ? "German" : "English";
                         });

TEST(FProjectOpen, ListsProjectsWithDirectoryAndTypeInTheOrderOfTheRegistry) {
  StudioWithProjects world;

  FProjectOpen form(nullptr, world.application);

  ASSERT_EQ(List(form).GetItemCount(), 3);
  EXPECT_EQ(List(form).GetItemText(0).utf8_string(), "Abfüllung");
  EXPECT_EQ(List(form).GetItemText(1, 0), "Kessel & Pumpe");
  EXPECT_EQ(List(form).GetItemText(1, 1), "C:\\Projects\\Halle 2\\Kessel");
  EXPECT_EQ(List(form).GetItemText(1, 2), "Server");
  EXPECT_EQ(List(form).GetItemText(2, 2), "Group");
  EXPECT_FALSE(FindControl(form, "lblNoProjects")->IsShown());
  EXPECT_FALSE(FindControl(form, "lblUnreachable")->IsShown());
}

TEST(FProjectOpen, RemovesARegistrationWhoseProjectFileHasGone) {
  StudioWithProjects world;
  world.platform.files.Vanish("D:\\Werk\\Werk.vbg");
  world.platform.files.AddFile("D:\\Werk\\Werk.txs", "");

  FProjectOpen form(nullptr, world.application);

  EXPECT_EQ(List(form).GetItemCount(), 2);
  EXPECT_EQ(world.platform.tools.RegistrySubkeys(Hive::kLocalMachine, kProjectsKey),
            (std::vector<std::string>{"Abfüllung", "Kessel & Pumpe"}));
}

TEST(FProjectOpen, NothingIsChosenAtFirstAndTheFocusIsInTheList) {
  StudioWithProjects world;

  FProjectOpen form(nullptr, world.application);
  ShowAndActivate(form);

  EXPECT_EQ(List(form).GetSelectedItemCount(), 0);
  EXPECT_FALSE(OpenIsEnabled(form));
  EXPECT_TRUE(WaitFor([&] { return List(form).IsDescendant(wxWindow::FindFocus()); }));
}

TEST(FProjectOpen, ColumnsAreAsWideAsTheirContents) {
  StudioWithProjects world;

  FProjectOpen form(nullptr, world.application);
  ShowAndActivate(form);

  wxListView& list = List(form);
  for (int column = 0; column < 3; ++column) {
    for (long row = 0; row < list.GetItemCount(); ++row) {
      EXPECT_GE(list.GetColumnWidth(column),
                list.GetTextExtent(list.GetItemText(row, column)).GetWidth())
          << row << ", " << column;
    }
  }
}

TEST(FProjectOpen, ClickingARowEnablesOpenWhichReturnsItsName) {
  StudioWithProjects world;
  FProjectOpen form(nullptr, world.application);
  bool enabled = false;

  const std::string name = Choose(form, [&] {
    ClickAt(OnRow(List(form), 1));
    enabled = WaitFor([&] { return OpenIsEnabled(form); });
    Click(*FindControl(form, "cmdOpen"));
    EndUnlessHidden(form);
  });

  EXPECT_TRUE(enabled);
  EXPECT_EQ(name, "Kessel & Pumpe");
}

TEST(FProjectOpen, ClickingTheEmptySpaceClearsTheChoice) {
  StudioWithProjects world;
  FProjectOpen form(nullptr, world.application);
  int selected = -1;
  bool enabled = true;

  const std::string name = Choose(form, [&] {
    ClickAt(OnRow(List(form), 1));
    EXPECT_TRUE(WaitFor([&] { return OpenIsEnabled(form); }));
    ClickAt(BelowTheRows(List(form)));
    EXPECT_TRUE(WaitFor([&] { return !OpenIsEnabled(form); }));
    selected = List(form).GetSelectedItemCount();
    enabled = OpenIsEnabled(form);
    Click(*FindControl(form, "cmdCancel"));
    EndUnlessHidden(form);
  });

  EXPECT_EQ(selected, 0);
  EXPECT_FALSE(enabled);
  EXPECT_EQ(name, "");
}

TEST(FProjectOpen, ClickingAnotherRowChoosesThatOne) {
  StudioWithProjects world;
  FProjectOpen form(nullptr, world.application);

  const std::string name = Choose(form, [&] {
    ClickAt(OnRow(List(form), 1));
    EXPECT_TRUE(WaitFor([&] { return OpenIsEnabled(form); }));
    ClickAt(OnRow(List(form), 2));
    EXPECT_TRUE(WaitFor([&] { return List(form).GetFirstSelected() == 2; }));
    EXPECT_TRUE(OpenIsEnabled(form));
    Click(*FindControl(form, "cmdOpen"));
    EndUnlessHidden(form);
  });

  EXPECT_EQ(name, "Werk");
}

TEST(FProjectOpen, DoubleClickingARowOpensIt) {
  StudioWithProjects world;
  FProjectOpen form(nullptr, world.application);

  const std::string name = Choose(form, [&] {
    DoubleClickAt(OnRow(List(form), 0));
    EndUnlessHidden(form);
  });

  EXPECT_EQ(name, "Abfüllung");
}

TEST(FProjectOpen, DoubleClickingTheEmptySpaceDoesNothing) {
  StudioWithProjects world;
  FProjectOpen form(nullptr, world.application);
  bool still_open = false;

  const std::string name = Choose(form, [&] {
    ClickAt(OnRow(List(form), 1));
    EXPECT_TRUE(WaitFor([&] { return OpenIsEnabled(form); }));
    DoubleClickAt(BelowTheRows(List(form)));
    EXPECT_TRUE(WaitFor([&] { return !OpenIsEnabled(form); }));
    still_open = form.IsModal();
    PressKey(WXK_ESCAPE);
    EndUnlessHidden(form);
  });

  EXPECT_TRUE(still_open);
  EXPECT_EQ(name, "");
}

// Kept on purpose: whoever changes it changes what the program is known to do.
TEST(FProjectOpen, CancelReturnsARowThatWasClickedBefore) {
  StudioWithProjects world;
  FProjectOpen form(nullptr, world.application);

  const std::string name = Choose(form, [&] {
    ClickAt(OnRow(List(form), 2));
    EXPECT_TRUE(WaitFor([&] { return OpenIsEnabled(form); }));
    Click(*FindControl(form, "cmdCancel"));
    EndUnlessHidden(form);
  });

  EXPECT_EQ(name, "Werk");
}

TEST(FProjectOpen, EscapeIsCancelAndNotTheCloseBox) {
  StudioWithProjects world;
  FProjectOpen form(nullptr, world.application);

  const std::string name = Choose(form, [&] {
    ClickAt(OnRow(List(form), 2));
    EXPECT_TRUE(WaitFor([&] { return OpenIsEnabled(form); }));
    PressKey(WXK_ESCAPE);
    EndUnlessHidden(form);
  });

  EXPECT_EQ(name, "Werk");
}

TEST(FProjectOpen, TheCloseBoxReturnsNothing) {
  StudioWithProjects world;
  FProjectOpen form(nullptr, world.application);

  const std::string name = Choose(form, [&] {
    ClickAt(OnRow(List(form), 2));
    EXPECT_TRUE(WaitFor([&] { return OpenIsEnabled(form); }));
    // The window manager sends what its close box sends.
    PressKey(WXK_F4, wxMOD_ALT);
    EndUnlessHidden(form);
  });

  EXPECT_EQ(name, "");
}

TEST(FProjectOpen, CancelWithoutAClickReturnsNothing) {
  StudioWithProjects world;
  FProjectOpen form(nullptr, world.application);

  const std::string name = Choose(form, [&] {
    PressKey(WXK_ESCAPE);
    EndUnlessHidden(form);
  });

  EXPECT_EQ(name, "");
}

TEST(FProjectOpen, ArrowsChooseFromTheFirstRowOnAndEnterOpens) {
  StudioWithProjects world;
  FProjectOpen form(nullptr, world.application);
  long first = -1;

  const std::string name = Choose(form, [&] {
    PressKey(WXK_DOWN);
    EXPECT_TRUE(WaitFor([&] { return OpenIsEnabled(form); }));
    first = List(form).GetFirstSelected();
    PressKey(WXK_DOWN);
    EXPECT_TRUE(WaitFor([&] { return List(form).GetFirstSelected() == 1; }));
    PressKey(WXK_RETURN);
    EndUnlessHidden(form);
  });

  EXPECT_EQ(first, 0);
  EXPECT_EQ(name, "Kessel & Pumpe");
}

TEST(FProjectOpen, EnterPressedTwiceInAHurryOpensOnce) {
  StudioWithProjects world;
  FProjectOpen form(nullptr, world.application);

  const std::string name = Choose(form, [&] {
    PressKey(WXK_DOWN);
    EXPECT_TRUE(WaitFor([&] { return OpenIsEnabled(form); }));
    wxUIActionSimulator simulator;
    simulator.Char(WXK_RETURN);
    simulator.Char(WXK_RETURN);
    EndUnlessHidden(form);
  });

  EXPECT_EQ(name, "Abfüllung");
}

TEST(FProjectOpen, EnterDoesNothingWhileNoRowIsChosen) {
  StudioWithProjects world;
  FProjectOpen form(nullptr, world.application);
  bool still_open = false;

  const std::string name = Choose(form, [&] {
    PressKey(WXK_RETURN);
    // The row that the next key selects shows that Enter has been handled.
    PressKey(WXK_DOWN);
    EXPECT_TRUE(WaitFor([&] { return OpenIsEnabled(form); }));
    still_open = form.IsModal();
    PressKey(WXK_F4, wxMOD_ALT);
    EndUnlessHidden(form);
  });

  EXPECT_TRUE(still_open);
  EXPECT_EQ(name, "");
}

TEST(FProjectOpen, WithoutProjectsOpenStaysDisabledAndEnterLeaves) {
  GuiWorld world;
  FProjectOpen form(nullptr, world.application);
  bool enabled = true;

  const std::string name = Choose(form, [&] {
    ClickAt(BelowTheRows(List(form)));
    Click(*FindControl(form, "cmdOpen"));
    enabled = OpenIsEnabled(form);
    EXPECT_TRUE(form.IsModal());
    FindControl(form, "cmdCancel")->SetFocus();
    PressKey(WXK_RETURN);
    EndUnlessHidden(form);
  });

  EXPECT_FALSE(enabled);
  EXPECT_EQ(name, "");
}

TEST(FProjectOpen, AccessKeysPressTheButtons) {
  StudioWithProjects world;
  FProjectOpen form(nullptr, world.application);

  const std::string name = Choose(form, [&] {
    ClickAt(OnRow(List(form), 1));
    EXPECT_TRUE(WaitFor([&] { return OpenIsEnabled(form); }));
    PressKey('F', wxMOD_ALT);
    EndUnlessHidden(form);
  });

  EXPECT_EQ(name, "Kessel & Pumpe");
}

TEST(FProjectOpen, ADirectoryThatItsColumnCutsOffIsShownAsATip) {
  StudioWithProjects world;
  FProjectOpen form(nullptr, world.application);
  ShowAndActivate(form);
  wxListView& list = List(form);
  list.SetColumnWidth(1, form.FromDIP(60));
  wxRect at;
  ASSERT_TRUE(list.GetItemRect(1, at));
  const int middle = list.GetColumnWidth(0) + list.GetColumnWidth(1) / 2;

  ClickAt(list.ClientToScreen(wxPoint(middle, at.y + at.height / 2)));
  const bool shown = WaitFor([&] { return !list.GetToolTipText().empty(); });
  const wxString tip = list.GetToolTipText();
  ClickAt(OnRow(list, 1));
  const bool gone = WaitFor([&] { return list.GetToolTipText().empty(); });

  EXPECT_TRUE(shown);
  EXPECT_EQ(tip, "C:\\Projects\\Halle 2\\Kessel");
  EXPECT_TRUE(gone);
}

TEST(FProjectOpen, F1OpensTheHelpFile) {
  StudioWithProjects world;
  world.platform.files.AddFile(world.application.installation.HelpFile(), "help");
  RecordingHelp help;
  FProjectOpen form(nullptr, world.application, &help);
  ShowAndActivate(form);

  PressKey(WXK_F1);

  EXPECT_TRUE(WaitFor([&] { return help.opened.size() == 1; }));
}

TEST(FProjectOpen, ItsSizeIsThatOfTheLastTime) {
  StudioWithProjects world;
  wxSize before;
  {
    FProjectOpen form(nullptr, world.application);
    Choose(form, [&] {
      form.SetSize(form.GetSize() + form.FromDIP(wxSize(90, 70)));
      EXPECT_TRUE(WaitFor([&] { return IsInPlace(form); }));
      before = form.GetSize();
      PressKey(WXK_ESCAPE);
      EndUnlessHidden(form);
    });
  }

  FProjectOpen again(nullptr, world.application);
  ShowAndActivate(again);

  EXPECT_TRUE(WaitFor([&] { return again.GetSize() == before; }));
}

}  // namespace
}  // namespace txs
