// The automatic search for a file that is not where it was said to be.
//
// Folders are listed only when something is missing, each at most once per Scan, place by place:
// the names of the first place are indexed, and the next place only when a name is not among them.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "environment/file_system.h"

namespace txs {

struct SearchPlace {
  enum class Depth { kFolderOnly, kTree };

  std::string folder;
  Depth depth = Depth::kFolderOnly;
};

class MissingFileSearch {
 public:
  // `keep_going` is asked after every folder; the search ends without a result when it says false.
  // `files` must outlive the search.
  MissingFileSearch(const FileSystem& files, std::vector<SearchPlace> places,
                    std::function<bool()> keep_going);

  // Full path of the first file of this bare name, in the order of the places, folders nearer to
  // the top of a place first; empty when there is none. No folder whose name contains "backup" in
  // any case is looked into, nor one that cannot be listed. Links are followed, since a project may
  // keep shared components behind one, but no folder is listed twice by whatever names: links in a
  // circle lead nowhere. Folders more than 40 levels deep, and more than a quarter of a million of
  // one place (a link to a whole disk), are not looked at; the places behind it are.
  [[nodiscard]] std::string Find(std::string_view file_name);

 private:
  struct Pending {
    std::string folder;
    std::string final_path;  // FileSystem::FinalPath without a "\" at its end
    int level = 0;
  };

  // Lists the next folder of the current place. False when no place is left.
  bool IndexNextFolder();
  void IndexFolder(const Pending& pending, bool descend);

  const FileSystem& files_;
  std::vector<SearchPlace> places_;
  std::function<bool()> keep_going_;
  std::size_t next_place_ = 0;
  bool descend_ = false;
  std::vector<Pending> pending_;  // of the current place; breadth first
  std::size_t next_pending_ = 0;
  std::size_t listed_of_place_ = 0;
  std::unordered_set<std::string> listed_;                    // folded final paths
  std::unordered_map<std::string, std::string> first_found_;  // by folded name
};

}  // namespace txs
