// The archives are laid over DISK1, DISK2, ... of the chosen medium, split where needed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "create/create_state.h"
#include "create/create_view.h"
#include "document/application.h"

namespace txs {

// One archive, or a piece of one, on one disk.
struct DiskPiece {
  std::uint64_t disk = 1;
  std::uint64_t bytes = 0;

  bool operator==(const DiskPiece&) const = default;
};

struct ArchivePlacement {
  bool whole = false;             // moved in one go; else written piece by piece
  std::vector<DiskPiece> pieces;  // in the order of the archive's bytes, at least one

  // "|2|3": what the row's Disk field says.
  [[nodiscard]] std::string DiskText() const;
};

struct DistributionPlan {
  std::vector<ArchivePlacement> archives;  // one per size, in order
  std::uint64_t disks_used = 1;
  std::uint64_t first_disk_free_bytes = 0;  // beside the reservation
};

// Where archives of these sizes go: pure arithmetic, the one place that knows the rules. Room is
// counted in units of 1024 bytes. An archive that needs less than the free room is placed whole;
// one that needs just the free room, or more, takes the piecewise path in chunks of 10240 bytes.
// The reservation counts on disk 1 only; it must not exceed the medium.
[[nodiscard]] DistributionPlan PlanDistribution(const std::vector<std::uint64_t>& archive_bytes,
                                                std::uint64_t medium_bytes,
                                                std::uint64_t reserved_bytes);

// `bytes` up to a whole multiple of 1024.
[[nodiscard]] std::uint64_t RoundUpTo1024(std::uint64_t bytes);

// Fills `sizes` with the bytes of every row's archive in the temporary directory. False after
// message 903, or when Cancel was pressed.
[[nodiscard]] bool MeasureArchives(Application& application, CreateView& view,
                                   const CreateState& state, std::vector<std::uint64_t>& sizes);

// Stage 408. Moves the archives of all rows from the temporary directory onto the disks, writes
// each disk's label file, fills the rows' Disk field (cleared before), the step-5 disks label and
// `state.disks_used` and `state.first_disk_free_bytes`. False after message 903, or when Cancel was
// pressed between files; archives already placed stay. A name that lies on the disk already (a kit
// file, a label, another archive) is an error, since overwriting it would damage the installation
// unseen.
[[nodiscard]] bool DistributeOnDisks(Application& application, CreateView& view,
                                     CreateState& state);

}  // namespace txs
