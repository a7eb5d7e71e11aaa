// The open-file dialog of the system.
#pragma once

#include <wx/window.h>

#include <string>

#include "ui/chosen_files.h"
#include "ui/setup_wizard_view.h"

namespace txs {

// `host_folder` is where the dialog opens; empty: where the system likes. The directory of the
// question is not looked at. Throws RuntimeError when the system cannot show the dialog.
[[nodiscard]] OpenFilesAnswer OpenFiles(wxWindow* parent, const FileQuestion& question,
                                        const std::string& host_folder);

}  // namespace txs
