#include "scan/missing_file_search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "fakes/memory_file_system.h"

namespace txs {
namespace {

bool Always() { return true; }

std::size_t Listings(const MemoryFileSystem& files) {
  return static_cast<std::size_t>(
      std::count_if(files.diary.begin(), files.diary.end(),
                    [](const auto& entry) { return entry.operation == "List"; }));
}

TEST(MissingFileSearch, FindsAFileDeepInATree) {
  MemoryFileSystem files;
  files.AddFile("C:\\Demo\\a\\b\\Comp.DLL", "");
  MissingFileSearch search(files, {{"C:\\Demo", SearchPlace::Depth::kTree}}, Always);

  EXPECT_EQ(search.Find("comp.dll"), "C:\\Demo\\a\\b\\Comp.DLL");
  EXPECT_EQ(search.Find("other.dll"), "");
}

TEST(MissingFileSearch, StaysInTheFolderWhereOnlyThatIsAPlace) {
  MemoryFileSystem files;
  files.AddFile("C:\\Windows\\a\\Comp.dll", "");
  MissingFileSearch search(files, {{"C:\\Windows", SearchPlace::Depth::kFolderOnly}}, Always);

  EXPECT_EQ(search.Find("Comp.dll"), "");
}

TEST(MissingFileSearch, SkipsEveryFolderWithBackupInItsName) {
  MemoryFileSystem files;
  files.AddFile("C:\\Demo\\BackUp\\Comp.dll", "");
  files.AddFile("C:\\Demo\\old BACKUPS 2\\sub\\Comp.dll", "");
  files.AddFile("C:\\Demo\\mybackup\\Comp.dll", "");
  MissingFileSearch search(files, {{"C:\\Demo", SearchPlace::Depth::kTree}}, Always);

  EXPECT_EQ(search.Find("Comp.dll"), "");
}

TEST(MissingFileSearch, PrefersEarlierPlacesAndNearerFolders) {
  MemoryFileSystem files;
  files.AddFile("C:\\Demo\\a\\b\\Comp.dll", "");
  files.AddFile("C:\\Demo\\z\\Comp.dll", "");
  files.AddFile("C:\\Kit\\Comp.dll", "");
  MissingFileSearch search(
      files, {{"C:\\Demo", SearchPlace::Depth::kTree}, {"C:\\Kit", SearchPlace::Depth::kTree}},
      Always);

  EXPECT_EQ(search.Find("Comp.dll"), "C:\\Demo\\z\\Comp.dll");
}

TEST(MissingFileSearch, ListsEachFolderOnce) {
  MemoryFileSystem files;
  for (int i = 0; i < 20; ++i) files.AddFile("C:\\Demo\\" + std::to_string(i) + "\\x.dll", "");
  MissingFileSearch search(files,
                           {{"C:\\Demo", SearchPlace::Depth::kTree},
                            {"C:\\Demo\\3", SearchPlace::Depth::kTree},
                            {"C:\\DEMO", SearchPlace::Depth::kFolderOnly}},
                           Always);

  for (int i = 0; i < 50; ++i) EXPECT_EQ(search.Find("no" + std::to_string(i) + ".dll"), "");

  EXPECT_EQ(Listings(files), 21u);
}

TEST(MissingFileSearch, ListsNothingBeyondThePlaceWhereItFinds) {
  MemoryFileSystem files;
  files.AddFile("C:\\Demo\\x.dll", "");
  files.AddFile("C:\\Kit\\y.dll", "");
  MissingFileSearch search(
      files,
      {{"C:\\Demo", SearchPlace::Depth::kFolderOnly}, {"C:\\Kit", SearchPlace::Depth::kFolderOnly}},
      Always);

  EXPECT_EQ(search.Find("x.dll"), "C:\\Demo\\x.dll");

  EXPECT_EQ(Listings(files), 1u);
}

TEST(MissingFileSearch, PassesOverFoldersThatCannotBeListed) {
  MemoryFileSystem files;
  files.AddFile("C:\\Demo\\a\\x.dll", "");
  files.AddFile("C:\\Demo\\b\\x.dll", "");
  files.FailPath("C:\\Demo\\a", "List", ErrorNumber::kPermissionDenied);
  MissingFileSearch search(
      files, {{"C:\\Nowhere", SearchPlace::Depth::kTree}, {"C:\\Demo", SearchPlace::Depth::kTree}},
      Always);

  EXPECT_EQ(search.Find("x.dll"), "C:\\Demo\\b\\x.dll");
}

TEST(MissingFileSearch, EndsWhenItIsToldTo) {
  MemoryFileSystem files;
  for (int i = 0; i < 20; ++i) files.AddFolder("C:\\Demo\\" + std::to_string(i));
  MissingFileSearch search(files, {{"C:\\Demo", SearchPlace::Depth::kTree}}, [] { return false; });

  EXPECT_EQ(search.Find("x.dll"), "");

  EXPECT_EQ(Listings(files), 1u);
}

// A folder that holds itself, as a link in a circle does.
class CircularFiles : public MemoryFileSystem {
 public:
  mutable std::size_t listed = 0;

  [[nodiscard]] std::vector<FileEntry> List(std::string_view, std::string_view) const override {
    ++listed;
    return {{"again", true}, {"x.dll", false}};
  }
};

TEST(MissingFileSearch, EndsInATreeThatHoldsItself) {
  CircularFiles files;
  MissingFileSearch search(files, {{"C:\\Demo", SearchPlace::Depth::kTree}}, Always);

  EXPECT_EQ(search.Find("y.dll"), "");

  EXPECT_LT(files.listed, 100u);
}

// Folders of which some are links to others.
class LinkedFiles : public MemoryFileSystem {
 public:
  void AddLink(const std::string& folder, const std::string& name, const std::string& target) {
    links_.push_back({folder, name, target});
  }
  [[nodiscard]] std::vector<FileEntry> List(std::string_view folder,
                                            std::string_view pattern) const override {
    const std::string target = Resolved(folder);
    std::vector<FileEntry> entries = MemoryFileSystem::List(target, pattern);
    for (const Link& link : links_) {
      if (link.folder == target) entries.push_back({link.name, /*is_folder=*/true, true});
    }
    return entries;
  }
  [[nodiscard]] std::string FinalPath(std::string_view path) const override {
    return MemoryFileSystem::FinalPath(Resolved(path));
  }

 private:
  struct Link {
    std::string folder;
    std::string name;
    std::string target;
  };

  [[nodiscard]] std::string Resolved(std::string_view path) const {
    std::string resolved(path);
    for (std::size_t i = 0; i < links_.size(); ++i) {
      const std::string link = links_[i].folder + "\\" + links_[i].name;
      if (!(resolved + "\\").starts_with(link + "\\")) continue;
      resolved = links_[i].target + resolved.substr(link.size());
      i = static_cast<std::size_t>(-1);  // there may be another one in what it leads to
    }
    return resolved;
  }

  std::vector<Link> links_;
};

// Two links to where they are made 250,000 folders, and files of the system directory, which comes
// later, missing.
TEST(MissingFileSearch, IsNotLedAstrayByLinksInACircle) {
  LinkedFiles files;
  files.AddFile("C:\\Demo\\sub\\y.dll", "");
  files.AddFile("C:\\Windows\\x.dll", "");
  files.AddLink("C:\\Demo", "a", "C:\\Demo");
  files.AddLink("C:\\Demo", "b", "C:\\Demo");
  files.AddLink("C:\\Demo\\sub", "up", "C:\\Demo");
  MissingFileSearch search(
      files,
      {{"C:\\Demo", SearchPlace::Depth::kTree}, {"C:\\Windows", SearchPlace::Depth::kFolderOnly}},
      Always);

  EXPECT_EQ(search.Find("x.dll"), "C:\\Windows\\x.dll");
  EXPECT_EQ(search.Find("y.dll"), "C:\\Demo\\sub\\y.dll");

  EXPECT_EQ(Listings(files), 3u);
}

TEST(MissingFileSearch, FollowsALinkToASharedFolderOnce) {
  LinkedFiles files;
  files.AddFolder("C:\\Demo");
  files.AddFile("C:\\Shared\\deep\\x.dll", "");
  files.AddLink("C:\\Demo", "common", "C:\\Shared");
  files.AddLink("C:\\Demo", "components", "C:\\Shared");
  MissingFileSearch search(
      files, {{"C:\\Demo", SearchPlace::Depth::kTree}, {"C:\\Shared", SearchPlace::Depth::kTree}},
      Always);

  EXPECT_EQ(search.Find("x.dll"), "C:\\Demo\\common\\deep\\x.dll");
  EXPECT_EQ(search.Find("none.dll"), "");

  EXPECT_EQ(Listings(files), 3u);
}

// A tree without end, as behind a link to a whole disk; and a place behind it.
class EndlessFiles : public MemoryFileSystem {
 public:
  mutable std::size_t listed = 0;

  [[nodiscard]] std::vector<FileEntry> List(std::string_view folder,
                                            std::string_view) const override {
    ++listed;
    if (folder == "C:\\Windows") return {{"x.dll", /*is_folder=*/false}};
    return {{"a", /*is_folder=*/true}, {"b", /*is_folder=*/true}};
  }
};

TEST(MissingFileSearch, LooksIntoThePlacesBehindATreeThatIsTooLarge) {
  EndlessFiles files;
  MissingFileSearch search(
      files,
      {{"C:\\Demo", SearchPlace::Depth::kTree}, {"C:\\Windows", SearchPlace::Depth::kFolderOnly}},
      Always);

  EXPECT_EQ(search.Find("x.dll"), "C:\\Windows\\x.dll");

  EXPECT_EQ(files.listed, 250'001u);
}

}  // namespace
}  // namespace txs
