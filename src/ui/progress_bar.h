// A bar that shows at once how far a run has come. The toolkit's own gauge first has to be laid out
// anew, which waits for events, and a paint in between makes it keep its old length.
#pragma once

#include <wx/window.h>

#include <cstdint>

namespace txs {

// From 0 to 1; 1 only when everything is done, 0 when there is nothing to do.
[[nodiscard]] double FilledShare(std::uint64_t done, std::uint64_t total);

class ProgressBar : public wxWindow {
 public:
  ProgressBar(wxWindow* parent, const char* name);

  // Shown by the next Update of the form.
  void Fill(double share);
  [[nodiscard]] double Filled() const { return share_; }

  [[nodiscard]] bool AcceptsFocus() const override { return false; }

 protected:
  [[nodiscard]] wxSize DoGetBestClientSize() const override;

 private:
  void OnPaint(wxPaintEvent& event);
  [[nodiscard]] int FilledPixels() const;

  double share_ = 0;
};

}  // namespace txs
