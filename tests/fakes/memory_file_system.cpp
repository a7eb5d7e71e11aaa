#include "fakes/memory_file_system.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <limits>

#include "environment/code_page.h"
#include "environment/windows_path.h"

namespace txs {
namespace {

[[noreturn]] void Throw(ErrorNumber number, std::string_view path, std::string_view words) {
  throw RuntimeError(number, std::string(path) + ": " + std::string(words));
}

// The limit of Windows for one component of a path.
constexpr std::size_t kMaxNameLength = 255;

bool IsDriveLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

bool IsWindowsName(std::string_view name) {
  return IsUtf8(name) && std::ranges::none_of(name, [](char c) {
           return static_cast<unsigned char>(c) < 0x20 ||
                  std::string_view("\"<>|?*:").find(c) != std::string_view::npos;
         });
}

}  // namespace

// A file open for reading keeps its bytes even when the file is replaced meanwhile.
class MemoryInputFile : public InputFile {
 public:
  MemoryInputFile(const MemoryFileSystem& files, std::string path,
                  std::shared_ptr<std::string> bytes)
      : files_(files), path_(std::move(path)), bytes_(std::move(bytes)), length_(bytes_->size()) {}

  [[nodiscard]] std::size_t Read(std::span<std::byte> buffer) override {
    files_.Count("Read", path_);
    if (position_ >= bytes_->size()) return 0;
    const std::size_t count = std::min(buffer.size(), bytes_->size() - position_);
    if (count > 0) std::memcpy(buffer.data(), bytes_->data() + position_, count);
    position_ += count;
    return count;
  }

  [[nodiscard]] std::uint64_t Length() const override { return length_; }

  void Seek(std::uint64_t offset) override {
    files_.Count("Seek", path_);
    position_ = static_cast<std::size_t>(offset);
  }

 private:
  const MemoryFileSystem& files_;
  std::string path_;
  std::shared_ptr<std::string> bytes_;
  std::uint64_t length_;
  std::size_t position_ = 0;
};

class MemoryOutputFile : public OutputFile {
 public:
  MemoryOutputFile(MemoryFileSystem& files, std::string path, std::shared_ptr<std::string> bytes)
      : files_(files), path_(std::move(path)), bytes_(std::move(bytes)) {}

  void Write(std::span<const std::byte> data) override {
    files_.Count("Write", path_, [&] { Append(data.first(data.size() / 2)); });
    if (Append(data) < data.size()) Throw(ErrorNumber::kDiskFull, path_, "No space left");
  }

  void WriteAt(std::uint64_t offset, std::span<const std::byte> data) override {
    files_.Count("WriteAt", path_);
    if (offset + data.size() > bytes_->size()) {
      Throw(ErrorNumber::kInvalidCall, path_, "WriteAt beyond what was written");
    }
    if (!data.empty()) std::memcpy(bytes_->data() + offset, data.data(), data.size());
    Touch();
  }

  void Close() override { files_.Count("Close", path_); }

 private:
  // As much as there is room for; how much that was.
  std::size_t Append(std::span<const std::byte> data) {
    const std::uint64_t room = files_.free_bytes_;
    const std::size_t count = static_cast<std::size_t>(std::min<std::uint64_t>(data.size(), room));
    if (count > 0) {
      const std::size_t old_size = bytes_->size();
      bytes_->resize(old_size + count);
      std::memcpy(bytes_->data() + old_size, data.data(), count);
      files_.free_bytes_ -= count;
    }
    Touch();
    return count;
  }

  void Touch() {
    if (MemoryFileSystem::Node* node = files_.Find(path_); node != nullptr && !node->is_folder) {
      node->last_write = files_.Tick();
    }
  }

  MemoryFileSystem& files_;
  std::string path_;
  std::shared_ptr<std::string> bytes_;
};

MemoryFileSystem::MemoryFileSystem()
    : free_bytes_(std::numeric_limits<std::uint64_t>::max() / 2),  // replaced files add to it
      now_(std::chrono::sys_days(std::chrono::year(2026) / 11 / 21)) {
  AddDrive('C');
}

void MemoryFileSystem::AddDrive(char letter) {
  const std::string drive{static_cast<char>(std::toupper(static_cast<unsigned char>(letter))), ':'};
  Node& node = nodes_[FoldCase(drive)];
  node.spelled = drive;
  node.is_folder = true;
  node.last_write = now_;
}

void MemoryFileSystem::AddFile(std::string_view path, std::string_view bytes) {
  AddFile(path, bytes, Tick());
}

void MemoryFileSystem::AddFile(std::string_view path, std::string_view bytes, FileTime last_write) {
  const std::string normalized = Normalize(path);
  MakeFolders(ParentFolder(normalized));
  Node& node = nodes_[FoldCase(normalized)];
  if (node.spelled.empty()) node.spelled = normalized;
  node.bytes = std::make_shared<std::string>(bytes);
  node.last_write = last_write;
}

void MemoryFileSystem::AddFolder(std::string_view path) { MakeFolders(Normalize(path)); }

void MemoryFileSystem::AddUnusableEntry(std::string_view folder, FileEntry entry) {
  AddFolder(folder);
  entry.name = PrintableName(entry.name);
  std::vector<FileEntry>& entries = unusable_[FoldCase(Normalize(folder))];
  entries.push_back(std::move(entry));
  std::ranges::sort(entries, {}, &FileEntry::name);
}

void MemoryFileSystem::SetLastWriteTime(std::string_view path, FileTime time) {
  if (Node* node = Find(path)) node->last_write = time;
}

void MemoryFileSystem::SetReadOnly(std::string_view path, bool read_only) {
  if (Node* node = Find(path)) node->read_only = read_only;
}

void MemoryFileSystem::Vanish(std::string_view path) {
  const std::string folded = FoldCase(Normalize(path));
  if (const Node* node = Find(path); node != nullptr && !node->is_folder) {
    free_bytes_ += node->bytes->size();
  }
  nodes_.erase(folded);
  const std::string inside = folded + "\\";
  for (auto node = nodes_.lower_bound(inside);
       node != nodes_.end() && node->first.starts_with(inside);) {
    if (!node->second.is_folder) free_bytes_ += node->second.bytes->size();
    node = nodes_.erase(node);
  }
}

bool MemoryFileSystem::Has(std::string_view path) const { return Find(path) != nullptr; }

std::string MemoryFileSystem::Contents(std::string_view path) const {
  return *NeedFile(path).bytes;
}

std::vector<std::string> MemoryFileSystem::AllFiles() const {
  std::vector<std::string> paths;
  for (const auto& [folded, node] : nodes_) {
    if (!node.is_folder) paths.push_back(node.spelled);
  }
  return paths;
}

std::vector<std::string> MemoryFileSystem::AllFilesIn(std::string_view folder) const {
  const std::string inside = FoldCase(Normalize(folder)) + "\\";
  std::vector<std::string> paths;
  for (auto node = nodes_.lower_bound(inside);
       node != nodes_.end() && node->first.starts_with(inside); ++node) {
    if (!node->second.is_folder) paths.push_back(node->second.spelled);
  }
  return paths;
}

void MemoryFileSystem::FailOperation(std::uint64_t number, ErrorNumber error) {
  fail_at_ = operations_ + number;
  fail_all_after_ = false;
  fail_error_ = error;
}

void MemoryFileSystem::FailFrom(std::uint64_t number, ErrorNumber error) {
  FailOperation(number, error);
  fail_all_after_ = true;
}

void MemoryFileSystem::FailPath(std::string_view path, std::string_view operation,
                                ErrorNumber error) {
  failures_.push_back({FoldCase(Normalize(path)), std::string(operation), error});
}

void MemoryFileSystem::StopFailing() {
  fail_at_ = 0;
  failures_.clear();
}

std::size_t MemoryFileSystem::Times(std::string_view operation) const {
  return static_cast<std::size_t>(std::ranges::count_if(
      diary, [&](const DiaryEntry& entry) { return entry.operation == operation; }));
}

bool MemoryFileSystem::FileExists(std::string_view path) const {
  if (!CountQuietly("FileExists", path)) return false;
  const Node* node = Find(path);
  return node != nullptr && !node->is_folder;
}

bool MemoryFileSystem::FolderExists(std::string_view path) const {
  if (!CountQuietly("FolderExists", path)) return false;
  const Node* node = Find(path);
  return node != nullptr && node->is_folder;
}

std::optional<FileStamp> MemoryFileSystem::Stamp(std::string_view path) const {
  if (!CountQuietly("Stamp", path)) return std::nullopt;
  const Node* node = Find(path);
  if (node == nullptr || node->is_folder) return std::nullopt;
  return FileStamp{node->bytes->size(), node->last_write};
}

std::string MemoryFileSystem::FinalPath(std::string_view path) const {
  if (!CountQuietly("FinalPath", path)) return std::string(path);
  const Node* node = Find(path);
  return node == nullptr ? std::string(path) : node->spelled;
}

std::unique_ptr<InputFile> MemoryFileSystem::OpenForReading(std::string_view path) const {
  Count("OpenForReading", path);
  return std::make_unique<MemoryInputFile>(*this, std::string(path), NeedFile(path).bytes);
}

std::vector<FileEntry> MemoryFileSystem::List(std::string_view folder,
                                              std::string_view pattern) const {
  Count("List", folder);
  static_cast<void>(NeedPath(folder));
  const Node* node = Find(folder);
  if (node == nullptr || !node->is_folder) {
    Throw(ErrorNumber::kPathNotFound, folder, "Folder not found");
  }
  const std::string inside = FoldCase(Normalize(folder)) + "\\";
  std::vector<FileEntry> entries;
  for (auto entry = nodes_.lower_bound(inside);
       entry != nodes_.end() && entry->first.starts_with(inside); ++entry) {
    if (entry->first.find('\\', inside.size()) != std::string::npos) continue;
    const std::string name = FileName(entry->second.spelled);
    if (MatchesWildcard(name, pattern)) entries.push_back({name, entry->second.is_folder});
  }
  std::ranges::sort(entries, [](const FileEntry& left, const FileEntry& right) {
    return FoldCase(left.name) < FoldCase(right.name);
  });
  return entries;
}

std::vector<FileEntry> MemoryFileSystem::UnusableEntries(std::string_view folder) const {
  Count("List", folder);
  static_cast<void>(NeedPath(folder));
  const Node* node = Find(folder);
  if (node == nullptr || !node->is_folder) {
    Throw(ErrorNumber::kPathNotFound, folder, "Folder not found");
  }
  const auto found = unusable_.find(FoldCase(Normalize(folder)));
  return found == unusable_.end() ? std::vector<FileEntry>() : found->second;
}

std::unique_ptr<OutputFile> MemoryFileSystem::CreateForWriting(std::string_view path) {
  Count("CreateForWriting", path);
  Node& node = MakeFile(path);
  free_bytes_ += node.bytes->size();
  node.bytes = std::make_shared<std::string>();
  return std::make_unique<MemoryOutputFile>(*this, node.spelled, node.bytes);
}

std::unique_ptr<OutputFile> MemoryFileSystem::OpenForAppending(std::string_view path) {
  Count("OpenForAppending", path);
  Node& node = MakeFile(path);
  return std::make_unique<MemoryOutputFile>(*this, node.spelled, node.bytes);
}

void MemoryFileSystem::ReplaceWhole(std::string_view path, std::string_view bytes) {
  Count("ReplaceWhole", path);
  const bool existed = Find(path) != nullptr;
  if (bytes.size() > free_bytes_) Throw(ErrorNumber::kDiskFull, path, "No space left");
  Node& node = MakeFile(path);
  if (existed) free_bytes_ += node.bytes->size();
  free_bytes_ -= bytes.size();
  node.bytes = std::make_shared<std::string>(bytes);
}

void MemoryFileSystem::CopyWhole(std::string_view source, std::string_view target) {
  Count("CopyWhole", source, [&] { CopyHalf(source, target); });
  const Node from = NeedFile(source);
  if (FoldCase(Normalize(source)) == FoldCase(Normalize(target))) {
    Throw(ErrorNumber::kPathFileAccess, target, "Cannot copy a file onto itself");
  }
  Node& to = MakeFile(target);
  free_bytes_ += to.bytes->size();
  const std::size_t count =
      static_cast<std::size_t>(std::min<std::uint64_t>(from.bytes->size(), free_bytes_));
  to.bytes = std::make_shared<std::string>(from.bytes->substr(0, count));
  free_bytes_ -= count;
  if (count < from.bytes->size()) Throw(ErrorNumber::kDiskFull, target, "No space left");
  to.last_write = from.last_write;
}

void MemoryFileSystem::MoveWhole(std::string_view source, std::string_view target) {
  Count("MoveWhole", source, [&] { CopyHalf(source, target); });
  const Node from = NeedFile(source);
  if (FoldCase(Normalize(source)) == FoldCase(Normalize(target))) return;
  Node& to = MakeFile(target);
  free_bytes_ += to.bytes->size();
  to.bytes = from.bytes;
  to.last_write = from.last_write;
  to.read_only = from.read_only;
  nodes_.erase(FoldCase(Normalize(source)));
}

void MemoryFileSystem::RemoveFile(std::string_view path) {
  Count("RemoveFile", path);
  const Node& node = NeedFile(path);
  if (node.read_only) Throw(ErrorNumber::kPathFileAccess, path, "The file is read-only");
  free_bytes_ += node.bytes->size();
  nodes_.erase(FoldCase(Normalize(path)));
}

void MemoryFileSystem::RemoveTree(std::string_view folder) {
  Count("RemoveTree", folder, [&] {
    const std::vector<std::string> files = AllFilesIn(folder);
    for (std::size_t i = 0; i < files.size(); i += 2) Vanish(files[i]);
  });
  const std::string normalized = NeedPath(folder);
  const Node* node = Find(folder);
  if (node == nullptr) return;
  if (normalized.size() == 2) Throw(ErrorNumber::kPathFileAccess, folder, "Is a whole drive");
  if (!node->is_folder) Throw(ErrorNumber::kPathFileAccess, folder, "Not a folder");
  Vanish(folder);
}

void MemoryFileSystem::MakeFolder(std::string_view folder) {
  Count("MakeFolder", folder);
  MakeFolders(NeedPath(folder));
}

std::vector<std::string> MemoryFileSystem::Drives() const {
  Count("Drives", "");
  std::vector<std::string> drives;
  for (const auto& [folded, node] : nodes_) {
    if (folded.size() == 2) drives.push_back(node.spelled);
  }
  return drives;
}

std::uint64_t MemoryFileSystem::FreeSpaceBytes(std::string_view path) const {
  Count("FreeSpaceBytes", path);
  if (Find(NeedPath(path).substr(0, 2)) == nullptr) {
    Throw(ErrorNumber::kPathNotFound, path, "No such drive");
  }
  return free_bytes_;
}

std::string MemoryFileSystem::Normalize(std::string_view path) {
  std::string text(path);
  std::ranges::replace(text, '/', '\\');
  std::string normalized;
  if (text.starts_with("\\\\")) {
    normalized = "\\";  // a network path, which no drive of this computer holds
  } else if (text.size() >= 2 && text[1] == ':' && IsDriveLetter(text[0])) {
    normalized = text.substr(0, 2);
    text.erase(0, 2);
  } else if (!text.empty()) {
    normalized = "C:";
  }
  const std::size_t root = normalized.size();
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find('\\', start), text.size());
    const std::string name = text.substr(start, end - start);
    start = end + 1;
    if (name.empty() || name == ".") continue;
    if (name == "..") {
      if (normalized.size() > root) normalized.erase(normalized.rfind('\\'));
      continue;
    }
    if (!IsWindowsName(name)) return {};
    normalized += "\\" + name;
  }
  return normalized;
}

std::string MemoryFileSystem::NeedPath(std::string_view path) {
  std::string normalized = Normalize(path);
  if (normalized.empty()) {
    Throw(ErrorNumber::kBadFileName, path, "Not a name that Windows accepts");
  }
  return normalized;
}

void MemoryFileSystem::Count(std::string_view operation, std::string_view path) const {
  diary.push_back({std::string(operation), std::string(path)});
  ++operations_;
  if (fail_at_ != 0 && (operations_ == fail_at_ || (fail_all_after_ && operations_ > fail_at_))) {
    Throw(fail_error_, path, failure_words);
  }
  if (failures_.empty()) return;
  const std::string folded = FoldCase(Normalize(path));
  for (const Failure& failure : failures_) {
    if (failure.folded_path == folded && failure.operation == operation) {
      Throw(failure.error, path, failure_words);
    }
  }
}

template <typename Half>
void MemoryFileSystem::Count(std::string_view operation, std::string_view path,
                             const Half& do_half) {
  try {
    Count(operation, path);
  } catch (const RuntimeError&) {
    if (fail_half_done) do_half();
    throw;
  }
}

// As a copy does whose target then fails: it has been made, or it was not there to be written.
void MemoryFileSystem::CopyHalf(std::string_view source, std::string_view target) {
  const Node* from = Find(source);
  if (from == nullptr || from->is_folder) return;
  AddFile(target, from->bytes->substr(0, from->bytes->size() / 2));
}

bool MemoryFileSystem::CountQuietly(std::string_view operation, std::string_view path) const {
  try {
    Count(operation, path);
    return true;
  } catch (const RuntimeError&) {
    return false;
  }
}

const MemoryFileSystem::Node* MemoryFileSystem::Find(std::string_view path) const {
  const auto found = nodes_.find(FoldCase(Normalize(path)));
  return found == nodes_.end() ? nullptr : &found->second;
}

MemoryFileSystem::Node* MemoryFileSystem::Find(std::string_view path) {
  const auto found = nodes_.find(FoldCase(Normalize(path)));
  return found == nodes_.end() ? nullptr : &found->second;
}

const MemoryFileSystem::Node& MemoryFileSystem::NeedFile(std::string_view path) const {
  const std::string normalized = NeedPath(path);
  const Node* node = Find(path);
  if (node == nullptr) {
    const Node* parent = Find(ParentFolder(normalized));
    const bool folder_exists = parent != nullptr && parent->is_folder;
    Throw(folder_exists ? ErrorNumber::kFileNotFound : ErrorNumber::kPathNotFound, path,
          "File not found");
  }
  if (node->is_folder) Throw(ErrorNumber::kPathFileAccess, path, "Is a folder");
  return *node;
}

MemoryFileSystem::Node& MemoryFileSystem::MakeFile(std::string_view path) {
  const std::string normalized = NeedPath(path);
  Node* existing = Find(path);
  if (existing != nullptr) {
    if (existing->is_folder) Throw(ErrorNumber::kPathFileAccess, path, "Is a folder");
    if (existing->read_only) Throw(ErrorNumber::kPathFileAccess, path, "The file is read-only");
    existing->last_write = Tick();
    return *existing;
  }
  const std::string name = FileName(normalized);
  if (name.empty() || name.size() > kMaxNameLength) {
    Throw(ErrorNumber::kBadFileName, path, "Bad file name");
  }
  const Node* parent = Find(ParentFolder(normalized));
  if (parent == nullptr || !parent->is_folder) {
    Throw(ErrorNumber::kPathNotFound, path, "Folder not found");
  }
  Node& node = nodes_[FoldCase(normalized)];
  node.spelled = parent->spelled + "\\" + name;
  node.bytes = std::make_shared<std::string>();
  node.last_write = Tick();
  return node;
}

void MemoryFileSystem::MakeFolders(const std::string& normalized) {
  if (const Node* node = Find(normalized)) {
    if (!node->is_folder) Throw(ErrorNumber::kPathFileAccess, normalized, "Is a file");
    return;
  }
  const std::string parent = ParentFolder(normalized);
  if (parent.empty() || parent == normalized) {
    Throw(ErrorNumber::kPathNotFound, normalized, "No such drive");
  }
  MakeFolders(parent);
  Node& node = nodes_[FoldCase(normalized)];
  node.spelled = normalized;
  node.is_folder = true;
  node.last_write = Tick();
}

FileTime MemoryFileSystem::Tick() {
  now_ += std::chrono::seconds(1);
  return now_;
}

}  // namespace txs
