// The border of the stages of a Scan: where what was thrown becomes a message.
#pragma once

#include <functional>
#include <string>

#include "document/application.h"

namespace txs {

// Runs `work` and gives its result. What it throws is shown as message `id` about `subject`,
// followed by text 99, and gives false: nothing that is wrong with one file may end the process.
// `subject` is read only then.
[[nodiscard]] bool AtScanBorder(Application& application, long id, const std::string& subject,
                                const std::function<bool()>& work);

}  // namespace txs
