// A whole computer in memory: the platform of a test, in one line.
//
//   MemoryPlatform world;
//   world.files.AddFile("C:\\Demo\\Demo.txs", "");
//   Application application{world.Get(), messages, TextService(1031), ...};
#pragma once

#include <memory>

#include "environment/platform.h"
#include "fakes/failing_archiver.h"
#include "fakes/fixed_clock.h"
#include "fakes/fixed_special_folders.h"
#include "fakes/memory_file_locks.h"
#include "fakes/memory_file_system.h"
#include "fakes/memory_registry.h"
#include "fakes/same_host_paths.h"
#include "fakes/scripted_message_boxes.h"

namespace txs {

class MemoryPlatform {
 public:
  MemoryPlatform();

  MemoryFileSystem files;
  MemoryFileLocks locks;
  SameHostPaths host_paths;
  MemoryRegistry registry;
  FixedClock clock;
  FixedSpecialFolders folders;
  ScriptedMessageBoxes message_boxes;
  ProfileFiles profiles;
  SystemTools tools;

 private:
  std::unique_ptr<Archiver> built_in_archiver_;

 public:
  FailingArchiver archiver;
  bool configurator_available = true;

  [[nodiscard]] Platform& Get() { return platform_; }

  // From here on changes of the registry, locks and the archiver's own calls count among the
  // operations of `files`, and fail when those are told to.
  void CountEverything();

  // The registry of a usable studio: C:\TavixStudio with its folders, in German.
  void InstallStudio();

  // Registers a project and makes its project file. `directory` is stored as given.
  void RegisterProject(std::string_view name, std::string_view directory, std::string_view type);

 private:
  Platform platform_;
};

}  // namespace txs
