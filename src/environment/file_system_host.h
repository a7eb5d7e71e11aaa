// The file system of a Linux host that stands for the developer's Windows computer: folders stand
// for drives.
//
// drive_c/ below the root is C:\, drive_d/ is D:\, and so on (a symbolic link will do); Z:\ is the
// host's own root unless drive_z exists, so that every host path has a Windows name. Names are
// looked up without regard to case: the exact spelling first, else the first match in byte order. A
// name that is no UTF-8 has no Windows name and is not seen.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "environment/file_system.h"
#include "environment/host_paths.h"

namespace txs {

class HostFileSystem : public FileSystem, public HostPaths {
 public:
  // `root` is the host folder with the drives; it need not exist.
  explicit HostFileSystem(std::string root);
  ~HostFileSystem() override;

  // On the drive whose folder contains it, else on Z:. "/home/me" gives "Z:\home\me"; only where
  // drive_z exists can a host path lie on no drive.
  [[nodiscard]] std::string HostPath(std::string_view path) const override;
  [[nodiscard]] std::string WindowsPath(std::string_view host_path) const override;

  [[nodiscard]] bool FileExists(std::string_view path) const override;
  [[nodiscard]] bool FolderExists(std::string_view path) const override;
  [[nodiscard]] std::optional<FileStamp> Stamp(std::string_view path) const override;
  [[nodiscard]] std::unique_ptr<InputFile> OpenForReading(std::string_view path) const override;
  [[nodiscard]] std::vector<FileEntry> List(std::string_view folder,
                                            std::string_view pattern) const override;
  [[nodiscard]] std::vector<FileEntry> UnusableEntries(std::string_view folder) const override;
  [[nodiscard]] std::string FinalPath(std::string_view path) const override;
  [[nodiscard]] std::unique_ptr<OutputFile> CreateForWriting(std::string_view path) override;
  [[nodiscard]] std::unique_ptr<OutputFile> OpenForAppending(std::string_view path) override;
  void ReplaceWhole(std::string_view path, std::string_view bytes) override;
  void CopyWhole(std::string_view source, std::string_view target) override;
  void MoveWhole(std::string_view source, std::string_view target) override;
  void RemoveFile(std::string_view path) override;
  void RemoveTree(std::string_view folder) override;
  void MakeFolder(std::string_view folder) override;
  [[nodiscard]] std::vector<std::string> Drives() const override;
  [[nodiscard]] std::uint64_t FreeSpaceBytes(std::string_view path) const override;

 private:
  class FolderIndexes;
  enum class Use { kWrite, kRenameOver };

  // Where a Windows path lies on the host.
  struct Place {
    std::string folder;  // host path of the folder, spelled as on the disk
    std::string name;    // last component, spelled as on the disk when `exists`; empty for a drive
    bool exists = false;
    bool folder_exists = true;

    [[nodiscard]] std::string Path() const;
  };

  // The components of a path, absolute and without "." and ".."; the first is the drive's host
  // folder.
  [[nodiscard]] std::vector<std::string> Split(std::string_view path) const;
  [[nodiscard]] std::string DriveFolder(char letter) const;
  // The folder's host path and the last name, both spelled as the caller does; the name is empty
  // for a drive. Asks nothing of the disk.
  struct Exact {
    std::string folder;
    std::string name;
  };
  [[nodiscard]] Exact ExactPlace(std::string_view path) const;
  [[nodiscard]] std::string ExactPath(std::string_view path) const;
  [[nodiscard]] Place Locate(std::string_view path) const;
  [[nodiscard]] std::string LocateFile(std::string_view path) const;  // throws when missing
  // Throws when no file can be there. Only ordinary files are renamed over, devices written to.
  [[nodiscard]] std::string LocateTarget(std::string_view path, Use use) const;
  [[nodiscard]] std::unique_ptr<OutputFile> OpenOutput(std::string_view path, int flags);

  std::string root_;
  std::unique_ptr<FolderIndexes> indexes_;
  mutable std::string last_folder_;       // of the last path that ExactPlace split
  mutable std::string last_folder_host_;  // what it means
};

}  // namespace txs
