// Path arithmetic against the shell's and the kernel's, on generated paths.

#include <gtest/gtest.h>

#include <windows.h>
// After <windows.h>.
#include <shlwapi.h>

#include <array>
#include <random>
#include <string>
#include <vector>

#include "environment/file_system_win32.h"
#include "environment/windows_calls_win32.h"
#include "environment/windows_path.h"

namespace txs {
namespace {

constexpr int kPaths = 5000;
constexpr unsigned kSeed = 19990401;

const std::vector<std::string> kRoots = {"C:\\", "c:\\", "\\\\server\\share\\", ""};
// No blank behind a dot: the shell then sees no extension.
const std::vector<std::string> kNames = {"Demo", "x.dll", "a.b.txs", "Größe Ä", ".hidden",
                                         "dot.", "a b",   "~TEMP",   "DISK1",   "Name.with.dots"};

class Paths {
 public:
  std::string Next() {
    std::string path = kRoots[random_() % kRoots.size()];
    const unsigned names = 1 + random_() % 4;
    for (unsigned i = 0; i < names; ++i) {
      if (i > 0) path += "\\";
      path += kNames[random_() % kNames.size()];
    }
    return path;
  }
  std::string Pattern() {
    static const std::vector<std::string> kParts = {"*", "?", ".", "a", "x", "dll", "Ä", "disk"};
    std::string pattern;
    const unsigned parts = 1 + random_() % 4;
    for (unsigned i = 0; i < parts; ++i) pattern += kParts[random_() % kParts.size()];
    return pattern;
  }

 private:
  std::mt19937 random_{kSeed};
};

TEST(PathsOnWindows, FileNameAndExtensionAreTheShells) {
  Paths paths;
  for (int i = 0; i < kPaths; ++i) {
    const std::string path = paths.Next();
    const std::wstring wide = ToWide(path);
    std::string extension = ToUtf8(PathFindExtensionW(wide.c_str()));
    if (extension.starts_with('.')) extension.erase(0, 1);

    EXPECT_EQ(FileName(path), ToUtf8(PathFindFileNameW(wide.c_str()))) << path;
    EXPECT_EQ(Extension(path), extension) << path;
  }
}

TEST(PathsOnWindows, TheParentIsTheShellsButForTheBackslashBehindADrive) {
  Paths paths;
  for (int i = 0; i < kPaths; ++i) {
    const std::string path = paths.Next();
    std::wstring wide = ToWide(path);
    PathRemoveFileSpecW(wide.data());
    std::string parent = ToUtf8(wide.c_str());
    while (parent.ends_with('\\')) parent.pop_back();
    // To the shell the name of a share is a root, to us a folder like others.
    if (path.starts_with("\\\\") && path.find('\\', path.find('\\', 2) + 1) == std::string::npos) {
      continue;
    }

    EXPECT_EQ(ParentFolder(path), parent) << path;
  }
}

TEST(PathsOnWindows, APathIsAbsoluteWhenTheShellDoesNotCallItRelative) {
  Paths paths;
  for (int i = 0; i < kPaths; ++i) {
    const std::string path = paths.Next();

    EXPECT_EQ(IsAbsolutePath(path), PathIsRelativeW(ToWide(path).c_str()) == FALSE) << path;
  }
}

// "*.*" is left out: to Windows it matches names without a dot, to the shell's function it need
// not.
TEST(PathsOnWindows, WildcardsMatchAsTheShellHasThem) {
  Paths paths;
  for (int i = 0; i < kPaths; ++i) {
    const std::string pattern = paths.Pattern();
    if (pattern == "*.*") continue;
    for (const std::string& name : kNames) {
      EXPECT_EQ(MatchesWildcard(name, pattern),
                PathMatchSpecW(ToWide(name).c_str(), ToWide(pattern).c_str()) != FALSE)
          << name << " and " << pattern;
    }
  }
}

TEST(PathsOnWindows, DotsAndDoubledSeparatorsAreResolvedAsTheKernelDoes) {
  const WindowsFileSystem files;
  std::mt19937 random(kSeed);
  const std::vector<std::string> parts = {".", "..", "a", "B c", "x.y", "", "dot.", "blank "};
  for (int i = 0; i < kPaths; ++i) {
    std::string path = random() % 2 == 0 ? "C:\\" : "\\\\server\\share\\";
    const unsigned count = 1 + random() % 6;
    for (unsigned j = 0; j < count; ++j) {
      path += parts[random() % parts.size()] + (random() % 4 == 0 ? "/" : "\\");
    }
    path += "end";
    std::array<wchar_t, 1024> full = {};
    ASSERT_NE(GetFullPathNameW(ToWide(path).c_str(), 1024, full.data(), nullptr), 0U);

    EXPECT_EQ(files.WindowsPath(path), ToUtf8(full.data())) << path;
  }
}

}  // namespace
}  // namespace txs
