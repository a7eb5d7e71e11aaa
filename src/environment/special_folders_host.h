// The platform directories of the computer that the registry file describes.
#pragma once

#include <string>

#include "environment/registry.h"
#include "environment/special_folders.h"

namespace txs {

// C:\Windows, C:\Windows\System32, C:\Windows\Fonts, C:\Program Files and
// C:\Program Files\Common Files, unless the registry names others where Windows keeps them:
// SystemRoot, ProgramFilesDir, CommonFilesDir. %SystemRoot%, %windir%, %SystemDrive% and
// %ProgramFiles% in these values are expanded; a value that is no absolute path does not count.
class HostSpecialFolders : public SpecialFolders {
 public:
  // `registry` must outlive the object; it is asked at every call.
  explicit HostSpecialFolders(const Registry& registry) : registry_(registry) {}

  [[nodiscard]] std::string Folder(SpecialFolder folder) const override;

 private:
  const Registry& registry_;
};

}  // namespace txs
