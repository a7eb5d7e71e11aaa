#include "environment/archiver_dynazip_win32.h"

#include <windows.h>

#include <cstdint>
#include <exception>
#include <new>
#include <optional>
#include <utility>

#include "environment/code_page.h"
#include "environment/code_page_win32.h"
#include "environment/dynazip_record.h"
#include "environment/runtime_error.h"
#include "environment/windows_calls_win32.h"
#include "environment/windows_path.h"
#include "strings/reason.h"

namespace txs {
namespace {

// A 32-bit library from before ZIP64: an archive that reaches the sign of its numbers is not made
// by it. What does not shrink grows by its headers and, in some compressors, by a few bytes per
// block.
constexpr std::uint64_t kTooLongBytes = (std::uint64_t{1} << 31) - (std::uint64_t{1} << 20);

using DzipFunction = int(__stdcall*)(void* record);

class Library {
 public:
  // By its full path: the system must not look for it elsewhere. What it needs itself may stand
  // beside it.
  explicit Library(const std::string& path)
      : module_(LoadLibraryExW(ToWide(path).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {}
  ~Library() {
    if (module_ != nullptr) FreeLibrary(module_);
  }
  Library(Library&& other) noexcept : module_(std::exchange(other.module_, nullptr)) {}
  Library& operator=(Library&&) = delete;

  // Null when it was not loaded or has no such function.
  [[nodiscard]] DzipFunction Function() const {
    if (module_ == nullptr) return nullptr;
    return reinterpret_cast<DzipFunction>(
        reinterpret_cast<void*>(GetProcAddress(module_, "dzipVB")));
  }

 private:
  HMODULE module_;
};

class DynaZipArchiver : public Archiver {
 public:
  DynaZipArchiver(Library library, FileSystem& files, Archiver& built_in)
      : library_(std::move(library)),
        pack_(library_.Function()),
        files_(files),
        built_in_(built_in) {}

  ArchiveResult Compress(std::string_view archive_path, std::string_view source_path) override {
    reason_.clear();
    // The source would be removed for the archive that it is taken for.
    if (EqualNoCase(archive_path, source_path)) {
      Explain(Reason::kOntoItself, source_path);
      return ArchiveResult::kArchiveNotCreated;
    }
    try {
      std::optional<std::vector<std::byte>> record = MakeDynaZipRecord(archive_path, source_path);
      if (!record || IsTooLong(source_path)) return CompressBuiltIn(archive_path, source_path);
      // The library would add to an archive that is there.
      if (files_.FileExists(archive_path)) files_.RemoveFile(archive_path);
      const auto result = ArchiveResult{pack_(record->data())};
      if (result != ArchiveResult::kSuccess) RemoveLeftover(archive_path);
      return result;
    } catch (const RuntimeError& error) {
      reason_ = error.Description();
      return ArchiveResult::kArchiveNotCreated;
    } catch (const std::bad_alloc&) {
      Explain(Reason::kOutOfMemory, source_path);
      return ArchiveResult::kOutOfMemory;
    } catch (const std::exception&) {
      return ArchiveResult::kUnexpected;
    }
  }

  [[nodiscard]] std::string FailureReason() const override { return reason_; }

 private:
  void Explain(Reason reason, std::string_view path) {
    try {
      reason_ = std::string(path) + ": " + Words(reason);
    } catch (const std::bad_alloc&) {
      reason_.clear();
    }
  }

  [[nodiscard]] bool IsTooLong(std::string_view source_path) const {
    const std::optional<FileStamp> stamp = files_.Stamp(source_path);
    return stamp && stamp->length_bytes >= kTooLongBytes;
  }

  ArchiveResult CompressBuiltIn(std::string_view archive_path, std::string_view source_path) {
    const ArchiveResult result = built_in_.Compress(archive_path, source_path);
    reason_ = built_in_.FailureReason();
    return result;
  }

  void RemoveLeftover(std::string_view archive_path) {
    try {
      if (files_.FileExists(archive_path)) files_.RemoveFile(archive_path);
    } catch (const std::exception&) {
      // The library's own code tells more.
    }
  }

  Library library_;
  DzipFunction pack_;
  FileSystem& files_;
  Archiver& built_in_;
  std::string reason_;
};

class ProductArchiver : public Archiver {
 public:
  ProductArchiver(FileSystem& files, const SystemTools& tools, std::unique_ptr<Archiver> built_in)
      : files_(files), tools_(tools), built_in_(std::move(built_in)) {}

  ArchiveResult Compress(std::string_view archive_path, std::string_view source_path) override {
    if (!has_looked_) {
      has_looked_ = true;
      try {
        library_ = LoadDynaZipArchiver(files_, *built_in_, DynaZipDirectories(tools_));
      } catch (const std::exception&) {
        // The built-in archiver serves.
      }
    }
    return Serving().Compress(archive_path, source_path);
  }

  [[nodiscard]] std::string FailureReason() const override { return Serving().FailureReason(); }

 private:
  [[nodiscard]] Archiver& Serving() const { return library_ != nullptr ? *library_ : *built_in_; }

  FileSystem& files_;
  const SystemTools& tools_;
  std::unique_ptr<Archiver> built_in_;
  std::unique_ptr<Archiver> library_;
  bool has_looked_ = false;
};

}  // namespace

std::unique_ptr<Archiver> LoadDynaZipArchiver(FileSystem& files, Archiver& built_in,
                                              const std::vector<std::string>& directories) {
  // The library reads the paths of its record in the code page of the process, which then is not
  // the one that we write.
  if (!IsSingleByteCodePage(GetACP())) return nullptr;
  for (const std::string& directory : directories) {
    const std::string path = JoinPath(directory, kDynaZipLibrary);
    if (!files.FileExists(path)) continue;
    Library library(path);
    if (library.Function() == nullptr) continue;
    return std::make_unique<DynaZipArchiver>(std::move(library), files, built_in);
  }
  return nullptr;
}

std::unique_ptr<Archiver> MakeProductArchiver(FileSystem& files, const SystemTools& tools,
                                              std::unique_ptr<Archiver> built_in) {
  return std::make_unique<ProductArchiver>(files, tools, std::move(built_in));
}

}  // namespace txs
