// A host whose own names are the Windows names.
#pragma once

#include <string>
#include <string_view>

#include "environment/host_paths.h"

namespace txs {

class SameHostPaths : public HostPaths {
 public:
  [[nodiscard]] std::string HostPath(std::string_view path) const override {
    return std::string(path);
  }
  [[nodiscard]] std::string WindowsPath(std::string_view host_path) const override {
    return std::string(host_path);
  }
};

}  // namespace txs
