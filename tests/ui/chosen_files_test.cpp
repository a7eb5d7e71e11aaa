#include "ui/chosen_files.h"

#include <gmock/gmock.h>

#include <string>

namespace txs {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Zeros and all, and what an earlier answer left behind the end.
template <std::size_t Size>
std::string Buffer(const char (&text)[Size]) {
  return std::string(text, Size) + std::string("left over\0", 10);
}

TEST(SplitChosenFiles, TakesASinglePathAsItIs) {
  EXPECT_THAT(SplitChosenFiles(Buffer("C:\\Projekte\\Größe.DLL\0")),
              ElementsAre("C:\\Projekte\\Größe.DLL"));
}

TEST(SplitChosenFiles, PutsTheFolderBeforeEachOfSeveralNames) {
  EXPECT_THAT(SplitChosenFiles(Buffer("C:\\Projekte\0a b.dll\0c.ocx\0")),
              ElementsAre("C:\\Projekte\\a b.dll", "C:\\Projekte\\c.ocx"));
}

TEST(SplitChosenFiles, DoublesNoBackslashBehindARootFolder) {
  EXPECT_THAT(SplitChosenFiles(Buffer("D:\\\0a.dll\0b.dll\0")),
              ElementsAre("D:\\a.dll", "D:\\b.dll"));
}

TEST(SplitChosenFiles, LeavesTheTargetsOfShortcutsWhereTheyAre) {
  EXPECT_THAT(
      SplitChosenFiles(Buffer("C:\\Links\0E:\\Lib\\a.dll\0\\\\server\\lib\\b.dll\0c.dll\0")),
      ElementsAre("E:\\Lib\\a.dll", "\\\\server\\lib\\b.dll", "C:\\Links\\c.dll"));
}

TEST(SplitChosenFiles, FindsNothingInAnEmptyBuffer) {
  EXPECT_THAT(SplitChosenFiles(Buffer("\0")), IsEmpty());
  EXPECT_THAT(SplitChosenFiles(""), IsEmpty());
}

}  // namespace
}  // namespace txs
