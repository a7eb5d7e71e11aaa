#include "environment/archiver_builtin.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <tuple>

#include "environment/archiver_world.h"
#include "fakes/unpacked_archive.h"

namespace txs {
namespace {

TEST_F(ArchiverTest, TheArchiveHoldsTheFileUnderItsBareName) {
  const std::string bytes = Repeating(10'000);

  const Unpacked unpacked = Unpack(ArchiveOf(bytes));

  EXPECT_TRUE(unpacked.sound);
  EXPECT_EQ(unpacked.entries, 1);
  EXPECT_EQ(unpacked.name, "Library.dll");
  EXPECT_EQ(unpacked.bytes, bytes);
}

TEST_F(ArchiverTest, CrcAndSizesStandInTheLocalHeader) {
  const std::string zip = ArchiveOf("123456789");

  EXPECT_EQ(U16(zip, 6), 0u);  // no flags: no data descriptor, a name in ASCII
  EXPECT_EQ(U32(zip, 14), 0xCBF43926u);
  EXPECT_EQ(U32(zip, 18), 9u);
  EXPECT_EQ(U32(zip, 22), 9u);
}

TEST_F(ArchiverTest, SameInputGivesSameBytes) {
  const std::string bytes = Repeating(50'000);

  const std::string first = ArchiveOf(bytes);
  const std::string second = ArchiveOf(bytes);
  const ArchiverLimits in_pieces = {.whole_file_bytes = 1000, .piece_bytes = 7'000};
  const std::string third = ArchiveOf(bytes, in_pieces);
  const std::string fourth = ArchiveOf(bytes, in_pieces);

  EXPECT_EQ(first, second);
  EXPECT_EQ(third, fourth);
}

TEST_F(ArchiverTest, OneArchiverMakesManyArchivesAsIfEachWereItsFirst) {
  const std::unique_ptr<Archiver> archiver = MakeBuiltInArchiver(files_, clock_);
  for (const std::size_t size : {30'000u, 5u, 0u, 9'000'000u, 100u}) {
    const std::string bytes = size % 2 == 0 ? Repeating(size) : Noise(size, 1);
    const std::string alone = ArchiveOf(bytes);

    EXPECT_EQ(archiver->Compress(kArchive, kSource), ArchiveResult::kSuccess);
    EXPECT_EQ(files_.ReadWhole(kArchive), alone);
  }
}

TEST_F(ArchiverTest, AnEmptyFileIsStored) {
  const std::string zip = ArchiveOf("");

  EXPECT_EQ(Method(zip), kStored);
  EXPECT_TRUE(Unpack(zip).sound);
  EXPECT_EQ(Unpack(zip).bytes, "");
}

TEST_F(ArchiverTest, AFileThatDoesNotShrinkIsStored) {
  for (const std::uint64_t whole_file_bytes : {1'000'000u, 10u}) {
    const std::string bytes = Noise(300'000, 2);

    const std::string zip = ArchiveOf(bytes, {.whole_file_bytes = whole_file_bytes});

    EXPECT_EQ(Method(zip), kStored);
    EXPECT_EQ(U32(zip, 18), bytes.size());
    EXPECT_EQ(Unpack(zip).bytes, bytes);
  }
}

TEST_F(ArchiverTest, AFileThatShrinksIsDeflated) {
  for (const std::uint64_t whole_file_bytes : {1'000'000u, 10u}) {
    const std::string bytes = Repeating(300'000);

    const std::string zip = ArchiveOf(bytes, {.whole_file_bytes = whole_file_bytes});

    EXPECT_EQ(Method(zip), kDeflated);
    EXPECT_LT(zip.size(), bytes.size() / 4);
    EXPECT_EQ(Unpack(zip).bytes, bytes);
  }
}

TEST_F(ArchiverTest, AFileInPiecesIsHardlyLongerThanTheWhole) {
  const std::string bytes = Repeating(2'000'000);

  const std::string whole = ArchiveOf(bytes);
  const std::string pieces = ArchiveOf(bytes, {.whole_file_bytes = 10, .piece_bytes = 500'000});

  EXPECT_LT(pieces.size(), whole.size() + whole.size() / 10);
  EXPECT_EQ(Unpack(pieces).bytes, bytes);
}

TEST_F(ArchiverTest, APieceThatDoesNotShrinkDoesNotKeepTheOthersFromShrinking) {
  const std::string bytes = Repeating(100'000) + Noise(100'000, 10) + Repeating(100'000);

  const std::string zip = ArchiveOf(bytes, {.whole_file_bytes = 10, .piece_bytes = 50'000});

  EXPECT_EQ(Method(zip), kDeflated);
  EXPECT_LT(zip.size(), 150'000u);
  EXPECT_EQ(Unpack(zip).bytes, bytes);
}

TEST_F(ArchiverTest, FilesAroundEveryLimitComeBackWhole) {
  const ArchiverLimits limits = {
      .whole_file_bytes = 4096, .piece_bytes = 262'144, .zip64_bytes = 600'000};
  // Around the whole-file limit, pieces of 256 KiB and the ZIP64 limit.
  for (const std::size_t around : {std::size_t{1}, std::size_t{4096}, std::size_t{262'144},
                                   std::size_t{524'288}, std::size_t{599'939}}) {
    for (std::size_t size = around - 1; size <= around + 1; ++size) {
      for (const std::string& bytes : {Repeating(size), Noise(size, 3)}) {
        const Unpacked unpacked = Unpack(ArchiveOf(bytes, limits));

        ASSERT_TRUE(unpacked.sound) << size;
        ASSERT_EQ(unpacked.bytes, bytes) << size;
      }
    }
  }
}

TEST_F(ArchiverTest, FilesOfRandomSizesAndContentsComeBackWhole) {
  std::mt19937 random(4);
  for (int round = 0; round < 60; ++round) {
    const ArchiverLimits limits = {.whole_file_bytes = random() % 100'000,
                                   .piece_bytes = 5'000 + random() % 100'000,
                                   .zip64_bytes = random() % 2 == 0 ? 0 : 0xFFFFFFFF};
    std::string bytes =
        Repeating(random() % 200'000) + Noise(random() % 200'000, static_cast<unsigned>(random()));
    if (random() % 2 == 0) bytes += std::string(random() % 300'000, '\0');

    const std::string zip = ArchiveOf(bytes, limits);

    ASSERT_TRUE(Unpack(zip).sound) << round;
    ASSERT_EQ(Unpack(zip).bytes, bytes) << round;
    ASSERT_LE(zip.size(), bytes.size() + 300) << round;
  }
}

TEST_F(ArchiverTest, AnotherLibraryReadsTheLargeArchiveFormat) {
  for (const std::uint64_t whole_file_bytes : {1'000'000u, 10u}) {
    for (const std::string& bytes : {Repeating(300'000), Noise(300'000, 5)}) {
      const std::string zip =
          ArchiveOf(bytes, {.whole_file_bytes = whole_file_bytes, .zip64_bytes = 300'000});

      EXPECT_EQ(U16(zip, 4), 45u);  // the version that brought this format
      EXPECT_EQ(Unpack(zip).bytes, bytes);
    }
  }
}

TEST_F(ArchiverTest, TheLargeFormatBeginsWhereTheDirectorysOffsetWouldNotFit) {
  constexpr std::size_t kHeaderBytes = 30 + 20 + 11;  // with "Library.dll"
  const std::string bytes = Noise(1000, 6);

  const std::string below = ArchiveOf(bytes, {.zip64_bytes = bytes.size() + kHeaderBytes + 1});
  const std::string at = ArchiveOf(bytes, {.zip64_bytes = bytes.size() + kHeaderBytes});

  EXPECT_EQ(U16(below, 4), 20u);
  EXPECT_EQ(U16(at, 4), 45u);
}

TEST_F(ArchiverTest, OnlyANameBeyondAsciiIsMarkedAsUtf8) {
  constexpr char kUmlaut[] = "C:\\Demo\\Größe.dll";
  PutFile(kUmlaut, "x");

  const auto archiver = MakeBuiltInArchiver(files_, clock_);
  ASSERT_EQ(archiver->Compress(kArchive, kUmlaut), ArchiveResult::kSuccess);

  const std::string zip = files_.ReadWhole(kArchive);
  EXPECT_EQ(U16(zip, 6), 1u << 11);
  EXPECT_EQ(Unpack(zip).name, "Größe.dll");
}

struct DosMoment {
  LocalTime local;
  unsigned date;
  unsigned time;
};

class ArchiverTimeTest : public ArchiverTest, public testing::WithParamInterface<DosMoment> {};

TEST_P(ArchiverTimeTest, TheEntryHasTheLocalTimeThatAnArchiveCanHold) {
  clock_.local = GetParam().local;

  const std::string zip = ArchiveOf("x");

  EXPECT_EQ(U16(zip, 12), GetParam().date);
  EXPECT_EQ(U16(zip, 10), GetParam().time);
}

constexpr unsigned DosDate(int year, int month, int day) {
  return static_cast<unsigned>((year - 1980) * 512 + month * 32 + day);
}
constexpr unsigned DosTime(int hour, int minute, int half_seconds) {
  return static_cast<unsigned>(hour * 2048 + minute * 32 + half_seconds);
}

INSTANTIATE_TEST_SUITE_P(
    Moments, ArchiverTimeTest,
    testing::Values(DosMoment{{2026, 11, 21, 7, 11, 45}, DosDate(2026, 11, 21), DosTime(7, 11, 22)},
                    DosMoment{{1979, 12, 31, 23, 59, 59}, DosDate(1980, 1, 1), DosTime(0, 0, 0)},
                    DosMoment{{1601, 1, 1, 0, 0, 0}, DosDate(1980, 1, 1), DosTime(0, 0, 0)},
                    DosMoment{{1980, 1, 1, 0, 0, 0}, DosDate(1980, 1, 1), DosTime(0, 0, 0)},
                    DosMoment{
                        {2107, 12, 31, 23, 59, 59}, DosDate(2107, 12, 31), DosTime(23, 59, 29)},
                    DosMoment{{2108, 1, 1, 0, 0, 0}, DosDate(2107, 12, 31), DosTime(23, 59, 29)},
                    DosMoment{{2016, 12, 31, 23, 59, 60},  // a leap second
                              DosDate(2016, 12, 31),
                              DosTime(23, 59, 29)}));

TEST_F(ArchiverTest, AMissingSourceHasItsOwnResult) {
  EXPECT_EQ(Compress(), ArchiveResult::kSourceNotFound);
  EXPECT_FALSE(files_.FileExists(kArchive));
}

TEST_F(ArchiverTest, AFolderIsNoReadableSource) {
  files_.MakeFolder(kSource);

  const ArchiveResult result = Compress();

  EXPECT_NE(result, ArchiveResult::kSuccess);
  EXPECT_FALSE(files_.FileExists(kArchive));
}

TEST_F(ArchiverTest, AMissingTargetFolderHasItsOwnResult) {
  PutFile(kSource, "x");

  const auto archiver = MakeBuiltInArchiver(files_, clock_);

  EXPECT_EQ(archiver->Compress("C:\\Nowhere\\x.zip", kSource), ArchiveResult::kArchiveNotCreated);
}

TEST_F(ArchiverTest, AFailedRunLeavesNoOlderArchiveBehind) {
  PutFile(kArchive, "an older archive");

  EXPECT_EQ(Compress(), ArchiveResult::kSourceNotFound);

  EXPECT_FALSE(files_.FileExists(kArchive));
}

TEST_F(ArchiverTest, ASourceIsNeverItsOwnArchive) {
  PutFile(kSource, "x");

  const auto archiver = MakeBuiltInArchiver(files_, clock_);

  EXPECT_NE(archiver->Compress("c:\\demo\\LIBRARY.DLL", kSource), ArchiveResult::kSuccess);
  EXPECT_EQ(archiver->FailureReason(), std::string(kSource) + ": Cannot copy a file onto itself");
  EXPECT_EQ(files_.ReadWhole(kSource), "x");
}

TEST_F(ArchiverTest, ASourceThatCannotBeOpenedHasItsOwnResult) {
  PutFile(kSource, "x");
  files_.open_error = ErrorNumber::kPermissionDenied;

  EXPECT_EQ(Compress(), ArchiveResult::kSourceUnreadable);
}

// A small file is read whole, a large one in pieces: each failure is tried on both ways, at the
// first byte and in the middle.
class ArchiverFailureTest : public ArchiverTest,
                            public testing::WithParamInterface<std::tuple<bool, std::size_t>> {
 protected:
  ArchiverFailureTest() {
    PutFile(kSource, Noise(1'000'000, 8));
    files_.bytes_before_failure = std::get<1>(GetParam());
  }

  ArchiveResult Result() {
    const ArchiverLimits limits = {.whole_file_bytes = std::get<0>(GetParam()) ? 1000u : 2'000'000u,
                                   .piece_bytes = 100'000};
    const ArchiveResult result = Compress(limits);
    EXPECT_FALSE(files_.FileExists(kArchive));
    EXPECT_TRUE(files_.FileExists(kSource));
    return result;
  }
};

INSTANTIATE_TEST_SUITE_P(Ways, ArchiverFailureTest,
                         testing::Combine(testing::Bool(),
                                          testing::Values<std::size_t>(0, 600'000)));

TEST_P(ArchiverFailureTest, AFailingReadIsTold) {
  files_.read_error = ErrorNumber::kDeviceIo;
  EXPECT_EQ(Result(), ArchiveResult::kSourceUnreadable);
}

TEST_P(ArchiverFailureTest, ASourceCutShortIsTold) {
  files_.source_cut_short = true;
  EXPECT_EQ(Result(), ArchiveResult::kSourceChanged);
  EXPECT_EQ(reason_, std::string(kSource) + ": The file has changed during the run");
}

TEST_P(ArchiverFailureTest, AnArchiveThatCannotBeCreatedIsTold) {
  files_.create_error = ErrorNumber::kPathFileAccess;
  EXPECT_EQ(Result(), ArchiveResult::kArchiveNotCreated);
}

TEST_P(ArchiverFailureTest, AFullDiskIsTold) {
  files_.write_error = ErrorNumber::kDiskFull;
  EXPECT_EQ(Result(), ArchiveResult::kDiskFull);
}

TEST_P(ArchiverFailureTest, AFailingWriteIsTold) {
  files_.write_error = ErrorNumber::kDeviceIo;
  EXPECT_EQ(Result(), ArchiveResult::kWriteError);
}

TEST_P(ArchiverFailureTest, ADiskThatIsFullOnlyAtClosingIsTold) {
  files_.close_error = ErrorNumber::kDiskFull;
  EXPECT_EQ(Result(), ArchiveResult::kDiskFull);
}

TEST_P(ArchiverFailureTest, MemoryThatRunsOutIsTold) {
  files_.out_of_memory = true;
  EXPECT_EQ(Result(), ArchiveResult::kOutOfMemory);
  EXPECT_EQ(reason_, std::string(kSource) + ": Out of memory");
}

TEST(ArchiverFailures, WhicheverOperationFailsNoArchiveIsLeftBehind) {
  const WallClock clock;
  for (const std::uint64_t whole_file_bytes : {2'000'000u, 1000u}) {
    for (const std::string& bytes : {Repeating(700'000), Noise(700'000, 9)}) {
      ArchiveResult result = ArchiveResult::kUnexpected;
      std::uint64_t failing = 0;
      while (result != ArchiveResult::kSuccess) {
        ASSERT_LT(++failing, 100u);
        MemoryFileSystem files;
        files.AddFile(kSource, bytes);
        files.AddFile(kArchive, "an older archive");
        files.FailOperation(failing, ErrorNumber::kDeviceIo);

        result = MakeBuiltInArchiver(files, clock,
                                     {.whole_file_bytes = whole_file_bytes, .piece_bytes = 100'000})
                     ->Compress(kArchive, kSource);

        if (result == ArchiveResult::kSuccess) {
          EXPECT_EQ(Unpack(files.Contents(kArchive)).bytes, bytes);
        } else {
          EXPECT_FALSE(files.Has(kArchive)) << failing;
        }
        EXPECT_EQ(files.Contents(kSource), bytes);
      }
      EXPECT_GT(failing, 5u);  // open, time, read, create, write, close
    }
  }
}

TEST_F(ArchiverTest, AnOlderArchiveIsReplaced) {
  PutFile(kArchive, Noise(100'000, 7));

  EXPECT_EQ(Unpack(ArchiveOf("new")).bytes, "new");
}

}  // namespace
}  // namespace txs
