// The platform directories of this Windows, as a program of this kind sees them: to a 32-bit
// program on 64-bit Windows the system directory is called System32 and holds the 32-bit files, and
// the program files are those of 32-bit programs.
#pragma once

#include <string>

#include "environment/special_folders.h"

namespace txs {

class WindowsSpecialFolders : public SpecialFolders {
 public:
  [[nodiscard]] std::string Folder(SpecialFolder folder) const override;
};

}  // namespace txs
