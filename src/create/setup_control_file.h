// SETUP.STP, the script that the setup engine runs on the target computer. See
// docs/formats/setup-control-file.md.
#pragma once

#include <string>
#include <string_view>

#include "create/create_state.h"
#include "create/create_view.h"
#include "document/application.h"

namespace txs {

// The whole script as text: UTF-8, lines ended by CR LF. Reads date and version of every listed
// file; throws RuntimeError when one no longer exists or cannot be read.
[[nodiscard]] std::string SetupControlText(Application& application);

// Stage 409: writes the script over its placeholder in the first disk directory. False after
// message 904, or when Cancel was pressed before the file was opened. A partly written file is
// left. A script that outgrows its placeholder and what else is free on disk 1 is written all the
// same; message 1932 then says by how much the disk holds more than its medium.
[[nodiscard]] bool WriteSetupControlFile(Application& application, CreateView& view,
                                         const CreateState& state);

// Whether the code page has every character that the script will need. False after message 904,
// which names the first that it lacks. Asked before the run deletes the old disks, as the script
// comes last.
[[nodiscard]] bool CheckScriptCharacters(Application& application);

}  // namespace txs
