// The border of the work routines: where what was thrown becomes a message. Nothing crosses it.
#pragma once

#include <functional>
#include <string>

#include "document/application.h"

namespace txs {

// Runs `work` and gives its result. What it throws is shown as message `id` about `subject`,
// followed by text 99, and gives false: nothing that is wrong with one file may end the process.
// `subject` is read only then, so that it names what the routine was busy with; messages without a
// placeholder do not use it.
[[nodiscard]] bool AtWorkBorder(Application& application, long id, const std::string& subject,
                                const std::function<bool()>& work);

}  // namespace txs
