#include "environment/windows_path.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace txs {
namespace {

struct PathParts {
  const char* path;
  const char* parent;
  const char* name;
  const char* base;
  const char* extension;
};

class PathPartsTest : public testing::TestWithParam<PathParts> {};

TEST_P(PathPartsTest, APathComesApartIntoItsParts) {
  const PathParts& parts = GetParam();

  EXPECT_EQ(ParentFolder(parts.path), parts.parent);
  EXPECT_EQ(FileName(parts.path), parts.name);
  EXPECT_EQ(BaseName(parts.path), parts.base);
  EXPECT_EQ(Extension(parts.path), parts.extension);
}

INSTANTIATE_TEST_SUITE_P(
    Paths, PathPartsTest,
    testing::Values(PathParts{"", "", "", "", ""},  //
                    PathParts{"x.dll", "", "x.dll", "x", "dll"},
                    PathParts{"C:\\Demo\\x.dll", "C:\\Demo", "x.dll", "x", "dll"},
                    PathParts{"C:/Demo/x.dll", "C:/Demo", "x.dll", "x", "dll"},
                    PathParts{"C:\\Demo.txs", "C:", "Demo.txs", "Demo", "txs"},
                    PathParts{"C:\\Demo\\a.b.txs", "C:\\Demo", "a.b.txs", "a.b", "txs"},
                    PathParts{"C:\\Demo.d\\name", "C:\\Demo.d", "name", "name", ""},
                    PathParts{"C:\\Demo\\.cfg", "C:\\Demo", ".cfg", "", "cfg"},
                    PathParts{"C:\\Demo\\end.", "C:\\Demo", "end.", "end", ""},
                    PathParts{"C:\\Demo\\\\Setup", "C:\\Demo", "Setup", "Setup", ""},
                    PathParts{"C:\\Demo\\", "C:\\Demo", "", "", ""},
                    PathParts{"C:\\", "C:", "", "", ""},  //
                    PathParts{"C:", "", "", "", ""},
                    PathParts{"C:x.dll", "C:", "x.dll", "x", "dll"},
                    PathParts{"\\\\server\\share\\x.dll", "\\\\server\\share", "x.dll", "x", "dll"},
                    PathParts{"\\x.dll", "", "x.dll", "x", "dll"},
                    PathParts{"C:\\Größe\\Übung.TXS", "C:\\Größe", "Übung.TXS", "Übung", "TXS"}));

TEST(WindowsPath, WalkingUpEndsAtAnEmptyPath) {
  for (std::string path : {"C:\\a\\b\\c.d", "\\\\server\\share\\x\\", "a/b//c", "C:"}) {
    int steps = 0;
    while (!path.empty() && steps < 10) {
      path = ParentFolder(path);
      ++steps;
    }

    EXPECT_LT(steps, 10);
  }
}

TEST(WindowsPath, JoiningPutsABackslashBetween) {
  EXPECT_EQ(JoinPath("C:\\Demo", "x.dll"), "C:\\Demo\\x.dll");
  EXPECT_EQ(JoinPath("C:", "x.dll"), "C:\\x.dll");
  EXPECT_EQ(JoinPath("", "x.dll"), "x.dll");
}

TEST(WindowsPath, ADirectoryStoredWithATrailingBackslashGivesADoubledOne) {
  EXPECT_EQ(JoinPath("C:\\Demo\\", "x.dll"), "C:\\Demo\\\\x.dll");
}

TEST(WindowsPath, AbsoluteIsADriveWithABackslashOrAServer) {
  for (const char* path : {"C:\\", "c:\\x", "C:/x", "\\\\server\\share", "//server/share"}) {
    EXPECT_TRUE(IsAbsolutePath(path)) << path;
  }
  for (const char* path :
       {"", "x", "x\\y", "\\x", "C:", "C:x", "\\\\", "\\\\\\x", "1:\\x", "Ä:\\x"}) {
    EXPECT_FALSE(IsAbsolutePath(path)) << path;
  }
}

TEST(WindowsPath, TheRootIsTheDriveOrTheShare) {
  EXPECT_EQ(RootFolder("C:\\Demo\\x.dll"), "C:\\");
  EXPECT_EQ(RootFolder("c:/"), "c:\\");
  EXPECT_EQ(RootFolder("\\\\server\\share\\Demo\\x.dll"), "\\\\server\\share");
  EXPECT_EQ(RootFolder("\\\\server\\share"), "\\\\server\\share");
  EXPECT_EQ(RootFolder("\\\\server"), "\\\\server");
  EXPECT_EQ(RootFolder("Demo\\x.dll"), "");
  EXPECT_EQ(RootFolder("C:"), "");
  EXPECT_EQ(RootFolder(""), "");
}

TEST(WindowsPath, ADriveDirectoryNeedsLetterColonAndBackslash) {
  for (const char* text : {"C:\\", "z:\\x", "C:\\ anything"}) {
    EXPECT_TRUE(IsDriveDirectory(text)) << text;
  }
  for (const char* text : {"", "C:", "C:/x", "CC:\\", "1:\\", "\\\\server\\x", " C:\\"}) {
    EXPECT_FALSE(IsDriveDirectory(text)) << text;
  }
}

class NormalizeDirectoryTest : public testing::TestWithParam<std::pair<const char*, const char*>> {
};

TEST_P(NormalizeDirectoryTest, ADirectoryTextIsTidied) {
  const auto& [typed, tidy] = GetParam();

  EXPECT_EQ(NormalizeDirectory(typed), tidy);
  EXPECT_EQ(NormalizeDirectory(tidy), tidy);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, NormalizeDirectoryTest,
    testing::Values(std::pair("", ""), std::pair("   ", ""), std::pair(" C:\\Demo \t", "C:\\Demo"),
                    std::pair("C:/Demo/Setup", "C:\\Demo\\Setup"),
                    std::pair("C:\\\\Demo\\\\\\Setup", "C:\\Demo\\Setup"),
                    std::pair("C:\\Demo\\", "C:\\Demo"), std::pair("C:\\Demo\\\\", "C:\\Demo"),
                    std::pair("C:\\", "C:\\"), std::pair("C:/", "C:\\"),
                    std::pair("C:\\\\", "C:\\"), std::pair("C:", "C:"),
                    std::pair("\\\\server\\\\share\\", "\\\\server\\share"),
                    std::pair("//server/share", "\\\\server\\share"),
                    std::pair("\\\\\\server", "\\\\server"), std::pair("C:\\Demo \\", "C:\\Demo"),
                    std::pair("<ProjectDir>/Setup", "<ProjectDir>\\Setup")));

TEST(MatchesWildcard, StarsAndQuestionMarksStandForCharacters) {
  EXPECT_TRUE(MatchesWildcard("Main.RCT", "*.rct"));
  EXPECT_TRUE(MatchesWildcard("a.b.c", "a*c"));
  EXPECT_TRUE(MatchesWildcard("x.dll", "?.dll"));
  EXPECT_TRUE(MatchesWildcard("aXbXc", "*x*c"));
  EXPECT_TRUE(MatchesWildcard("abc", "abc***"));
  EXPECT_FALSE(MatchesWildcard("Main.rctx", "*.rct"));
  EXPECT_FALSE(MatchesWildcard("xy.dll", "?.dll"));
  EXPECT_FALSE(MatchesWildcard("abc", "ab"));
  EXPECT_FALSE(MatchesWildcard("", "?"));
  EXPECT_TRUE(MatchesWildcard("", "*"));
}

TEST(MatchesWildcard, StarDotStarMatchesNamesWithoutADotToo) {
  EXPECT_TRUE(MatchesWildcard("README", "*.*"));
}

TEST(MatchesWildcard, AQuestionMarkStandsForAWholeLetter) {
  EXPECT_TRUE(MatchesWildcard("Ä.dll", "?.dll"));
  EXPECT_TRUE(MatchesWildcard("xÄ", "*?"));
  EXPECT_FALSE(MatchesWildcard("Ä", "*??"));
  EXPECT_TRUE(MatchesWildcard("ÄRGER", "är*"));
}

TEST(MatchesWildcard, ManyStarsOnALongNameStayCheap) {
  const std::string name(20000, 'a');
  std::string pattern;
  for (int i = 0; i < 50; ++i) pattern += "*a";

  EXPECT_FALSE(MatchesWildcard(name, pattern + "b"));
  EXPECT_TRUE(MatchesWildcard(name, pattern));
}

}  // namespace
}  // namespace txs
