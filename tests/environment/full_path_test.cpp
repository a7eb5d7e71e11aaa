#include "environment/full_path.h"

#include <gtest/gtest.h>

namespace txs {
namespace {

TEST(FullPath, LeavesAPlainPathAlone) {
  EXPECT_EQ(FullPath("C:\\Demo\\x.dll"), "C:\\Demo\\x.dll");
  EXPECT_EQ(FullPath("x.dll"), "x.dll");
}

TEST(FullPath, GivesOneSpellingToManyNames) {
  for (const char* path : {"C:\\Demo\\Sub\\..\\x.dll", "C:/Demo/x.dll", "C:\\Demo\\\\x.dll",
                           "C:\\.\\Demo\\.\\x.dll", "C:\\..\\Demo\\x.dll"}) {
    EXPECT_EQ(FullPath(path), "C:\\Demo\\x.dll") << path;
  }
}

TEST(FullPath, KeepsServerAndShare) {
  EXPECT_EQ(FullPath("\\\\server\\share\\..\\..\\x.dll"), "\\\\server\\share\\x.dll");
}

TEST(FullPath, DropsTrailingBackslashesButNotTheDrives) {
  EXPECT_EQ(FullPath("C:\\Demo\\"), "C:\\Demo");
  EXPECT_EQ(FullPath("C:\\"), "C:\\");
}

TEST(FullPath, LeavesItsOwnResultAloneWhereADriveStoodBehindARelativePath) {
  for (const char* path : {"x\\..\\C:..\\y", "x\\..\\C:\\..\\y", "x/../C:"}) {
    const std::string full = FullPath(path);

    EXPECT_EQ(FullPath(full), full) << path;
  }
}

TEST(FullPath, KeepsDotsThatLeadOutOfARelativePath) {
  EXPECT_EQ(FullPath("..\\a\\..\\..\\x.dll"), "..\\..\\x.dll");
}

TEST(FullPath, OfNothingIsNothing) { EXPECT_EQ(FullPath(""), ""); }

TEST(FullPathFrom, TakesRelativePathsFromTheDirectory) {
  EXPECT_EQ(FullPathFrom("C:\\Demo", "..\\x.dll"), "C:\\x.dll");
  EXPECT_EQ(FullPathFrom("C:\\Demo\\", ""), "C:\\Demo");
  EXPECT_EQ(FullPathFrom("C:\\Demo", "D:\\y.dll"), "D:\\y.dll");
}

}  // namespace
}  // namespace txs
