#include "scan/missing_file_search.h"

#include <utility>

#include "environment/code_page.h"
#include "environment/full_path.h"
#include "environment/runtime_error.h"
#include "environment/windows_path.h"

namespace txs {
namespace {

constexpr int kDeepestLevel = 40;
constexpr std::size_t kMostFoldersOfPlace = 250'000;

bool IsBackup(std::string_view folder_name) {
  return FindNoCase(folder_name, "backup", /*from=*/0, /*match_length=*/nullptr) !=
         std::string_view::npos;
}

std::string FinalPathOf(const FileSystem& files, std::string_view folder) {
  std::string path = files.FinalPath(folder);
  while (!path.empty() && path.back() == '\\') path.pop_back();
  return path;
}

}  // namespace

MissingFileSearch::MissingFileSearch(const FileSystem& files, std::vector<SearchPlace> places,
                                     std::function<bool()> keep_going)
    : files_(files), places_(std::move(places)), keep_going_(std::move(keep_going)) {}

std::string MissingFileSearch::Find(std::string_view file_name) {
  const std::string key = FoldCase(file_name);
  for (;;) {
    // A name counts as found only when its place is listed to the end of the folder it lies in;
    // breadth first, the first hit is the nearest.
    if (const auto found = first_found_.find(key); found != first_found_.end()) {
      return found->second;
    }
    if (!IndexNextFolder() || !keep_going_()) return {};
  }
}

bool MissingFileSearch::IndexNextFolder() {
  while (next_pending_ == pending_.size()) {
    if (next_place_ == places_.size()) return false;
    const SearchPlace& place = places_[next_place_++];
    pending_.clear();
    next_pending_ = 0;
    descend_ = place.depth == SearchPlace::Depth::kTree;
    listed_of_place_ = 0;
    if (!place.folder.empty()) {
      std::string folder = FullPath(place.folder);
      std::string final_path = FinalPathOf(files_, folder);
      pending_.push_back({std::move(folder), std::move(final_path), 0});
    }
  }
  const Pending pending = std::move(pending_[next_pending_++]);
  IndexFolder(pending, descend_ && pending.level < kDeepestLevel);
  return true;
}

void MissingFileSearch::IndexFolder(const Pending& pending, bool descend) {
  // Places may lie in one another. A folder that was listed alone before has not been descended
  // into; places are ordered so that trees come before single folders that they may hold.
  if (listed_of_place_ == kMostFoldersOfPlace) return;
  if (!listed_.insert(FoldCase(pending.final_path)).second) return;
  ++listed_of_place_;
  std::vector<FileEntry> entries;
  try {
    entries = files_.List(pending.folder, "*");
  } catch (const RuntimeError&) {
    return;  // Missing or closed to this user: nothing can be taken from there anyway.
  }
  for (FileEntry& entry : entries) {
    std::string path = JoinPath(pending.folder, entry.name);
    if (!entry.is_folder) {
      first_found_.try_emplace(FoldCase(entry.name), std::move(path));
    } else if (descend && !IsBackup(entry.name)) {
      // Only a link can lead elsewhere; to ask the system about every folder would take longer than
      // to list it.
      std::string final_path =
          entry.is_link ? FinalPathOf(files_, path) : pending.final_path + "\\" + entry.name;
      pending_.push_back({std::move(path), std::move(final_path), pending.level + 1});
    }
  }
}

}  // namespace txs
