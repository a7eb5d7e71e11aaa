#include "ui/search_file_form.h"

#include <gtest/gtest.h>
#include <wx/button.h>
#include <wx/choice.h>
#include <wx/frame.h>
#include <wx/listctrl.h>
#include <wx/stattext.h>
#include <wx/utils.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "gui/gui_support.h"

namespace txs {
namespace {

// COMCAT.DLL lies in D:\Kits\Common & Co, not in the project's directory.
struct StudioThatMissesAFile : GuiWorld {
  explicit StudioThatMissesAFile(long language_id = 1031) : GuiWorld(language_id) {
    platform.files.AddDrive('D');
    platform.files.AddFolder("C:\\Projects\\Demo\\Bilder");
    platform.files.AddFolder("C:\\Projects\\Demo\\Quellen");
    platform.files.AddFile("C:\\Projects\\Demo\\Demo.txs", "");
    platform.files.AddFile("D:\\Kits\\Common & Co\\comcat.dll", "x");
    platform.files.AddFile("D:\\Kits\\Common & Co\\other.dll", "x");
    application.project.directory = "C:\\Projects\\Demo";
  }

  SearchFileRequest request{"COMCAT.DLL", {"Demo.vbp", "MSCOMCTL.OCX", "COMCAT.DLL"}};
  RecordingHelp help;
};

// The dialog over its model.
struct Dialog {
  explicit Dialog(StudioThatMissesAFile& world, const std::string& directory = "C:\\Projects\\Demo")
      : model(world.platform.files, world.request, directory),
        form(nullptr, world.application, world.help, model) {}

  int Answer(const std::function<void()>& action) {
    return WhileModal(
        form, [&] { return form.ShowModal(); }, action);
  }

  SearchFileModel model;
  FSearchFile form;
};

wxListView& Folders(FSearchFile& form) { return Control<wxListView>(form, "dirSearchFile"); }
wxListView& Files(FSearchFile& form) { return Control<wxListView>(form, "filSearchFile"); }
wxChoice& Drives(FSearchFile& form) { return Control<wxChoice>(form, "drvSearchFile"); }

std::string Path(FSearchFile& form) {
  return Control<wxStaticText>(form, "lblFilePath").GetLabelText().utf8_string();
}

bool OkIsEnabled(FSearchFile& form) { return FindControl(form, "cmdOK")->IsEnabled(); }

std::vector<std::string> Rows(const wxListView& list) {
  std::vector<std::string> rows;
  for (long row = 0; row < list.GetItemCount(); ++row) {
    rows.push_back(list.GetItemText(row).utf8_string());
  }
  return rows;
}

wxPoint OnRow(wxListView& list, long row) {
  wxRect at;
  EXPECT_TRUE(list.GetItemRect(row, at));
  return list.ClientToScreen(wxPoint(at.x + 20, at.y + at.height / 2));
}

class FSearchFileInBothLanguages : public testing::TestWithParam<long> {};

TEST_P(FSearchFileInBothLanguages, ShowsEveryTextAndClipsNothing) {
  StudioThatMissesAFile world(GetParam());
  const bool german = GetParam() == 1031;

  Dialog dialog(world);
  FSearchFile& form = dialog.form;
  ShowAndActivate(form);

  const auto text = [&](const char* name) {
    return FindControl(form, name)->GetLabel().utf8_string();
  };
  EXPECT_EQ(form.GetTitle().utf8_string(), german ? "TavixStudio - Setup-Assistent:  Datei suchen"
                                                  : "TavixStudio - Setup Wizard:  Search File");
  EXPECT_EQ(text("lblNotFound"), german ? "Die Datei konnte nicht gefunden werden!"
                                        : "The file could not be not found!");
  EXPECT_EQ(text("lblRequest"), german ? "Bitte suchen Sie die Datei von Hand und bestätigen Sie."
                                       : "Please manually look for the file and confirm.");
  EXPECT_EQ(text("lblNeededBy"), german ? "Benötigt von:" : "Needed by:");
  EXPECT_EQ(text("lblChain"), "Demo.vbp → MSCOMCTL.OCX → COMCAT.DLL");
  EXPECT_EQ(text("lblFile"), german ? "&Datei" : "&File");
  EXPECT_EQ(text("lblPath"), german ? "&Pfad" : "&Path");
  EXPECT_EQ(text("lblDrive"), german ? "&Laufwerk" : "&Drive");
  EXPECT_EQ(text("lblFileName"), "COMCAT.DLL");
  EXPECT_EQ(text("cmdOK"), "OK");
  EXPECT_EQ(text("cmdIgnore"), german ? "&Ignorieren" : "&Ignore");
  EXPECT_EQ(text("cmdCancel"), german ? "Abbrechen" : "Cancel");
  EXPECT_EQ(text("cmdHelp"), german ? "&Hilfe" : "&Help");
  EXPECT_TRUE(WaitFor([&] { return ClippedControls(form).empty(); })) << ClippedControls(form);
  TakePicture(form, german ? "search_file_de" : "search_file_en");
}

INSTANTIATE_TEST_SUITE_P(Languages, FSearchFileInBothLanguages, testing::Values(1031L, 1033L),
                         [](const auto& test) {
                           return test.param == 1031 ? "German" : "English";
                         });

TEST(FSearchFile, OpensInItsDirectoryWhereTheFileIsNot) {
  StudioThatMissesAFile world;

  Dialog dialog(world);

  EXPECT_EQ(Path(dialog.form), "C:\\Projects\\Demo");
  EXPECT_EQ(Drives(dialog.form).GetStringSelection(), "C:");
  EXPECT_EQ(Rows(Folders(dialog.form)), (std::vector<std::string>{"..", "Bilder", "Quellen"}));
  EXPECT_TRUE(Rows(Files(dialog.form)).empty());
  EXPECT_FALSE(OkIsEnabled(dialog.form));
}

TEST(FSearchFile, WithoutAChainNoOneIsSaidToNeedTheFile) {
  StudioThatMissesAFile world;
  world.request.chain.clear();

  Dialog dialog(world);

  EXPECT_FALSE(FindControl(dialog.form, "lblNeededBy")->IsShown());
  EXPECT_FALSE(FindControl(dialog.form, "lblChain")->IsShown());
}

TEST(FSearchFile, ALongPathAndALongChainDoNotWidenTheDialog) {
  StudioThatMissesAFile world;
  Dialog usual(world);
  std::string folder = "C:\\Projects";
  world.request.chain.clear();
  for (int i = 0; i < 20; ++i) {
    folder += "\\A folder of many";
    world.request.chain.push_back("Component" + std::to_string(i) + ".ocx");
  }
  world.platform.files.AddFolder(folder);

  Dialog dialog(world, folder);
  ShowAndActivate(dialog.form);

  EXPECT_EQ(dialog.form.GetClientSize().GetWidth(), usual.form.GetClientSize().GetWidth());
  EXPECT_EQ(FindControl(dialog.form, "lblFilePath")->GetToolTipText(), folder);
  EXPECT_TRUE(WaitFor([&] { return ClippedControls(dialog.form).empty(); }))
      << ClippedControls(dialog.form);
  TakePicture(dialog.form, "search_file_long");
}

TEST(FSearchFile, ChangingTheDriveShowsItsDirectory) {
  StudioThatMissesAFile world;
  Dialog dialog(world);
  ShowAndActivate(dialog.form);

  PressKey('L', wxMOD_ALT);
  EXPECT_TRUE(WaitFor([&] { return FocusIsIn(Drives(dialog.form)); }));
  PressKey(WXK_DOWN);
  // The list of the drives has opened with the current one selected.
  PressKey(WXK_DOWN);
  PressKey(WXK_RETURN);

  EXPECT_TRUE(WaitFor([&] { return Path(dialog.form) == "D:\\"; }));
  EXPECT_EQ(Rows(Folders(dialog.form)), std::vector<std::string>{"Kits"});
}

TEST(FSearchFile, ADriveThatCannotBeReadIsNotTaken) {
  StudioThatMissesAFile world;
  Dialog dialog(world);
  ShowAndActivate(dialog.form);
  world.platform.files.Vanish("D:\\");

  Drives(dialog.form).SetStringSelection("D:");
  wxCommandEvent chosen(wxEVT_CHOICE, Drives(dialog.form).GetId());
  Drives(dialog.form).ProcessWindowEvent(chosen);

  EXPECT_EQ(Path(dialog.form), "C:\\Projects\\Demo");
  EXPECT_EQ(Drives(dialog.form).GetStringSelection(), "C:");
}

TEST(FSearchFile, DoubleClickingFoldersLeadsToTheFile) {
  StudioThatMissesAFile world;
  Dialog dialog(world, "D:\\");

  const int result = dialog.Answer([&] {
    DoubleClickAt(OnRow(Folders(dialog.form), 0));
    EXPECT_TRUE(WaitFor([&] { return Path(dialog.form) == "D:\\Kits"; }));
    EXPECT_FALSE(OkIsEnabled(dialog.form));
    DoubleClickAt(OnRow(Folders(dialog.form), 1));
    EXPECT_TRUE(WaitFor([&] { return Path(dialog.form) == "D:\\Kits\\Common & Co"; }));
    EXPECT_EQ(Rows(Files(dialog.form)), std::vector<std::string>{"comcat.dll"});
    EXPECT_TRUE(OkIsEnabled(dialog.form));
    TakePicture(dialog.form, "search_file_found");
    Click(*FindControl(dialog.form, "cmdOK"));
    EndUnlessHidden(dialog.form);
  });

  EXPECT_EQ(result, wxID_OK);
  EXPECT_EQ(dialog.model.Answer().result, SearchFileResult::kOk);
  EXPECT_EQ(dialog.model.Answer().directory, "D:\\Kits\\Common & Co");
}

TEST(FSearchFile, TheKeyboardAloneLeadsToTheFileAndBack) {
  StudioThatMissesAFile world;
  Dialog dialog(world, "D:\\");

  const int result = dialog.Answer([&] {
    PressKey(WXK_RETURN);
    EXPECT_TRUE(WaitFor([&] { return Path(dialog.form) == "D:\\Kits"; }));
    PressKey(WXK_DOWN);
    PressKey(WXK_RETURN);
    EXPECT_TRUE(WaitFor([&] { return Path(dialog.form) == "D:\\Kits\\Common & Co"; }));
    PressKey(WXK_BACK);
    EXPECT_TRUE(WaitFor([&] { return Path(dialog.form) == "D:\\Kits"; }));
    EXPECT_EQ(Folders(dialog.form).GetItemText(Folders(dialog.form).GetFirstSelected()),
              "Common & Co");
    PressKey(WXK_RETURN);
    EXPECT_TRUE(WaitFor([&] { return Path(dialog.form) == "D:\\Kits\\Common & Co"; }));
    PressKey('D', wxMOD_ALT);
    EXPECT_TRUE(WaitFor([&] { return FocusIsIn(Files(dialog.form)); }));
    PressKey(WXK_RETURN);
    EndUnlessHidden(dialog.form);
  });

  EXPECT_EQ(result, wxID_OK);
  EXPECT_EQ(dialog.model.Answer().directory, "D:\\Kits\\Common & Co");
}

// The key was passed on to the OK button, which the folder had enabled.
TEST(FSearchFile, EnteringTheFolderOfTheFileByKeyDoesNotConfirmIt) {
  StudioThatMissesAFile world;
  Dialog dialog(world, "D:\\Kits");

  dialog.Answer([&] {
    PressKey(WXK_DOWN);
    PressKey(WXK_RETURN);
    EXPECT_TRUE(WaitFor([&] { return OkIsEnabled(dialog.form); }));
    // What the key after it does shows that Enter has been handled.
    PressKey(WXK_BACK);
    EXPECT_TRUE(WaitFor([&] { return Path(dialog.form) == "D:\\Kits"; }));
    PressKey(WXK_ESCAPE);
    EndUnlessHidden(dialog.form);
  });

  EXPECT_EQ(dialog.model.Answer().result, SearchFileResult::kCancel);
}

TEST(FSearchFile, TwoDotsAndBackspaceGoUpAndEndAtTheDrive) {
  StudioThatMissesAFile world;
  Dialog dialog(world);
  ShowAndActivate(dialog.form);

  DoubleClickAt(OnRow(Folders(dialog.form), 0));
  EXPECT_TRUE(WaitFor([&] { return Path(dialog.form) == "C:\\Projects"; }));
  PressKey(WXK_BACK);
  EXPECT_TRUE(WaitFor([&] { return Path(dialog.form) == "C:\\"; }));
  PressKey(WXK_BACK);
  PressKey(WXK_RETURN);

  // Enter went into the folder that was left, so Backspace at the drive did nothing.
  EXPECT_TRUE(WaitFor([&] { return Path(dialog.form) == "C:\\Projects"; }));
}

TEST(FSearchFile, DoubleClickingTheFoundFileIsOk) {
  StudioThatMissesAFile world;
  Dialog dialog(world, "D:\\Kits\\Common & Co");

  const int result = dialog.Answer([&] {
    DoubleClickAt(OnRow(Files(dialog.form), 0));
    EndUnlessHidden(dialog.form);
  });

  EXPECT_EQ(result, wxID_OK);
  EXPECT_EQ(dialog.model.Answer().result, SearchFileResult::kOk);
}

TEST(FSearchFile, IgnoreLeavesTheFileOut) {
  StudioThatMissesAFile world;
  Dialog dialog(world);

  dialog.Answer([&] {
    PressKey('I', wxMOD_ALT);
    EndUnlessHidden(dialog.form);
  });

  EXPECT_EQ(dialog.model.Answer().result, SearchFileResult::kIgnore);
}

TEST(FSearchFile, CancelEscapeAndTheCloseBoxAreCancel) {
  StudioThatMissesAFile world;
  const std::vector<std::function<void(FSearchFile&)>> ways = {
      [](FSearchFile& form) { Click(*FindControl(form, "cmdCancel")); },
      [](FSearchFile&) { PressKey(WXK_ESCAPE); },
      [](FSearchFile&) { PressKey(WXK_F4, wxMOD_ALT); },
  };
  for (const auto& leave : ways) {
    // Even where the file was found.
    Dialog dialog(world, "D:\\Kits\\Common & Co");

    dialog.Answer([&] {
      leave(dialog.form);
      EndUnlessHidden(dialog.form);
    });

    EXPECT_EQ(dialog.model.Answer().result, SearchFileResult::kCancel);
  }
}

TEST(FSearchFile, AFileThatWasPutThereMeanwhileIsSeenWhenTheDialogIsActiveAgain) {
  StudioThatMissesAFile world;
  Dialog dialog(world);
  ShowAndActivate(dialog.form);
  wxFrame other(nullptr, wxID_ANY, "other");
  ShowAndActivate(other);
  world.platform.files.AddFile("C:\\Projects\\Demo\\COMCAT.DLL", "x");

  ShowAndActivate(dialog.form);

  EXPECT_TRUE(WaitFor([&] { return OkIsEnabled(dialog.form); }));
}

TEST(FSearchFile, OkForAFileThatHasGoneMeanwhileKeepsTheDialog) {
  StudioThatMissesAFile world;
  Dialog dialog(world, "D:\\Kits\\Common & Co");
  bool open = false;

  dialog.Answer([&] {
    world.platform.files.Vanish("D:\\Kits\\Common & Co\\comcat.dll");
    Click(*FindControl(dialog.form, "cmdOK"));
    EXPECT_TRUE(WaitFor([&] { return !OkIsEnabled(dialog.form); }));
    open = dialog.form.IsShown();
    PressKey(WXK_ESCAPE);
    EndUnlessHidden(dialog.form);
  });

  EXPECT_TRUE(open);
  EXPECT_EQ(dialog.model.Answer().result, SearchFileResult::kCancel);
}

TEST(FSearchFile, HelpAndF1OpenTheHelpFile) {
  StudioThatMissesAFile world;
  const std::string help_file = world.application.installation.HelpFile();
  world.platform.files.AddFile(help_file, "help");
  Dialog dialog(world);
  ShowAndActivate(dialog.form);

  PressKey('L', wxMOD_ALT);
  PressKey(WXK_F1);
  EXPECT_TRUE(WaitFor([&] { return world.help.opened.size() == 1; }));
  Click(*FindControl(dialog.form, "cmdHelp"));
  EXPECT_TRUE(WaitFor([&] { return world.help.opened.size() == 2; }));

  EXPECT_EQ(world.help.opened, std::vector<std::string>(2, help_file + "#0"));
}

TEST(FSearchFile, TheListsGrowWithTheDialogAndItsSizeIsThatOfTheLastTime) {
  StudioThatMissesAFile world;
  wxSize before;
  bool grown = false;
  {
    Dialog dialog(world);
    dialog.Answer([&] {
      const wxSize folders = Folders(dialog.form).GetSize();
      dialog.form.SetSize(dialog.form.GetSize() + dialog.form.FromDIP(wxSize(90, 70)));
      grown = WaitFor([&] {
        const wxSize now = Folders(dialog.form).GetSize();
        return now.GetWidth() > folders.GetWidth() &&
               now.GetHeight() == folders.GetHeight() + dialog.form.FromDIP(70);
      });
      EXPECT_TRUE(WaitFor([&] { return IsInPlace(dialog.form); }));
      before = dialog.form.GetSize();
      PressKey(WXK_ESCAPE);
      EndUnlessHidden(dialog.form);
    });
  }

  Dialog again(world);
  ShowAndActivate(again.form);

  EXPECT_TRUE(grown);
  EXPECT_TRUE(WaitFor([&] { return again.form.GetSize() == before; }));
}

// The dialog that a question has opened.
FSearchFile* OpenDialog() {
  for (wxWindow* const window : wxTopLevelWindows) {
    auto* const form = dynamic_cast<FSearchFile*>(window);
    if (form != nullptr && form->IsModal()) return form;
  }
  return nullptr;
}

// Asks, does `action` in the dialog, and returns the answer.
SearchFileAnswer Ask(SearchFileForms& forms, wxWindow& parent, const SearchFileRequest& request,
                     const std::function<void(FSearchFile&)>& action) {
  bool acted = false;
  parent.CallAfter([&] {
    FSearchFile* form = nullptr;
    EXPECT_TRUE(WaitFor([&] {
      form = OpenDialog();
      return form != nullptr && form->IsActive() && IsInPlace(*form);
    }));
    if (form == nullptr) return;
    acted = true;
    action(*form);
    EndUnlessHidden(*form);
  });
  const SearchFileAnswer answer = forms.Search(request);
  EXPECT_TRUE(acted);
  return answer;
}

TEST(SearchFileForms, OpensInTheProjectDirectoryThenWhereTheLastFileWasFound) {
  StudioThatMissesAFile world;
  wxFrame parent(nullptr, wxID_ANY, "parent");
  ShowAndActivate(parent);
  SearchFileForms forms(world.application, world.help);
  forms.SetParent(&parent);
  std::vector<std::string> opened_in;

  const SearchFileAnswer cancelled = Ask(forms, parent, world.request, [&](FSearchFile& form) {
    opened_in.push_back(Path(form));
    PressKey(WXK_BACK);
    EXPECT_TRUE(WaitFor([&] { return Path(form) == "C:\\Projects"; }));
    PressKey(WXK_ESCAPE);
  });
  const SearchFileAnswer found = Ask(forms, parent, world.request, [&](FSearchFile& form) {
    opened_in.push_back(Path(form));
    world.platform.files.AddFile("C:\\Projects\\COMCAT.DLL", "x");
    PressKey(WXK_BACK);
    EXPECT_TRUE(WaitFor([&] { return OkIsEnabled(form); }));
    Click(*FindControl(form, "cmdOK"));
  });
  const SearchFileAnswer ignored = Ask(forms, parent, {"other.dll", {}}, [&](FSearchFile& form) {
    opened_in.push_back(Path(form));
    Click(*FindControl(form, "cmdIgnore"));
  });

  EXPECT_EQ(opened_in,
            (std::vector<std::string>{"C:\\Projects\\Demo", "C:\\Projects\\Demo", "C:\\Projects"}));
  EXPECT_EQ(cancelled.result, SearchFileResult::kCancel);
  EXPECT_EQ(found.result, SearchFileResult::kOk);
  EXPECT_EQ(found.directory, "C:\\Projects");
  EXPECT_EQ(ignored.result, SearchFileResult::kIgnore);
}

TEST(SearchFileForms, ADirectoryThatHasGoneGivesWayToTheProjectDirectory) {
  StudioThatMissesAFile world;
  wxFrame parent(nullptr, wxID_ANY, "parent");
  ShowAndActivate(parent);
  SearchFileForms forms(world.application, world.help);
  forms.SetParent(&parent);
  world.application.project.directory = "D:\\Kits\\Common & Co";
  Ask(forms, parent, world.request, [&](FSearchFile& form) { Click(*FindControl(form, "cmdOK")); });
  world.application.project.directory = "C:\\Projects\\Demo";
  world.platform.files.Vanish("D:\\Kits");
  std::string opened_in;

  Ask(forms, parent, world.request, [&](FSearchFile& form) {
    opened_in = Path(form);
    PressKey(WXK_ESCAPE);
  });

  EXPECT_EQ(opened_in, "C:\\Projects\\Demo");
}

TEST(SearchFileForms, TheBusyPointerOfARunRestsWhileTheDialogIsOpen) {
  StudioThatMissesAFile world;
  wxFrame parent(nullptr, wxID_ANY, "parent");
  ShowAndActivate(parent);
  SearchFileForms forms(world.application, world.help);
  forms.SetParent(&parent);
  std::optional<wxBusyCursor> busy(std::in_place);
  bool busy_inside = true;

  Ask(forms, parent, world.request, [&](FSearchFile&) {
    busy_inside = wxIsBusy();
    PressKey(WXK_ESCAPE);
  });

  EXPECT_FALSE(busy_inside);
  EXPECT_TRUE(wxIsBusy());
  busy.reset();
  EXPECT_FALSE(wxIsBusy());
}

}  // namespace
}  // namespace txs
