// The DynaZIP library without calling it: the record that its function takes, and where it is
// looked for.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "environment/system_tools.h"

namespace txs {

inline constexpr char kDynaZipLibrary[] = "dzip32.dll";

// The numeric part: 32-bit little-endian fields. The others are 0.
inline constexpr std::size_t kDynaZipNumericBytes = 188;
inline constexpr std::size_t kDynaZipRecordSizeAt = 0;
inline constexpr std::size_t kDynaZipFunctionAt = 4;
inline constexpr std::size_t kDynaZipFactorAt = 40;
inline constexpr std::size_t kDynaZipNoFolderNamesAt = 76;

// The text fields behind it, without gaps: bytes of the ANSI code page, filled up with zeros.
inline constexpr std::array<std::size_t, 10> kDynaZipTextBytes = {260,  5120, 260,  2048, 7,
                                                                  2048, 2048, 1024, 66,   260};
inline constexpr std::size_t kDynaZipArchiveField = 0;
inline constexpr std::size_t kDynaZipItemsField = 1;

// Where a text field begins, in bytes from the start of the record.
[[nodiscard]] constexpr std::size_t DynaZipTextAt(std::size_t field) {
  std::size_t at = kDynaZipNumericBytes;
  for (std::size_t i = 0; i < field; ++i) at += kDynaZipTextBytes[i];
  return at;
}

// The fields and what brings them to a multiple of four.
inline constexpr std::size_t kDynaZipRecordBytes =
    (DynaZipTextAt(kDynaZipTextBytes.size()) + 3) / 4 * 4;

// The record that packs one file into one archive. Nothing when it cannot hold the paths: longer
// than a field, or with a character that the code page lacks.
[[nodiscard]] std::optional<std::vector<std::byte>> MakeDynaZipRecord(std::string_view archive_path,
                                                                      std::string_view source_path);

// The directories where the library may be, in order: the program's own and those that the product
// registered. None is empty.
[[nodiscard]] std::vector<std::string> DynaZipDirectories(const SystemTools& tools);

}  // namespace txs
