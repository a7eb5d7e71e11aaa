// A state window that writes down what it is told, and presses Cancel where a test wants it
// pressed.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "create/create_view.h"

namespace txs {

class RecordingCreateView : public CreateView {
 public:
  struct ProgressShown {
    std::optional<CreateStage> stage;
    CreateProgress progress;
  };

  // What was shown, in order. Stages also stand in `started` and `ended`.
  std::vector<std::string> diary;  // "begin", "busy", "end", ... and everything below with its text
  std::vector<CreateStage> started;
  std::vector<std::pair<CreateStage, bool>> ended;
  std::vector<std::string> actions;
  std::vector<std::string> files;
  std::vector<ProgressShown> progress;
  std::optional<bool> result;
  std::string result_line;
  int begun = 0;
  int take_notes = 0;
  std::size_t events_run = 0;
  bool busy = false;

  // Called whenever events run; may call PressCancel, as a user would.
  std::function<void(RecordingCreateView&)> on_events;
  std::function<void()> on_take_note;

  void PressCancel() { cancel_pressed_ = true; }

  // The stage whose line is marked.
  [[nodiscard]] std::optional<CreateStage> ActiveStage() const { return active_; }

  void Begin() override {
    ++begun;
    diary.emplace_back("begin");
  }
  void StageStarted(CreateStage stage) override {
    active_ = stage;
    started.push_back(stage);
    diary.push_back("stage " + std::to_string(static_cast<int>(stage)));
  }
  void StageEnded(CreateStage stage, bool succeeded) override {
    active_.reset();
    ended.emplace_back(stage, succeeded);
    diary.push_back("stage " + std::to_string(static_cast<int>(stage)) +
                    (succeeded ? " done" : " failed"));
  }
  void ShowAction(const std::string& text) override {
    actions.push_back(text);
    diary.push_back("action " + text);
  }
  void ShowFile(const std::string& name) override {
    files.push_back(name);
    diary.push_back("file " + name);
  }
  void ShowProgress(const CreateProgress& shown) override {
    progress.push_back({active_, shown});
    diary.push_back("progress " + shown.count_text + ", " + shown.size_text);
  }
  void ShowBusy(bool is_busy) override {
    busy = is_busy;
    diary.emplace_back(is_busy ? "busy" : "not busy");
  }
  void LetEventsRun() override {
    ++events_run;
    if (on_events) on_events(*this);
  }
  [[nodiscard]] bool IsCancelPressed() const override { return cancel_pressed_; }
  void End(bool succeeded, const std::string& line) override {
    result = succeeded;
    result_line = line;
    diary.push_back("end " + line);
  }
  void ShowTakeNote() override {
    ++take_notes;
    diary.emplace_back("take note");
    if (on_take_note) on_take_note();
  }

 private:
  std::optional<CreateStage> active_;
  bool cancel_pressed_ = false;
};

}  // namespace txs
