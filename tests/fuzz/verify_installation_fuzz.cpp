// Whole installations as `verify` reads them, from a disk that says whatever it likes.
//
// Input: up to 16 files, each its path below the installation ("DISK1\x.zip") in a line of its own,
// then its contents.

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "environment/code_page.h"
#include "environment/windows_path.h"
#include "fuzz/fuzz_support.h"
#include "tool/verify_installation.h"

namespace txs::fuzz {
namespace {

constexpr std::size_t kMostFiles = 16;
constexpr char kDirectory[] = "C:\\Out";

// Hands out the files under their names, however little these are names, and keeps watch over what
// is asked for. It cannot be written to: verify has no more than this interface.
class WatchedDisk : public FileReader {
 public:
  explicit WatchedDisk(std::string_view input) {
    for (const std::string_view part : Parts(input, kMostFiles)) {
      std::string_view contents = part;
      std::string_view name = TakeUntil(&contents, '\n');
      const std::string_view disk = TakeUntil(&name, '\\');
      if (!IsUtf8(disk) || !IsUtf8(name)) continue;
      disks_[std::string(disk)].insert(std::string(name));
      files_[std::string(kDirectory) + "\\" + std::string(disk) + "\\" + std::string(name)] =
          contents;
    }
  }

  [[nodiscard]] std::size_t BytesRead() const { return bytes_read_; }
  [[nodiscard]] std::size_t TimesOpened() const { return opened_; }
  [[nodiscard]] std::size_t FileCount() const { return files_.size(); }

  [[nodiscard]] bool FileExists(std::string_view path) const override {
    return Find(path) != nullptr;
  }
  [[nodiscard]] bool FolderExists(std::string_view path) const override {
    Require(path == kDirectory, "verify asks for no other directory");
    return true;
  }
  [[nodiscard]] std::optional<FileStamp> Stamp(std::string_view path) const override {
    const std::string_view* const bytes = Find(path);
    if (bytes == nullptr) return std::nullopt;
    return FileStamp{bytes->size(), FileTime()};
  }
  [[nodiscard]] std::unique_ptr<InputFile> OpenForReading(std::string_view path) const override {
    ++opened_;
    const std::string_view* const bytes = Find(path);
    if (bytes == nullptr) throw RuntimeError(ErrorNumber::kFileNotFound, std::string(path));
    return std::make_unique<File>(*this, *bytes);
  }
  [[nodiscard]] std::vector<FileEntry> List(std::string_view folder,
                                            std::string_view pattern) const override {
    std::vector<FileEntry> entries;
    if (folder == std::string(kDirectory) + "\\") {
      for (const auto& [disk, names] : disks_) {
        if (MatchesWildcard(disk, pattern)) entries.push_back({disk, /*is_folder=*/true});
      }
      return entries;
    }
    const std::string prefix = std::string(kDirectory) + "\\";
    Require(folder.starts_with(prefix), "verify lists nothing outside the installation");
    const auto disk = disks_.find(std::string(folder.substr(prefix.size())));
    Require(disk != disks_.end(), "verify lists the disks that are there and nothing else");
    for (const std::string& name : disk->second) {
      if (MatchesWildcard(name, pattern)) entries.push_back({name, /*is_folder=*/false});
    }
    return entries;
  }
  [[nodiscard]] std::vector<FileEntry> UnusableEntries(std::string_view) const override {
    return {};
  }

 private:
  class File : public InputFile {
   public:
    File(const WatchedDisk& disk, std::string_view bytes) : disk_(disk), bytes_(bytes) {}
    [[nodiscard]] std::size_t Read(std::span<std::byte> buffer) override {
      const std::size_t at = std::min(position_, bytes_.size());
      const std::size_t count = std::min(buffer.size(), bytes_.size() - at);
      if (count > 0) std::memcpy(buffer.data(), bytes_.data() + at, count);
      position_ += count;
      disk_.bytes_read_ += count;
      return count;
    }
    [[nodiscard]] std::uint64_t Length() const override { return bytes_.size(); }
    void Seek(std::uint64_t offset) override { position_ = static_cast<std::size_t>(offset); }

   private:
    const WatchedDisk& disk_;
    std::string_view bytes_;
    std::size_t position_ = 0;
  };

  const std::string_view* Find(std::string_view path) const {
    // What is asked for was listed before, in this spelling: a script cannot name anything else.
    const auto found = files_.find(std::string(path));
    Require(found != files_.end(), "verify opens what lies on the disks and nothing else");
    const std::string_view inside = path.substr(std::string_view(kDirectory).size() + 1);
    std::string_view rest = inside;
    std::size_t depth = 0;
    while (!rest.empty()) {
      const std::string_view part = TakeUntil(&rest, '\\');
      Require(part != ".." && part.find('/') == std::string_view::npos,
              "verify does not go up from the installation");
      ++depth;
    }
    Require(depth <= 2, "verify opens files on the disks, not below other directories");
    return &found->second;
  }

  std::map<std::string, std::set<std::string>> disks_;
  std::map<std::string, std::string_view> files_;
  mutable std::size_t bytes_read_ = 0;
  mutable std::size_t opened_ = 0;
};

void FuzzVerifyInstallation(std::string_view input) {
  const WatchedDisk disk(input);

  const Allocations allocations;
  VerifyResult result;
  const std::optional<ErrorNumber> error =
      ErrorFrom([&] { result = VerifyInstallation(disk, kDirectory); });

  // A damaged installation costs 64 KiB buffers for each archive that looks like one, and a script
  // of empty lines two faults for every byte, until their list is full: four texts, and the lists'
  // growth.
  allocations.RequireAtMost(input.size() + disk.FileCount() * 2048, 1000,
                            "verifying takes memory as the installation's length");
  Require(!error, "whatever the disks hold is a damage and no error");
  Require(disk.BytesRead() <= 8 * input.size() + 1024, "each file is read a few times only");
  Require(disk.TimesOpened() <= 20 * disk.FileCount() + 20, "each file is opened a few times only");
  Require(result.damages.size() <= 10001, "the list of damages has an end");
  Require(result.bytes <= input.size() * 2, "the bytes are those of the disks");
  for (const Damage& damage : result.damages) {
    Require(!damage.where.empty() && !damage.what.empty(),
            "a damage has a place and a description");
  }
  Require(!result.Sound() || result.disks > 0, "a sound installation has disks");
}

}  // namespace
}  // namespace txs::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  txs::fuzz::FuzzVerifyInstallation(txs::fuzz::AsText(data, size));
  return 0;
}
