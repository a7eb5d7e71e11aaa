// Visual Basic groups (.vbg), scanned.
//
// Input: the group's file, then the projects A.vbp, B.vbp and Sub\C.vbp.

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "environment/full_path.h"
#include "environment/windows_path.h"
#include "fuzz/scan_fuzz.h"

namespace txs::fuzz {
namespace {

void FuzzVbGroup(std::string_view input) {
  const std::vector<std::string_view> parts = Parts(input, 4);
  constexpr const char* kMembers[] = {"C:\\Demo\\A.vbp", "C:\\Demo\\B.vbp", "C:\\Demo\\Sub\\C.vbp"};
  ScanFuzzWorld world;
  world.SetStudioProject({}, "Visual Basic 6.0", "Demo.vbg");
  world.files.AddFile("C:\\Demo\\Demo.vbg", parts[0]);
  world.files.AddFile("C:\\Demo\\Sub\\Demo.exe", "program");
  for (std::size_t i = 1; i < parts.size(); ++i) world.files.AddFile(kMembers[i - 1], parts[i]);

  const ScanResult result = world.RunChecked(input.size());

  Require(!result.cancelled, "nobody cancelled");
  std::set<std::string> opened;
  for (const auto& [operation, path] : world.files.diary) {
    if (operation != "OpenForReading" || !EqualNoCase(Extension(path), "vbp")) continue;
    Require(opened.insert(FoldCase(FullPath(path))).second, "each project of a group is read once");
  }
  const std::size_t stages = static_cast<std::size_t>(std::ranges::count_if(
      world.view.ended, [](const auto& ended) { return ended.first == ScanStage::kVisualBasic; }));
  Require(stages >= opened.size(), "every project that is read has its stage");
}

}  // namespace
}  // namespace txs::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  txs::fuzz::FuzzVbGroup(txs::fuzz::AsText(data, size));
  return 0;
}
