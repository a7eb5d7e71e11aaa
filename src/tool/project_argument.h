// What the argument PROJECT of a command names.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "environment/platform.h"

namespace txs {

struct ProjectArgument {
  std::string name;
  std::string directory;  // empty: the registered one
};

// PROJECT is, in this order: a registered name, taken whole ("Line 2.1" has no extension); a path
// of the host whose folder exists ("./Demo/Demo.txs"), if the platform translates such; else what
// the wizard's command line takes: [ProjectPath\]ProjectName[.txs|.swz], with or without quotes.
[[nodiscard]] ProjectArgument ReadProjectArgument(
    Platform& platform, const std::string& argument,
    const std::function<std::optional<std::string>(const std::string&)>& windows_path);

}  // namespace txs
