#include "contract/real_worlds.h"

#include <windows.h>

#include <stdexcept>

#include "environment/clock_win32.h"
#include "environment/file_locks_win32.h"
#include "environment/file_system_win32.h"
#include "environment/registry_win32.h"
#include "environment/special_folders_win32.h"
#include "environment/windows_calls_win32.h"
#include "fakes/scratch_registry_win32.h"

namespace txs {
namespace {

constexpr char kDemo[] = "C:\\Demo";

}  // namespace

struct RealFileSystemWorld::Parts {
  WindowsFileSystem files;
};

RealFileSystemWorld::RealFileSystemWorld()
    : parts_(std::make_unique<Parts>()), files(parts_->files) {
  if (GetFileAttributesA(kDemo) != INVALID_FILE_ATTRIBUTES) {
    throw std::runtime_error("there is a C:\\Demo already; the tests would delete it");
  }
  files.MakeFolder(kDemo);
}

RealFileSystemWorld::~RealFileSystemWorld() {
  try {
    files.RemoveTree(kDemo);
  } catch (const std::exception&) {
    // The next test says so.
  }
}

void RealFileSystemWorld::SetReadOnly(const std::string& path) {
  SetFileAttributesW(ToWide(path).c_str(), FILE_ATTRIBUTE_READONLY);
}

std::string RealFileSystemWorld::TemporaryName(char digit) {
  return "txs-" + std::string(12, digit) + ".tmp";
}

std::shared_ptr<void> RealFileSystemWorld::HoldAsWriter(const std::string& path) {
  return std::make_shared<KernelHandle>(CreateFileW(
      ToWide(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
      nullptr, OPEN_EXISTING, 0, nullptr));
}

struct RealLocksWorld::Parts {
  RealFileSystemWorld world;
  WindowsFileLocks locks;
};

RealLocksWorld::RealLocksWorld() : parts_(std::make_unique<Parts>()), locks(parts_->locks) {}
RealLocksWorld::~RealLocksWorld() = default;

struct RealRegistryWorld::Parts {
  ScratchRegistry scratch;
  WindowsRegistry registry;
};

const bool RealRegistryWorld::kSortsSubkeys = true;

RealRegistryWorld::RealRegistryWorld() : parts_(std::make_unique<Parts>()) {}
RealRegistryWorld::~RealRegistryWorld() = default;

Registry& RealRegistryWorld::Get() { return parts_->registry; }

std::unique_ptr<Registry> RealRegistryWorld::Reopened() const {
  return std::make_unique<WindowsRegistry>();
}

struct RealClockWorld::Parts {
  // The formats of German Windows; Wine has others for German.
  WindowsClock clock{"ro-RO"};
};

RealClockWorld::RealClockWorld() : parts_(std::make_unique<Parts>()) {}
RealClockWorld::~RealClockWorld() = default;

const Clock& RealClockWorld::Get() const { return parts_->clock; }

struct RealFoldersWorld::Parts {
  WindowsSpecialFolders folders;
};

RealFoldersWorld::RealFoldersWorld() : parts_(std::make_unique<Parts>()) {}
RealFoldersWorld::~RealFoldersWorld() = default;

const SpecialFolders& RealFoldersWorld::Get() const { return parts_->folders; }

}  // namespace txs
