#include "fakes/real_disk.h"

#include <fstream>
#include <iterator>

namespace txs {

std::string ReadHostFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteHostFile(const std::filesystem::path& path, std::string_view bytes) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace txs
