// The file version of program files.
//
// Input: an image. Also four numbers of 16 bits, and four bytes for the layout, of an image that is
// made with that version in it; what is left over of the input fills its gaps.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "environment/version_info.h"
#include "fakes/memory_file_system.h"
#include "fuzz/fuzz_support.h"

namespace txs::fuzz {
namespace {

constexpr char kPath[] = "C:\\x.dll";

// "1.2.3.4", each number as 16 bits hold it and without leading zeros.
bool IsVersion(std::string_view text) {
  int parts = 0;
  bool at_end = false;
  while (!at_end) {
    at_end = text.find('.') == std::string_view::npos;
    const std::string_view number = TakeUntil(&text, '.');
    const bool digits =
        !number.empty() && std::ranges::all_of(number, [](char c) { return c >= '0' && c <= '9'; });
    if (!digits || number.size() > 5 || (number.size() > 1 && number[0] == '0')) return false;
    if (std::stoul(std::string(number)) > 0xFFFF) return false;
    ++parts;
  }
  return parts == 4;
}

std::string VersionOf(std::string_view image) {
  MemoryFileSystem files;
  files.AddFile(kPath, image);
  const std::string version = FileVersion(files, kPath);
  constexpr std::size_t kMostOperations = 40;
  Require(files.diary.size() <= kMostOperations, "a version is found in a few looks at the file");
  for (const auto& [operation, path] : files.diary) {
    Require(operation == "OpenForReading" || operation == "Read" || operation == "Seek",
            "looking for a version only reads");
    Require(path == kPath, "looking for a version reads the file and no other");
  }
  return version;
}

constexpr std::string_view kSignature = "\xBD\x04\xEF\xFE";
constexpr std::size_t kFixedInfoBytes = 52;

std::uint16_t WordAt(std::string_view bytes, std::size_t at) {
  const auto byte = [&](std::size_t i) {
    return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U;
  };
  return static_cast<std::uint16_t>(byte(at) | byte(at + 1) << 8);
}

// Whether fixed version information with this version stands anywhere in the image.
bool Holds(std::string_view image, std::string_view version) {
  for (std::size_t at = image.find(kSignature); at != std::string_view::npos;
       at = image.find(kSignature, at + 1)) {
    std::string found;
    for (const std::size_t part : {10, 8, 14, 12}) {
      found += (found.empty() ? "" : ".") + std::to_string(WordAt(image, at + part));
    }
    if (found == version) return true;
  }
  return false;
}

void Put(std::string& bytes, std::size_t at, std::uint64_t value, std::size_t size) {
  if (bytes.size() < at + size) bytes.resize(at + size);
  for (std::size_t i = 0; i < size; ++i) bytes[at + i] = static_cast<char>(value >> (8 * i) & 0xFF);
}
void Put16(std::string& bytes, std::size_t at, std::uint64_t value) { Put(bytes, at, value, 2); }
void Put32(std::string& bytes, std::size_t at, std::uint64_t value) { Put(bytes, at, value, 4); }

using Version = std::array<std::uint16_t, 4>;
using Layout = std::array<std::size_t, 3>;

// VS_FIXEDFILEINFO; what stands behind the file version is the gap's.
void PutFixedInfo(std::string& image, std::size_t at, const Version& version) {
  image.resize(std::max(image.size(), at + kFixedInfoBytes));
  image.replace(at, kSignature.size(), kSignature);
  Put16(image, at + 8, version[1]);
  Put16(image, at + 10, version[0]);
  Put16(image, at + 12, version[3]);
  Put16(image, at + 14, version[2]);
}

// A resource directory whose last entry has this identifier and leads to `target`.
void PutDirectory(std::string& image, std::size_t at, std::size_t entries_before, std::uint32_t id,
                  std::uint32_t target) {
  Put16(image, at + 12, entries_before);
  Put16(image, at + 14, 1);
  for (std::size_t i = 0; i < entries_before; ++i) Put32(image, at + 16 + 8 * i, 0x80000000 + i);
  Put32(image, at + 16 + 8 * entries_before, id);
  Put32(image, at + 20 + 8 * entries_before, target);
}

// A program file of 32 or 64 bits.
std::string PeImage(std::string image, bool is_wide, const Layout& layout, const Version& version) {
  constexpr std::uint32_t kSubdirectory = 0x80000000;
  constexpr std::size_t kAddress = 0x30000;
  const std::size_t header = 0x40 + 4 * (layout[0] % 256);
  const std::size_t optional = header + 24;
  const std::size_t directories = optional + (is_wide ? 112 : 96);
  const std::size_t sections_before = layout[1] % 8;
  Put16(image, 0, 0x5A4D);
  Put32(image, 0x3C, header);
  Put32(image, header, 0x4550);
  Put16(image, header + 6, sections_before + 1);
  Put16(image, header + 20, is_wide ? 240 : 224);
  Put16(image, optional, is_wide ? 0x20B : 0x10B);
  Put32(image, directories - 4, 16);
  Put32(image, directories + 16, kAddress);
  std::size_t section = directories + 128;
  for (std::size_t i = 0; i < sections_before; ++i, section += 40) {
    Put32(image, section + 12, 0x1000 * (i + 1));
    Put32(image, section + 16, 0x1000);
  }
  const std::size_t root = section + 40 + 16 * (layout[2] % 512);
  Put32(image, section + 12, kAddress);
  Put32(image, section + 16, 0x1000);
  Put32(image, section + 20, root);

  const std::size_t types_before = layout[2] % 32;
  const std::size_t names = 24 + 8 * types_before;
  const std::size_t languages = names + 24;
  const std::size_t entry = languages + 24;
  const std::size_t resource = entry + 16;
  const auto leads_to = [](std::size_t at) { return static_cast<std::uint32_t>(at); };
  PutDirectory(image, root, types_before, 16, kSubdirectory | leads_to(names));
  PutDirectory(image, root + names, 0, 1, kSubdirectory | leads_to(languages));
  PutDirectory(image, root + languages, 0, 0x407, leads_to(entry));
  Put32(image, root + entry, kAddress + resource);
  Put32(image, root + entry + 4, 40 + kFixedInfoBytes);
  PutFixedInfo(image, root + resource + 40, version);
  return image;
}

// A program file of 16 bits.
std::string NeImage(std::string image, const Layout& layout, const Version& version) {
  const std::size_t header = 0x40 + 4 * (layout[0] % 256);
  const std::size_t types_before = layout[1] % 8;
  const std::size_t shift = 4 + layout[2] % 4;
  Put16(image, 0, 0x5A4D);
  Put32(image, 0x3C, header);
  Put16(image, header, 0x454E);
  const std::size_t table = header + 0x40;
  std::size_t at = table + 2;
  Put16(image, table, shift);
  for (std::size_t i = 0; i < types_before; at += 8 + 12 * i, ++i) {
    Put16(image, at, 0x8001 + i);  // the types 1, 2, ... with as many resources as types before
    Put16(image, at + 2, i);
  }
  Put16(image, at, 0x8010);
  Put16(image, at + 2, 1);
  const std::size_t resource = ((at + 22) >> shift) + 1;
  Put16(image, at + 8, resource);
  Put16(image, at + 20, 0);
  Put16(image, header + 0x24, 0x40);
  Put16(image, header + 0x26, at + 22 - header);
  PutFixedInfo(image, (resource << shift) + 20, version);
  return image;
}

// What was put into an image comes out of it.
void ReadBack(std::string_view input) {
  constexpr std::size_t kChoiceBytes = 12;
  Version version;
  for (std::size_t i = 0; i < version.size(); ++i) version[i] = WordAt(input, 2 * i);
  const std::size_t kind = WordAt(input, 8) & 0xFF;
  const Layout layout = {WordAt(input, 9), WordAt(input, 10), WordAt(input, 11)};
  constexpr std::size_t kMostGapBytes = 8192;
  const std::string gaps(input.substr(std::min(kChoiceBytes, input.size()), kMostGapBytes));
  const std::string image = kind % 3 == 0   ? NeImage(gaps, layout, version)
                            : kind % 3 == 1 ? PeImage(gaps, /*is_wide=*/false, layout, version)
                                            : PeImage(gaps, /*is_wide=*/true, layout, version);
  std::string expected;
  for (const std::uint16_t part : version) {
    expected += (expected.empty() ? "" : ".") + std::to_string(part);
  }
  Require(VersionOf(image) == expected, "the version that was put into an image comes out of it");
}

void FuzzVersionInfo(std::string_view image) {
  const Allocations allocations;
  const std::string version = VersionOf(image);
  allocations.RequireAtMost(image.size(), 20, "a version takes memory as the file's length");
  ReadBack(image);

  if (version.empty()) return;
  Require(IsVersion(version), "a version is four numbers");
  Require(Holds(image, version), "a version stands in the image");
  // What packers append to an image does not belong to it.
  Require(VersionOf(std::string(image) + "appended") == version,
          "what is appended to an image does not change its version");
}

}  // namespace
}  // namespace txs::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  txs::fuzz::FuzzVersionInfo(txs::fuzz::AsText(data, size));
  return 0;
}
