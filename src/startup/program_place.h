// Where the running program stands.
#pragma once

#include <filesystem>

#include "environment/system_tools.h"

namespace txs {

inline constexpr char kApplicationTitle[] = "TavixStudio - Setup Wizard";

// Directory of the program file; empty when the system does not tell.
[[nodiscard]] std::filesystem::path ProgramDirectory();

// What SystemTools is told about this program.
[[nodiscard]] ApplicationInfo ThisApplication();

}  // namespace txs
