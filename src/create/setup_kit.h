// The files of the setup engine that go onto the first disk, and the room kept for the script.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "create/create_state.h"
#include "create/create_view.h"
#include "document/application.h"

namespace txs {

// SETUP.STP is first written as this many blanks, so that its room on disk 1 stays free.
inline constexpr std::uint64_t kScriptPlaceholderBytes = 32000;

// Names of the kit files, from section SetupFiles of TXSTPKIT.INI in the SetupKit directory:
// `Count`, then the keys 1 to Count. Throws RuntimeError when the file is missing or unreadable, or
// `Count` is absent or no number from 0 upwards. A missing key gives an empty name, which fails
// when copied. See docs/formats/setup-kit-list.md.
[[nodiscard]] std::vector<std::string> ReadSetupKitList(Application& application);

// Stage 407. Fills `state.reserved_bytes` and `state.first_disk_names`. False after message 909,
// 910, 911 or 912, or when Cancel was pressed.
[[nodiscard]] bool CopySetupKit(Application& application, CreateView& view, CreateState& state);

// The room that stage 407 would take on disk 1.
struct SetupKitRoom {
  std::uint64_t bytes = 0;
  bool fits = true;  // false: more than the medium holds (message 912 was shown)
};

// Measures the kit and copies nothing. Nothing after message 909 (a kit file is missing) or 910.
[[nodiscard]] std::optional<SetupKitRoom> MeasureSetupKit(Application& application,
                                                          std::uint64_t medium_bytes);

}  // namespace txs
