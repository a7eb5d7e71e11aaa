#include "contract/real_worlds.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>

#include <filesystem>

#include "contract/environment_variable.h"
#include "environment/clock_host.h"
#include "environment/file_locks_host.h"
#include "environment/file_system_host.h"
#include "environment/host_calls_host.h"
#include "environment/registry_host.h"
#include "environment/special_folders_host.h"
#include "fakes/memory_registry.h"
#include "fakes/temp_folder.h"

namespace txs {

struct RealFileSystemWorld::Parts {
  TempFolder root;
  HostFileSystem files{root.Path().string()};
};

RealFileSystemWorld::RealFileSystemWorld()
    : parts_(std::make_unique<Parts>()), files(parts_->files) {
  std::filesystem::create_directories(parts_->root.Path() / "drive_c" / "Demo");
}
RealFileSystemWorld::~RealFileSystemWorld() = default;

void RealFileSystemWorld::SetReadOnly(const std::string& path) {
  std::filesystem::permissions(parts_->files.HostPath(path), std::filesystem::perms::owner_read);
}

std::string RealFileSystemWorld::TemporaryName(char digit) {
  return "~TXSetup-" + std::string(6, digit) + ".tmp";
}

std::shared_ptr<void> RealFileSystemWorld::HoldAsWriter(const std::string& path) {
  auto file = std::make_shared<Descriptor>(OpenRetrying(parts_->files.HostPath(path), O_RDONLY));
  EXPECT_EQ(flock(file->Get(), LOCK_EX | LOCK_NB), 0);
  return file;
}

struct RealLocksWorld::Parts {
  TempFolder root;
  HostFileSystem files{root.Path().string()};
  HostFileLocks locks{files};
};

RealLocksWorld::RealLocksWorld() : parts_(std::make_unique<Parts>()), locks(parts_->locks) {
  std::filesystem::create_directories(parts_->root.Path() / "drive_c" / "Demo");
}
RealLocksWorld::~RealLocksWorld() = default;

struct RealRegistryWorld::Parts {
  TempFolder folder;
  HostRegistry registry{folder.Path() / "registry.reg"};
};

const bool RealRegistryWorld::kSortsSubkeys = false;

RealRegistryWorld::RealRegistryWorld() : parts_(std::make_unique<Parts>()) {}
RealRegistryWorld::~RealRegistryWorld() = default;

Registry& RealRegistryWorld::Get() { return parts_->registry; }

std::unique_ptr<Registry> RealRegistryWorld::Reopened() const {
  return std::make_unique<HostRegistry>(parts_->folder.Path() / "registry.reg");
}

struct RealClockWorld::Parts {
  Parts() {
    registry.Write(Hive::kCurrentUser, "Control Panel\\International", "sShortDate", "dd.MM.yyyy");
    registry.Write(Hive::kCurrentUser, "Control Panel\\International", "sTimeFormat", "HH:mm:ss");
  }
  EnvironmentVariable zone{"TZ", "UTC0"};
  MemoryRegistry registry;
  HostClock clock{registry};
};

RealClockWorld::RealClockWorld() : parts_(std::make_unique<Parts>()) {}
RealClockWorld::~RealClockWorld() = default;

const Clock& RealClockWorld::Get() const { return parts_->clock; }

struct RealFoldersWorld::Parts {
  MemoryRegistry registry;
  HostSpecialFolders folders{registry};
};

RealFoldersWorld::RealFoldersWorld() : parts_(std::make_unique<Parts>()) {}
RealFoldersWorld::~RealFoldersWorld() = default;

const SpecialFolders& RealFoldersWorld::Get() const { return parts_->folders; }

}  // namespace txs
