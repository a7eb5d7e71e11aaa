#include "environment/file_system.h"

#include "environment/runtime_error.h"

namespace txs {
namespace {

constexpr std::uint64_t kMaxWholeBytes = std::uint64_t{2} * 1024 * 1024 * 1024;

[[noreturn]] void ThrowNotFound(std::string_view path) {
  throw RuntimeError(ErrorNumber::kFileNotFound, std::string(path) + ": file not found");
}

}  // namespace

std::string FileReader::ReadWhole(std::string_view path) const {
  const std::unique_ptr<InputFile> file = OpenForReading(path);
  if (file->Length() > kMaxWholeBytes) {
    throw RuntimeError(ErrorNumber::kOutOfMemory,
                       std::string(path) + ": larger than 2 GiB, too large to be read at once");
  }
  std::string bytes(static_cast<std::size_t>(file->Length()), '\0');
  std::size_t filled = 0;
  while (filled < bytes.size()) {
    const std::size_t count = file->Read(std::as_writable_bytes(std::span(bytes)).subspan(filled));
    if (count == 0) break;  // cut short meanwhile: what is there now is what was read
    filled += count;
  }
  bytes.resize(filled);
  return bytes;
}

std::uint64_t FileReader::Length(std::string_view path) const {
  const std::optional<FileStamp> stamp = Stamp(path);
  if (!stamp) ThrowNotFound(path);
  return stamp->length_bytes;
}

FileTime FileReader::LastWriteTime(std::string_view path) const {
  const std::optional<FileStamp> stamp = Stamp(path);
  if (!stamp) ThrowNotFound(path);
  return stamp->last_write;
}

}  // namespace txs
