// The storage medium of step 5: sizes, and the estimate of the disks needed.
#pragma once

#include <cstdint>

namespace txs {

inline constexpr std::uint64_t kDisketteBytes = 1457152;
inline constexpr std::uint64_t kUnlimitedBytes = 2147483647;

// `optDiskSize` 0 is the diskette, 1 is "All"; any other index counts as 0.
[[nodiscard]] std::uint64_t MediumSizeBytes(long disk_size_index);

// Archives are assumed to take two thirds of the listed files: total / 1.5, rounded, divided by the
// medium, plus 1, rounded; both roundings send halves to the even neighbour. 0 bytes need 1 disk.
// Exact for every total; `medium_bytes` is at least 1.
[[nodiscard]] std::uint64_t EstimateDisksNeeded(std::uint64_t total_bytes,
                                                std::uint64_t medium_bytes);

}  // namespace txs
