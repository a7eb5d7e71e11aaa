// Reads an archive with a library that had no part in writing it.
#pragma once

#include <zip.h>

#include <cstddef>
#include <string>

namespace txs {

// What a ZIP program finds in an archive.
struct Unpacked {
  bool sound = false;
  std::string name;
  std::string bytes;
  int entries = 0;
};

inline Unpacked Unpack(const std::string& bytes) {
  Unpacked result;
  zip_source_t* const source =
      zip_source_buffer_create(bytes.data(), bytes.size(), /*freep=*/0, nullptr);
  zip_t* const zip = zip_open_from_source(source, ZIP_RDONLY | ZIP_CHECKCONS, nullptr);
  if (zip == nullptr) {
    zip_source_free(source);
    return result;
  }
  result.entries = static_cast<int>(zip_get_num_entries(zip, /*flags=*/0));
  if (const char* const name = zip_get_name(zip, /*index=*/0, ZIP_FL_ENC_GUESS)) result.name = name;
  if (zip_file_t* const entry = zip_fopen_index(zip, /*index=*/0, /*flags=*/0)) {
    char buffer[65536];
    zip_int64_t got = 0;
    while ((got = zip_fread(entry, buffer, sizeof buffer)) > 0) {
      result.bytes.append(buffer, static_cast<std::size_t>(got));
    }
    result.sound = got == 0;  // a wrong CRC is a failing read
    zip_fclose(entry);
  }
  zip_discard(zip);
  return result;
}

}  // namespace txs
