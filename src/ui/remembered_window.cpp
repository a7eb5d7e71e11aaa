#include "ui/remembered_window.h"

#include <wx/display.h>

#include <algorithm>
#include <optional>

#include "ui/window_memory.h"

namespace txs {

std::vector<int> RestoreWindow(wxTopLevelWindow& form, const Registry& registry,
                               const std::string& form_name) {
  const std::optional<RememberedWindow> kept = RecallWindow(registry, form_name);
  if (!kept) return {};
  // Without the frame, whose size the window manager only tells once the window is shown: with it,
  // the window would be larger by the frame every time.
  wxSize size = form.FromDIP(wxSize(kept->width, kept->height));
  const wxSize frame = form.GetSize() - form.GetClientSize();
  size.DecTo(wxDisplay(&form).GetClientArea().GetSize() - frame);
  size.IncTo(form.GetMinClientSize());
  form.SetClientSize(size);
  if (kept->maximized) form.Maximize();
  std::vector<int> columns;
  for (const int width : kept->columns) columns.push_back(form.FromDIP(width));
  return columns;
}

void KeepWindow(const wxTopLevelWindow& form, Registry& registry, const std::string& form_name,
                const std::vector<int>& columns) {
  RememberedWindow window;
  const bool maximized = form.IsMaximized();
  wxSize size = form.ToDIP(form.GetClientSize());
  if (maximized) {
    // The size to come back to is that of the session before.
    if (const std::optional<RememberedWindow> kept = RecallWindow(registry, form_name)) {
      size = wxSize(kept->width, kept->height);
    }
  }
  window.width = size.GetWidth();
  window.height = size.GetHeight();
  window.maximized = maximized;
  for (const int width : columns) window.columns.push_back(form.ToDIP(width));
  RememberWindow(registry, form_name, window);
}

}  // namespace txs
