// The file system of Windows.
//
// Paths of any length: what comes near to 260 characters goes to the system in the "\\?\" form.
// What another program holds for a moment (virus scanners, indexers) is tried again, with pauses
// that are bounded; what it still holds then is an error. "Access denied" is waited out for a
// moment only, since it seldom passes; longer where it is how Windows says that a target is in use.
// A device ("NUL", "COM1") is no file.
//
// A file that is replaced as a whole takes the permissions that its folder gives to new files, and
// keeps its spelling and whether it is hidden.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "environment/file_system.h"
#include "environment/host_paths.h"
#include "environment/retry_pauses.h"

namespace txs {

// The path as the functions of the system take it, however long. Throws kBadFileName for what no
// path can be, kPathFileAccess for a device.
[[nodiscard]] std::wstring NativePath(std::string_view path);

// Whether a file or folder with these attributes and this reparse tag is another way to somewhere
// else: a symbolic link, a junction. What a cloud service keeps is a reparse point too, and leads
// nowhere. A tag of 0 is unknown (Wine tells none) and counts as a link.
[[nodiscard]] bool LeadsElsewhere(unsigned long attributes, unsigned long tag);

class WindowsFileSystem : public FileSystem, public HostPaths {
 public:
  // `patience` is how long one operation waits for other programs; a tree that is deleted counts as
  // one.
  explicit WindowsFileSystem(const RetryPauses::Limits& patience = {}) : patience_(patience) {}

  // Absolute, with the separators of Windows, in the spelling of the disk as far as it exists. The
  // names are Windows names already: a network path stays one.
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
  // While a file is open for writing, others may read it and not write.
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
  enum class Ends { kKept, kCut };

  [[nodiscard]] std::unique_ptr<OutputFile> OpenOutput(std::string_view path, Ends ends);

  RetryPauses::Limits patience_;
};

}  // namespace txs
