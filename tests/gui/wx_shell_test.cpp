#include "ui/wx_shell.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>

#include "gui/main_form_support.h"
#include "ui/project_open_form.h"

namespace txs {
namespace {

class Shell : public testing::Test {
 protected:
  Shell() { InstallDemoProject(world.platform); }

  GuiWorld world;
  WxShell shell;
};

TEST_F(Shell, ChoosesAProjectBeforeThereIsAMainForm) {
  Meanwhile meanwhile;
  meanwhile.In<FProjectOpen>([](FProjectOpen& dialog) {
    EXPECT_EQ(dialog.GetParent(), nullptr);
    DoubleClickAt(Control<wxListView>(dialog, "lvwRegisteredProjects")
                      .ClientToScreen(wxPoint(dialog.FromDIP(30), dialog.FromDIP(40))));
    EndUnlessHidden(dialog);
  });

  EXPECT_EQ(shell.ChooseProject(world.application), "Demo");
}

TEST_F(Shell, RunsTheMainFormUntilItIsClosed) {
  ASSERT_TRUE(OpenProject(world.application, "Demo"));
  std::string title;
  Meanwhile meanwhile;
  meanwhile.In<FSetupWizard>([&](FSetupWizard& form) {
    title = form.GetTitle().utf8_string();
    form.Close();
  });

  shell.RunMainForm(world.application);

  EXPECT_EQ(title, "TavixStudio - Setup-Assistent: Projekt 'Demo'");
  for (wxWindow* const window : wxTopLevelWindows) {
    EXPECT_EQ(dynamic_cast<FSetupWizard*>(window), nullptr);
  }
}

TEST_F(Shell, RunsTheMainFormASecondTime) {
  ASSERT_TRUE(OpenProject(world.application, "Demo"));
  for (int run = 0; run < 2; ++run) {
    bool shown = false;
    Meanwhile meanwhile;
    meanwhile.In<FSetupWizard>([&](FSetupWizard& form) {
      shown = true;
      form.Close();
    });

    shell.RunMainForm(world.application);

    EXPECT_TRUE(shown);
  }
}

}  // namespace
}  // namespace txs
