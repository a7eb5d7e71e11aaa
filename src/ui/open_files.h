// The open-file dialog of the system.
#pragma once

#include <wx/window.h>

#include <string>
#include <vector>

#include "ui/setup_wizard_view.h"

namespace txs {

struct OpenFilesAnswer {
  std::vector<std::string> host_paths;  // empty when the dialog was cancelled
  bool too_many = false;  // for the buffer that Windows has the chosen names written to
};

// `host_folder` is where the dialog opens; empty: where the system likes. The directory of the
// question is not looked at. Throws RuntimeError when the system cannot show the dialog.
[[nodiscard]] OpenFilesAnswer OpenFiles(wxWindow* parent, const FileQuestion& question,
                                        const std::string& host_folder);

}  // namespace txs
