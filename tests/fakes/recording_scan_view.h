// A state window that writes down what it is told, and presses Cancel where a test wants it
// pressed; and a Search-File dialog that answers from a script.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "scan/scan_view.h"
#include "scan/search_file_dialog.h"

namespace txs {

class RecordingScanView : public ScanView {
 public:
  // What was shown, in order, except files and counts.
  std::vector<std::string> diary;
  std::vector<std::string> files;
  std::vector<std::pair<ScanStage, bool>> ended;
  std::vector<std::string> captions;
  std::vector<MissingItem> missing;
  std::size_t count = 0;
  std::size_t events_run = 0;
  bool busy = false;
  bool use_runtime_setup = false;
  std::string note;
  std::optional<bool> result;
  std::string result_line;

  // Called whenever events run; may call PressCancel, as a user would.
  std::function<void(RecordingScanView&)> on_events;

  void PressCancel() { cancel_pressed_ = true; }

  void Begin(bool use_setup, const std::string& runtime_setup_note) override {
    cancel_pressed_ = false;
    use_runtime_setup = use_setup;
    note = runtime_setup_note;
    diary.emplace_back("begin");
  }
  void StageStarted(ScanStage stage) override {
    diary.push_back("stage " + std::to_string(static_cast<int>(stage)));
  }
  void StageCaption(ScanStage, const std::string& caption) override {
    captions.push_back(caption);
    diary.push_back("caption " + caption);
  }
  void StageEnded(ScanStage stage, bool succeeded) override {
    ended.emplace_back(stage, succeeded);
    diary.push_back("stage " + std::to_string(static_cast<int>(stage)) +
                    (succeeded ? " done" : " failed"));
  }
  void ShowFile(const std::string& file_or_line) override { files.push_back(file_or_line); }
  void ShowCount(std::size_t rows) override { count = rows; }
  void ShowBusy(bool is_busy) override {
    busy = is_busy;
    diary.emplace_back(is_busy ? "busy" : "not busy");
  }
  void LetEventsRun() override {
    ++events_run;
    if (on_events) on_events(*this);
  }
  [[nodiscard]] bool IsCancelPressed() const override { return cancel_pressed_; }
  void ShowMissing(const std::vector<MissingItem>& items) override {
    missing = items;
    diary.emplace_back("missing");
  }
  void End(bool succeeded, const std::string& line) override {
    result = succeeded;
    result_line = line;
    diary.push_back("end " + line);
  }

 private:
  bool cancel_pressed_ = false;
};

class ScriptedSearchFileDialog : public SearchFileDialog {
 public:
  std::vector<SearchFileRequest> requests;
  std::deque<SearchFileAnswer> answers;  // kIgnore once it is empty

  [[nodiscard]] SearchFileAnswer Search(const SearchFileRequest& request) override {
    requests.push_back(request);
    if (answers.empty()) return {SearchFileResult::kIgnore, {}};
    SearchFileAnswer answer = std::move(answers.front());
    answers.pop_front();
    return answer;
  }
};

}  // namespace txs
