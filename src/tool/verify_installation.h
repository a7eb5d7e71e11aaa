// Reads a finished installation back: joins the pieces, inflates, checks CRC and lengths, the label
// files, and that the script and the disks name the same archives. Never writes; never leaves the
// directory, whatever the script says and whatever the names and links in it lead to. The directory
// itself may be a link.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "environment/file_system.h"

namespace txs {

struct Damage {
  std::string where;  // "DISK2\x.dll.zip", "DISK1\SETUP.STP line 17"
  std::string what;

  bool operator==(const Damage&) const = default;
};

struct VerifyResult {
  std::uint64_t disks = 0;
  std::uint64_t files = 0;  // InstallFile lines
  std::uint64_t bytes = 0;  // of the archives on all disks
  std::vector<Damage> damages;

  [[nodiscard]] bool Sound() const { return damages.empty(); }
};

// `directory` holds DISK1, DISK2, ... Never throws for what it finds; throws RuntimeError
// kPathNotFound when the directory itself does not exist.
[[nodiscard]] VerifyResult VerifyInstallation(const FileReader& files, std::string_view directory);

}  // namespace txs
