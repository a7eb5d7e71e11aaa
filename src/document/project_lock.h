// One process at a time creates from a project or saves it.
#pragma once

#include <memory>

#include "document/application.h"

namespace txs {

// Takes the lock of the current project's directory, until the result is destroyed. Null after
// message 1930: another process has it. A project without a directory has nothing to lock.
[[nodiscard]] std::unique_ptr<HeldLock> LockProject(Application& application);

}  // namespace txs
