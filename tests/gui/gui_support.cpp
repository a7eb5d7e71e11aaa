#include "gui/gui_support.h"

#include <wx/bitmap.h>
#include <wx/bookctrl.h>
#include <wx/clipbrd.h>
#include <wx/dataobj.h>
#include <wx/dcmemory.h>
#include <wx/dcscreen.h>
#include <wx/evtloop.h>
#include <wx/scrolwin.h>
#include <wx/stattext.h>
#include <wx/uiaction.h>
#include <wx/utils.h>

#include <chrono>
#include <cstdlib>
#include <stdexcept>

#include "gui/picture_file.h"
#include "ui/wx_text.h"

namespace txs {
namespace {

constexpr int kPauseMilliseconds = 5;

// Each action has a simulator of its own: its end waits until the window system has done what was
// asked, so that what comes of it can be read at once. One for all would not.
void Move(const wxPoint& on_screen) {
  wxUIActionSimulator().MouseMove(on_screen);
  WaitFor([&] { return wxGetMousePosition() == on_screen; }, 2);
}

// A label that is cut on purpose needs no width.
wxSize NeededSize(wxWindow& control) {
  wxSize needed = control.GetBestSize();
  const auto* const text = dynamic_cast<wxStaticText*>(&control);
  if (text != nullptr && text->IsEllipsized()) needed.SetWidth(0);
  return needed;
}

void CollectClipped(wxWindow& window, std::string& names) {
  for (wxWindow* const child : window.GetChildren()) {
    if (!child->IsShown() || child->IsTopLevel()) continue;
    const wxSize needed = NeededSize(*child);
    const wxSize has = child->GetSize();
    // A pane that scrolls has room for whatever it holds.
    auto* const pane = dynamic_cast<wxScrolledWindow*>(&window);
    const wxSize room = pane != nullptr ? pane->GetVirtualSize() : window.GetClientSize();
    const wxPoint at = child->GetPosition();
    // Scrolled controls ask for more than they need; labels and buttons do not.
    const bool shows_text =
        dynamic_cast<wxControl*>(child) != nullptr && !child->GetLabel().empty();
    const bool too_small =
        shows_text && (has.GetWidth() < needed.GetWidth() || has.GetHeight() < needed.GetHeight());
    // A book counts its pages' positions from its tabs, its room without them.
    const bool is_page = dynamic_cast<wxBookCtrlBase*>(&window) != nullptr;
    const bool outside =
        !is_page && (at.x < 0 || at.y < 0 || at.x + has.GetWidth() > room.GetWidth() ||
                     at.y + has.GetHeight() > room.GetHeight());
    if (too_small || outside) {
      names += child->GetName().utf8_string() + " '" + child->GetLabel().utf8_string() + "' has " +
               std::to_string(has.GetWidth()) + "x" + std::to_string(has.GetHeight()) + ", needs " +
               std::to_string(needed.GetWidth()) + "x" + std::to_string(needed.GetHeight()) + "\n";
    }
    CollectClipped(*child, names);
  }
}

}  // namespace

GuiWorld::GuiWorld(long language_id)
    : application{platform.Get(),
                  messages,
                  TextService(language_id),
                  /*installation=*/{},
                  /*configurator=*/MakeBuiltInConfigurator(platform.tools),
                  /*project=*/{},
                  /*document=*/{}} {
  platform.InstallStudio();
  application.installation = CheckEnvironment(platform.tools, platform.files).settings;
}

void LetEventsRun() {
  // A test runs outside of any event loop unless a dialog is modal.
  if (wxEventLoopBase::GetActive() == nullptr) {
    wxEventLoop loop;
    wxEventLoopActivator activator(&loop);
    loop.YieldFor(wxEVT_CATEGORY_ALL);
    while (loop.ProcessIdle()) {
    }
    return;
  }
  wxYield();
}

bool WaitFor(const std::function<bool()>& condition, double seconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  for (;;) {
    LetEventsRun();
    if (condition()) return true;
    if (std::chrono::steady_clock::now() > end) return false;
    wxMilliSleep(kPauseMilliseconds);
  }
}

bool WaitUntilSettled(wxTopLevelWindow& form, wxWindow& part) {
  constexpr double kPatienceSeconds = 10;
  const auto end =
      std::chrono::steady_clock::now() + std::chrono::duration<double>(kPatienceSeconds);
  wxRect before;
  while (std::chrono::steady_clock::now() < end) {
    // Each of the two may take a moment, in which the other may change.
    if (!WaitFor([&] { return IsInPlace(form); }) || !WaitForFrame(form)) return false;
    const wxRect at = part.GetScreenRect();
    if (at == before && IsInPlace(form)) return true;
    before = at;
  }
  return false;
}

void ShowAndActivate(wxTopLevelWindow& form) {
  form.Show();
  form.Raise();
  EXPECT_TRUE(WaitFor([&] { return form.IsShownOnScreen() && form.IsActive(); }));
  EXPECT_TRUE(WaitUntilSettled(form, form));
}

wxWindow* FindControl(wxWindow& form, const std::string& name) {
  wxWindow* const found = wxWindow::FindWindowByName(wxString::FromUTF8(name), &form);
  EXPECT_NE(found, nullptr) << "no control " << name;
  if (found == nullptr) throw std::runtime_error("no control " + name);
  return found;
}

void Click(wxWindow& window) {
  auto* const form = dynamic_cast<wxTopLevelWindow*>(wxGetTopLevelParent(&window));
  ASSERT_NE(form, nullptr);
  EXPECT_TRUE(WaitUntilSettled(*form, window))
      << FromWx(window.GetName()) << " never comes to rest";
  const wxRect at = window.GetScreenRect();
  ClickAt(wxPoint(at.x + at.width / 2, at.y + at.height / 2));
}

void ClickAt(const wxPoint& on_screen) {
  Move(on_screen);
  wxUIActionSimulator().MouseClick();
  LetEventsRun();
}

void DoubleClickAt(const wxPoint& on_screen) {
  Move(on_screen);
  wxUIActionSimulator().MouseDblClick();
  LetEventsRun();
}

void PressKey(int key_code, int modifiers) {
  wxUIActionSimulator().Char(key_code, modifiers);
  LetEventsRun();
}

void TypeText(const std::string& ascii) {
  wxUIActionSimulator().Text(ascii.c_str());
  LetEventsRun();
}

std::string TextCopiedBy(const std::function<void()>& action) {
  const unsigned long before = ClipboardChanges();
  action();
  EXPECT_TRUE(WaitFor([&] { return ClipboardChanges() != before; })) << "nothing was copied";
  wxTextDataObject copied;
  const wxClipboardLocker locker;
  return wxTheClipboard->GetData(copied) ? copied.GetText().utf8_string() : std::string();
}

int WhileModal(wxDialog& dialog, const std::function<int()>& show,
               const std::function<void()>& action) {
  bool acted = false;
  // Posted now, handled by the dialog's own loop: there is no other one running.
  dialog.CallAfter([&] {
    if (acted) return;
    acted = true;
    EXPECT_TRUE(WaitFor([&] { return dialog.IsModal() && dialog.IsActive(); }));
    EXPECT_TRUE(WaitUntilSettled(dialog, dialog));
    action();
  });
  const int result = show();
  EXPECT_TRUE(acted);
  return result;
}

void EndUnlessHidden(wxDialog& dialog) {
  const bool hidden = WaitFor([&] { return !dialog.IsShown(); });
  EXPECT_TRUE(hidden) << "the dialog is still open";
  if (!hidden) dialog.EndModal(wxID_ABORT);
}

std::string ClippedControls(wxWindow& window) {
  std::string names;
  CollectClipped(window, names);
  return names;
}

void TakePicture(wxTopLevelWindow& form, const std::string& name) {
  const char* const folder = std::getenv("SCREENSHOTS");
  if (folder == nullptr || *folder == '\0') return;
  form.Refresh();
  form.Update();
  // A repaint takes the window system a moment that no event announces.
  WaitFor([] { return false; }, 0.3);
  const wxRect at = form.GetScreenRect();
  wxBitmap picture(at.GetSize());
  wxMemoryDC memory(picture);
  wxScreenDC screen;
  ForgetPictureOfScreen(screen.GetImpl()->GetCairoContext());
  memory.Blit(wxPoint(0, 0), at.GetSize(), &screen, at.GetPosition());
  memory.SelectObject(wxNullBitmap);
  const std::string path = std::string(folder) + '/' + name;
  EXPECT_TRUE(SavePicture(picture, path)) << path;
}

}  // namespace txs
