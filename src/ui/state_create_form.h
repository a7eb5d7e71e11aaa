// The state window of Create.
#pragma once

#include <optional>
#include <string>

#include "document/application.h"
#include "ui/help.h"
#include "ui/progress_bar.h"
#include "ui/state_form.h"
#include "ui/state_windows.h"

namespace txs {

// Hidden until Begin. Stands in front of `parent`, which the main form disables meanwhile.
class FStateCreate : public StateForm, public CreateStateWindow {
 public:
  FStateCreate(wxWindow* parent, Application& application, HelpViewer& help);

  void Begin() override;
  void StageStarted(CreateStage stage) override;
  void StageEnded(CreateStage stage, bool succeeded) override;
  void ShowAction(const std::string& text) override;
  void ShowFile(const std::string& name) override { ShowFileName(name); }
  void ShowProgress(const CreateProgress& progress) override;
  void ShowBusy(bool busy) override { SetBusy(busy); }
  void LetEventsRun() override { LetWindowEventsRun(); }
  [[nodiscard]] bool IsCancelPressed() const override { return CancelPressed(); }
  void End(bool succeeded, const std::string& result_line) override;
  void ShowTakeNote() override;

  void ShowReport(const RunReport& report) override { ListReport(report); }
  void WaitUntilClosed() override { WaitForOk(); }

 protected:
  bool ShowLateParts() override;

 private:
  // A bar with its text.
  struct Bar {
    ProgressBar* picture = nullptr;
    std::optional<LateText> text;
    double filled = 0;

    bool Show();
  };

  void AddBar(wxSizer& grid, Bar& bar, long heading_id, const char* bar_name,
              const char* text_name);

  Application& application_;
  HelpViewer& help_;
  wxStaticText* action_ = nullptr;
  Bar count_;
  Bar size_;
};

}  // namespace txs
