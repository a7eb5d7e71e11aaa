// Everything that the program asks of the computer, in one place: real in the programs, in memory
// in tests. A plain struct of references; whoever builds it owns the parts.
#pragma once

#include <functional>
#include <memory>

#include "environment/archiver.h"
#include "environment/clock.h"
#include "environment/file_locks.h"
#include "environment/file_system.h"
#include "environment/host_paths.h"
#include "environment/message_boxes.h"
#include "environment/profile_files.h"
#include "environment/project_configurator.h"
#include "environment/registry.h"
#include "environment/special_folders.h"
#include "environment/system_tools.h"

namespace txs {

struct Platform {
  Registry& registry;
  FileSystem& files;
  FileLocks& locks;
  const HostPaths& host_paths;
  ProfileFiles& profiles;
  const SpecialFolders& folders;
  SystemTools& tools;
  Archiver& archiver;
  Clock& clock;
  MessageBoxes& message_boxes;
  // Empty result: the component cannot be created (message 94).
  std::function<std::unique_ptr<ProjectConfigurator>()> make_configurator;
};

// The parts of the real platform, made by platform_host.cpp or platform_win32.cpp.
class OwnedPlatform {
 public:
  virtual ~OwnedPlatform() = default;
  [[nodiscard]] virtual Platform& Get() = 0;
};

// On Windows this computer. On Linux the studio's computer is the folder TAVIX_ROOT
// (docs/formats/registry-file.md); throws RuntimeError when the registry file exists and cannot be
// read.
[[nodiscard]] std::unique_ptr<OwnedPlatform> MakeHostPlatform(MessageBoxes& message_boxes);

}  // namespace txs
