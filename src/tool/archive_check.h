// Reads one archive of an installation, whole or in pieces on several disks, and says what is wrong
// with it. Memory stays below 1 MiB whatever the archive or its headers say.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "environment/file_system.h"

namespace txs {

// One piece, in the order of the archive's bytes.
struct ArchivePiece {
  std::string path;
  std::uint64_t length_bytes = 0;
};

struct ArchiveExpectation {
  std::string entry_name;  // compared without regard to case
  std::uint64_t length_bytes = 0;
};

// Joins the pieces and checks that they are a ZIP archive of exactly one entry (stored or deflated,
// ZIP64 or not) with the expected name and length, that both of its headers agree, that nothing
// stands between or behind them, and that the contents have the length and the CRC they should.
// Returns what is wrong, nothing for a sound archive. Contents beyond the expected length are not
// inflated. Throws RuntimeError when a piece cannot be read.
[[nodiscard]] std::vector<std::string> CheckArchive(const FileReader& files,
                                                    const std::vector<ArchivePiece>& pieces,
                                                    const ArchiveExpectation& expected);

}  // namespace txs
