#include "environment/system_tools.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "environment/runtime_error.h"
#include "fakes/fixed_special_folders.h"
#include "fakes/memory_file_system.h"
#include "fakes/memory_registry.h"

namespace txs {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kIni[] = "C:\\Demo\\x.ini";
constexpr char kKey[] = "Software\\Test";

class SystemToolsTest : public testing::Test {
 protected:
  SystemToolsTest() { files_.MakeFolder("C:\\Demo"); }

  MemoryRegistry registry_;
  MemoryFileSystem files_;
  ProfileFiles profiles_{files_};
  FixedSpecialFolders folders_;
  SystemTools tools_{registry_, files_, profiles_, folders_};
};

TEST_F(SystemToolsTest, AMissingRegistryValueReadsAsTheDefault) {
  EXPECT_EQ(tools_.RegistryText(Hive::kLocalMachine, kKey, "Name", "default"), "default");
  EXPECT_EQ(tools_.RegistryNumber(Hive::kLocalMachine, kKey, "Name", 7), 7);
}

TEST_F(SystemToolsTest, ARegistryNumberReadsAsTextAndATextAsNumber) {
  tools_.WriteRegistry(Hive::kCurrentUser, kKey, "Number", std::uint32_t{4294967295});
  tools_.WriteRegistry(Hive::kCurrentUser, kKey, "Text", std::string(" 12 "));
  tools_.WriteRegistry(Hive::kCurrentUser, kKey, "Word", std::string("12 files"));

  EXPECT_EQ(tools_.RegistryText(Hive::kCurrentUser, kKey, "Number", ""), "4294967295");
  EXPECT_EQ(tools_.RegistryNumber(Hive::kCurrentUser, kKey, "Number", 0), 4294967295);
  EXPECT_EQ(tools_.RegistryNumber(Hive::kCurrentUser, kKey, "Text", 0), 12);
  EXPECT_EQ(tools_.RegistryNumber(Hive::kCurrentUser, kKey, "Word", 7), 7);
}

TEST_F(SystemToolsTest, SubkeysAreListedAndRemoved) {
  tools_.WriteRegistry(Hive::kCurrentUser, "Software\\Test\\One", "a", std::string("1"));
  tools_.WriteRegistry(Hive::kCurrentUser, "Software\\Test\\Two", "a", std::string("1"));

  tools_.RemoveRegistryKey(Hive::kCurrentUser, "Software\\Test\\One");

  EXPECT_THAT(tools_.RegistrySubkeys(Hive::kCurrentUser, kKey), ElementsAre("Two"));
}

TEST_F(SystemToolsTest, AbsentProfileTextReadsAsTheDefaultAndAnEmptyOneAsEmpty) {
  files_.ReplaceWhole(kIni, "[s]\r\nempty=\r\n");

  EXPECT_EQ(tools_.ReadText("s", "empty", "default", kIni), "");
  EXPECT_EQ(tools_.ReadText("s", "absent", "default", kIni), "default");
  EXPECT_EQ(tools_.ReadText("absent", "empty", "default", kIni), "default");
  EXPECT_EQ(tools_.ReadText("s", "empty", "default", "C:\\Demo\\none.ini"), "default");
}

TEST_F(SystemToolsTest, AProfileFileThatCannotBeReadIsAnError) {
  EXPECT_THROW((void)tools_.ReadText("s", "k", "", "C:\\Demo"), RuntimeError);
}

TEST_F(SystemToolsTest, ANumberOutsideItsRangeReadsAsTheDefault) {
  files_.ReplaceWhole(kIni, "[s]\r\nlow=-1\r\nzero=0\r\none=1\r\nhigh=2\r\nword=one\r\nempty=\r\n");

  const auto read = [&](const char* key) { return tools_.ReadInteger("s", key, 9, kIni, 0, 1); };

  EXPECT_EQ(read("low"), 9);
  EXPECT_EQ(read("zero"), 0);
  EXPECT_EQ(read("one"), 1);
  EXPECT_EQ(read("high"), 9);
  EXPECT_EQ(read("word"), 9);
  EXPECT_EQ(read("empty"), 9);
  EXPECT_EQ(read("absent"), 9);
}

TEST_F(SystemToolsTest, ANumberWithoutRangeIsTakenAsItIs) {
  files_.ReplaceWhole(kIni, "[s]\r\nk=-123456789012\r\n");

  EXPECT_EQ(tools_.ReadInteger("s", "k", 9, kIni), -123456789012);
}

TEST_F(SystemToolsTest, ANumberedListEndsAtTheFirstGapOrEmptyValue) {
  files_.ReplaceWhole(kIni, "[gap]\r\n01=a\r\n03=c\r\n[empty]\r\n01=a\r\n02=\r\n03=c\r\n");

  EXPECT_THAT(tools_.ReadNumberedList("gap", 2, kIni), ElementsAre("a"));
  EXPECT_THAT(tools_.ReadNumberedList("empty", 2, kIni), ElementsAre("a"));
  EXPECT_THAT(tools_.ReadNumberedList("absent", 2, kIni), IsEmpty());
}

TEST_F(SystemToolsTest, NumberedKeysHaveTheirDigits) {
  files_.ReplaceWhole(kIni, "[one]\r\n1=a\r\n2=b\r\n[two]\r\n01=c\r\n2=d\r\n");

  EXPECT_THAT(tools_.ReadNumberedList("one", 1, kIni), ElementsAre("a", "b"));
  EXPECT_THAT(tools_.ReadNumberedList("two", 2, kIni), ElementsAre("c"));
}

TEST_F(SystemToolsTest, AWrittenKeyIsReadBackAndARemovedSectionIsGone) {
  tools_.WriteText("s", "k", " with blanks ", kIni);
  EXPECT_EQ(tools_.ReadText("s", "k", "", kIni), " with blanks ");
  EXPECT_THAT(tools_.ReadSection("S", kIni), ElementsAre(ProfileEntry{"k", " with blanks "}));

  tools_.RemoveSection("s", kIni);

  EXPECT_THAT(tools_.ReadSection("s", kIni), IsEmpty());
  EXPECT_EQ(files_.ReadWhole(kIni), "");
}

TEST_F(SystemToolsTest, SpecialFoldersComeFromThePlatform) {
  EXPECT_EQ(tools_.Folder(SpecialFolder::kFonts), "C:\\Windows\\Fonts");
  EXPECT_EQ(tools_.Folder(SpecialFolder::kSystem), "C:\\Windows\\System32");
}

TEST_F(SystemToolsTest, TheApplicationTellsAboutItselfAtStart) {
  tools_.Initialize({"C:\\TavixStudio", "TXSetupWizard", "Setup Wizard"});

  EXPECT_EQ(tools_.Application().directory, "C:\\TavixStudio");
  EXPECT_EQ(tools_.Application().executable_name, "TXSetupWizard");
}

TEST_F(SystemToolsTest, AFileThatIsNoProgramHasNoVersion) {
  files_.ReplaceWhole(kIni, "[s]\r\n");

  EXPECT_EQ(tools_.FileVersionText(kIni), "");
  EXPECT_THROW((void)tools_.FileVersionText("C:\\Demo\\none.dll"), RuntimeError);
}

TEST(NumberedKey, ShortNumbersAreFilledWithZeros) {
  EXPECT_EQ(NumberedKey(1, 2), "01");
  EXPECT_EQ(NumberedKey(99, 2), "99");
  EXPECT_EQ(NumberedKey(100, 2), "100");
  EXPECT_EQ(NumberedKey(7, 1), "7");
}

TEST(ParseWholeNumber, TakesASignAndBlanksAround) {
  EXPECT_EQ(ParseWholeNumber("12"), 12);
  EXPECT_EQ(ParseWholeNumber(" \t-12 "), -12);
  EXPECT_EQ(ParseWholeNumber("+12"), 12);
  EXPECT_EQ(ParseWholeNumber("007"), 7);
}

TEST(ParseWholeNumber, TakesEverythingThatSixtyFourBitsHold) {
  EXPECT_EQ(ParseWholeNumber("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(ParseWholeNumber("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(ParseWholeNumber("9223372036854775808"), std::nullopt);
}

TEST(ParseWholeNumber, RefusesEverythingElse) {
  for (const char* text :
       {"", " ", "-", "+", "+-1", "--1", "1.5", "1e3", "0x10", "1 2", "a", "12a"}) {
    EXPECT_EQ(ParseWholeNumber(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace txs
