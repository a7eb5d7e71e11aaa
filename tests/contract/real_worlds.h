// The platform that the tests run on, ready for the contract tests: one class per interface,
// defined in real_worlds_host.cpp or real_worlds_win32.cpp. What a test leaves behind goes with
// them.
#pragma once

#include <memory>
#include <string>

#include "environment/clock.h"
#include "environment/file_locks.h"
#include "environment/file_system.h"
#include "environment/registry.h"
#include "environment/special_folders.h"

namespace txs {

// With an empty folder C:\Demo. On Windows that is the real drive: where such a folder is there
// already, the tests stop.
class RealFileSystemWorld {
 public:
  RealFileSystemWorld();
  ~RealFileSystemWorld();

  void SetReadOnly(const std::string& path);

  // A name as a file has that is written to take another's place; one for every digit.
  [[nodiscard]] static std::string TemporaryName(char digit);

  // Holds a file as the process does that writes it, until what is returned goes.
  [[nodiscard]] std::shared_ptr<void> HoldAsWriter(const std::string& path);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;

 public:
  FileSystem& files;
};

// As RealFileSystemWorld.
class RealLocksWorld {
 public:
  RealLocksWorld();
  ~RealLocksWorld();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;

 public:
  FileLocks& locks;
};

// An empty registry. On Windows a scratch key of the user's stands for all hives meanwhile.
class RealRegistryWorld {
 public:
  RealRegistryWorld();
  ~RealRegistryWorld();

  [[nodiscard]] Registry& Get();

  // Another process that reads what was written.
  [[nodiscard]] std::unique_ptr<Registry> Reopened() const;

  static const bool kSortsSubkeys;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

// A German user in the zone UTC, which on Windows the environment variable TZ must say (tests run
// by CTest have it).
class RealClockWorld {
 public:
  RealClockWorld();
  ~RealClockWorld();

  [[nodiscard]] const Clock& Get() const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

class RealFoldersWorld {
 public:
  RealFoldersWorld();
  ~RealFoldersWorld();

  [[nodiscard]] const SpecialFolders& Get() const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace txs
