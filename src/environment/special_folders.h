// The platform directories that path variables stand for.
#pragma once

#include <string>

namespace txs {

enum class SpecialFolder { kSystem, kFonts, kWindows, kCommonFiles, kProgramFiles };

class SpecialFolders {
 public:
  virtual ~SpecialFolders() = default;

  // Without trailing backslash ("C:\Windows\System32"); empty when the system names none.
  [[nodiscard]] virtual std::string Folder(SpecialFolder folder) const = 0;
};

}  // namespace txs
