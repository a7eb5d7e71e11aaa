// The archives of an installation as `verify` reads them.
//
// Input: one byte, which tells into how many pieces the archive is divided, and the archive.

#include <zlib.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "environment/code_page.h"
#include "fakes/memory_file_system.h"
#include "fuzz/fuzz_support.h"
#include "tool/archive_check.h"

namespace txs::fuzz {
namespace {

constexpr std::uint64_t kMostContents = std::uint64_t{4} << 20;

std::uint64_t Number(std::string_view bytes, std::size_t at, std::size_t count) {
  std::uint64_t number = 0;
  for (std::size_t i = count; i > 0; --i) {
    number = number << 8 | static_cast<unsigned char>(bytes[at + i - 1]);
  }
  return number;
}

// What the one entry says of itself, read as simply as can be.
struct Entry {
  std::string name;
  unsigned method = 0;
  std::uint64_t crc = 0;
  std::uint64_t packed_bytes = 0;
  std::uint64_t bytes = 0;
  std::size_t data_offset = 0;
};

// The last header of a directory that the end of the archive follows: its signature alone may stand
// anywhere, in the fields of the header, too.
std::size_t FindHeader(std::string_view archive) {
  constexpr std::size_t kHeaderBytes = 46;
  std::size_t at = archive.rfind("PK\x01\x02");
  for (; at != std::string_view::npos && at > 0; at = archive.rfind("PK\x01\x02", at - 1)) {
    if (archive.size() - at < kHeaderBytes) continue;
    const auto length = kHeaderBytes + static_cast<std::size_t>(Number(archive, at + 28, 2) +
                                                                Number(archive, at + 30, 2) +
                                                                Number(archive, at + 32, 2));
    const std::string_view behind = archive.substr(std::min(at + length, archive.size()), 4);
    if (behind == "PK\x05\x06" || behind == "PK\x06\x06") return at;
  }
  return std::string_view::npos;
}

std::optional<Entry> ReadEntry(std::string_view archive) {
  const std::size_t at = FindHeader(archive);
  if (at == std::string_view::npos || archive.size() < 30) return std::nullopt;
  Entry entry;
  entry.method = static_cast<unsigned>(Number(archive, at + 10, 2));
  entry.crc = Number(archive, at + 16, 4);
  entry.packed_bytes = Number(archive, at + 20, 4);
  entry.bytes = Number(archive, at + 24, 4);
  const auto name_bytes = static_cast<std::size_t>(Number(archive, at + 28, 2));
  entry.name = archive.substr(at + 46, name_bytes);
  std::string_view extra = archive.substr(std::min(at + 46 + name_bytes, archive.size()));
  extra = extra.substr(0, static_cast<std::size_t>(Number(archive, at + 30, 2)));
  while (extra.size() >= 4) {
    const auto length = static_cast<std::size_t>(Number(extra, 2, 2));
    if (Number(extra, 0, 2) == 1) {
      std::string_view wide = extra.substr(4, length);
      for (std::uint64_t* figure : {&entry.bytes, &entry.packed_bytes}) {
        if (*figure != 0xFFFFFFFF || wide.size() < 8) continue;
        *figure = Number(wide, 0, 8);
        wide.remove_prefix(8);
      }
    }
    extra.remove_prefix(std::min(4 + length, extra.size()));
  }
  entry.data_offset =
      static_cast<std::size_t>(30 + Number(archive, 26, 2) + Number(archive, 28, 2));
  return entry;
}

// The contents, unpacked in one go; nothing when they are not what the entry says.
bool UnpacksToWhatItSays(std::string_view archive, const Entry& entry) {
  if (entry.data_offset > archive.size() ||
      entry.packed_bytes > archive.size() - entry.data_offset) {
    return false;
  }
  std::string packed(
      archive.substr(entry.data_offset, static_cast<std::size_t>(entry.packed_bytes)));
  std::string contents = packed;
  if (entry.method == 8) {
    contents.assign(static_cast<std::size_t>(entry.bytes) + 1, '\0');
    z_stream stream = {};
    if (inflateInit2(&stream, -15) != Z_OK) return false;
    stream.next_in = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = reinterpret_cast<Bytef*>(contents.data());
    stream.avail_out = static_cast<uInt>(contents.size());
    const int result = inflate(&stream, Z_FINISH);
    contents.resize(stream.total_out);
    inflateEnd(&stream);
    if (result != Z_STREAM_END || stream.avail_in != 0) return false;
  }
  const uLong crc = crc32_z(0, reinterpret_cast<const Bytef*>(contents.data()), contents.size());
  return contents.size() == entry.bytes && crc == entry.crc;
}

using Faults = std::vector<std::string>;

Faults CheckInPieces(std::string_view archive, std::size_t count,
                     const ArchiveExpectation& expected) {
  MemoryFileSystem files;
  std::vector<ArchivePiece> pieces;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t begin = archive.size() * i / count;
    const std::size_t end = archive.size() * (i + 1) / count;
    const std::string path = "C:\\DISK" + std::to_string(i + 1) + "\\x.zip";
    files.AddFile(path, archive.substr(begin, end - begin));
    pieces.push_back({path, end - begin});
  }
  Faults faults;
  const Allocations allocations;
  const std::optional<ErrorNumber> error =
      ErrorFrom([&] { faults = CheckArchive(files, pieces, expected); });
  allocations.RequireAtMost(archive.size(), 40, "checking an archive takes little memory");
  Require(!error, "whatever an archive holds is a fault and no error");
  for (const auto& [operation, path] : files.diary) {
    Require(operation == "OpenForReading" || operation == "Read" || operation == "Seek",
            "checking an archive only reads");
  }
  Require(files.diary.size() <= 100 + 12 * count + archive.size() / 1024,
          "an archive is read a few times only");
  return faults;
}

void FuzzArchiveCheck(std::string_view input) {
  if (input.empty()) return;
  const std::size_t count = 1 + static_cast<unsigned char>(input[0]) % 7;
  const std::string_view archive = input.substr(1);
  const std::optional<Entry> entry = ReadEntry(archive);
  ArchiveExpectation expected{"x.dll", 100};
  if (entry) {
    expected.length_bytes = std::min(entry->bytes, kMostContents);
    // Of the script only names come that can be files.
    const std::string name = IsUtf8(entry->name) ? entry->name : AnsiToUtf8(entry->name);
    if (IsShowable(name)) expected.entry_name = name;
  }

  const Faults faults = CheckInPieces(archive, /*count=*/1, expected);

  Require(CheckInPieces(archive, count, expected) == faults,
          "an archive in pieces has the faults that it has in one");
  for (const std::string& fault : faults) {
    Require(IsShowable(fault), "a fault is text that can be shown");
  }
  if (!faults.empty()) return;
  Require(entry.has_value(), "what is sound has an entry");
  Require(entry->bytes == expected.length_bytes, "what is sound has the length that was asked for");
  Require(UnpacksToWhatItSays(archive, *entry), "what is sound unpacks to what it says");
  Require(!CheckInPieces(std::string(archive) + "+", 1, expected).empty(),
          "nothing may stand behind a sound archive");
  Require(!CheckInPieces(archive.substr(0, archive.size() - 1), 1, expected).empty(),
          "nothing may be missing from a sound archive");
}

}  // namespace
}  // namespace txs::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  txs::fuzz::FuzzArchiveCheck(txs::fuzz::AsText(data, size));
  return 0;
}
