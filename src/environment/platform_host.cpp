// The Linux platform: the folder TAVIX_ROOT is the studio's computer.

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "environment/archiver_builtin.h"
#include "environment/clock_host.h"
#include "environment/file_locks_host.h"
#include "environment/file_system_host.h"
#include "environment/platform.h"
#include "environment/registry_host.h"
#include "environment/special_folders_host.h"

namespace txs {
namespace {

std::string Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

std::string HomeFolder() {
  if (std::string home = Variable("HOME"); !home.empty()) return home;
  const passwd* const user = getpwuid(getuid());
  return user == nullptr ? std::string("/") : std::string(user->pw_dir);
}

std::filesystem::path RootFolder() {
  if (const std::string root = Variable("TAVIX_ROOT"); !root.empty()) {
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(root, error);
    return error ? std::filesystem::path(root) : absolute;
  }
  // A relative XDG_DATA_HOME is to be ignored.
  const std::filesystem::path data(Variable("XDG_DATA_HOME"));
  if (data.is_absolute()) return data / "TavixStudio";
  return std::filesystem::path(HomeFolder()) / ".local/share/TavixStudio";
}

class HostPlatform : public OwnedPlatform {
 public:
  HostPlatform(const std::filesystem::path& root, MessageBoxes& message_boxes)
      : files_(root.string()),
        locks_(files_),
        registry_((root / "registry.reg").string()),
        clock_(registry_),
        folders_(registry_),
        profiles_(files_),
        tools_(registry_, files_, profiles_, folders_),
        archiver_(MakeBuiltInArchiver(files_, clock_)),
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
                  [this] { return MakeBuiltInConfigurator(tools_); }} {}

  [[nodiscard]] Platform& Get() override { return platform_; }

 private:
  HostFileSystem files_;
  HostFileLocks locks_;
  HostRegistry registry_;
  HostClock clock_;
  HostSpecialFolders folders_;
  ProfileFiles profiles_;
  SystemTools tools_;
  std::unique_ptr<Archiver> archiver_;
  Platform platform_;
};

}  // namespace

std::unique_ptr<OwnedPlatform> MakeHostPlatform(MessageBoxes& message_boxes) {
  return std::make_unique<HostPlatform>(RootFolder(), message_boxes);
}

}  // namespace txs
