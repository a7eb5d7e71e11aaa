// The file version of program files.
//
// Input: the image.

#include <algorithm>
#include <string>
#include <string_view>

#include "environment/version_info.h"
#include "fakes/memory_file_system.h"
#include "fuzz/fuzz_support.h"

namespace txs::fuzz {
namespace {

constexpr char kPath[] = "C:\\x.dll";

// "1.2.3.4", each number as 16 bits hold it and without leading zeros.
bool IsVersion(std::string_view text) {
  int parts = 0;
  bool at_end = false;
  while (!at_end) {
    at_end = text.find('.') == std::string_view::npos;
    const std::string_view number = TakeUntil(&text, '.');
    const bool digits =
        !number.empty() && std::ranges::all_of(number, [](char c) { return c >= '0' && c <= '9'; });
    if (!digits || number.size() > 5 || (number.size() > 1 && number[0] == '0')) return false;
    if (std::stoul(std::string(number)) > 0xFFFF) return false;
    ++parts;
  }
  return parts == 4;
}

std::string VersionOf(std::string_view image) {
  MemoryFileSystem files;
  files.AddFile(kPath, image);
  const std::string version = FileVersion(files, kPath);
  constexpr std::size_t kMostOperations = 40;
  Require(files.diary.size() <= kMostOperations, "a version is found in a few looks at the file");
  for (const auto& [operation, path] : files.diary) {
    Require(operation == "OpenForReading" || operation == "Read" || operation == "Seek",
            "looking for a version only reads");
    Require(path == kPath, "looking for a version reads the file and no other");
  }
  return version;
}

void FuzzVersionInfo(std::string_view image) {
  const Allocations allocations;
  const std::string version = VersionOf(image);
  allocations.RequireAtMost(image.size(), 20, "a version takes memory as the file's length");

  if (version.empty()) return;
  Require(IsVersion(version), "a version is four numbers");
  // What packers append to an image does not belong to it.
  Require(VersionOf(std::string(image) + "appended") == version,
          "what is appended to an image does not change its version");
}

}  // namespace
}  // namespace txs::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  txs::fuzz::FuzzVersionInfo(txs::fuzz::AsText(data, size));
  return 0;
}
