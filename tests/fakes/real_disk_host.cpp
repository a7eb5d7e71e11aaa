#include <algorithm>

#include "environment/file_locks_host.h"
#include "environment/file_system_host.h"
#include "fakes/real_disk.h"
#include "fakes/temp_folder.h"

namespace txs {

struct RealDisk::Parts {
  Parts() { std::filesystem::create_directory(folder.Path() / "drive_c"); }

  TempFolder folder;
  HostFileSystem files{folder.Path().string()};
  HostFileLocks locks{files};
};

RealDisk::RealDisk()
    : parts_(std::make_unique<Parts>()),
      files(parts_->files),
      host_paths(parts_->files),
      locks(parts_->locks) {}
RealDisk::~RealDisk() = default;

std::string RealDisk::At(std::string_view below) const { return "C:\\" + std::string(below); }

std::filesystem::path RealDisk::Host(std::string_view below) const {
  std::string path(below);
  std::ranges::replace(path, '\\', '/');
  return parts_->folder.Path() / "drive_c" / path;
}

std::filesystem::path RealDisk::Followed(std::string_view path) const {
  // Links in a circle lead nowhere.
  std::error_code ignored;
  return std::filesystem::weakly_canonical(host_paths.HostPath(path), ignored);
}

}  // namespace txs
