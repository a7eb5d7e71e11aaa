#include "ui/setup_wizard_form.h"

#include <gtest/gtest.h>

#include "fakes/demo_project.h"
#include "gui/gui_support.h"
#include "projects/open_project.h"

namespace txs {
namespace {

struct World : GuiWorld {
  explicit World(long language = 1031) : GuiWorld(language) {
    InstallDemoProject(platform);
    EXPECT_TRUE(OpenProject(application, "Demo"));
    form = new FSetupWizard(application, help);
    ShowAndActivate(*form);
  }
  ~World() { form->Destroy(); LetEventsRun(); }
  RecordingHelp help;
  FSetupWizard* form;
};

TEST(FSetupWizard, Pictures) {
  for (const long language : {1031, 1033}) {
    World world(language);
    for (int step = 1; step <= 5; ++step) {
      PressKey('0' + step, wxMOD_ALT);
      EXPECT_EQ(ClippedControls(*world.form), "") << step;
      TakePicture(*world.form, "main" + std::to_string(language) + "_" + std::to_string(step));
    }
  }
}

}  // namespace
}  // namespace txs
#include <wx/listctrl.h>
namespace txs { namespace {
TEST(FSetupWizard, Debug) {
    World world(1031);
    PressKey('2', wxMOD_ALT);
    auto& list = Control<wxListView>(*world.form, "lvwUserDirectories");
    for (int i = 0; i < 3; ++i) {
    printf("%d %d of %d\n", list.GetColumnWidth(0), list.GetColumnWidth(1), list.GetClientSize().x);
    LetEventsRun();
    if (i == 1) list.SetColumnWidth(1, wxLIST_AUTOSIZE_USEHEADER);
    }
    list.SetFocus();
    PressKey(WXK_SPACE);
    PressKey(WXK_F2);
    TakePicture(*world.form, "rename");
}
}}
