// The state of one Create run, handed from stage to stage. A run never overlaps another.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>

namespace txs {

struct CreateState {
  std::string output_directory;      // path variables resolved
  std::string temporary_directory;   // ~TEMP: the archives between compression and distribution
  std::string first_disk_directory;  // output directory + "\DISK1"
  std::uint64_t medium_bytes = 0;
  std::uint64_t reserved_bytes =
      0;  // taken on disk 1 by the setup kit and the script's placeholder
  std::unordered_set<std::string> first_disk_names;  // folded: what stage 407 put on disk 1
  std::uint64_t disks_used = 0;                      // by the last distribution
  std::uint64_t first_disk_free_bytes = 0;           // left on disk 1 by the last distribution
  std::uint64_t archive_bytes = 0;                   // sum of the archives of the last distribution
};

}  // namespace txs
