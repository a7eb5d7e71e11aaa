// The platform's own dialogs for files and directories, between the program's Windows names and the
// names of the host.
#pragma once

#include <wx/window.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "document/application.h"
#include "ui/setup_wizard_view.h"

namespace txs {

// The Windows names of host paths. What lies on no drive of the studio's computer has none: it is
// left out, and message 1925 names it. Never throws.
[[nodiscard]] std::vector<std::string> WindowsPaths(Application& application,
                                                    const std::vector<std::string>& host_paths);

// A filter as the dialogs of Windows take it ("Pictures|*.BMP;*.JPG") for those of this host:
// patterns match whatever the case, and "*.*" matches names without a dot too.
[[nodiscard]] std::string HostFilter(std::string_view filter);

// The open-file dialog. Empty when it was cancelled, after message 1701 when more was chosen than
// Windows could hand over, and after message 1913 when there was no dialog. Never throws.
[[nodiscard]] std::vector<std::string> AskForFiles(wxWindow* parent, Application& application,
                                                   const FileQuestion& question);

// The directory dialog for txtSetupDirectory: opens at `directory`, which is in path-variable form,
// as is the answer. Nothing when it was cancelled, and after message 1913 when there was no dialog.
// Never throws.
[[nodiscard]] std::optional<std::string> AskForSetupDirectory(wxWindow* parent,
                                                              Application& application,
                                                              const std::string& directory);

}  // namespace txs
