#include "fakes/temp_folder.h"

#include <windows.h>

#include <stdexcept>
#include <string>

namespace txs {

TempFolder::TempFolder() {
  static unsigned counter = 0;
  const std::filesystem::path all = std::filesystem::temp_directory_path();
  for (int i = 0; i < 1000; ++i) {
    path_ = all / ("txs-test-" + std::to_string(GetCurrentProcessId()) + "-" +
                   std::to_string(GetTickCount()) + "-" + std::to_string(++counter));
    if (CreateDirectoryW(path_.c_str(), nullptr)) return;
  }
  throw std::runtime_error("no temporary folder");
}

}  // namespace txs
