// The state window of Scan.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "document/application.h"
#include "ui/state_form.h"
#include "ui/state_windows.h"

namespace txs {

// Hidden until Begin. Stands in front of `parent`, which the main form disables meanwhile.
class FStateScan : public StateForm, public ScanStateWindow {
 public:
  FStateScan(wxWindow* parent, Application& application);

  void Begin(bool use_runtime_setup, const std::string& runtime_setup_note) override;
  void StageStarted(ScanStage stage) override;
  void StageCaption(ScanStage stage, const std::string& caption) override;
  void StageEnded(ScanStage stage, bool succeeded) override;
  void ShowFile(const std::string& file_or_line) override { ShowFileName(file_or_line); }
  void ShowCount(std::size_t rows) override;
  void ShowBusy(bool busy) override { SetBusy(busy); }
  void LetEventsRun() override { LetWindowEventsRun(); }
  [[nodiscard]] bool IsCancelPressed() const override { return CancelPressed(); }
  void ShowMissing(const std::vector<MissingItem>& missing) override { missing_ = missing; }
  void End(bool succeeded, const std::string& result_line) override {
    EndRun(succeeded, result_line);
  }

  // What ShowMissing told is listed in any case, once: here or by WaitUntilClosed.
  void ShowReport(const RunReport& report) override;
  void WaitUntilClosed() override;

 protected:
  bool ShowLateParts() override;

 private:
  std::optional<LateText> count_;
  wxStaticText* runtime_setup_ = nullptr;
  std::vector<MissingItem> missing_;
};

}  // namespace txs
