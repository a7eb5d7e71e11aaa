#include "environment/dynazip_record.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "environment/installation.h"
#include "fakes/memory_platform.h"

namespace txs {
namespace {

using testing::ElementsAre;

std::string Bytes(const std::optional<std::vector<std::byte>>& record) {
  if (!record) return "(none)";
  return {reinterpret_cast<const char*>(record->data()), record->size()};
}

TEST(DynaZipRecord, EveryByteIsAsTheLibraryHasIt) {
  std::string expected(188 + 260 + 5120 + 260 + 2048 + 7 + 2048 + 2048 + 1024 + 66 + 260 + 3, '\0');
  expected[0] = '\xBC';  // 188
  expected[4] = 4;
  expected[40] = 5;
  expected.replace(76, 4, "\xFF\xFF\xFF\xFF");
  const std::string archive = "C:\\~TEMP\\Gr\xFC\xDF.dll.zip";
  const std::string item = "\"C:\\Demo\\Gr\xFC\xDF.dll\"";
  expected.replace(188, archive.size(), archive);
  expected.replace(188 + 260, item.size(), item);

  const auto record = MakeDynaZipRecord("C:\\~TEMP\\Grüß.dll.zip", "C:\\Demo\\Grüß.dll");

  EXPECT_EQ(Bytes(record), expected);
}

TEST(DynaZipRecord, NothingIsLeftOfACallBefore) {
  const auto before = MakeDynaZipRecord(std::string(200, 'a'), std::string(200, 'b'));

  EXPECT_EQ(Bytes(MakeDynaZipRecord("a", "b")).find("aa"), std::string::npos);
  EXPECT_NE(Bytes(before).find("aa"), std::string::npos);
}

TEST(DynaZipRecord, PathsThatFillTheirFieldsButForTheZeroFit) {
  const std::string longest(259, 'x');

  EXPECT_TRUE(MakeDynaZipRecord(longest, longest));
  EXPECT_FALSE(MakeDynaZipRecord(longest + "x", "s"));
  EXPECT_FALSE(MakeDynaZipRecord("a", longest + "x"));
}

TEST(DynaZipRecord, ACharacterThatTheCodePageLacksHasNoRecord) {
  EXPECT_FALSE(MakeDynaZipRecord("C:\\a.zip",
                                 "C:\\\xC4\x8C"
                                 "apek.dll"));
  EXPECT_FALSE(
      MakeDynaZipRecord("C:\\\xC4\x8C"
                        "apek.zip",
                        "C:\\a.dll"));
}

TEST(DynaZipDirectories, AreTheProgramsOwnAndThoseOfTheProduct) {
  MemoryPlatform world;
  world.InstallStudio();
  world.tools.Initialize({.directory = "D:\\Wizard", .executable_name = "w", .title = "t"});

  EXPECT_THAT(
      DynaZipDirectories(world.tools),
      ElementsAre("D:\\Wizard", "C:\\TavixStudio\\Studio", "C:\\TavixStudio\\Studio\\System",
                  "C:\\TavixStudio", "C:\\TavixStudio\\Common"));
}

TEST(DynaZipDirectories, WithoutAProductThereIsTheProgramsOwnAtMost) {
  MemoryPlatform world;

  EXPECT_THAT(DynaZipDirectories(world.tools), testing::IsEmpty());
}

}  // namespace
}  // namespace txs
