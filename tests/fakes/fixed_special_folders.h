// The platform directories of an ordinary Windows computer.
#pragma once

#include <string>

#include "environment/special_folders.h"

namespace txs {

class FixedSpecialFolders : public SpecialFolders {
 public:
  [[nodiscard]] std::string Folder(SpecialFolder folder) const override {
    switch (folder) {
      case SpecialFolder::kSystem:
        return "C:\\Windows\\System32";
      case SpecialFolder::kFonts:
        return "C:\\Windows\\Fonts";
      case SpecialFolder::kWindows:
        return "C:\\Windows";
      case SpecialFolder::kCommonFiles:
        return "C:\\Program Files\\Common Files";
      case SpecialFolder::kProgramFiles:
        return "C:\\Program Files";
    }
    return {};
  }
};

}  // namespace txs
