// What the locks of every platform must do.

#include "environment/file_locks.h"

#include <gtest/gtest.h>

#include <memory>

#include "contract/real_worlds.h"
#include "fakes/memory_file_locks.h"

namespace txs {
namespace {

constexpr char kLock[] = "C:\\Demo\\~TXSetup.lock";

struct MemoryWorld {
  MemoryFileLocks locks;
};

template <typename World>
class FileLocksContract : public testing::Test {
 protected:
  World world;
  FileLocks& locks = world.locks;
};

using Worlds = testing::Types<MemoryWorld, RealLocksWorld>;
TYPED_TEST_SUITE(FileLocksContract, Worlds);

TYPED_TEST(FileLocksContract, ALockIsHeldByOneOnly) {
  const std::unique_ptr<HeldLock> first = this->locks.TryTake(kLock);

  EXPECT_NE(first, nullptr);
  EXPECT_EQ(this->locks.TryTake(kLock), nullptr);
}

TYPED_TEST(FileLocksContract, ALockThatWasLetGoCanBeTakenAgain) {
  for (int round = 0; round < 3; ++round) {
    const std::unique_ptr<HeldLock> held = this->locks.TryTake(kLock);

    EXPECT_NE(held, nullptr);
  }
}

TYPED_TEST(FileLocksContract, WhoIsRefusedTakesNothingAway) {
  const std::unique_ptr<HeldLock> first = this->locks.TryTake(kLock);
  EXPECT_EQ(this->locks.TryTake(kLock), nullptr);

  EXPECT_EQ(this->locks.TryTake(kLock), nullptr);
}

TYPED_TEST(FileLocksContract, SpellingDoesNotMakeAnotherLock) {
  const std::unique_ptr<HeldLock> first = this->locks.TryTake(kLock);

  EXPECT_EQ(this->locks.TryTake("c:\\DEMO\\~txsetup.LOCK"), nullptr);
  EXPECT_EQ(this->locks.TryTake("C:\\Demo\\\\~TXSetup.lock"), nullptr);
}

TYPED_TEST(FileLocksContract, LocksOfTwoFilesDoNotMeet) {
  const std::unique_ptr<HeldLock> first = this->locks.TryTake(kLock);
  const std::unique_ptr<HeldLock> second = this->locks.TryTake("C:\\Demo\\other.lock");

  EXPECT_NE(first, nullptr);
  EXPECT_NE(second, nullptr);
}

TYPED_TEST(FileLocksContract, WhereNothingCanBeLockedNobodyIsRefused) {
  for (const char* path : {"C:\\Missing\\x.lock", "Q:\\x.lock", "", "C:\\Demo\\a|b.lock"}) {
    const std::unique_ptr<HeldLock> held = this->locks.TryTake(path);

    EXPECT_NE(held, nullptr) << path;
  }
}

}  // namespace
}  // namespace txs
