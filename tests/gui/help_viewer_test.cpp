#include "ui/help_viewer.h"

#include <gtest/gtest.h>

#include "gui/gui_support.h"

namespace txs {
namespace {

TEST(DesktopHelpViewer, AHelpFileOnNoDriveOpensNoViewer) {
  GuiWorld world;
  world.platform.host_paths.drive_c = "/nowhere";
  DesktopHelpViewer viewer(world.platform.host_paths);

  EXPECT_FALSE(viewer.Open("Q:\\Projektmanagement.chm", kHelpContents));
}

}  // namespace
}  // namespace txs
