// The setup control file as `verify` sees it: which archives it installs from which disks, and what
// in it no setup engine could carry out. See docs/formats/setup-control-file.md.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace txs {

// An InstallFile line whose every argument is usable.
struct InstallLine {
  std::size_t line = 0;  // counted from 1
  std::string archive;   // a plain file name, never a path
  std::string target;    // directory and file name on the target computer, with path variables
  std::uint64_t length_bytes = 0;
  std::vector<std::uint64_t> disks;  // ascending, at least one, none is 0
};

struct ScriptFault {
  std::size_t line = 0;  // 0: the script as a whole
  std::string what;
};

struct SetupScript {
  bool has_commands = false;  // [ToDo] was found; without it nothing is known about the archives
  std::uint64_t install_lines = 0;  // those with faults, too
  std::vector<InstallLine> installs;
  // Every archive name that the script holds in a usable form, also of lines with other faults.
  std::vector<std::string> archives_named;
  std::optional<std::uint64_t> disks;  // MaxDisk
  std::size_t disks_line = 0;
  std::vector<ScriptFault> faults;  // in the order of the lines
};

// Never fails; an empty file and one of blanks only (the room that Create keeps) are one fault.
// `bytes` is the file as it is on the disk. After 10,000 faults the rest of the script
// is passed over, and a last fault says so.
[[nodiscard]] SetupScript ParseSetupScript(std::string_view bytes);

// A name that is a file in the directory where it is looked up, and on Windows nothing else: no
// separator, colon, wildcard or control character, no "..", no trailing dot or blank, no device.
[[nodiscard]] bool IsPlainFileName(std::string_view name);

}  // namespace txs
