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

}  // namespace
}  // namespace txs
