// What a Scan run shows, as a passive view in plain types: the state window implements it, tests
// record it, the companion uses a quiet one.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "scan/missing_item.h"

namespace txs {

// The two stage lines of the state window; the value is the line's text id.
enum class ScanStage : int {
  kStudioProject = 704,
  kVisualBasic = 705,
};

class ScanView {
 public:
  virtual ~ScanView() = default;

  // A run begins: pictures hidden, labels of normal weight, OK disabled, Cancel enabled and not
  // pressed. `runtime_setup_note` is text 730, or 731, which is shown bold.
  virtual void Begin(bool use_runtime_setup, const std::string& runtime_setup_note) = 0;

  // The stage's picture appears and its label turns bold until the stage ends, with the done or the
  // error picture. A group starts and ends the Visual Basic stage once per project.
  virtual void StageStarted(ScanStage stage) = 0;
  virtual void StageCaption(ScanStage stage, const std::string& caption) = 0;
  virtual void StageEnded(ScanStage stage, bool succeeded) = 0;

  virtual void ShowFile(const std::string& file_or_line) = 0;
  virtual void ShowCount(std::size_t rows) = 0;  // rows of the file list
  virtual void ShowBusy(bool busy) = 0;          // hourglass pointer

  // Lets pending window events run; after every line, file and searched folder. A press of Cancel
  // is noticed here.
  virtual void LetEventsRun() = 0;
  [[nodiscard]] virtual bool IsCancelPressed() const = 0;

  // The run's summary of what was not found; not called when nothing was missing.
  virtual void ShowMissing(const std::vector<MissingItem>& missing) = 0;

  // The run is over: the result line (text 724 or 725); OK is enabled, Cancel disabled.
  virtual void End(bool succeeded, const std::string& result_line) = 0;
};

// Shows nothing and cannot be cancelled.
class SilentScanView : public ScanView {
 public:
  void Begin(bool, const std::string&) override {}
  void StageStarted(ScanStage) override {}
  void StageCaption(ScanStage, const std::string&) override {}
  void StageEnded(ScanStage, bool) override {}
  void ShowFile(const std::string&) override {}
  void ShowCount(std::size_t) override {}
  void ShowBusy(bool) override {}
  void LetEventsRun() override {}
  [[nodiscard]] bool IsCancelPressed() const override { return false; }
  void ShowMissing(const std::vector<MissingItem>&) override {}
  void End(bool, const std::string&) override {}
};

}  // namespace txs
