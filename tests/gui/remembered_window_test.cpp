#include "ui/remembered_window.h"

#include <gtest/gtest.h>
#include <wx/display.h>
#include <wx/frame.h>
#include <wx/menu.h>

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
    EXPECT_TRUE(WaitFor([&] { return IsInPlace(window.form); }));
    before = window.form.GetSize();
    KeepWindow(window.form, registry, kName, {120, 80});
  }

  RememberedFrame again;
  const std::vector<int> columns = RestoreWindow(again.form, registry, kName);
  ShowAndActivate(again.form);

  EXPECT_EQ(columns, (std::vector<int>{120, 80}));
  EXPECT_TRUE(WaitFor([&] { return again.form.GetSize() == before; }));
}

// It grew by its frame from session to session.
TEST(RememberedWindow, HasTheKeptSizeOnTheScreenToo) {
  MemoryRegistry registry;
  RememberWindow(registry, kName, {.width = 640, .height = 480, .maximized = false, .columns = {}});
  RememberedFrame window;

  RestoreWindow(window.form, registry, kName);
  ShowAndActivate(window.form);

  EXPECT_EQ(window.form.ToDIP(window.form.GetClientSize()), wxSize(640, 480));
}

TEST(RememberedWindow, AMenuBarDoesNotCountTwice) {
  MemoryRegistry registry;
  RememberWindow(registry, kName, {.width = 640, .height = 480, .maximized = false, .columns = {}});
  RememberedFrame window;
  auto* const menus = new wxMenuBar;
  menus->Append(new wxMenu, "menu");
  window.form.SetMenuBar(menus);

  RestoreWindow(window.form, registry, kName);
  ShowAndActivate(window.form);

  EXPECT_EQ(window.form.ToDIP(window.form.GetClientSize()), wxSize(640, 480));
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

  ShowAndActivate(small.form);
  ShowAndActivate(large.form);

  EXPECT_EQ(small.form.GetMinSize(), small.form.GetSize());
  const wxRect screen = wxDisplay(&large.form).GetClientArea();
  EXPECT_LE(large.form.GetClientSize().GetWidth(), screen.GetWidth());
  EXPECT_LE(large.form.GetClientSize().GetHeight(), screen.GetHeight());
  EXPECT_GT(large.form.GetClientSize().GetWidth(), screen.GetWidth() / 2);
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
