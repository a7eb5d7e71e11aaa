// A main form that nobody sees: it writes down what it is told, answers its dialogs from a script,
// and its state windows do the same.
#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "fakes/recording_create_view.h"
#include "fakes/recording_scan_view.h"
#include "ui/setup_wizard_view.h"

namespace txs {

// What one state window showed. Outlives the window.
template <typename RecordingView>
struct StateWindowRecord {
  RecordingView run;
  std::optional<RunReport> report;
  int waits = 0;
  bool exists = true;  // until the presenter lets the window go

  // Called while the window waits for its OK.
  std::function<void()> on_wait;
};

using ScanWindowRecord = StateWindowRecord<RecordingScanView>;
using CreateWindowRecord = StateWindowRecord<RecordingCreateView>;

class ScriptedScanWindow : public ScanStateWindow {
 public:
  using Note = std::function<void(const std::string&)>;
  ScriptedScanWindow(ScanWindowRecord& record, Note note)
      : record_(record), note_(std::move(note)) {}
  ~ScriptedScanWindow() override { record_.exists = false; }

  void ShowReport(const RunReport& report) override {
    note_("report");
    record_.report = report;
  }
  void WaitUntilClosed() override {
    note_("wait");
    ++record_.waits;
    if (record_.on_wait) record_.on_wait();
  }

  void Begin(bool use_runtime_setup, const std::string& note) override {
    note_("scan begins");
    record_.run.Begin(use_runtime_setup, note);
  }
  void StageStarted(ScanStage stage) override { record_.run.StageStarted(stage); }
  void StageCaption(ScanStage stage, const std::string& caption) override {
    record_.run.StageCaption(stage, caption);
  }
  void StageEnded(ScanStage stage, bool succeeded) override {
    record_.run.StageEnded(stage, succeeded);
  }
  void ShowFile(const std::string& file_or_line) override { record_.run.ShowFile(file_or_line); }
  void ShowCount(std::size_t rows) override { record_.run.ShowCount(rows); }
  void ShowBusy(bool busy) override { record_.run.ShowBusy(busy); }
  void LetEventsRun() override { record_.run.LetEventsRun(); }
  [[nodiscard]] bool IsCancelPressed() const override { return record_.run.IsCancelPressed(); }
  void ShowMissing(const std::vector<MissingItem>& missing) override {
    record_.run.ShowMissing(missing);
  }
  void End(bool succeeded, const std::string& line) override {
    note_("scan ends");
    record_.run.End(succeeded, line);
  }

 private:
  ScanWindowRecord& record_;
  Note note_;
};

class ScriptedCreateWindow : public CreateStateWindow {
 public:
  using Note = std::function<void(const std::string&)>;
  ScriptedCreateWindow(CreateWindowRecord& record, Note note)
      : record_(record), note_(std::move(note)) {}
  ~ScriptedCreateWindow() override { record_.exists = false; }

  void ShowReport(const RunReport& report) override {
    note_("report");
    record_.report = report;
  }
  void WaitUntilClosed() override {
    note_("wait");
    ++record_.waits;
    if (record_.on_wait) record_.on_wait();
  }

  void Begin() override {
    note_("create begins");
    record_.run.Begin();
  }
  void StageStarted(CreateStage stage) override { record_.run.StageStarted(stage); }
  void StageEnded(CreateStage stage, bool succeeded) override {
    record_.run.StageEnded(stage, succeeded);
  }
  void ShowAction(const std::string& text) override { record_.run.ShowAction(text); }
  void ShowFile(const std::string& name) override { record_.run.ShowFile(name); }
  void ShowProgress(const CreateProgress& progress) override { record_.run.ShowProgress(progress); }
  void ShowBusy(bool busy) override { record_.run.ShowBusy(busy); }
  void LetEventsRun() override { record_.run.LetEventsRun(); }
  [[nodiscard]] bool IsCancelPressed() const override { return record_.run.IsCancelPressed(); }
  void End(bool succeeded, const std::string& line) override {
    note_("create ends");
    record_.run.End(succeeded, line);
  }
  void ShowTakeNote() override {
    note_("take note");
    record_.run.ShowTakeNote();
  }

 private:
  CreateWindowRecord& record_;
  Note note_;
};

class ScriptedSetupWizardView : public SetupWizardView {
 public:
  // Everything that was asked of the form and its windows, in order: "title", "document", "file
  // list", "figures", "user directories", "step 4", "controls off", "controls on", "busy", "ready",
  // "box txtInfo11", "directory 0", "beep", "close", "choose project", "choose files", "options",
  // "info", "help", "scan window", "create window", and what the state windows write.
  std::vector<std::string> diary;

  // What is on the screen.
  std::string title;
  std::optional<Step> selected_step;
  bool controls_enabled = true;
  bool busy = false;
  bool holds_loose_text = false;
  int beeps = 0;

  // The script.
  std::deque<std::string> projects;                       // none chosen once it is empty
  std::deque<std::vector<std::string>> file_choices;      // cancelled once it is empty
  ScriptedSearchFileDialog search;                        // ignores once it is empty
  std::function<void(ScanWindowRecord&)> on_scan_window;  // sets the script of a new window
  std::function<void(CreateWindowRecord&)> on_create_window;
  // Called before anything is written into the diary; may throw in the name of the form.
  std::function<void(const std::string& what)> before;

  std::vector<FileQuestion> file_questions;
  std::deque<ScanWindowRecord> scans;
  std::deque<CreateWindowRecord> creates;

  [[nodiscard]] bool Did(const std::string& what) const {
    return std::find(diary.begin(), diary.end(), what) != diary.end();
  }

  void ShowTitle(const std::string& text) override {
    Note("title");
    title = text;
  }
  void ShowDocument() override { Note("document"); }
  void RefreshFileList() override { Note("file list"); }
  void ShowFigures() override { Note("figures"); }
  void ShowUserDirectories() override { Note("user directories"); }
  void SelectStep(Step step) override {
    Note("step " + std::to_string(static_cast<int>(step)));
    selected_step = step;
  }
  void SelectBox(const TextBox& box) override {
    Note(std::string("box ") + box.name);
    selected_step = box.step;
  }
  void SelectUserDirectory(std::size_t index) override {
    Note("directory " + std::to_string(index));
    selected_step = Step::kDirectories;
  }
  [[nodiscard]] bool HoldsLooseText() const override { return holds_loose_text; }
  void EnableControls(bool enabled) override {
    Note(enabled ? "controls on" : "controls off");
    controls_enabled = enabled;
  }
  void ShowBusy(bool is_busy) override {
    Note(is_busy ? "busy" : "ready");
    busy = is_busy;
  }
  void Beep() override {
    Note("beep");
    ++beeps;
  }
  void Close() override { Note("close"); }

  [[nodiscard]] std::string ChooseProject() override {
    Note("choose project");
    return Take(projects);
  }
  [[nodiscard]] std::vector<std::string> ChooseFiles(const FileQuestion& question) override {
    Note("choose files");
    file_questions.push_back(question);
    return Take(file_choices);
  }
  void ShowOptions() override { Note("options"); }
  void ShowInfo() override { Note("info"); }
  void ShowHelpContents() override { Note("help"); }

  [[nodiscard]] std::unique_ptr<ScanStateWindow> MakeScanWindow() override {
    Note("scan window");
    ScanWindowRecord& record = scans.emplace_back();
    if (on_scan_window) on_scan_window(record);
    return std::make_unique<ScriptedScanWindow>(record,
                                                [this](const std::string& what) { Note(what); });
  }
  [[nodiscard]] std::unique_ptr<CreateStateWindow> MakeCreateWindow() override {
    Note("create window");
    CreateWindowRecord& record = creates.emplace_back();
    if (on_create_window) on_create_window(record);
    return std::make_unique<ScriptedCreateWindow>(record,
                                                  [this](const std::string& what) { Note(what); });
  }
  [[nodiscard]] SearchFileDialog& SearchDialog() override { return search; }

 private:
  void Note(const std::string& what) {
    if (before) before(what);
    diary.push_back(what);
  }

  template <typename Answer>
  static Answer Take(std::deque<Answer>& answers) {
    if (answers.empty()) return {};
    Answer answer = std::move(answers.front());
    answers.pop_front();
    return answer;
  }
};

}  // namespace txs
