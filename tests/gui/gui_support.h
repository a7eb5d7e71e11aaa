// What a test does to a form: finds controls by their documented names, moves the mouse, presses
// keys, and waits until something is true. Nothing waits for a fixed time.
#pragma once

#include <gtest/gtest.h>
#include <wx/dialog.h>
#include <wx/event.h>
#include <wx/toplevel.h>
#include <wx/window.h>

#include <functional>
#include <string>

#include "document/application.h"
#include "fakes/memory_platform.h"
#include "fakes/recording_messages.h"
#include "ui/help.h"

namespace txs {

// A studio in memory with an application that works on it. German unless told otherwise.
struct GuiWorld {
  explicit GuiWorld(long language_id = 1031);

  MemoryPlatform platform;
  RecordingMessages messages;
  Application application;
};

// Notes what was asked of it.
class RecordingHelp : public HelpViewer {
 public:
  std::vector<std::string> opened;
  bool succeeds = true;

  [[nodiscard]] bool Open(const std::string& help_file, int topic) override {
    opened.push_back(help_file + "#" + std::to_string(topic));
    return succeeds;
  }
};

// Handles events until `condition` holds; false when it does not within `seconds`.
bool WaitFor(const std::function<bool()>& condition, double seconds = 10);

// Handles all events that are pending.
void LetEventsRun();

// Shows a form and waits until it has the focus of the window system.
void ShowAndActivate(wxTopLevelWindow& form);

// Whether the window manager has given a form that is shown its frame and its place, and the form
// knows both: before, what is asked for its size and for the place of its controls is off by the
// frame.
bool IsInPlace(wxTopLevelWindow& form);

// Handles events until the form has been laid out and painted once more; false when that does not
// come to pass within a few seconds, as for a form that is not on the screen.
bool WaitForFrame(wxTopLevelWindow& form);

// Waits until the form is in place and `part` of it stands where it will stay: what has just been
// shown or resized moves its controls only when the window system has answered and the toolkit has
// laid them out anew. False when it never does.
bool WaitUntilSettled(wxTopLevelWindow& form, wxWindow& part);

// The control of that name below `form`; fails the test when there is none or it is of another
// type.
wxWindow* FindControl(wxWindow& form, const std::string& name);
template <typename ControlType>
ControlType& Control(wxWindow& form, const std::string& name) {
  auto* const control = dynamic_cast<ControlType*>(FindControl(form, name));
  if (control == nullptr) throw std::runtime_error("no control of the expected type: " + name);
  return *control;
}

// The text that `action` brings into the clipboard. Fails the test when nothing comes. The
// clipboard is not looked into before: who looks has it open, and the program would find it taken.
std::string TextCopiedBy(const std::function<void()>& action);

// How often something came into the clipboard, counted from the first call on at the latest.
unsigned long ClipboardChanges();

// Moves the real pointer and presses the left button. A window is clicked in its middle, once it
// stands still.
void Click(wxWindow& window);
void ClickAt(const wxPoint& on_screen);
void DoubleClickAt(const wxPoint& on_screen);

// Keys as the user presses them, into whatever has the focus. `modifiers` as wxMOD_ALT.
void PressKey(int key_code, int modifiers = 0);
void TypeText(const std::string& ascii);

// Runs `action` once `dialog`, shown modally by `show`, is on the screen and active. Returns what
// `show` returned.
int WhileModal(wxDialog& dialog, const std::function<int()>& show,
               const std::function<void()>& action);

// Waits until what was done has closed the dialog. When it has not, the test fails and the dialog
// is ended with wxID_ABORT: nobody is there to close it.
void EndUnlessHidden(wxDialog& dialog);

// Whether every control below `window` that is shown has at least the size that its contents need,
// and lies within its parent; the names of those that do not, one per line.
std::string ClippedControls(wxWindow& window);

// The text of the tooltip that is on the screen; empty when there is none.
std::string ShownTooltip();

// Whether the keys go to `window` or to a part of it, as the toolkit sees it.
bool FocusIsIn(wxWindow& window);

// What a screen reader announces for what has the focus in `form`.
std::string NameOfFocus(wxTopLevelWindow& form);

// The toolkit keeps the picture of the screen that it read once; after this it reads it anew.
void ForgetPictureOfScreen(void* cairo_context);

// Saves what is on the screen where `form` stands as a PNG file in the folder that SCREENSHOTS
// names; does nothing when it is unset.
void TakePicture(wxTopLevelWindow& form, const std::string& name);

}  // namespace txs
