// The main form on the demo project, and what the tests do to it.
#pragma once

#include <gmock/gmock.h>
#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/dirdlg.h>
#include <wx/filedlg.h>
#include <wx/listctrl.h>
#include <wx/modalhook.h>
#include <wx/notebook.h>
#include <wx/radiobut.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>
#include <wx/timer.h>

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "fakes/demo_project.h"
#include "gui/gui_support.h"
#include "projects/open_project.h"
#include "ui/file_grid.h"
#include "ui/setup_wizard_form.h"

namespace txs {

// Acts in windows that hold up what opened them: each step waits until a window of its type is
// active, whatever loop runs by then.
class Meanwhile : public wxTimer, public wxModalDialogHook {
 public:
  Meanwhile() {
    Register();
    Start(kIntervalMilliseconds);
  }
  ~Meanwhile() override {
    Stop();
    EXPECT_TRUE(steps_.empty()) << "a window is missing";
  }

  template <typename Window>
  Meanwhile& In(std::function<void(Window&)> action) {
    return When<Window>([](Window&) { return true; }, std::move(action));
  }
  // A run does not go on while `action` waits: what the run does is waited for with `ready`.
  template <typename Window>
  Meanwhile& When(std::function<bool(Window&)> ready, std::function<void(Window&)> action) {
    steps_.push_back([this, ready = std::move(ready), action = std::move(action)] {
      auto* const window = FindActive<Window>();
      if (window == nullptr || !ready(*window)) return false;
      action(*window);
      return true;
    });
    return *this;
  }

  // Every step was taken.
  [[nodiscard]] bool IsDone() const { return steps_.empty() && !acting_; }

  void Notify() override {
    if (acting_ || steps_.empty()) return;
    acting_ = true;
    if (steps_.front()()) steps_.pop_front();
    acting_ = false;
  }

 protected:
  int Enter(wxDialog* dialog) override {
    const bool is_platform_dialog = dynamic_cast<wxFileDialog*>(dialog) != nullptr ||
                                    dynamic_cast<wxDirDialog*>(dialog) != nullptr;
    platform_dialog_ = is_platform_dialog ? dialog : nullptr;
    return wxID_NONE;
  }
  void Exit(wxDialog* /*dialog*/) override { platform_dialog_ = nullptr; }

 private:
  static constexpr int kIntervalMilliseconds = 10;

  template <typename Window>
  Window* FindActive() {
    // The platform's own dialogs are in no list and do not tell that they are active.
    if (auto* const found = dynamic_cast<Window*>(platform_dialog_)) {
      return found->IsShown() ? found : nullptr;
    }
    for (wxWindow* const window : wxTopLevelWindows) {
      auto* const found = dynamic_cast<Window*>(window);
      if (found != nullptr && found->IsShownOnScreen() && found->IsActive()) return found;
    }
    return nullptr;
  }

  std::deque<std::function<bool()>> steps_;
  wxDialog* platform_dialog_ = nullptr;
  bool acting_ = false;
};

class MainFormTest : public testing::Test {
 protected:
  MainFormTest() = default;
  ~MainFormTest() override {
    if (form_ != nullptr) form_->Destroy();
    LetEventsRun();
  }

  // `designer` as the project file names it.
  void Open(long language_id = 1031, const std::string& designer = "Visual Basic 6.0") {
    world_ = std::make_unique<GuiWorld>(language_id);
    InstallDemoProject(world_->platform);
    Files().AddFile("C:\\Projects\\Demo\\Demo.txs",
                    "[Global]\r\nDesigner=" + designer + "\r\nDesignerProject=Demo.vbp\r\n");
    Files().AddFile("C:\\Projects\\Demo\\Demo.vbp", "Type=Exe\r\nExeName32=\"Demo.exe\"\r\n");
    LoadMainFormState(App());
    // Its programs are not part of the demo project.
    App().use_runtime_setup = false;
    EXPECT_TRUE(OpenProject(App(), "Demo"));
    Show();
  }
  void Show() {
    form_ = new FSetupWizard(App(), help_);
    form_->Bind(wxEVT_DESTROY, [this](wxWindowDestroyEvent& event) {
      if (event.GetEventObject() == form_) form_ = nullptr;
      event.Skip();
    });
    ShowAndActivate(*form_);
  }

  [[nodiscard]] Application& App() { return world_->application; }
  [[nodiscard]] SetupDocument& Document() { return world_->application.document; }
  [[nodiscard]] StepSettings& Steps() { return Document().steps; }
  [[nodiscard]] MemoryFileSystem& Files() { return world_->platform.files; }
  [[nodiscard]] std::vector<long> MessageIds() { return world_->messages.Ids(); }
  void Answer(MessageResult answer) { world_->messages.answers.push_back(answer); }
  [[nodiscard]] std::string SavedSettings() {
    return Files().Contents("C:\\Projects\\Demo\\Demo.swz");
  }

  template <typename ControlType>
  ControlType& Find(const std::string& name) {
    return Control<ControlType>(*form_, name);
  }
  wxTextCtrl& Box(const std::string& name) { return Find<wxTextCtrl>(name); }
  wxButton& Button(const std::string& name) { return Find<wxButton>(name); }
  FileGrid& Grid() { return Find<FileGrid>("grdFiles"); }
  std::string Text(const std::string& name) {
    return Find<wxStaticText>(name).GetLabelText().utf8_string();
  }
  std::string BoxText(const std::string& name) { return Box(name).GetValue().utf8_string(); }
  int SelectedStep() { return Find<wxNotebook>("tabStep").GetSelection() + 1; }
  // What an event leads to; the window system may take a moment to bring the event.
  bool StepIs(int step) {
    return WaitFor([&] { return SelectedStep() == step; }, 5);
  }
  bool MessagesAre(const std::vector<long>& ids) {
    return WaitFor([&] { return MessageIds() == ids; }, 5);
  }
  std::string FocusName() {
    const wxWindow* const focus = wxWindow::FindFocus();
    return focus == nullptr ? std::string() : focus->GetName().utf8_string();
  }
  bool FocusIs(const std::string& name) {
    return WaitFor([&] { return FocusName() == name; }, 5);
  }

  void GoToStep(int step) {
    PressKey('0' + step, wxMOD_ALT);
    EXPECT_TRUE(StepIs(step));
    LetEventsRun();
  }
  // The middle of a tab.
  wxPoint TabOf(wxNotebook& book, int page) {
    for (int x = 0; x < book.GetSize().GetWidth(); x += 4) {
      const wxPoint at(x, 12);
      if (book.HitTest(at) == page) return book.ClientToScreen(at) + wxPoint(12, 0);
    }
    ADD_FAILURE() << "no tab " << page;
    return {};
  }
  void TypeInto(const std::string& name, const std::string& text) {
    Click(Box(name));
    EXPECT_TRUE(FocusIs(name));
    PressKey('A', wxMOD_CONTROL);
    TypeText(text);
    EXPECT_TRUE(WaitFor([&] { return BoxText(name) == text; })) << BoxText(name);
  }
  // A menu and its command by their access keys.
  void ChooseCommand(char menu, char command) {
    PressKey(menu, wxMOD_ALT);
    PressKey(command);
  }

  RecordingHelp help_;
  std::unique_ptr<GuiWorld> world_;
  FSetupWizard* form_ = nullptr;
};

}  // namespace txs
