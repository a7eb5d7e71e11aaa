// Locks on Windows: the file, opened so that nobody else can open it.
#pragma once

#include "environment/file_locks.h"

namespace txs {

class WindowsFileLocks : public FileLocks {
 public:
  [[nodiscard]] std::unique_ptr<HeldLock> TryTake(std::string_view path) override;
};

}  // namespace txs
