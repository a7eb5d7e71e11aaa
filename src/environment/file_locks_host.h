// Locks on a Linux host: flock(2) on the file.
#pragma once

#include "environment/file_locks.h"
#include "environment/host_paths.h"

namespace txs {

class HostFileLocks : public FileLocks {
 public:
  explicit HostFileLocks(const HostPaths& paths) : paths_(paths) {}

  [[nodiscard]] std::unique_ptr<HeldLock> TryTake(std::string_view path) override;

 private:
  const HostPaths& paths_;
};

}  // namespace txs
