#include "ui/file_dialogs.h"

#include <gmock/gmock.h>
#include <wx/dirdlg.h>
#include <wx/filedlg.h>
#include <wx/frame.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "fakes/demo_project.h"
#include "fakes/temp_folder.h"
#include "gui/gui_support.h"
#include "gui/main_form_support.h"

namespace txs {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

TEST(HostFilter, MatchesPatternsInAnyCase) {
  EXPECT_EQ(HostFilter("Bilder|*.BMP;*.j2k"), "Bilder|*.[bB][mM][pP];*.[jJ]2[kK]");
}

TEST(HostFilter, LetsAllFilesMatchNamesWithoutADot) {
  EXPECT_EQ(HostFilter("All Files|*.*|Databases|*.MDB"), "All Files|*|Databases|*.[mM][dD][bB]");
}

TEST(HostFilter, LeavesDescriptionsAsTheyAre) {
  EXPECT_EQ(HostFilter("Bin;Dateien *.*|*.*"), "Bin;Dateien *.*|*");
  EXPECT_EQ(HostFilter(""), "");
}

// Drive C: is a folder of this computer.
class FileDialogs : public testing::Test {
 protected:
  FileDialogs() {
    InstallDemoProject(world.platform);
    EXPECT_TRUE(OpenProject(world.application, "Demo"));
    std::filesystem::create_directories(folder.Path() / "Projects/Demo");
    world.platform.host_paths.drive_c = folder.Path().string();
    parent = new wxFrame(nullptr, wxID_ANY, "parent");
    ShowAndActivate(*parent);
  }
  ~FileDialogs() override {
    parent->Destroy();
    LetEventsRun();
  }
  // Chooses the folder in which the dialog has opened.
  static void PressReturn(wxDirDialog& dialog) {
    PressKey(WXK_RETURN);
    EndUnlessHidden(dialog);
  }
  void MakeFile(const std::string& name) {
    std::ofstream(folder.Path() / "Projects/Demo" / name) << name;
  }

  TempFolder folder;
  GuiWorld world;
  wxFrame* parent;
};

TEST_F(FileDialogs, WindowsPathsNamesInOneMessageWhatLiesOnNoDrive) {
  const std::vector<std::string> paths = WindowsPaths(
      world.application,
      {folder.Path().string() + "/Projects/a.txt", "/elsewhere/b.txt", "/elsewhere/c.txt"});

  EXPECT_THAT(paths, ElementsAre("C:\\Projects\\a.txt"));
  ASSERT_THAT(world.messages.Ids(), ElementsAre(1925));
  EXPECT_THAT(world.messages.shown[0].prompt,
              HasSubstr("\r\n/elsewhere/b.txt\r\n/elsewhere/c.txt"));
}

TEST_F(FileDialogs, WindowsPathsNamesTenFilesAtMost) {
  const std::vector<std::string> outside(500, "/elsewhere/b.txt");

  EXPECT_THAT(WindowsPaths(world.application, outside), IsEmpty());

  ASSERT_EQ(world.messages.shown.size(), 1u);
  EXPECT_LT(world.messages.shown[0].prompt.size(), 500u);
  EXPECT_THAT(world.messages.shown[0].prompt, testing::EndsWith("\r\n..."));
}

TEST_F(FileDialogs, FilesAreChosenInTheFolderThatWasAskedFor) {
  MakeFile("Extra.DLL");
  std::string title;
  std::string opened_in;
  Meanwhile meanwhile;
  meanwhile.In<wxFileDialog>([&](wxFileDialog& dialog) {
    title = dialog.GetMessage().utf8_string();
    opened_in = dialog.GetDirectory().utf8_string();
    TypeText(folder.Path().string() + "/Projects/Demo/Extra.DLL");
    PressKey(WXK_RETURN);
    EndUnlessHidden(dialog);
  });

  const std::vector<std::string> chosen =
      AskForFiles(parent, world.application,
                  {"Datei", "Binary Files|*.DLL;*.OCX", "C:\\Projects\\Demo\\", /*several=*/true});

  EXPECT_THAT(chosen, ElementsAre("C:\\Projects\\Demo\\Extra.DLL"));
  EXPECT_EQ(title, "Datei");
  EXPECT_EQ(std::filesystem::path(opened_in + "/").lexically_normal(),
            folder.Path() / "Projects/Demo/");
}

TEST_F(FileDialogs, SeveralFilesAreChosenAtOnceByTheKeyboard) {
  for (const char* const name : {"a.dll", "b.dll", "c.dll"}) MakeFile(name);
  Meanwhile meanwhile;
  meanwhile.In<wxFileDialog>([](wxFileDialog& dialog) {
    const auto chosen = [&dialog] {
      wxArrayString paths;
      dialog.GetPaths(paths);
      return paths;
    };
    // The folder is read while the dialog is on the screen already.
    EXPECT_TRUE(WaitFor([&] {
      PressKey(WXK_HOME);
      return chosen().size() == 1 && chosen().front().EndsWith("a.dll");
    }));
    PressKey(WXK_DOWN, wxMOD_SHIFT);
    EXPECT_TRUE(WaitFor([&] { return chosen().size() == 2; }));
    PressKey(WXK_RETURN);
    EndUnlessHidden(dialog);
  });

  const std::vector<std::string> chosen =
      AskForFiles(parent, world.application,
                  {"Datei", "Binary Files|*.DLL;*.OCX", "C:\\Projects\\Demo\\", /*several=*/true});

  EXPECT_THAT(chosen,
              UnorderedElementsAre("C:\\Projects\\Demo\\a.dll", "C:\\Projects\\Demo\\b.dll"));
}

TEST_F(FileDialogs, EscapeChoosesNoFile) {
  Meanwhile meanwhile;
  meanwhile.In<wxFileDialog>([&](wxFileDialog& dialog) {
    PressKey(WXK_ESCAPE);
    EndUnlessHidden(dialog);
  });

  EXPECT_THAT(AskForFiles(parent, world.application,
                          {"Datei", "All|*.*", "C:\\Projects\\Demo", /*several=*/false}),
              IsEmpty());
}

TEST_F(FileDialogs, TheOutputDirectoryIsAnsweredInVariableForm) {
  world.platform.files.AddFolder("C:\\Projects\\Demo\\Setup");
  std::filesystem::create_directories(folder.Path() / "Projects/Demo/Setup");
  Meanwhile meanwhile;
  meanwhile.In<wxDirDialog>(PressReturn);

  const std::optional<std::string> chosen =
      AskForSetupDirectory(parent, world.application, "<ProjectDir>\\Setup");

  ASSERT_TRUE(chosen);
  EXPECT_THAT(*chosen, HasSubstr("<ProjectDir>"));
  EXPECT_EQ(FromVariableForm(world.application.document.path_variables, *chosen),
            "C:\\Projects\\Demo\\Setup");
}

TEST_F(FileDialogs, TheDirectoryDialogOpensAtTheNearestFolderThatExists) {
  Meanwhile meanwhile;
  meanwhile.In<wxDirDialog>(PressReturn);

  EXPECT_EQ(AskForSetupDirectory(parent, world.application, "C:\\Projects\\Gone\\Deeper\\Setup"),
            "C:\\Projects");
}

// The button would do nothing, and nobody would know why.
TEST_F(FileDialogs, ADirectoryThatBecomesTooLongIsToldInsteadOfADialog) {
  std::string directory;
  for (int i = 0; i < 1'000'000; ++i) directory += "<ProjectDir>";

  EXPECT_EQ(AskForSetupDirectory(parent, world.application, directory), std::nullopt);

  EXPECT_THAT(world.messages.Ids(), testing::ElementsAre(1913));
}

TEST_F(FileDialogs, EscapeChoosesNoDirectory) {
  Meanwhile meanwhile;
  meanwhile.In<wxDirDialog>([](wxDirDialog& dialog) {
    PressKey(WXK_ESCAPE);
    EndUnlessHidden(dialog);
  });

  EXPECT_EQ(AskForSetupDirectory(parent, world.application, "C:\\Projects"), std::nullopt);
}

}  // namespace
}  // namespace txs
