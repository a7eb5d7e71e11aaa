#include <cstdlib>
#include <stdexcept>
#include <string>

#include "fakes/temp_folder.h"

namespace txs {

TempFolder::TempFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "txs-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
  path_ = pattern;
}

}  // namespace txs
