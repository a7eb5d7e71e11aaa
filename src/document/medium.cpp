#include "document/medium.h"

namespace txs {

std::uint64_t MediumSizeBytes(long disk_size_index) {
  return disk_size_index == 1 ? kUnlimitedBytes : kDisketteBytes;
}

std::uint64_t EstimateDisksNeeded(std::uint64_t total_bytes, std::uint64_t medium_bytes) {
  // Whole numbers throughout: no total is too large to be exact. Two thirds are never a half, so
  // the first rounding is to the nearest: a remainder of 1 or 2 thirds gives 2/3 or 4/3, both 1.
  const std::uint64_t archive_bytes = 2 * (total_bytes / 3) + (total_bytes % 3 == 0 ? 0 : 1);

  const std::uint64_t disks = archive_bytes / medium_bytes + 1;
  const std::uint64_t rest = archive_bytes % medium_bytes;
  const bool beyond_half = rest > medium_bytes - rest;
  const bool just_half = rest == medium_bytes - rest;
  const bool is_odd = disks % 2 != 0;
  return beyond_half || (just_half && is_odd) ? disks + 1 : disks;
}

}  // namespace txs
