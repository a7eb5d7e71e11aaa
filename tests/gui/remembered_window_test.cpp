#include "ui/remembered_window.h"

#include <gtest/gtest.h>
#include <wx/display.h>
#include <wx/frame.h>

#include <optional>
#include <vector>

#include "gui/gui_support.h"
#include "ui/window_memory.h"

namespace txs {
namespace {

constexpr char kName[] = "FTest";

struct RememberedFrame {
  RememberedFrame() : form(nullptr, wxID_ANY, "remembered") {
    form.SetMinSize(form.FromDIP(wxSize(200, 150)));
  }
  wxFrame form;
};

TEST(RememberedWindow, ComesBackInItsSizeWithItsColumns) {
  MemoryRegistry registry;
  wxSize before;
  {
    RememberedFrame window;
    ShowAndActivate(window.form);
    window.form.SetSize(window.form.FromDIP(wxSize(640, 480)));
    LetEventsRun();
    before = window.form.GetSize();
    KeepWindow(window.form, registry, kName, {120, 80});
  }

  RememberedFrame again;
  const std::vector<int> columns = RestoreWindow(again.form, registry, kName);
  ShowAndActivate(again.form);

  EXPECT_EQ(columns, (std::vector<int>{120, 80}));
  EXPECT_TRUE(WaitFor([&] { return again.form.GetSize() == before; }));
}

TEST(RememberedWindow, AFormThatWasNeverKeptStaysAsItIs) {
  const MemoryRegistry registry;
  RememberedFrame window;
  const wxSize before = window.form.GetSize();

  EXPECT_TRUE(RestoreWindow(window.form, registry, kName).empty());

  EXPECT_EQ(window.form.GetSize(), before);
}

TEST(RememberedWindow, IsNeverSmallerThanItsMinimumNorLargerThanTheScreen) {
  MemoryRegistry registry;
  RememberWindow(registry, kName, {.width = 20, .height = 10, .maximized = false, .columns = {}});
  RememberedFrame small;
  RestoreWindow(small.form, registry, kName);
  RememberWindow(registry, kName,
                 {.width = 30000, .height = 30000, .maximized = false, .columns = {}});
  RememberedFrame large;
  RestoreWindow(large.form, registry, kName);

  EXPECT_EQ(small.form.GetSize(), small.form.GetMinSize());
  EXPECT_EQ(large.form.GetSize(), wxDisplay(&large.form).GetClientArea().GetSize());
}

TEST(RememberedWindow, AMaximizedOneComesBackMaximizedAndKeepsTheSizeOfTheSessionBefore) {
  MemoryRegistry registry;
  RememberWindow(registry, kName, {.width = 640, .height = 480, .maximized = false, .columns = {}});
  {
    RememberedFrame window;
    ShowAndActivate(window.form);
    window.form.Maximize();
    ASSERT_TRUE(WaitFor([&] { return window.form.IsMaximized(); }));
    KeepWindow(window.form, registry, kName, {});
  }

  const std::optional<RememberedWindow> kept = RecallWindow(registry, kName);
  RememberedFrame again;
  RestoreWindow(again.form, registry, kName);
  ShowAndActivate(again.form);

  ASSERT_TRUE(kept.has_value());
  EXPECT_TRUE(kept->maximized);
  EXPECT_EQ(kept->width, 640);
  EXPECT_EQ(kept->height, 480);
  EXPECT_TRUE(WaitFor([&] { return again.form.IsMaximized(); }));
}

TEST(RememberedWindow, ARegistryThatRefusesIsPassedOver) {
  MemoryRegistry registry;
  registry.refuse_changes = ErrorNumber::kPermissionDenied;
  RememberedFrame window;
  ShowAndActivate(window.form);

  KeepWindow(window.form, registry, kName, {});

  EXPECT_FALSE(RecallWindow(registry, kName).has_value());
}

}  // namespace
}  // namespace txs
