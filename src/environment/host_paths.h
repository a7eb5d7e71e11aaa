// Between the Windows names that the program works with and the names that the host's own dialogs
// and programs use.
#pragma once

#include <string>
#include <string_view>

namespace txs {

class HostPaths {
 public:
  virtual ~HostPaths() = default;

  // The host's name for a Windows path, in the spelling of the disk as far as it exists. Throws
  // kBadFileName for what no Windows path can be, kPathNotFound for a drive that is missing.
  [[nodiscard]] virtual std::string HostPath(std::string_view path) const = 0;

  // The Windows name of a host path (absolute, or relative to the current directory). Throws
  // kPathNotFound for what lies on no drive.
  [[nodiscard]] virtual std::string WindowsPath(std::string_view host_path) const = 0;
};

}  // namespace txs
