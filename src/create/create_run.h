// Create: the open setup document becomes an installation set.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "create/create_state.h"
#include "create/create_view.h"
#include "create/disk_distribution.h"
#include "document/application.h"

namespace txs {

// What a finished run made.
struct CreateResult {
  bool succeeded = false;
  std::string output_directory;
  std::uint64_t disks = 0;
  std::uint64_t files = 0;          // listed rows
  std::uint64_t archive_bytes = 0;  // on all disks
};

// The Create run. Checks the document, recreates the disk directories, compresses, copies the setup
// kit, distributes, writes the script; every failure shows its own message. Refused with message
// 1930 while another process works on a project in the same directory. Never throws. What the
// stages made stays on disk on failure; ~TEMP is emptied at the start and removed after a success.
[[nodiscard]] CreateResult RunCreate(Application& application, CreateView& view);

// Where every file would go.
struct CreatePlan {
  struct File {
    std::string archive;
    std::uint64_t archive_bytes = 0;
    std::vector<std::uint64_t> disks;
  };
  bool fits = true;  // false: the kit alone exceeds the medium (message 912 was shown)
  std::uint64_t disks = 0;
  std::uint64_t archive_bytes = 0;
  std::vector<File> files;
};

// Checks and compresses like Create, but writes nothing into the output directory; the archives are
// deleted again. Nothing after a failure, whose message was shown.
[[nodiscard]] std::optional<CreatePlan> PlanCreate(Application& application, CreateView& view);

}  // namespace txs
