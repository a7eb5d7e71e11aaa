#include "document/project_lock.h"

namespace txs {

std::unique_ptr<HeldLock> LockProject(Application& application) {
  constexpr long kMessageProjectInUse = 1930;
  const CurrentProject& project = application.project;
  if (project.directory.empty()) return std::make_unique<HeldLock>();
  std::unique_ptr<HeldLock> lock = application.platform.locks.TryTake(project.LockFile());
  if (lock == nullptr) ShowWarning(application, kMessageProjectInUse, {project.directory});
  return lock;
}

}  // namespace txs
