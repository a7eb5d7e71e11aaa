// What the tests of both state windows look at and do.
#pragma once

#include <wx/button.h>
#include <wx/dcmemory.h>
#include <wx/dcscreen.h>
#include <wx/frame.h>
#include <wx/statbmp.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>
#include <wx/uiaction.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "gui/gui_support.h"

namespace txs {

inline constexpr long kGerman = 1031;
inline constexpr long kEnglish = 1033;

inline constexpr char kLongPath[] =
    "C:\\Program Files\\Common Files\\TavixStudio\\Components of the plant & others\\Version 4.0\\"
    "Visualisation\\TrendWithAVeryLongName.ocx";

inline bool IsBold(const wxWindow& window) {
  return window.GetFont().GetWeight() == wxFONTWEIGHT_BOLD;
}

inline bool Shows(const wxStaticBitmap& control, const wxBitmapBundle& picture) {
  if (!control.IsShown()) return false;
  const wxImage shown = control.GetBitmap().ConvertToImage();
  const wxImage wanted = picture.GetBitmapFor(&control).ConvertToImage();
  const auto bytes = std::size_t{3} * static_cast<unsigned>(wanted.GetWidth()) *
                     static_cast<unsigned>(wanted.GetHeight());
  return shown.GetSize() == wanted.GetSize() &&
         std::equal(shown.GetData(), shown.GetData() + bytes, wanted.GetData());
}

// What the screen shows where the window stands; no event is handled meanwhile.
inline std::string Pixels(const wxWindow& window) {
  const wxRect at = window.GetScreenRect();
  wxBitmap picture(at.GetSize());
  wxMemoryDC memory(picture);
  wxScreenDC screen;
  ForgetPictureOfScreen(screen.GetImpl()->GetCairoContext());
  memory.Blit(wxPoint(0, 0), at.GetSize(), &screen, at.GetPosition());
  memory.SelectObject(wxNullBitmap);
  const wxImage image = picture.ConvertToImage();
  const auto bytes =
      std::size_t{3} * static_cast<unsigned>(at.GetWidth()) * static_cast<unsigned>(at.GetHeight());
  return {reinterpret_cast<const char*>(image.GetData()), bytes};
}

// Like WaitFor, while the program handles no events at all, as in the middle of a run.
inline bool BecomesTrueWithoutEvents(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    wxMilliSleep(1);
  }
  return true;
}

// Presses the mouse button without letting the program handle it, as a user does while a run holds
// the processor.
inline void ClickUnhandled(const wxWindow& window) {
  const wxRect at = window.GetScreenRect();
  wxUIActionSimulator simulator;
  simulator.MouseMove(at.x + at.width / 2, at.y + at.height / 2);
  simulator.MouseClick();
}

// A state window over a window that stands for the main form.
template <typename Form>
class StateFormTest : public testing::Test {
 protected:
  StateFormTest() {
    parent_ = new wxFrame(nullptr, wxID_ANY, "main form", wxPoint(250, 150), wxSize(900, 700));
    inside_parent_ = new wxTextCtrl(parent_, wxID_ANY);
    ShowAndActivate(*parent_);
  }
  ~StateFormTest() override {
    form_.reset();
    parent_->Destroy();
    LetEventsRun();
  }

  void ExpectOnScreen() {
    EXPECT_TRUE(WaitFor([&] { return form_->IsShownOnScreen() && form_->IsActive(); }));
  }

  // Waits for OK as the main form does, while `action` does what the user does.
  void WaitWhile(const std::function<void()>& action) {
    bool acted = false;
    form_->CallAfter([&] {
      acted = true;
      ExpectOnScreen();
      action();
    });
    form_->WaitUntilClosed();
    EXPECT_TRUE(acted);
  }

  // Lets events run as a run does between two files, until `condition` holds.
  bool BecomesTrueInTheRun(const std::function<bool()>& condition) {
    return WaitFor([&] {
      form_->LetEventsRun();
      return condition();
    });
  }

  // Presses Alt+F4 while the run lasts.
  void ExpectRefusesToBeClosed() {
    bool refused = false;
    form_->Bind(wxEVT_CLOSE_WINDOW, [&](wxCloseEvent& event) {
      refused = true;
      event.Skip();
    });

    PressKey(WXK_F4, wxMOD_ALT);

    EXPECT_TRUE(WaitFor([&] { return refused; }));
    EXPECT_TRUE(form_->IsShown());
    EXPECT_FALSE(form_->IsCancelPressed());
  }

  // Nothing is cut off as the window is now; keeps a picture of it.
  void ExpectNothingClipped(const std::string& picture) {
    LetEventsRun();
    EXPECT_EQ(ClippedControls(*form_), "") << picture;
    TakePicture(*form_, picture);
  }

  wxStaticText& Label(const std::string& name) { return Control<wxStaticText>(*form_, name); }
  std::string Text(const std::string& name) { return Label(name).GetLabelText().utf8_string(); }
  wxStaticBitmap& Picture(const std::string& name) { return Control<wxStaticBitmap>(*form_, name); }
  wxButton& Button(const std::string& name) { return Control<wxButton>(*form_, name); }
  wxTextCtrl& Report() { return Control<wxTextCtrl>(*form_, "txtReport"); }

  wxFrame* parent_;
  wxTextCtrl* inside_parent_;
  std::unique_ptr<Form> form_;
};

}  // namespace txs
