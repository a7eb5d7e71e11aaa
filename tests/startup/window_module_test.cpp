#include "startup/window_module.h"

#include <gtest/gtest.h>

#include "fakes/scripted_windows.h"

namespace txs {
namespace {

TEST(WindowModule, IsOpenedAtTheFirstCallAndNotBefore) {
  ScriptedWindows windows;
  EXPECT_EQ(windows.opened, 0);

  const OpenedWindows& first = windows.module.Open();
  const OpenedWindows& second = windows.module.Open();

  EXPECT_EQ(windows.opened, 1);
  EXPECT_EQ(&first, &second);
  EXPECT_EQ(first.fault, WindowFault::kNone);
  EXPECT_EQ(&first.windows->shell, &windows.shell);
}

TEST(WindowModule, IsNotTriedAgainAfterAFault) {
  ScriptedWindows windows;
  windows.fault = WindowFault::kNotLoaded;
  windows.reason = "no such library";

  static_cast<void>(windows.module.Open());
  const OpenedWindows& opened = windows.module.Open();

  EXPECT_EQ(windows.opened, 1);
  EXPECT_EQ(opened.windows, nullptr);
  EXPECT_EQ(opened.reason, "no such library");
}

}  // namespace
}  // namespace txs
