// Locks of a computer in memory.
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "environment/code_page.h"
#include "environment/file_locks.h"
#include "environment/windows_path.h"

namespace txs {

class MemoryFileLocks : public FileLocks {
 public:
  // As on a file system without locks.
  bool available = true;
  // Called by TryTake; false is a file that cannot be locked.
  std::function<bool(std::string_view path)> can_lock;

  [[nodiscard]] std::unique_ptr<HeldLock> TryTake(std::string_view path) override {
    if (!available || (can_lock && !can_lock(path))) return std::make_unique<HeldLock>();
    std::string name = FoldCase(NormalizeDirectory(path));
    if (!held_->insert(name).second) return nullptr;
    return std::make_unique<Held>(held_, std::move(name));
  }

  [[nodiscard]] bool IsHeld(std::string_view path) const {
    return held_->contains(FoldCase(NormalizeDirectory(path)));
  }

 private:
  using Names = std::set<std::string>;

  class Held : public HeldLock {
   public:
    Held(std::shared_ptr<Names> held, std::string name)
        : held_(std::move(held)), name_(std::move(name)) {}
    ~Held() override { held_->erase(name_); }

   private:
    std::shared_ptr<Names> held_;
    std::string name_;
  };

  std::shared_ptr<Names> held_ = std::make_shared<Names>();
};

}  // namespace txs
