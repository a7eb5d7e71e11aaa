// Every offset and size in an image is hostile until it was checked against the file's length: all
// reading goes through ImageFile, which answers nothing for bytes that are not there, and the walk
// is three levels deep by construction, so that a directory that points at itself cannot hold it.

#include "environment/version_info.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace txs {
namespace {

using Bytes = std::vector<std::byte>;

class ImageFile {
 public:
  ImageFile(const FileReader& files, std::string_view path)
      : file_(files.OpenForReading(path)), length_(file_->Length()) {
    head_ = ReadAt(0, static_cast<std::size_t>(std::min<std::uint64_t>(length_, kHeadBytes)));
  }

  // Exactly `size` bytes; nothing when the file does not hold them.
  [[nodiscard]] std::optional<Bytes> Get(std::uint64_t offset, std::size_t size) {
    if (offset > length_ || size > length_ - offset) return std::nullopt;
    if (offset + size <= head_.size()) {
      const auto begin = head_.begin() + static_cast<std::ptrdiff_t>(offset);
      return Bytes(begin, begin + static_cast<std::ptrdiff_t>(size));
    }
    Bytes bytes = ReadAt(offset, size);
    if (bytes.size() < size) return std::nullopt;
    return bytes;
  }

 private:
  // The headers of nearly every image lie in here, so one read serves them all.
  static constexpr std::uint64_t kHeadBytes = 4096;

  Bytes ReadAt(std::uint64_t offset, std::size_t size) {
    file_->Seek(offset);
    Bytes bytes(size);
    std::size_t done = 0;
    while (done < size) {
      const std::size_t got = file_->Read(std::span(bytes).subspan(done));
      if (got == 0) break;
      done += got;
    }
    bytes.resize(done);
    return bytes;
  }

  std::unique_ptr<InputFile> file_;
  std::uint64_t length_;
  Bytes head_;
};

// Little-endian numbers; callers have checked that the bytes are there.
std::uint16_t U16(const Bytes& bytes, std::size_t at) {
  return static_cast<std::uint16_t>(std::to_integer<unsigned>(bytes[at]) |
                                    std::to_integer<unsigned>(bytes[at + 1]) << 8);
}

std::uint32_t U32(const Bytes& bytes, std::size_t at) {
  return static_cast<std::uint32_t>(U16(bytes, at)) | static_cast<std::uint32_t>(U16(bytes, at + 2))
                                                          << 16;
}

constexpr std::uint32_t kVersionResourceType = 16;
constexpr std::size_t kFixedInfoBytes = 52;
// The fixed information stands at the front; what follows it is of no interest.
constexpr std::size_t kResourceHeadBytes = 40 + kFixedInfoBytes;

// `fixed_at` is where VS_FIXEDFILEINFO begins in a version resource: behind two (16-bit) or three
// (32-bit) words, the key "VS_VERSION_INFO" and padding to a multiple of four.
std::string VersionText(const Bytes& resource, std::size_t fixed_at) {
  constexpr std::uint32_t kSignature = 0xFEEF04BD;
  if (resource.size() < fixed_at + kFixedInfoBytes) return {};
  if (U32(resource, fixed_at) != kSignature) return {};
  const std::uint32_t high = U32(resource, fixed_at + 8);
  const std::uint32_t low = U32(resource, fixed_at + 12);
  return std::to_string(high >> 16) + '.' + std::to_string(high & 0xFFFF) + '.' +
         std::to_string(low >> 16) + '.' + std::to_string(low & 0xFFFF);
}

struct Section {
  std::uint32_t address;
  std::uint32_t raw_size;
  std::uint32_t raw_offset;
};

// Where in the file the byte at `address` of the loaded image stands, if at least `size` bytes of
// its section follow it there.
std::optional<std::uint64_t> FileOffset(const std::vector<Section>& sections, std::uint32_t address,
                                        std::uint32_t size) {
  for (const Section& section : sections) {
    if (address < section.address) continue;
    const std::uint32_t inside = address - section.address;
    if (inside >= section.raw_size || size > section.raw_size - inside) continue;
    return std::uint64_t{section.raw_offset} + inside;
  }
  return std::nullopt;
}

// The number that entry `wanted_id` of the resource directory at `directory` leads to; any first
// entry where `wanted_id` is nothing.
std::optional<std::uint32_t> DirectoryEntry(ImageFile& image, std::uint64_t directory,
                                            std::optional<std::uint32_t> wanted_id) {
  constexpr std::size_t kHeaderBytes = 16;
  constexpr std::size_t kEntryBytes = 8;
  const std::optional<Bytes> header = image.Get(directory, kHeaderBytes);
  if (!header) return std::nullopt;
  const std::size_t count = std::size_t{U16(*header, 12)} + U16(*header, 14);
  const std::size_t needed = wanted_id ? count : std::min<std::size_t>(count, 1);
  const std::optional<Bytes> entries = image.Get(directory + kHeaderBytes, needed * kEntryBytes);
  if (!entries) return std::nullopt;
  for (std::size_t at = 0; at < entries->size(); at += kEntryBytes) {
    if (!wanted_id || U32(*entries, at) == *wanted_id) return U32(*entries, at + 4);
  }
  return std::nullopt;
}

std::string VersionOfPe(ImageFile& image, std::uint64_t header_at) {
  constexpr std::size_t kFileHeaderBytes = 24;  // with the signature
  constexpr std::uint32_t kSubdirectory = 0x80000000;
  const std::optional<Bytes> file_header = image.Get(header_at, kFileHeaderBytes);
  if (!file_header) return {};
  const std::size_t section_count = U16(*file_header, 6);
  const std::size_t optional_size = U16(*file_header, 20);
  const std::optional<Bytes> optional_header =
      image.Get(header_at + kFileHeaderBytes, optional_size);
  if (!optional_header || optional_size < 2) return {};

  const std::uint16_t magic = U16(*optional_header, 0);
  std::size_t directories_at = 0;
  if (magic == 0x10B) {
    directories_at = 96;
  } else if (magic == 0x20B) {
    directories_at = 112;
  } else {
    return {};
  }
  constexpr std::size_t kResourceDirectory = 2;
  const std::size_t resource_at = directories_at + kResourceDirectory * 8;
  if (optional_size < resource_at + 8) return {};
  if (U32(*optional_header, directories_at - 4) <= kResourceDirectory) return {};
  const std::uint32_t resource_address = U32(*optional_header, resource_at);
  if (resource_address == 0) return {};

  constexpr std::size_t kSectionBytes = 40;
  const std::optional<Bytes> table =
      image.Get(header_at + kFileHeaderBytes + optional_size, section_count * kSectionBytes);
  if (!table) return {};
  std::vector<Section> sections;
  for (std::size_t at = 0; at < table->size(); at += kSectionBytes) {
    sections.push_back({U32(*table, at + 12), U32(*table, at + 16), U32(*table, at + 20)});
  }
  const std::optional<std::uint64_t> root = FileOffset(sections, resource_address, /*size=*/16);
  if (!root) return {};

  // Type, then name, then language; of several names or languages the first one counts.
  const std::optional<std::uint32_t> type = DirectoryEntry(image, *root, kVersionResourceType);
  if (!type || (*type & kSubdirectory) == 0) return {};
  const std::optional<std::uint32_t> name =
      DirectoryEntry(image, *root + (*type & ~kSubdirectory), std::nullopt);
  if (!name || (*name & kSubdirectory) == 0) return {};
  const std::optional<std::uint32_t> language =
      DirectoryEntry(image, *root + (*name & ~kSubdirectory), std::nullopt);
  if (!language || (*language & kSubdirectory) != 0) return {};

  const std::optional<Bytes> entry = image.Get(*root + *language, 16);
  if (!entry || U32(*entry, 4) < kResourceHeadBytes) return {};
  const std::optional<std::uint64_t> data =
      FileOffset(sections, U32(*entry, 0), std::uint32_t{kResourceHeadBytes});
  if (!data) return {};
  const std::optional<Bytes> resource = image.Get(*data, kResourceHeadBytes);
  return resource ? VersionText(*resource, 40) : std::string();
}

std::string VersionOfNe(ImageFile& image, std::uint64_t header_at) {
  const std::optional<Bytes> header = image.Get(header_at, 0x40);
  if (!header) return {};
  const std::size_t resources = U16(*header, 0x24);
  const std::size_t names = U16(*header, 0x26);  // the table that follows the resource table
  if (names <= resources) return {};
  const std::optional<Bytes> table = image.Get(header_at + resources, names - resources);
  if (!table || table->size() < 2) return {};
  const unsigned shift = U16(*table, 0);
  if (shift > 16) return {};

  constexpr std::size_t kTypeBytes = 8;
  constexpr std::size_t kNameBytes = 12;
  constexpr std::uint16_t kVersionType = 0x8000 | kVersionResourceType;
  std::size_t at = 2;
  while (at + kTypeBytes <= table->size()) {
    const std::uint16_t type = U16(*table, at);
    const std::size_t count = U16(*table, at + 2);
    if (type == 0) break;
    at += kTypeBytes;
    if (type == kVersionType && count > 0) {
      if (at + kNameBytes > table->size()) return {};
      const std::uint64_t offset = std::uint64_t{U16(*table, at)} << shift;
      constexpr std::size_t kNarrowHeadBytes = 20 + kFixedInfoBytes;
      const std::optional<Bytes> resource = image.Get(offset, kNarrowHeadBytes);
      return resource ? VersionText(*resource, 20) : std::string();
    }
    at += count * kNameBytes;
  }
  return {};
}

}  // namespace

std::string FileVersion(const FileReader& files, std::string_view path) {
  ImageFile image(files, path);
  const std::optional<Bytes> dos_header = image.Get(0, 0x40);
  if (!dos_header || U16(*dos_header, 0) != 0x5A4D) return {};  // "MZ"
  const std::uint64_t header_at = U32(*dos_header, 0x3C);
  const std::optional<Bytes> signature = image.Get(header_at, 4);
  if (!signature) return {};
  if (U32(*signature, 0) == 0x00004550) return VersionOfPe(image, header_at);  // "PE\0\0"
  if (U16(*signature, 0) == 0x454E) return VersionOfNe(image, header_at);      // "NE"
  return {};
}

}  // namespace txs
