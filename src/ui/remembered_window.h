// Gives a form the size and column widths of the last session, and keeps them when it closes.
#pragma once

#include <wx/toplevel.h>

#include <string>
#include <vector>

#include "environment/registry.h"

namespace txs {

// Call after the form's sizers have set its minimum size. A size that is smaller than the minimum
// or larger than the screen is brought into these bounds. The position is the window manager's.
// Returns the column widths in pixels of this screen, empty when none are kept.
std::vector<int> RestoreWindow(wxTopLevelWindow& form, const Registry& registry,
                               const std::string& form_name);

// `columns`: widths in pixels of this screen.
void KeepWindow(const wxTopLevelWindow& form, Registry& registry, const std::string& form_name,
                const std::vector<int>& columns);

}  // namespace txs
