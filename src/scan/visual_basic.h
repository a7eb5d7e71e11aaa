// The developer's Visual Basic: which version a project uses, and where that is installed.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "environment/system_tools.h"

namespace txs {

struct VisualBasicInstallation {
  std::string directory;        // as registered, tidied; empty when not registered
  std::string dependency_file;  // of its packaging wizard; empty when not registered
};

// Whether `designer` ("Designer" of a studio project) is a Visual Basic that Scan can read.
[[nodiscard]] bool IsVisualBasic(std::string_view designer);

// Nothing for a designer that is no Visual Basic.
[[nodiscard]] std::optional<VisualBasicInstallation> FindVisualBasic(const SystemTools& tools,
                                                                     std::string_view designer);

}  // namespace txs
