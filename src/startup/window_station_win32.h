// Where the windows of this process appear.
#pragma once

namespace txs {

// False where nobody can see a window or press its button: a service, a task that runs whether or
// not its user is logged on. A message box would wait there for ever. True when it cannot be asked.
[[nodiscard]] bool WindowsCanBeSeen();

}  // namespace txs
