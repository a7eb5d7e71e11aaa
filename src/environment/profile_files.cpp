#include "environment/profile_files.h"

#include <utility>

#include "environment/code_page.h"
#include "environment/runtime_error.h"
#include "environment/windows_path.h"

namespace txs {
namespace {

// 100,000 rows of a file list take a tenth of this. Parsed, a file takes a multiple of its length,
// so a file that is none would exhaust the memory.
constexpr std::uint64_t kMostBytes = std::uint64_t{64} << 20;

// One key for every spelling of a path.
std::string KeyOf(std::string_view path) { return FoldCase(NormalizeDirectory(path)); }

bool MeansMissing(ErrorNumber number) {
  return number == ErrorNumber::kFileNotFound || number == ErrorNumber::kPathNotFound ||
         number == ErrorNumber::kBadFileName;
}

}  // namespace

const ProfileDocument& ProfileFiles::Open(std::string_view path) {
  std::unique_ptr<Kept>& kept = kept_[KeyOf(path)];
  if (kept == nullptr) kept = std::make_unique<Kept>();

  // The stamp is taken before the bytes: a change between the two is then seen at the next call.
  const std::optional<FileStamp> stamp = files_.Stamp(path);
  if (stamp && kept->exists && kept->stamp == *stamp) return kept->document;
  if (stamp && stamp->length_bytes > kMostBytes) {
    throw RuntimeError(ErrorNumber::kOutOfMemory,
                       std::string(path) + ": larger than 64 MiB, too large for a profile file");
  }
  Kept read;
  try {
    // A path without a stamp is read too: what exists and cannot be read must throw.
    read.document = ProfileDocument(files_.ReadWhole(path));
    read.exists = stamp.has_value();
    read.stamp = stamp.value_or(FileStamp());
  } catch (const RuntimeError& error) {
    // What was there a moment ago is no missing file: it would be read as an empty one.
    if (stamp || !MeansMissing(error.Number())) throw;
  }
  *kept = std::move(read);
  return kept->document;
}

void ProfileFiles::Change(std::string_view path,
                          const std::function<void(ProfileDocument&)>& edit) {
  const ProfileDocument& before = Open(path);
  ProfileDocument after = before;
  edit(after);
  const std::string bytes = after.Bytes();
  if (bytes == before.Bytes()) return;
  files_.ReplaceWhole(path, bytes);

  Kept& kept = *kept_[KeyOf(path)];
  const std::optional<FileStamp> stamp = files_.Stamp(path);
  kept.document = std::move(after);
  kept.exists = stamp.has_value();
  kept.stamp = stamp.value_or(FileStamp());
}

}  // namespace txs
