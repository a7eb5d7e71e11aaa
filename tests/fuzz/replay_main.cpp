// Runs one fuzz target over the committed inputs: each file of each folder or name on the command
// line. Names a file before it runs it, so that the last name is the one that breaks a promise.

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"

namespace {

std::vector<std::filesystem::path> FilesOf(int argc, char** argv) {
  std::vector<std::filesystem::path> files;
  for (int i = 1; i < argc; ++i) {
    if (!std::filesystem::is_directory(argv[i])) {
      files.emplace_back(argv[i]);
      continue;
    }
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      files.push_back(entry.path());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const std::vector<std::filesystem::path> files = FilesOf(argc, argv);
    for (const std::filesystem::path& file : files) {
      std::fprintf(stderr, "%s\n", file.string().c_str());
      std::ifstream stream(file, std::ios::binary);
      if (!stream) {
        std::fprintf(stderr, "cannot be read\n");
        return 1;
      }
      const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    if (files.empty()) std::fprintf(stderr, "no input was given\n");
    return files.empty() ? 1 : 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "EXCEPTION: %s\n", error.what());
    return 1;
  }
}
