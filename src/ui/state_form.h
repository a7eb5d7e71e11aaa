// What the two state windows have in common: stage lines, result line, report, Cancel and OK, and
// how a run lets the window live while it holds the processor.
#pragma once

#include <wx/button.h>
#include <wx/dialog.h>
#include <wx/evtloop.h>
#include <wx/panel.h>
#include <wx/sizer.h>
#include <wx/statbmp.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>
#include <wx/utils.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "document/application.h"
#include "ui/form_captions.h"
#include "ui/run_report.h"
#include "ui/state_form_parts.h"

namespace txs {

// Hidden until BeginRun. While the run lasts it refuses to be closed; Esc presses Cancel, Enter
// does nothing unless the user has moved to Cancel. Afterwards both, and the close box, do what OK
// does.
class StateForm : public wxDialog {
 public:
  ~StateForm() override;

 protected:
  // `title_id` tags the form, `failed_id` is the result line of a run that never came to its end.
  StateForm(wxWindow* parent, const Application& application, long title_id, long failed_id);

  // --- Building, top to bottom; each adds its controls below those before.
  [[nodiscard]] FormCaptions& Captions() { return captions_; }
  void AddStages(long frame_id, const std::vector<long>& stage_ids);
  // `row` is laid out by the caller and takes the form's width.
  void AddRow(wxSizer* row);
  wxStaticText* MakeHeading(long id);
  // lblFile: cut in the middle when it is too long.
  wxStaticText* MakeFileLabel();
  // A label that fills the width it is given, whatever its text.
  wxStaticText* MakeValueLabel(const char* name, int least_width);
  // Result line, report and buttons; loads the captions.
  void FinishLayout();

  // --- What both views do
  void BeginRun();
  void EndRun(bool succeeded, const std::string& result_line);
  void StartStage(std::size_t index);
  void SetStageCaption(std::size_t index, const std::string& caption);
  void EndStage(std::size_t index, bool succeeded);
  void ShowFileName(const std::string& file);
  void SetBusy(bool busy);
  void LetWindowEventsRun();
  [[nodiscard]] bool CancelPressed() const { return cancel_pressed_; }
  void ListReport(const RunReport& report);
  [[nodiscard]] bool ListsReport() const { return lists_report_; }
  void WaitForOk();

  // Puts on the screen what changed, without waiting for events.
  void PaintNow();
  // The same, unless it was done a moment ago; the next painting then shows it.
  void PaintSoon();
  // Shows what was kept for the next painting. True when something needs more room.
  virtual bool ShowLateParts();
  // The window grows where a text needs it.
  void GrowToFit();

  [[nodiscard]] const TextService& Texts() const { return application_.texts; }

 private:
  // The next LetWindowEventsRun gives the toolkit the time for what Update alone does not bring to
  // the screen: another font, a picture that appears. What follows a stage's begin may take long.
  void Settle();
  void AddResultLine();
  void AddReport();
  void AddButtons();
  void CloseWindow();
  void CopyReport();
  void OnClose(wxCloseEvent& event);

  const Application& application_;
  long failed_id_;
  FormCaptions captions_;
  wxPanel* stage_list_ = nullptr;  // has the focus while the run lasts
  std::vector<StageLine> stages_;
  wxBoxSizer* column_;
  wxBoxSizer* report_column_ = nullptr;
  wxStaticText* report_label_ = nullptr;
  wxTextCtrl* report_ = nullptr;
  wxStaticBitmap* result_picture_ = nullptr;
  wxStaticText* result_label_ = nullptr;
  wxButton* copy_ = nullptr;
  wxButton* ok_ = nullptr;
  wxButton* cancel_ = nullptr;
  std::optional<LateText> file_;

  PaintPace pace_;
  std::chrono::steady_clock::time_point settled_{};
  std::unique_ptr<wxWindowDisabler> others_disabled_;
  wxEventLoopBase* waiting_loop_ = nullptr;
  int busy_ = 0;
  bool running_ = false;
  bool open_ = false;  // from the run's begin until OK
  bool cancel_pressed_ = false;
  bool yielding_ = false;
  bool lists_report_ = false;
};

}  // namespace txs
