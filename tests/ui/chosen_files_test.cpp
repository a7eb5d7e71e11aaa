#include "ui/chosen_files.h"

#include <gmock/gmock.h>

#include <string>

#include "fakes/memory_platform.h"
#include "fakes/recording_messages.h"

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

class ChosenPathsTest : public testing::TestWithParam<long> {
 protected:
  MemoryPlatform platform;
  RecordingMessages messages;
  Application application{platform.Get(),           messages, TextService(GetParam()),
                          /*installation=*/{},
                          /*configurator=*/nullptr,
                          /*project=*/{},
                          /*document=*/{}};
};

TEST_P(ChosenPathsTest, AreThoseOfTheAnswer) {
  EXPECT_THAT(ChosenPaths(application, {{"/disk/a.dll", "/disk/b.dll"}, /*too_many=*/false}),
              ElementsAre("/disk/a.dll", "/disk/b.dll"));
  EXPECT_THAT(messages.shown, IsEmpty());
}

TEST_P(ChosenPathsTest, AreNoneAndMessage1701WhenTheBufferWasTooSmall) {
  EXPECT_THAT(ChosenPaths(application, {{"/disk/a.dll"}, /*too_many=*/true}), IsEmpty());

  ASSERT_THAT(messages.Ids(), ElementsAre(1701));
  EXPECT_EQ(messages.shown[0].prompt, TextService(GetParam()).GetText(1701));
}

INSTANTIATE_TEST_SUITE_P(BothLanguages, ChosenPathsTest, testing::Values(1031, 1033));

}  // namespace
}  // namespace txs
