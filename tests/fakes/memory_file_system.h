// The file system of a computer that exists only in a test: drives, folders and files in memory, a
// diary of what was done, and ways to make operations fail. Gives the error numbers that the real
// one gives; the contract tests hold both to that.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "environment/file_system.h"
#include "environment/runtime_error.h"

namespace txs {

class MemoryFileSystem : public FileSystem {
 public:
  struct DiaryEntry {
    std::string operation;  // "FileExists", "OpenForReading", "Write", ...
    std::string path;       // as the caller wrote it

    bool operator==(const DiaryEntry&) const = default;
  };

  // Drive C: exists from the start.
  MemoryFileSystem();

  // --- Setting the scene; none of these is counted, recorded or made to fail.
  void AddDrive(char letter);
  // Makes missing folders. Replaces an existing file.
  void AddFile(std::string_view path, std::string_view bytes);
  void AddFile(std::string_view path, std::string_view bytes, FileTime last_write);
  void AddFolder(std::string_view path);
  // An entry of `folder` whose name no path can hold, as another system may make it.
  void AddUnusableEntry(std::string_view folder, FileEntry entry);
  void SetLastWriteTime(std::string_view path, FileTime time);
  void SetReadOnly(std::string_view path, bool read_only);
  // Bytes that may still be written before the disk is full.
  void SetFreeSpace(std::uint64_t bytes) { free_bytes_ = bytes; }
  // Removes a file or a folder with its contents, as another program would.
  void Vanish(std::string_view path);

  // --- Looking at the result, unseen by the diary.
  [[nodiscard]] bool Has(std::string_view path) const;              // a file or a folder
  [[nodiscard]] std::string Contents(std::string_view path) const;  // throws when there is no file
  // Full paths as spelled, in folded order; folders are not listed.
  [[nodiscard]] std::vector<std::string> AllFiles() const;
  [[nodiscard]] std::vector<std::string> AllFilesIn(std::string_view folder) const;

  // --- Making operations fail. Every platform call counts as one operation, each Read, Write and
  // Close of an open file too.
  void FailOperation(std::uint64_t number, ErrorNumber error);  // the Nth from now, counted from 1
  void FailFrom(std::uint64_t number, ErrorNumber error);       // the Nth and all after it
  void FailPath(std::string_view path, std::string_view operation, ErrorNumber error);
  void StopFailing();
  // Whether a Write, CopyWhole, MoveWhole or RemoveTree that fails has done half of its work.
  bool fail_half_done = false;
  // What the errors on demand say behind the path.
  std::string failure_words = "failed on demand";
  // An operation of another part of the computer: recorded, counted and made to fail as those of
  // the disk are.
  void CountOther(std::string_view operation, std::string_view subject) const {
    Count(operation, subject);
  }
  [[nodiscard]] std::uint64_t OperationCount() const { return operations_; }
  [[nodiscard]] std::size_t Times(std::string_view operation) const;

  mutable std::vector<DiaryEntry> diary;

  // --- FileSystem
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
  friend class MemoryInputFile;
  friend class MemoryOutputFile;

  struct Node {
    std::string spelled;  // full path
    bool is_folder = false;
    bool read_only = false;
    FileTime last_write;
    std::shared_ptr<std::string> bytes;
  };
  struct Failure {
    std::string folded_path;
    std::string operation;
    ErrorNumber error;
  };

  // Full path without doubled separators, "." and ".."; a relative one is taken from C:\. Empty for
  // what no Windows path can be.
  [[nodiscard]] static std::string Normalize(std::string_view path);
  // Records the call; throws when it is to fail.
  void Count(std::string_view operation, std::string_view path) const;
  // The same for an operation that may have done half of its work by then.
  template <typename Half>
  void Count(std::string_view operation, std::string_view path, const Half& do_half);
  void CopyHalf(std::string_view source, std::string_view target);
  // The same for questions that answer "no" instead of failing.
  [[nodiscard]] bool CountQuietly(std::string_view operation, std::string_view path) const;
  [[nodiscard]] const Node* Find(std::string_view path) const;
  [[nodiscard]] Node* Find(std::string_view path);
  // The same as Normalize; throws kBadFileName for what no Windows path can be.
  [[nodiscard]] static std::string NeedPath(std::string_view path);
  [[nodiscard]] const Node& NeedFile(std::string_view path) const;
  Node& MakeFile(std::string_view path);  // checks as CreateForWriting does
  void MakeFolders(const std::string& normalized);
  FileTime Tick();

  std::map<std::string, Node> nodes_;                       // by folded path
  std::map<std::string, std::vector<FileEntry>> unusable_;  // by folded path of the folder
  std::uint64_t free_bytes_;
  FileTime now_;
  mutable std::uint64_t operations_ = 0;
  std::uint64_t fail_at_ = 0;  // 0: no failure wanted
  bool fail_all_after_ = false;
  ErrorNumber fail_error_ = ErrorNumber::kDeviceIo;
  std::vector<Failure> failures_;
};

}  // namespace txs
