// The archiver that every build has: deflate by libdeflate, files up to 64 MiB whole, longer ones
// in pieces; stored when deflate does not shrink, ZIP64 from 4 GiB. Memory stays below 150 MiB
// whatever the size of the file.
#pragma once

#include <cstdint>
#include <memory>

#include "environment/archiver.h"
#include "environment/clock.h"
#include "environment/file_system.h"

namespace txs {

// Where the archiver changes its ways. The defaults are what is shipped; tests set lower limits so
// that they need no files of gigabytes.
struct ArchiverLimits {
  // Files up to this length are read and compressed whole, longer ones in pieces.
  std::uint64_t whole_file_bytes = std::uint64_t{64} << 20;
  // How long the pieces are, at least 1. No repetition is found across the border of two: pieces of
  // 8 MiB write 0.02 % more than the whole would.
  std::uint64_t piece_bytes = std::uint64_t{8} << 20;
  // An archive that holds a size or an offset from here on is in the ZIP64 format.
  std::uint64_t zip64_bytes = 0xFFFFFFFF;
};

// `files` and `clock` (for the entry's local time) must outlive the archiver. The last write time
// lies in what a ZIP entry can hold: 1980 to 2107, even seconds; others become the nearest.
[[nodiscard]] std::unique_ptr<Archiver> MakeBuiltInArchiver(FileSystem& files, const Clock& clock,
                                                            const ArchiverLimits& limits = {});

}  // namespace txs
