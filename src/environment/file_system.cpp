#include "environment/file_system.h"

#include "environment/code_page.h"
#include "environment/runtime_error.h"
#include "strings/reason.h"

namespace txs {
namespace {

constexpr std::uint64_t kMaxWholeBytes = std::uint64_t{2} * 1024 * 1024 * 1024;

[[noreturn]] void ThrowNotFound(std::string_view path) {
  throw RuntimeError(ErrorNumber::kFileNotFound,
                     std::string(path) + ": " + Words(Reason::kFileNotFound));
}

}  // namespace

std::string PrintableName(std::string_view name) {
  constexpr std::string_view kHexDigits = "0123456789ABCDEF";
  const bool is_text = IsUtf8(name);
  std::string printable;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    const bool can_be_shown = byte >= 0x20 && byte != 0x7F && (is_text || byte < 0x80);
    if (can_be_shown) {
      printable += c;
    } else {
      printable += {'\\', 'x', kHexDigits[byte >> 4], kHexDigits[byte & 0xF]};
    }
  }
  return printable;
}

std::string FileReader::ReadWhole(std::string_view path) const {
  const std::unique_ptr<InputFile> file = OpenForReading(path);
  if (file->Length() > kMaxWholeBytes) {
    throw RuntimeError(ErrorNumber::kOutOfMemory,
                       std::string(path) + ": " + Words(Reason::kTooLargeToRead));
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
