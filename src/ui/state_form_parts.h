// What the state windows are made of: stage lines, labels that change too fast to be read, and when
// painting is worth its time.
#pragma once

#include <wx/sizer.h>
#include <wx/statbmp.h>
#include <wx/stattext.h>

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>

#include "text/text_service.h"

namespace txs {

// Shows the text in that weight and reserves the room for it. For labels that do not size
// themselves.
void ShowLine(wxStaticText& label, const wxString& text, bool bold);

// One stage: a picture and a label, `imgState` and `lblStateInfo` with the stage's index.
class StageLine {
 public:
  // Adds both to `column`.
  StageLine(wxWindow* parent, wxSizer& column, std::size_t index, const TextService& texts);

  [[nodiscard]] wxStaticText& Label() { return *label_; }

  // Call it once after the captions are set: the line then has room for its caption in bold.
  void ReserveRoom();

  void Clear();  // no picture, normal weight, the stage's own caption
  void Start();  // picture of a running stage, bold
  void SetCaption(const std::string& caption);
  void End(bool succeeded);  // done or error picture, normal weight, the stage's own caption

 private:
  void ShowPicture(const wxBitmapBundle& picture, long text_id);

  const TextService& texts_;
  wxStaticBitmap* picture_;
  wxStaticText* label_;
  wxString caption_;
};

// A label whose text changes faster than anybody can read: the last one is shown at the next
// painting.
class LateText {
 public:
  explicit LateText(wxStaticText& label) : label_(label) {}

  void Set(std::string text) { next_ = std::move(text); }
  // Shows what was set since the last call. True when the label asks for more room than before.
  bool Show();

  [[nodiscard]] wxStaticText& Label() { return label_; }

 private:
  wxStaticText& label_;
  std::optional<std::string> next_;
};

// Says when painting is worth its time. Painting at every file would make a run of many small files
// mostly painting; painting only at fixed times would leave a wrong name on the screen while a
// large file is handled. So everything is painted while that costs a small share of the run, and
// beyond that some forty times in a second.
class PaintPace {
 public:
  void Start();
  [[nodiscard]] bool IsDue() const;
  // Counts what `paint` takes.
  template <typename Paint>
  void Run(Paint paint) {
    const auto begin = Clock::now();
    paint();
    last_ = Clock::now();
    spent_ += last_ - begin;
  }

 private:
  using Clock = std::chrono::steady_clock;

  Clock::time_point start_{};
  Clock::time_point last_{};
  Clock::duration spent_{};
};

}  // namespace txs
