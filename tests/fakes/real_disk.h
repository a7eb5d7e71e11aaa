// A folder on the disk of this computer, behind the back-end of this system: for tests of what only
// a real disk shows. It goes with everything in it.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "environment/file_locks.h"
#include "environment/file_system.h"
#include "environment/host_paths.h"

namespace txs {

class RealDisk {
 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;

 public:
  RealDisk();
  ~RealDisk();

  FileSystem& files;
  const HostPaths& host_paths;
  FileLocks& locks;

  // The path of "Demo\x" in the folder, as the back-end takes it.
  [[nodiscard]] std::string At(std::string_view below) const;

  // The same for the standard library.
  [[nodiscard]] std::filesystem::path Host(std::string_view below) const;

  // Where a path of the back-end's leads when every link in it is followed, for the standard
  // library; what does not exist keeps its name.
  [[nodiscard]] std::filesystem::path Followed(std::string_view path) const;
};

// All bytes of a file; none when it cannot be read.
[[nodiscard]] std::string ReadHostFile(const std::filesystem::path& path);

// Makes the file, and the folders that it lies in.
void WriteHostFile(const std::filesystem::path& path, std::string_view bytes);

}  // namespace txs
