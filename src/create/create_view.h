// What a Create run shows, as a passive view in plain types: the state window implements it, tests
// record it, the unattended run and the companion use quiet ones.
#pragma once

#include <cstdint>
#include <string>

namespace txs {

// The five stage lines of the state window, top to bottom; the value is the line's text id.
enum class CreateStage : int {
  kDirectories = 405,
  kCompress = 406,
  kSetupKit = 407,
  kDistribute = 408,
  kControlFile = 409,
};

// Both bars of the state window. `count_text` and `size_text` are ready to be shown.
struct CreateProgress {
  std::uint64_t count_done = 0;
  std::uint64_t count_total = 0;
  std::uint64_t bytes_done = 0;
  std::uint64_t bytes_total = 0;
  std::string count_text;  // "3 / 17"
  std::string size_text;   // "42 %": 100 only when everything is done, 0 only before anything is
};

// Builds the texts from the figures; the percentage is rounded half to even. Where there are no
// bytes at all, only empty files, the count decides between 0 % and 100 %; nothing to do is 0 %.
[[nodiscard]] CreateProgress MakeCreateProgress(std::uint64_t count_done, std::uint64_t count_total,
                                                std::uint64_t bytes_done,
                                                std::uint64_t bytes_total);

class CreateView {
 public:
  virtual ~CreateView() = default;

  // A run begins: every mark is cleared, Cancel is enabled and not pressed, OK is disabled.
  virtual void Begin() = 0;

  // The stage's line becomes active (bold, mark picture), and is unmarked when the stage ends.
  virtual void StageStarted(CreateStage stage) = 0;
  virtual void StageEnded(CreateStage stage, bool succeeded) = 0;

  virtual void ShowAction(const std::string& text) = 0;  // action label: "Compressing"
  virtual void ShowFile(const std::string& name) = 0;    // file or archive being handled
  virtual void ShowProgress(const CreateProgress& progress) = 0;
  virtual void ShowBusy(bool busy) = 0;  // hourglass pointer

  // Lets pending window events run; once per file. A press of Cancel is noticed here.
  virtual void LetEventsRun() = 0;
  [[nodiscard]] virtual bool IsCancelPressed() const = 0;

  // The run is over: the result line (text 424 or 425); OK is enabled, Cancel disabled.
  virtual void End(bool succeeded, const std::string& result_line) = 0;

  // The Take-note dialog, modal; only called outside the unattended mode.
  virtual void ShowTakeNote() = 0;
};

// Shows nothing and cannot be cancelled.
class SilentCreateView : public CreateView {
 public:
  void Begin() override {}
  void StageStarted(CreateStage) override {}
  void StageEnded(CreateStage, bool) override {}
  void ShowAction(const std::string&) override {}
  void ShowFile(const std::string&) override {}
  void ShowProgress(const CreateProgress&) override {}
  void ShowBusy(bool) override {}
  void LetEventsRun() override {}
  [[nodiscard]] bool IsCancelPressed() const override { return false; }
  void End(bool, const std::string&) override {}
  void ShowTakeNote() override {}
};

}  // namespace txs
