#include "environment/archiver_dynazip_win32.h"

#include <windows.h>

#include <exception>
#include <new>
#include <utility>

#include "environment/dynazip_record.h"
#include "environment/runtime_error.h"
#include "environment/windows_calls_win32.h"
#include "environment/windows_path.h"

namespace txs {
namespace {

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
    try {
      std::optional<std::vector<std::byte>> record = MakeDynaZipRecord(archive_path, source_path);
      if (!record) return built_in_.Compress(archive_path, source_path);
      // The library would add to an archive that is there.
      if (files_.FileExists(archive_path)) files_.RemoveFile(archive_path);
      const auto result = ArchiveResult{pack_(record->data())};
      if (result != ArchiveResult::kSuccess && files_.FileExists(archive_path)) {
        files_.RemoveFile(archive_path);
      }
      return result;
    } catch (const RuntimeError&) {
      return ArchiveResult::kArchiveNotCreated;
    } catch (const std::bad_alloc&) {
      return ArchiveResult::kOutOfMemory;
    } catch (const std::exception&) {
      return ArchiveResult::kUnexpected;
    }
  }

 private:
  Library library_;
  DzipFunction pack_;
  FileSystem& files_;
  Archiver& built_in_;
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
    Archiver& archiver = library_ != nullptr ? *library_ : *built_in_;
    return archiver.Compress(archive_path, source_path);
  }

 private:
  FileSystem& files_;
  const SystemTools& tools_;
  std::unique_ptr<Archiver> built_in_;
  std::unique_ptr<Archiver> library_;
  bool has_looked_ = false;
};

}  // namespace

std::unique_ptr<Archiver> LoadDynaZipArchiver(FileSystem& files, Archiver& built_in,
                                              const std::vector<std::string>& directories) {
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
