// Size of a window and widths of its columns, from one session to the next. Kept below the
// wizard's own registry key: HKEY_CURRENT_USER, kWizardKey + "\\Windows\\" + name of the form.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "environment/registry.h"

namespace txs {

// In device-independent pixels, so that a session on another scale fits.
struct RememberedWindow {
  int width = 0;
  int height = 0;
  bool maximized = false;
  std::vector<int> columns;

  bool operator==(const RememberedWindow&) const = default;
};

// Nothing when the form was never remembered or what is kept makes no sense (sizes or columns
// outside 1 to 32767, text that is no number). Never throws.
[[nodiscard]] std::optional<RememberedWindow> RecallWindow(const Registry& registry,
                                                           std::string_view form);

// A registry that refuses is passed over: the window then opens in its default size. Writes nothing
// when the same is kept already.
void RememberWindow(Registry& registry, std::string_view form, const RememberedWindow& window);

}  // namespace txs
