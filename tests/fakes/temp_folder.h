// A folder of the host that goes when the test ends.
#pragma once

#include <filesystem>

namespace txs {

class TempFolder {
 public:
  // Throws when none can be made.
  TempFolder();
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace txs
