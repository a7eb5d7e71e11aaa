#include "environment/profile_files.h"

#include <utility>

#include "environment/code_page.h"
#include "environment/runtime_error.h"
#include "environment/windows_path.h"
#include "strings/reason.h"

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

// Read as ANSI, such a file would look empty, and a save would put ANSI lines into it.
void RefuseUnreadableEncoding(std::string_view path, std::string_view bytes) {
  constexpr std::string_view kBigEndianMark = "\xFE\xFF";
  constexpr std::string_view kLittleEndianMark = "\xFF\xFE";
  constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
  if (bytes.starts_with(kBigEndianMark)) {
    throw RuntimeError(ErrorNumber::kInvalidCall,
                       std::string(path) + ": " + Words(Reason::kHighByteFirst));
  }
  if (bytes.starts_with(kLittleEndianMark) || bytes.starts_with(kUtf8Mark)) return;
  if (bytes.find('\0') != std::string_view::npos) {
    throw RuntimeError(ErrorNumber::kInvalidCall,
                       std::string(path) + ": " + Words(Reason::kZeroBytes));
  }
}

}  // namespace

ProfileFiles::Kept& ProfileFiles::Read(std::string_view path, Trust trust) {
  std::unique_ptr<Kept>& kept = kept_[KeyOf(path)];
  if (kept == nullptr) kept = std::make_unique<Kept>();

  // The stamp is taken before the bytes: a change between the two is then seen at the next call.
  const std::optional<FileStamp> stamp = files_.Stamp(path);
  if (trust == Trust::kStamp && stamp && kept->exists && kept->stamp == *stamp) return *kept;
  if (stamp && stamp->length_bytes > kMostBytes) {
    throw RuntimeError(ErrorNumber::kOutOfMemory,
                       std::string(path) + ": " + Words(Reason::kProfileTooLarge));
  }
  Kept read;
  try {
    // A path without a stamp is read too: what exists and cannot be read must throw.
    const std::string bytes = files_.ReadWhole(path);
    RefuseUnreadableEncoding(path, bytes);
    if (kept->exists && bytes == kept->document.Bytes()) {
      read.document = std::move(kept->document);
    } else {
      read.document = ProfileDocument(bytes);
    }
    read.exists = stamp.has_value();
    read.stamp = stamp.value_or(FileStamp());
  } catch (const RuntimeError& error) {
    // What was there a moment ago is no missing file: it would be read as an empty one.
    if (stamp || !MeansMissing(error.Number())) throw;
  }
  *kept = std::move(read);
  return *kept;
}

const ProfileDocument& ProfileFiles::Open(std::string_view path) {
  return Read(path, Trust::kStamp).document;
}

void ProfileFiles::Change(std::string_view path,
                          const std::function<void(ProfileDocument&)>& edit) {
  Kept& kept = Read(path, Trust::kNothing);
  ProfileDocument after = kept.document;
  edit(after);
  const std::string bytes = after.Bytes();
  if (bytes == kept.document.Bytes()) return;
  files_.ReplaceWhole(path, bytes);

  const std::optional<FileStamp> stamp = files_.Stamp(path);
  kept.document = std::move(after);
  kept.exists = stamp.has_value();
  kept.stamp = stamp.value_or(FileStamp());
}

}  // namespace txs
