// A host whose own names are the Windows names, until a folder of the host stands for drive C:.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "environment/host_paths.h"
#include "environment/runtime_error.h"

namespace txs {

class SameHostPaths : public HostPaths {
 public:
  // "/tmp/x": then "C:\a\b" is "/tmp/x/a/b", and what lies elsewhere is on no drive.
  std::string drive_c;

  [[nodiscard]] std::string HostPath(std::string_view path) const override {
    if (drive_c.empty()) return std::string(path);
    if (!path.starts_with("C:\\"))
      throw RuntimeError(ErrorNumber::kPathNotFound, std::string(path));
    std::string rest(path.substr(2));
    std::replace(rest.begin(), rest.end(), '\\', '/');
    return drive_c + rest;
  }
  [[nodiscard]] std::string WindowsPath(std::string_view host_path) const override {
    if (drive_c.empty()) return std::string(host_path);
    if (!host_path.starts_with(drive_c + "/")) {
      throw RuntimeError(ErrorNumber::kPathNotFound, std::string(host_path));
    }
    std::string rest(host_path.substr(drive_c.size()));
    std::replace(rest.begin(), rest.end(), '/', '\\');
    return "C:" + rest;
  }
};

}  // namespace txs
