#include "document/file_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "environment/runtime_error.h"

namespace txs {
namespace {

using ::testing::ElementsAre;

FileList ListOf(const std::vector<std::string>& sources) {
  FileList list;
  for (const std::string& source : sources) list.Append(source, "<ProjectDir>", "0");
  return list;
}

std::vector<std::string> Sources(const FileList& list) {
  std::vector<std::string> sources;
  for (const FileRow& row : list.Rows()) sources.push_back(row.source);
  return sources;
}

ErrorNumber NumberOfErrorFrom(const std::function<void()>& act) {
  try {
    act();
  } catch (const RuntimeError& error) {
    return error.Number();
  }
  ADD_FAILURE() << "no error was thrown";
  return ErrorNumber::kInternal;
}

TEST(FileList, HasNoRowsAndFindsNothingWhileEmpty) {
  const FileList list;

  EXPECT_EQ(list.RowCount(), 0u);
  EXPECT_EQ(list.Find("x.dll", FileColumn::kSource), 0u);
  EXPECT_EQ(list.Find("", FileColumn::kDestination), 0u);
}

TEST(FileList, AppendedRowHasThreeColumnsFilled) {
  FileList list;

  const std::size_t row = list.Append("<ProjectDir>\\x.dll", "<WinSysDir>", "1");

  EXPECT_EQ(row, 1u);
  EXPECT_EQ(list.Cell(1, FileColumn::kSource), "<ProjectDir>\\x.dll");
  EXPECT_EQ(list.Cell(1, FileColumn::kDestination), "<WinSysDir>");
  EXPECT_EQ(list.Cell(1, FileColumn::kLength), "");
  EXPECT_EQ(list.Cell(1, FileColumn::kDisk), "");
  EXPECT_EQ(list.Cell(1, FileColumn::kCompressed), "");
  EXPECT_EQ(list.Cell(1, FileColumn::kRegister), "1");
  EXPECT_FALSE(list.Row(1).marked);
}

TEST(FileList, FindsTheFirstRowWithoutRegardToCase) {
  const FileList list = ListOf({"a.dll", "C:\\KLÄR\\Anlage.EXE", "c:\\klär\\anlage.exe"});

  EXPECT_EQ(list.Find("c:\\klär\\ANLAGE.exe", FileColumn::kSource), 2u);
  EXPECT_EQ(list.Find("C:\\KLÄR\\ANLAGE.EX", FileColumn::kSource), 0u);
}

TEST(FileList, FindsInEveryColumn) {
  FileList list = ListOf({"a", "b", "c"});
  list.Row(2).length_bytes = 4711;
  list.Row(2).disk = "|2|3";
  list.Row(2).compressed_name = "X.dll.zip";
  list.Row(2).registration = "5";
  list.Row(2).destination = "<FontDir>";

  EXPECT_EQ(list.Find("4711", FileColumn::kLength), 2u);
  EXPECT_EQ(list.Find("|2|3", FileColumn::kDisk), 2u);
  EXPECT_EQ(list.Find("x.DLL.zip", FileColumn::kCompressed), 2u);
  EXPECT_EQ(list.Find("5", FileColumn::kRegister), 2u);
  EXPECT_EQ(list.Find("<fontdir>", FileColumn::kDestination), 2u);
}

TEST(FileList, HoldsTheSameSourceTwiceWhenAsked) {
  const FileList list = ListOf({"x.dll", "X.DLL"});

  EXPECT_EQ(list.RowCount(), 2u);
  EXPECT_EQ(list.Find("x.dll", FileColumn::kSource), 1u);
}

TEST(FileList, ShowsTheLargestLengthInFull) {
  FileList list = ListOf({"x"});
  list.Row(1).length_bytes = std::numeric_limits<std::uint64_t>::max();

  EXPECT_EQ(list.Cell(1, FileColumn::kLength), "18446744073709551615");
}

TEST(FileList, TakesEditsOfEveryColumn) {
  FileList list = ListOf({"x"});

  list.SetCell(1, FileColumn::kSource, "y");
  list.SetCell(1, FileColumn::kDestination, "<WinDir>");
  list.SetCell(1, FileColumn::kLength, " 12 ");
  list.SetCell(1, FileColumn::kDisk, "|1");
  list.SetCell(1, FileColumn::kCompressed, "y.zip");
  list.SetCell(1, FileColumn::kRegister, "2");

  const FileRow expected{"y", "<WinDir>", 12, "|1", "y.zip", "2", /*marked=*/false};
  EXPECT_EQ(list.Row(1), expected);
}

TEST(FileList, EditTakesTheMarkAway) {
  FileList list = ListOf({"x", "y"});
  list.Row(1).marked = true;
  list.Row(2).marked = true;

  list.SetCell(1, FileColumn::kDestination, "<WinDir>");

  EXPECT_FALSE(list.Row(1).marked);
  EXPECT_TRUE(list.Row(2).marked);
}

TEST(FileList, LengthThatIsNoWholeNumberBecomesUnset) {
  FileList list = ListOf({"x"});
  for (const char* text : {"", "-1", "1.5", "12 KB", "18446744073709551616"}) {
    list.Row(1).length_bytes = 3;

    list.SetCell(1, FileColumn::kLength, text);

    EXPECT_EQ(list.Row(1).length_bytes, std::nullopt) << text;
  }
}

TEST(FileList, RefusesRowsThatItDoesNotHave) {
  FileList list = ListOf({"x"});

  EXPECT_EQ(NumberOfErrorFrom([&] { (void)list.Row(0); }), ErrorNumber::kInvalidCall);
  EXPECT_EQ(NumberOfErrorFrom([&] { (void)list.Row(2); }), ErrorNumber::kInvalidCall);
  EXPECT_EQ(NumberOfErrorFrom([&] { (void)list.Cell(2, FileColumn::kDisk); }),
            ErrorNumber::kInvalidCall);
  EXPECT_EQ(NumberOfErrorFrom([&] { list.SetCell(0, FileColumn::kDisk, ""); }),
            ErrorNumber::kInvalidCall);
}

TEST(FileList, DeletesRowsNamedInAnyOrder) {
  FileList list = ListOf({"1", "2", "3", "4", "5"});

  list.DeleteRows({5, 1, 3});

  EXPECT_THAT(Sources(list), ElementsAre("2", "4"));
}

TEST(FileList, PassesOverNumbersThatAreNoRowAndNumbersNamedTwice) {
  FileList list = ListOf({"1", "2", "3", "4"});

  list.DeleteRows({0, 4, 2, 2, 5, 900});

  EXPECT_THAT(Sources(list), ElementsAre("1", "3"));
}

TEST(FileList, DeletesAllRows) {
  FileList list = ListOf({"1", "2"});

  list.DeleteRows({2, 1});

  EXPECT_EQ(list.RowCount(), 0u);
}

TEST(FileList, ClearsMarksOfAllRows) {
  FileList list = ListOf({"1", "2"});
  list.Row(1).marked = list.Row(2).marked = true;

  list.ClearMarks();

  EXPECT_FALSE(list.Row(1).marked);
  EXPECT_FALSE(list.Row(2).marked);
}

TEST(AddUnique, AppendsWhatIsNewAndNothingThatDiffersOnlyInCase) {
  std::vector<std::string> list;

  EXPECT_TRUE(AddUnique(list, "Übersicht.ini"));
  EXPECT_FALSE(AddUnique(list, "ÜBERSICHT.INI"));
  EXPECT_FALSE(AddUnique(list, "übersicht.ini"));
  EXPECT_TRUE(AddUnique(list, ""));

  EXPECT_THAT(list, ElementsAre("Übersicht.ini", ""));
}

TEST(SystemFile, IsKnownByItsBareNameFromAnyDirectory) {
  const SystemFileNames names{{"Kernel32.dll"}, {"user32.dll"}};

  EXPECT_TRUE(IsSystemFile(names, "D:\\Fremd\\KERNEL32.DLL"));
  EXPECT_TRUE(IsSystemFile(names, "USER32.dll"));
  EXPECT_FALSE(IsSystemFile(names, "C:\\Windows\\System32\\gdi32.dll"));
  EXPECT_FALSE(IsSystemFile(names, "C:\\Kernel32.dll\\x.exe"));
}

}  // namespace
}  // namespace txs
