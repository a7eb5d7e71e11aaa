// The platform on Windows.

#include <windows.h>

#include <memory>
#include <string>

#include "environment/archiver_builtin.h"
#include "environment/archiver_dynazip_win32.h"
#include "environment/clock_win32.h"
#include "environment/file_locks_win32.h"
#include "environment/file_system_win32.h"
#include "environment/installation.h"
#include "environment/platform.h"
#include "environment/project_configurator_win32.h"
#include "environment/registry_win32.h"
#include "environment/special_folders_win32.h"

namespace txs {
namespace {

class WindowsPlatform : public OwnedPlatform {
 public:
  explicit WindowsPlatform(MessageBoxes& message_boxes)
      : profiles_(files_),
        tools_(registry_, files_, profiles_, folders_),
        archiver_(MakeProductArchiver(files_, tools_, MakeBuiltInArchiver(files_, clock_))),
        platform_{registry_,
                  files_,
                  locks_,
                  files_,
                  profiles_,
                  folders_,
                  tools_,
                  *archiver_,
                  clock_,
                  message_boxes,
                  [this] { return MakeConfigurator(); }} {
    // A drive without a disk is an error of ours, not a box of the system's.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
  }

  [[nodiscard]] Platform& Get() override { return platform_; }

 private:
  // The component that the studio names, if it names one.
  [[nodiscard]] std::unique_ptr<ProjectConfigurator> MakeConfigurator() {
    const std::string class_name =
        tools_.RegistryText(Hive::kLocalMachine, kStudioKey, kConfiguratorValue, "");
    return class_name.empty() ? MakeBuiltInConfigurator(tools_)
                              : MakeComConfigurator(class_name, files_);
  }

  WindowsFileSystem files_;
  WindowsFileLocks locks_;
  WindowsRegistry registry_;
  WindowsClock clock_;
  WindowsSpecialFolders folders_;
  ProfileFiles profiles_;
  SystemTools tools_;
  std::unique_ptr<Archiver> archiver_;
  Platform platform_;
};

}  // namespace

std::unique_ptr<OwnedPlatform> MakeHostPlatform(MessageBoxes& message_boxes) {
  return std::make_unique<WindowsPlatform>(message_boxes);
}

}  // namespace txs
