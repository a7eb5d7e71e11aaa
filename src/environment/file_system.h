// The file system, seen through Windows names on every platform.
//
// Paths are Windows paths in UTF-8 ("C:\Demo\x.dll", "Z:\home\me"); names are looked up without
// regard to case, doubled separators and "/" are accepted, a relative path is taken from the
// process's current directory. Every failing operation throws RuntimeError; its description names
// the path and carries the operating system's words. Nothing here shows a message.
//
// FileReader is what parsers and checks need; FileSystem adds everything that changes a disk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "environment/clock.h"

namespace txs {

// A file open for reading. Closed by its destructor.
class InputFile {
 public:
  virtual ~InputFile() = default;

  // Reads up to buffer.size() bytes from the current position; 0 only at the end of the file.
  // Throws kDeviceIo and the like.
  [[nodiscard]] virtual std::size_t Read(std::span<std::byte> buffer) = 0;

  // Length in bytes when the file was opened.
  [[nodiscard]] virtual std::uint64_t Length() const = 0;

  // Moves the position to `offset` bytes from the start; beyond the end, Read gives 0.
  virtual void Seek(std::uint64_t offset) = 0;
};

// A file open for writing. What was written before a failure stays on disk; the owner decides
// whether to remove it.
class OutputFile {
 public:
  virtual ~OutputFile() = default;

  // Writes all of `data` or throws (kDiskFull, kDeviceIo, ...).
  virtual void Write(std::span<const std::byte> data) = 0;

  // Overwrites bytes at `offset` that were written before; the position for Write stays at the end.
  virtual void WriteAt(std::uint64_t offset, std::span<const std::byte> data) = 0;

  // Must be called when everything was written: a full disk or a broken share may only show here.
  // The destructor closes too, but swallows the error.
  virtual void Close() = 0;
};

struct FileEntry {
  std::string name;  // as spelled on the disk, without directory
  bool is_folder = false;
  // A symbolic link, or another way of Windows to lead elsewhere (reparse point); `is_folder` then
  // tells of what it leads to.
  bool is_link = false;
};

// What tells that a file changed since it was read.
struct FileStamp {
  std::uint64_t length_bytes = 0;
  FileTime last_write;

  bool operator==(const FileStamp&) const = default;
};

// A name as the disk has it as text that can be shown: control characters, and all bytes of a name
// that is not UTF-8 beyond ASCII, as "\xFC".
[[nodiscard]] std::string PrintableName(std::string_view name);

class FileReader {
 public:
  virtual ~FileReader() = default;

  // True for a file only; false for a folder, for nothing, and for an empty or malformed path.
  [[nodiscard]] virtual bool FileExists(std::string_view path) const = 0;

  // True for a folder only. "C:" and "C:\" are both the root of the drive.
  [[nodiscard]] virtual bool FolderExists(std::string_view path) const = 0;

  // Length and last write time of a file; nothing when it is no file or cannot be asked.
  [[nodiscard]] virtual std::optional<FileStamp> Stamp(std::string_view path) const = 0;

  // Throws kFileNotFound, kPathNotFound, kPermissionDenied, kPathFileAccess (a folder), ...
  [[nodiscard]] virtual std::unique_ptr<InputFile> OpenForReading(std::string_view path) const = 0;

  // Names in `folder` that match the wildcard `pattern` ("*.rct"), in the order of their folded
  // names so that every platform lists alike; "." and ".." never. Throws kPathNotFound when the
  // folder does not exist.
  [[nodiscard]] virtual std::vector<FileEntry> List(std::string_view folder,
                                                    std::string_view pattern) const = 0;

  // What `folder` holds besides, made by another system: entries that List passes over since no
  // Windows path can name them ("a:b.zip", "x\y.zip", a name that is not UTF-8). Each name is made
  // fit to be shown by PrintableName, in which order they come. Throws as List.
  [[nodiscard]] virtual std::vector<FileEntry> UnusableEntries(std::string_view folder) const = 0;

  // All bytes of a file. Throws as OpenForReading, and kOutOfMemory beyond 2 GiB.
  [[nodiscard]] std::string ReadWhole(std::string_view path) const;

  // Length in bytes. Throws kFileNotFound when there is no such file.
  [[nodiscard]] std::uint64_t Length(std::string_view path) const;

  // Throws kFileNotFound when there is no such file.
  [[nodiscard]] FileTime LastWriteTime(std::string_view path) const;
};

class FileSystem : public FileReader {
 public:
  // Creates or truncates. An existing name keeps its spelling. Throws kPathNotFound when the folder
  // is missing, kPathFileAccess when the path is a folder or read-only, ...
  [[nodiscard]] virtual std::unique_ptr<OutputFile> CreateForWriting(std::string_view path) = 0;

  // Opens at the end, creating the file when it is missing.
  [[nodiscard]] virtual std::unique_ptr<OutputFile> OpenForAppending(std::string_view path) = 0;

  // Replaces a whole file atomically: afterwards it is the old one or the new one, never a mixture.
  // Creates it when missing. A failure leaves the old file and nothing else behind.
  virtual void ReplaceWhole(std::string_view path, std::string_view bytes) = 0;

  // Copies contents and last write time; overwrites the target. The copy can be written and
  // deleted even when the source is read-only. A failure may leave an incomplete target.
  virtual void CopyWhole(std::string_view source, std::string_view target) = 0;

  // Moves a file, overwriting the target: by renaming where both are on one volume, else by copying
  // and deleting the source. A failure leaves the source.
  virtual void MoveWhole(std::string_view source, std::string_view target) = 0;

  // Throws kFileNotFound when there is no such file.
  virtual void RemoveFile(std::string_view path) = 0;

  // Deletes a folder with everything in it, read-only files too, silently and for good (no recycle
  // bin). A link inside is removed, not followed. Nothing happens when the folder does not exist;
  // throws when something could not be deleted, after deleting all the rest.
  virtual void RemoveTree(std::string_view folder) = 0;

  // Makes the folder and its missing parents; nothing happens when it exists.
  virtual void MakeFolder(std::string_view folder) = 0;

  // What the system itself calls an existing file or folder, with links and substituted drives
  // resolved: to be compared with another one, not to be opened. `path` when it is not there or
  // cannot be asked.
  [[nodiscard]] virtual std::string FinalPath(std::string_view path) const = 0;

  // Drives in alphabetical order, each as "C:".
  [[nodiscard]] virtual std::vector<std::string> Drives() const = 0;

  // Free bytes for this user on the volume that holds `path`.
  [[nodiscard]] virtual std::uint64_t FreeSpaceBytes(std::string_view path) const = 0;
};

}  // namespace txs
