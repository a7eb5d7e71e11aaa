// Locks of the host against other processes, and what lies on the disk meanwhile.

#include "environment/file_locks_host.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>

#include "environment/file_system_host.h"
#include "fakes/temp_folder.h"

namespace txs {
namespace {

namespace fs = std::filesystem;

constexpr char kLock[] = "C:\\Demo\\~TXSetup.lock";

class HostFileLocksTest : public testing::Test {
 protected:
  HostFileLocksTest() { fs::create_directories(folder_); }

  // Another process that takes the lock and holds it until it is killed.
  class Other {
   public:
    explicit Other(FileLocks& locks) {
      int ends[2] = {-1, -1};
      if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
      process_ = fork();
      if (process_ == 0) {
        const std::unique_ptr<HeldLock> held = locks.TryTake(kLock);
        const char answer = held != nullptr ? 'y' : 'n';
        if (write(ends[1], &answer, 1) == 1) pause();
        _exit(1);
      }
      char answer = '?';
      has_lock_ = read(ends[0], &answer, 1) == 1 && answer == 'y';
      close(ends[0]);
      close(ends[1]);
    }
    ~Other() { Kill(); }

    [[nodiscard]] bool HasLock() const { return has_lock_; }
    void Kill() {
      if (process_ <= 0) return;
      kill(process_, SIGKILL);
      waitpid(process_, nullptr, 0);
      process_ = -1;
    }

   private:
    pid_t process_ = -1;
    bool has_lock_ = false;
  };

  TempFolder root_;
  fs::path folder_ = root_.Path() / "drive_c" / "Demo";
  fs::path file_ = folder_ / "~TXSetup.lock";
  HostFileSystem files_{root_.Path().string()};
  HostFileLocks locks_{files_};
};

TEST_F(HostFileLocksTest, OfAnotherProcessRefuses) {
  const Other other(locks_);
  ASSERT_TRUE(other.HasLock());

  EXPECT_EQ(locks_.TryTake(kLock), nullptr);
}

TEST_F(HostFileLocksTest, RefusesAnotherProcess) {
  const std::unique_ptr<HeldLock> held = locks_.TryTake(kLock);

  EXPECT_FALSE(Other(locks_).HasLock());
}

TEST_F(HostFileLocksTest, OfAKilledProcessIsFreeAndItsFileGoesWithTheNextOne) {
  Other other(locks_);
  ASSERT_TRUE(other.HasLock());
  other.Kill();
  ASSERT_TRUE(fs::exists(file_));

  { EXPECT_NE(locks_.TryTake(kLock), nullptr); }

  EXPECT_FALSE(fs::exists(file_));
}

TEST_F(HostFileLocksTest, LeavesNoFileBehind) {
  {
    const std::unique_ptr<HeldLock> held = locks_.TryTake(kLock);
    EXPECT_TRUE(fs::exists(file_));
  }

  EXPECT_TRUE(fs::is_empty(folder_));
}

TEST_F(HostFileLocksTest, FileThatWasTakenAwayByHandIsNotRemovedTwice) {
  std::unique_ptr<HeldLock> held = locks_.TryTake(kLock);
  fs::remove(file_);
  const std::unique_ptr<HeldLock> next = locks_.TryTake(kLock);
  ASSERT_NE(next, nullptr);

  held.reset();

  EXPECT_TRUE(fs::exists(file_));
}

TEST_F(HostFileLocksTest, FolderOrLinkInPlaceOfTheFileKeepsNobodyOutAndStays) {
  fs::create_directories(file_);
  EXPECT_NE(locks_.TryTake(kLock), nullptr);
  EXPECT_TRUE(fs::is_directory(file_));
  fs::remove(file_);
  std::ofstream(root_.Path() / "precious") << "kept";
  fs::create_symlink(root_.Path() / "precious", file_);

  EXPECT_NE(locks_.TryTake(kLock), nullptr);

  EXPECT_TRUE(fs::is_symlink(file_));
  EXPECT_EQ(fs::file_size(root_.Path() / "precious"), 4u);
}

}  // namespace
}  // namespace txs
