#include <gtest/gtest.h>

#include "startup/window_module.h"

namespace txs {
namespace {

// This test program stands in a folder without the module.
TEST(OpenWindowModule, NamesAMissingModuleBeforeAMissingDisplay) {
  const OpenedWindows opened = OpenWindowModule("title");

  EXPECT_EQ(opened.windows, nullptr);
  EXPECT_EQ(opened.fault, WindowFault::kNoModule);
}

}  // namespace
}  // namespace txs
