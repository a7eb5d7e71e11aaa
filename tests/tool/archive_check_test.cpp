#include "tool/archive_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <string>

#include "environment/archiver_builtin.h"
#include "fakes/demo_project.h"
#include "fakes/memory_platform.h"

namespace txs {
namespace {

using ::testing::IsEmpty;
using ::testing::Not;

constexpr char kSource[] = "C:\\S\\a.txt";

std::string Repetitive() {
  std::string text;
  for (int i = 0; i < 60; ++i) text += "line " + std::to_string(i * i) + "\r\n";
  return text;
}

struct ArchiveCheck : ::testing::Test {
  MemoryPlatform world;

  std::string Pack(const std::string& contents, const std::string& source = kSource,
                   const ArchiverLimits& limits = {}) {
    world.files.AddFile(source, contents);
    world.files.AddFolder("C:\\A");
    const auto archiver = MakeBuiltInArchiver(world.files, world.clock, limits);
    EXPECT_EQ(archiver->Compress("C:\\A\\x.zip", source), ArchiveResult::kSuccess);
    return world.files.Contents("C:\\A\\x.zip");
  }

  // Lays the archive down in pieces of at most `piece_bytes`, and checks it.
  std::vector<std::string> Check(const std::string& archive, const ArchiveExpectation& expected,
                                 std::size_t piece_bytes = std::string::npos) {
    std::vector<ArchivePiece> pieces;
    for (std::size_t at = 0; at < archive.size();) {
      const std::string piece = archive.substr(at, piece_bytes);
      const std::string path = "C:\\P\\" + std::to_string(pieces.size()) + ".zip";
      world.files.AddFile(path, piece);
      pieces.push_back({path, piece.size()});
      at += piece.size();
    }
    return CheckArchive(world.files, pieces, expected);
  }
};

TEST_F(ArchiveCheck, DeflatedStoredAndEmptyContentsAreSound) {
  EXPECT_THAT(Check(Pack(Repetitive()), {"a.txt", Repetitive().size()}), IsEmpty());
  EXPECT_THAT(Check(Pack(Noise(300, 1)), {"a.txt", 300}), IsEmpty());
  EXPECT_THAT(Check(Pack(""), {"a.txt", 0}), IsEmpty());
}

TEST_F(ArchiveCheck, StreamedAndZip64ArchivesAreSound) {
  const ArchiverLimits streamed{.whole_file_bytes = 0, .zip64_bytes = 0xFFFFFFFF};
  const ArchiverLimits zip64{.whole_file_bytes = 1 << 20, .zip64_bytes = 1};

  EXPECT_THAT(Check(Pack(Repetitive(), kSource, streamed), {"a.txt", Repetitive().size()}),
              IsEmpty());
  EXPECT_THAT(Check(Pack(Repetitive(), kSource, zip64), {"a.txt", Repetitive().size()}), IsEmpty());
}

TEST_F(ArchiveCheck, PiecesOfOneByteAreJoined) {
  EXPECT_THAT(Check(Pack(Repetitive()), {"a.txt", Repetitive().size()}, /*piece_bytes=*/1),
              IsEmpty());
}

TEST_F(ArchiveCheck, ContentsLargerThanTheBuffersAreRead) {
  const std::string large = Noise(300000, 3) + std::string(500000, 'x');

  EXPECT_THAT(Check(Pack(large), {"a.txt", large.size()}, /*piece_bytes=*/70001), IsEmpty());
}

TEST_F(ArchiveCheck, EntryNameIsComparedWithoutRegardToCase) {
  EXPECT_THAT(Check(Pack("x", "C:\\S\\GRÖSSE.txt"), {"größe.TXT", 1}), Not(IsEmpty()));
  EXPECT_THAT(Check(Pack("x", "C:\\S\\MÜLL.txt"), {"müll.TXT", 1}), IsEmpty());
}

TEST_F(ArchiveCheck, OtherNameAndOtherLengthAreTwoFaults) {
  EXPECT_EQ(Check(Pack("abc"), {"b.txt", 4}).size(), 2u);
}

TEST_F(ArchiveCheck, EveryTruncationIsFound) {
  const std::string archive = Pack(Repetitive());

  for (std::size_t length = 0; length < archive.size(); ++length) {
    EXPECT_THAT(Check(archive.substr(0, length), {"a.txt", Repetitive().size()}), Not(IsEmpty()))
        << length;
  }
}

TEST_F(ArchiveCheck, SurplusBytesBeforeBetweenAndBehindAreFound) {
  const std::string archive = Pack(Repetitive());
  const ArchiveExpectation expected{"a.txt", Repetitive().size()};

  for (std::size_t at = 0; at <= archive.size(); ++at) {
    std::string longer = archive;
    longer.insert(at, 1, 'x');
    EXPECT_THAT(Check(longer, expected), Not(IsEmpty())) << at;
  }
}

// Whether a change of this byte can matter to anyone who unpacks the archive: not the program that
// made it, not the file attributes (the script sets none), and not the bits that fill up the last
// byte of a deflated stream.
bool IsIrrelevant(const std::string& archive, std::size_t at) {
  const std::size_t directory = archive.rfind("PK\x01\x02");
  const bool made_by = at == directory + 4 || at == directory + 5;
  const bool attributes = at >= directory + 36 && at < directory + 42;
  const bool deflated = archive[8] == 8;
  // The versions of program and format once more, in the ZIP64 end record.
  const std::size_t zip64_end = archive.rfind("PK\x06\x06");
  const bool versions =
      zip64_end != std::string::npos && at >= zip64_end + 12 && at < zip64_end + 16;
  return versions || made_by || attributes || (deflated && at == directory - 1);
}

class FlippedByte : public ArchiveCheck, public ::testing::WithParamInterface<int> {};

TEST_P(FlippedByte, IsFoundWhereverItMatters) {
  const ArchiverLimits plain;
  const ArchiverLimits zip64{.whole_file_bytes = 1 << 20, .zip64_bytes = 1};
  const std::string contents = GetParam() == 1 ? Noise(200, 5) : Repetitive();
  const std::string archive = Pack(contents, kSource, GetParam() == 2 ? zip64 : plain);
  const ArchiveExpectation expected{"a.txt", contents.size()};

  std::size_t missed_in_last_byte = 0;
  for (std::size_t at = 0; at < archive.size(); ++at) {
    for (const int mask : {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80, 0xFF}) {
      std::string changed = archive;
      changed[at] = static_cast<char>(static_cast<unsigned char>(changed[at]) ^ mask);
      // The letters of the name may change their case.
      if (changed.find("A.txt") != std::string::npos) continue;
      const bool found = !Check(changed, expected).empty();
      if (!IsIrrelevant(archive, at)) {
        EXPECT_TRUE(found) << "offset " << at << ", mask " << mask;
      } else if (!found && at + 1 == archive.rfind("PK\x01\x02")) {
        ++missed_in_last_byte;
      }
    }
  }

  EXPECT_LT(missed_in_last_byte, 9u);
}

INSTANTIATE_TEST_SUITE_P(DeflatedStoredAndZip64, FlippedByte, ::testing::Values(0, 1, 2));

TEST_F(ArchiveCheck, RandomDamageNeverThrows) {
  const std::string archive = Pack(Repetitive());
  unsigned state = 7;
  const auto random = [&state] { return (state = state * 1664525U + 1013904223U) >> 8; };

  for (int round = 0; round < 3000; ++round) {
    std::string changed = archive;
    for (unsigned i = 0; i < 1 + random() % 6; ++i) {
      changed[random() % changed.size()] = static_cast<char>(random());
    }
    EXPECT_NO_THROW(static_cast<void>(Check(changed, {"a.txt", Repetitive().size()})));
  }
}

TEST_F(ArchiveCheck, ContentsBeyondTheExpectedLengthAreNotRead) {
  const std::string bomb(8 << 20, '\0');
  const std::string archive = Pack(bomb);
  world.files.diary.clear();

  const std::vector<std::string> faults = Check(archive, {"a.txt", 10});

  EXPECT_EQ(faults.size(), 1u);
  EXPECT_LT(world.files.Times("Read"), 12u);
}

TEST_F(ArchiveCheck, SizeThatUnderstatesTheContentsStopsInflating) {
  // Both headers say 10 bytes; the stream holds a megabyte.
  std::string archive = Pack(std::string(1 << 20, '\0'));
  const std::size_t directory = archive.rfind("PK\x01\x02");
  for (const std::size_t at : {std::size_t{22}, directory + 24}) {
    archive.replace(at, 4, std::string("\x0A\0\0\0", 4));
  }

  EXPECT_EQ(Check(archive, {"a.txt", 10}).size(), 1u);
}

TEST_F(ArchiveCheck, UnreadablePieceThrows) {
  const std::string archive = Pack("abc");
  world.files.AddFile("C:\\P\\0.zip", archive);
  world.files.FailPath("C:\\P\\0.zip", "OpenForReading", ErrorNumber::kPermissionDenied);

  try {
    static_cast<void>(CheckArchive(world.files, {{"C:\\P\\0.zip", archive.size()}}, {"a.txt", 3}));
    FAIL() << "no error was thrown";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::kPermissionDenied);
  }
}

TEST_F(ArchiveCheck, PieceThatShrankSinceItWasListedIsAFault) {
  const std::string archive = Pack("abc");
  world.files.AddFile("C:\\P\\0.zip", archive);

  EXPECT_THAT(CheckArchive(world.files, {{"C:\\P\\0.zip", archive.size() + 1}}, {"a.txt", 3}),
              Not(IsEmpty()));
}

}  // namespace
}  // namespace txs
