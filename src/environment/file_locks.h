// Locks between processes: who works on something keeps others from it meanwhile.
#pragma once

#include <memory>
#include <string_view>

namespace txs {

// A lock that is held: let go by its destructor, and by the system when the process ends, however
// it ends.
class HeldLock {
 public:
  virtual ~HeldLock() = default;
};

class FileLocks {
 public:
  virtual ~FileLocks() = default;

  // Takes the lock that the file at `path` (a full Windows path) stands for, without waiting. The
  // file is made for it and removed when the lock is let go; the file that a killed process leaves
  // behind hinders nobody and goes with the next lock. The same file by another path or spelling is
  // the same lock.
  //
  // Null when the lock is held already, by another process or by this one. Where none can be had (a
  // folder that is missing or read-only, a file system without locks) the lock that is given keeps
  // nobody out: its lack must not prevent work that would succeed without. Never throws.
  [[nodiscard]] virtual std::unique_ptr<HeldLock> TryTake(std::string_view path) = 0;
};

}  // namespace txs
