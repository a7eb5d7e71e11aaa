#include "tool/archive_check.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "environment/code_page.h"
#include "environment/runtime_error.h"
#include "strings/reason.h"

namespace txs {
namespace {

constexpr std::uint32_t kLocalSignature = 0x04034B50;
constexpr std::uint32_t kCentralSignature = 0x02014B50;
constexpr std::uint32_t kEndSignature = 0x06054B50;
constexpr std::uint32_t kZip64EndSignature = 0x06064B50;
constexpr std::uint32_t kZip64LocatorSignature = 0x07064B50;
constexpr std::uint32_t kDescriptorSignature = 0x08074B50;

constexpr std::uint64_t kLocalBytes = 30;
constexpr std::uint64_t kCentralBytes = 46;
constexpr std::uint64_t kEndBytes = 22;
constexpr std::uint64_t kZip64EndBytes = 56;
constexpr std::uint64_t kZip64LocatorBytes = 20;
constexpr std::uint64_t kLongestComment = 65535;
constexpr std::size_t kBufferBytes = 65536;

constexpr std::uint16_t kZip64ExtraId = 1;
constexpr std::uint16_t kFull16 = 0xFFFF;      // the true figure stands in a ZIP64 field
constexpr std::uint32_t kFull32 = 0xFFFFFFFF;  // likewise

constexpr unsigned kFlagDescriptor = 1U << 3;
constexpr unsigned kFlagUtf8 = 1U << 11;
// Bits 1 and 2 only tell how hard the packer tried.
constexpr unsigned kFlagsUnderstood = kFlagDescriptor | kFlagUtf8 | 1U << 1 | 1U << 2;
constexpr unsigned kNewestVersion = 45;  // ZIP64

constexpr unsigned kStored = 0;
constexpr unsigned kDeflated = 8;

// Ends the check of one archive; `what` goes into the report.
struct Fault {
  std::string what;
};

[[noreturn]] void Fail(std::string what) { throw Fault{std::move(what)}; }

// Little-endian figures one after the other. Reading beyond the end is a fault of the archive.
class Fields {
 public:
  explicit Fields(std::span<const std::byte> bytes) : bytes_(bytes) {}

  std::uint16_t U16() { return static_cast<std::uint16_t>(Number(2)); }
  std::uint32_t U32() { return static_cast<std::uint32_t>(Number(4)); }
  std::uint64_t U64() { return Number(8); }

  std::span<const std::byte> Take(std::size_t count) {
    if (count > bytes_.size()) Fail("a header is cut short");
    const std::span<const std::byte> taken = bytes_.first(count);
    bytes_ = bytes_.subspan(count);
    return taken;
  }

  [[nodiscard]] bool AtEnd() const { return bytes_.empty(); }

 private:
  std::uint64_t Number(std::size_t count) {
    std::uint64_t number = 0;
    const std::span<const std::byte> taken = Take(count);
    for (std::size_t i = count; i > 0; --i) {
      number = number << 8 | std::to_integer<std::uint64_t>(taken[i - 1]);
    }
    return number;
  }

  std::span<const std::byte> bytes_;
};

// The pieces as one sequence of bytes. At most one of them is open.
class JoinedPieces {
 public:
  JoinedPieces(const FileReader& files, const std::vector<ArchivePiece>& pieces)
      : files_(files), pieces_(pieces) {
    ends_.reserve(pieces.size());
    for (const ArchivePiece& piece : pieces) {
      if (piece.length_bytes > std::numeric_limits<std::uint64_t>::max() - length_) {
        Fail("the pieces are too long");
      }
      length_ += piece.length_bytes;
      ends_.push_back(length_);
    }
  }

  [[nodiscard]] std::uint64_t Length() const { return length_; }

  // All of `buffer`, from `offset` bytes behind the start of the archive.
  void Read(std::uint64_t offset, std::span<std::byte> buffer) {
    while (!buffer.empty()) {
      const auto end = std::upper_bound(ends_.begin(), ends_.end(), offset);
      if (end == ends_.end()) Fail("the archive is cut short");
      const auto piece = static_cast<std::size_t>(end - ends_.begin());
      const std::uint64_t begin = piece == 0 ? 0 : ends_[piece - 1];
      MoveTo(piece, offset - begin);
      const auto wanted =
          static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), *end - offset));
      const std::size_t got = open_->Read(buffer.first(wanted));
      if (got == 0) Fail("the archive is cut short");
      position_ += got;
      offset += got;
      buffer = buffer.subspan(got);
    }
  }

 private:
  void MoveTo(std::size_t piece, std::uint64_t position) {
    if (open_ == nullptr || piece != open_piece_) {
      open_.reset();
      open_ = files_.OpenForReading(pieces_[piece].path);
      open_piece_ = piece;
      position_ = 0;
    }
    if (position_ != position) open_->Seek(position);
    position_ = position;
  }

  const FileReader& files_;
  const std::vector<ArchivePiece>& pieces_;
  std::vector<std::uint64_t> ends_;  // where each piece ends, from the start of the archive
  std::uint64_t length_ = 0;
  std::unique_ptr<InputFile> open_;
  std::size_t open_piece_ = 0;
  std::uint64_t position_ = 0;
};

std::vector<std::byte> ReadBytes(JoinedPieces& archive, std::uint64_t offset, std::uint64_t count) {
  if (offset > archive.Length() || count > archive.Length() - offset) {
    Fail("a header lies outside the archive");
  }
  std::vector<std::byte> bytes(static_cast<std::size_t>(count));
  archive.Read(offset, bytes);
  return bytes;
}

// What both headers of an entry tell.
struct Entry {
  unsigned version_needed = 0;
  unsigned flags = 0;
  unsigned method = 0;
  std::uint32_t time_and_date = 0;
  std::uint32_t crc = 0;
  std::uint64_t packed_bytes = 0;
  std::uint64_t bytes = 0;
  std::string name;  // as stored
};

// A figure of 32 bits, or the one of 64 bits that replaces it.
void TakeZip64(std::uint64_t& figure, Fields& zip64) {
  if (figure == kFull32) figure = zip64.U64();
}

// The ZIP64 field among the extra fields, empty when there is none.
std::span<const std::byte> FindZip64Field(std::span<const std::byte> extra) {
  Fields fields(extra);
  std::span<const std::byte> found;
  while (!fields.AtEnd()) {
    const std::uint16_t id = fields.U16();
    const std::span<const std::byte> data = fields.Take(fields.U16());
    if (id == kZip64ExtraId) found = data;
  }
  return found;
}

// Both headers share this run of fields.
void ReadCommonFields(Fields& fields, Entry& entry) {
  entry.version_needed = fields.U16();
  entry.flags = fields.U16();
  entry.method = fields.U16();
  entry.time_and_date = fields.U32();
  entry.crc = fields.U32();
  entry.packed_bytes = fields.U32();
  entry.bytes = fields.U32();
}

std::string Text(std::span<const std::byte> bytes) {
  std::string text(bytes.size(), '\0');
  if (!bytes.empty()) std::memcpy(text.data(), bytes.data(), bytes.size());
  return text;
}

// Where the central directory stands.
struct Directory {
  std::uint64_t entries = 0;
  std::uint64_t bytes = 0;
  std::uint64_t offset = 0;
  std::uint64_t end = 0;  // where the records begin that close the archive
};

std::uint64_t FindEndRecord(JoinedPieces& archive) {
  const std::uint64_t length = archive.Length();
  if (length < kEndBytes) Fail("too short for an archive");
  const auto searched =
      static_cast<std::size_t>(std::min<std::uint64_t>(length, kEndBytes + kLongestComment));
  const std::vector<std::byte> tail = ReadBytes(archive, length - searched, searched);
  for (auto at = tail.size() - static_cast<std::size_t>(kEndBytes) + 1; at > 0; --at) {
    const std::span<const std::byte> record = std::span(tail).subspan(at - 1);
    Fields fields(record);
    if (fields.U32() != kEndSignature) continue;
    static_cast<void>(fields.Take(kEndBytes - 6));
    // Only a comment of just this length makes it the end; else the bytes are a chance likeness.
    if (fields.U16() == record.size() - kEndBytes) return length - searched + at - 1;
  }
  Fail("the end of the archive is missing");
}

void ReadZip64Directory(JoinedPieces& archive, Directory& directory) {
  if (directory.end < kZip64LocatorBytes) Fail("the ZIP64 locator is missing");
  const std::vector<std::byte> locator_bytes =
      ReadBytes(archive, directory.end - kZip64LocatorBytes, kZip64LocatorBytes);
  Fields locator(locator_bytes);
  if (locator.U32() != kZip64LocatorSignature) Fail("the ZIP64 locator is missing");
  const std::uint32_t disk = locator.U32();
  const std::uint64_t record_offset = locator.U64();
  const std::uint32_t disks = locator.U32();

  const std::vector<std::byte> record_bytes = ReadBytes(archive, record_offset, kZip64EndBytes);
  Fields record(record_bytes);
  if (record.U32() != kZip64EndSignature) Fail("the ZIP64 end record is missing");
  const std::uint64_t rest_bytes = record.U64();
  const unsigned version_made_by = record.U16() & 0xFFU;
  const unsigned version_needed = record.U16();
  const std::uint32_t disk_here = record.U32();
  const std::uint32_t disk_of_directory = record.U32();
  const std::uint64_t entries_here = record.U64();
  directory.entries = record.U64();
  directory.bytes = record.U64();
  directory.offset = record.U64();
  const bool sound = disk == 0 && disks == 1 && disk_here == 0 && disk_of_directory == 0 &&
                     entries_here == directory.entries && version_needed <= kNewestVersion &&
                     version_made_by >= kNewestVersion && rest_bytes == kZip64EndBytes - 12 &&
                     record_offset + kZip64EndBytes == directory.end - kZip64LocatorBytes;
  if (!sound) Fail("the ZIP64 end record contradicts itself");
  directory.end = record_offset;
}

Directory FindDirectory(JoinedPieces& archive) {
  Directory directory;
  directory.end = FindEndRecord(archive);
  const std::vector<std::byte> bytes = ReadBytes(archive, directory.end, kEndBytes);
  Fields fields(bytes);
  static_cast<void>(fields.U32());
  const std::uint16_t disk_here = fields.U16();
  const std::uint16_t disk_of_directory = fields.U16();
  const std::uint16_t entries_here = fields.U16();
  directory.entries = fields.U16();
  directory.bytes = fields.U32();
  directory.offset = fields.U32();

  const Directory plain = directory;
  const bool zip64 = plain.entries == kFull16 || plain.bytes == kFull32 || plain.offset == kFull32;
  if (zip64) ReadZip64Directory(archive, directory);
  const bool sound = disk_here == disk_of_directory && (disk_here == 0 || disk_here == kFull16) &&
                     (disk_here == 0 || zip64) && entries_here == plain.entries &&
                     (plain.entries == kFull16 || plain.entries == directory.entries) &&
                     (plain.bytes == kFull32 || plain.bytes == directory.bytes) &&
                     (plain.offset == kFull32 || plain.offset == directory.offset);
  if (!sound) Fail("the end record contradicts itself");
  if (directory.entries != 1) Fail("holds " + std::to_string(directory.entries) + " entries");
  return directory;
}

Entry ReadCentralHeader(JoinedPieces& archive, const Directory& directory) {
  // One entry: a header, a name and extra fields of at most 64 KiB each, a comment likewise.
  constexpr std::uint64_t kLongestHeader = kCentralBytes + 3 * std::uint64_t{65535};
  const bool in_place = directory.bytes <= kLongestHeader && directory.offset <= directory.end &&
                        directory.end - directory.offset == directory.bytes;
  if (!in_place) Fail("the directory is not where the end record says");
  const std::vector<std::byte> bytes = ReadBytes(archive, directory.offset, directory.bytes);
  Fields fields(bytes);
  if (fields.U32() != kCentralSignature) Fail("the directory is damaged");
  static_cast<void>(fields.U16());  // made by
  Entry entry;
  ReadCommonFields(fields, entry);
  const std::size_t name_bytes = fields.U16();
  const std::size_t extra_bytes = fields.U16();
  const std::size_t comment_bytes = fields.U16();
  const std::uint16_t disk = fields.U16();
  static_cast<void>(fields.U16());  // attributes
  static_cast<void>(fields.U32());
  std::uint64_t offset = fields.U32();
  entry.name = Text(fields.Take(name_bytes));
  const std::span<const std::byte> extra = fields.Take(extra_bytes);
  static_cast<void>(fields.Take(comment_bytes));
  if (!fields.AtEnd()) Fail("the directory is damaged");

  Fields zip64(FindZip64Field(extra));
  TakeZip64(entry.bytes, zip64);
  TakeZip64(entry.packed_bytes, zip64);
  TakeZip64(offset, zip64);
  if (disk == kFull16) {
    if (zip64.U32() != 0) Fail("the directory is damaged");
  } else if (disk != 0) {
    Fail("the directory is damaged");
  }
  if (!zip64.AtEnd()) Fail("the directory is damaged");
  if (offset != 0) Fail("the entry does not begin where the archive begins");
  return entry;
}

// Reads the local header, and sets `data_offset` to where the packed contents begin.
Entry ReadLocalHeader(JoinedPieces& archive, std::uint64_t& data_offset) {
  const std::vector<std::byte> bytes = ReadBytes(archive, /*offset=*/0, kLocalBytes);
  Fields fields(bytes);
  if (fields.U32() != kLocalSignature) Fail("the beginning of the archive is damaged");
  Entry entry;
  ReadCommonFields(fields, entry);
  const std::uint64_t name_bytes = fields.U16();
  const std::uint64_t extra_bytes = fields.U16();
  data_offset = kLocalBytes + name_bytes + extra_bytes;

  entry.name = Text(ReadBytes(archive, kLocalBytes, name_bytes));
  const std::vector<std::byte> extra = ReadBytes(archive, kLocalBytes + name_bytes, extra_bytes);
  Fields zip64(FindZip64Field(extra));
  // A packer that does not know the sizes yet writes a ZIP64 field in case it is needed; the
  // central header then tells them.
  if (entry.bytes == kFull32 || entry.packed_bytes == kFull32) {
    TakeZip64(entry.bytes, zip64);
    TakeZip64(entry.packed_bytes, zip64);
    if (!zip64.AtEnd()) Fail("the local header is damaged");
  }
  return entry;
}

void CompareHeaders(const Entry& local, const Entry& central) {
  const bool same = local.version_needed == central.version_needed &&
                    local.flags == central.flags && local.method == central.method &&
                    local.time_and_date == central.time_and_date && local.name == central.name;
  if (!same) Fail("local and central header differ");
  const bool same_figures = local.crc == central.crc && local.bytes == central.bytes &&
                            local.packed_bytes == central.packed_bytes;
  const bool left_to_descriptor = (central.flags & kFlagDescriptor) != 0 && local.crc == 0 &&
                                  local.bytes == 0 && local.packed_bytes == 0;
  if (!same_figures && !left_to_descriptor) Fail("local and central header differ");
  if (central.version_needed > kNewestVersion || (central.flags & ~kFlagsUnderstood) != 0) {
    Fail("is packed in a way that the setup does not know");
  }
  if (central.method != kStored && central.method != kDeflated) {
    Fail("is packed by the unknown method " + std::to_string(central.method));
  }
}

// What stands behind the packed contents up to the directory: nothing, or the figures once more.
void CheckDescriptor(JoinedPieces& archive, const Entry& entry, std::uint64_t offset,
                     const Directory& directory) {
  const std::uint64_t length = directory.offset - offset;
  if ((entry.flags & kFlagDescriptor) == 0) {
    if (length != 0) Fail("the packed contents do not end where the directory begins");
    return;
  }
  if (length != 12 && length != 16 && length != 20 && length != 24) {
    Fail("the packed contents do not end where the directory begins");
  }
  const std::vector<std::byte> bytes = ReadBytes(archive, offset, length);
  Fields fields(bytes);
  const bool has_signature = length % 8 == 0;
  const bool wide = length >= 20;
  if (has_signature && fields.U32() != kDescriptorSignature) Fail("the data descriptor is damaged");
  const std::uint32_t crc = fields.U32();
  const std::uint64_t packed_bytes = wide ? fields.U64() : fields.U32();
  const std::uint64_t entry_bytes = wide ? fields.U64() : fields.U32();
  if (crc != entry.crc || packed_bytes != entry.packed_bytes || entry_bytes != entry.bytes) {
    Fail("the data descriptor is damaged");
  }
}

class InflateStream {
 public:
  InflateStream() {
    constexpr int kRawInflateWindow = -15;
    if (inflateInit2(&stream_, kRawInflateWindow) != Z_OK) {
      throw RuntimeError(ErrorNumber::kOutOfMemory, Words(Reason::kOutOfMemory));
    }
  }
  InflateStream(const InflateStream&) = delete;
  InflateStream& operator=(const InflateStream&) = delete;
  ~InflateStream() { inflateEnd(&stream_); }

  [[nodiscard]] z_stream& Get() { return stream_; }

 private:
  z_stream stream_ = {};
};

// The contents' length and CRC, counted up block by block.
class Contents {
 public:
  explicit Contents(std::uint64_t length) : length_(length) {}

  void Add(std::span<const std::byte> bytes) {
    if (bytes.size() > length_ - counted_) Fail("the contents are longer than the header says");
    counted_ += bytes.size();
    crc_ = crc32_z(crc_, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
  }

  void Finish(std::uint32_t crc) const {
    if (counted_ != length_) Fail("the contents are shorter than the header says");
    if (crc_ != crc) Fail("the contents do not have the CRC of the header");
  }

 private:
  std::uint64_t length_;
  std::uint64_t counted_ = 0;
  uLong crc_ = 0;
};

void ReadStored(JoinedPieces& archive, const Entry& entry, std::uint64_t offset,
                Contents& contents) {
  if (entry.packed_bytes != entry.bytes) Fail("stored contents of two lengths");
  std::vector<std::byte> buffer(kBufferBytes);
  std::uint64_t remaining = entry.packed_bytes;
  while (remaining > 0) {
    const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(remaining, buffer.size()));
    const std::span<std::byte> block = std::span(buffer).first(size);
    archive.Read(offset, block);
    contents.Add(block);
    offset += size;
    remaining -= size;
  }
}

void Inflate(JoinedPieces& archive, const Entry& entry, std::uint64_t offset, Contents& contents) {
  std::vector<std::byte> input(kBufferBytes);
  std::vector<std::byte> output(kBufferBytes);
  InflateStream inflater;
  z_stream& stream = inflater.Get();
  std::uint64_t remaining = entry.packed_bytes;
  for (;;) {
    if (stream.avail_in == 0 && remaining > 0) {
      const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(remaining, input.size()));
      archive.Read(offset, std::span(input).first(size));
      stream.next_in = reinterpret_cast<Bytef*>(input.data());
      stream.avail_in = static_cast<uInt>(size);
      offset += size;
      remaining -= size;
    }
    stream.next_out = reinterpret_cast<Bytef*>(output.data());
    stream.avail_out = static_cast<uInt>(output.size());
    const int result = inflate(&stream, Z_NO_FLUSH);
    if (result == Z_MEM_ERROR)
      throw RuntimeError(ErrorNumber::kOutOfMemory, Words(Reason::kOutOfMemory));
    if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR) {
      Fail("the packed contents are damaged");
    }
    const std::size_t produced = output.size() - stream.avail_out;
    contents.Add(std::span(output).first(produced));
    if (result == Z_STREAM_END) break;
    if (produced == 0 && stream.avail_in == 0 && remaining == 0) {
      Fail("the packed contents are cut short");
    }
  }
  if (stream.avail_in != 0 || remaining != 0)
    Fail("surplus bytes stand behind the packed contents");
}

bool IsAscii(std::string_view text) {
  return std::none_of(text.begin(), text.end(),
                      [](char c) { return (static_cast<unsigned char>(c) & 0x80) != 0; });
}

// Each character outside ASCII as one "?".
std::string AsciiOutline(std::string_view utf8) {
  std::string outline;
  for (const char c : utf8) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      outline += c;
    } else if (byte >= 0xC0) {
      outline += '?';
    }
  }
  return outline;
}

bool SameName(const Entry& entry, std::string_view expected) {
  if ((entry.flags & kFlagUtf8) != 0 || IsAscii(entry.name)) {
    return EqualNoCase(entry.name, expected);
  }
  // Nothing tells which code page an unflagged name is in; only its ASCII letters can be compared.
  return EqualNoCase(AsciiOutline(AnsiToUtf8(entry.name)), AsciiOutline(expected));
}

// Without the control characters with which a name could take over the terminal that it is shown
// in.
std::string ShownName(const Entry& entry) {
  const bool utf8 = (entry.flags & kFlagUtf8) != 0 && IsUtf8(entry.name);
  std::string name = utf8 ? entry.name : AnsiToUtf8(entry.name);
  std::replace_if(
      name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, '?');
  return name;
}

void Check(const FileReader& files, const std::vector<ArchivePiece>& pieces,
           const ArchiveExpectation& expected, std::vector<std::string>& faults) {
  JoinedPieces archive(files, pieces);
  const Directory directory = FindDirectory(archive);
  const Entry central = ReadCentralHeader(archive, directory);
  std::uint64_t data_offset = 0;
  const Entry local = ReadLocalHeader(archive, data_offset);
  CompareHeaders(local, central);
  if (!SameName(central, expected.entry_name)) {
    faults.push_back("holds \"" + ShownName(central) + "\", not \"" + expected.entry_name + "\"");
  }
  if (central.bytes != expected.length_bytes) {
    faults.push_back("holds " + std::to_string(central.bytes) + " bytes, the script says " +
                     std::to_string(expected.length_bytes));
  }
  if (data_offset > directory.offset || central.packed_bytes > directory.offset - data_offset) {
    Fail("the packed contents do not end where the directory begins");
  }
  CheckDescriptor(archive, central, data_offset + central.packed_bytes, directory);
  // A few bytes can claim to be terabytes.
  if (central.bytes > expected.length_bytes) return;
  Contents contents(central.bytes);
  if (central.method == kStored) {
    ReadStored(archive, central, data_offset, contents);
  } else {
    Inflate(archive, central, data_offset, contents);
  }
  contents.Finish(central.crc);
}

}  // namespace

std::vector<std::string> CheckArchive(const FileReader& files,
                                      const std::vector<ArchivePiece>& pieces,
                                      const ArchiveExpectation& expected) {
  std::vector<std::string> faults;
  try {
    Check(files, pieces, expected, faults);
  } catch (const Fault& fault) {
    faults.push_back(fault.what);
  }
  return faults;
}

}  // namespace txs
