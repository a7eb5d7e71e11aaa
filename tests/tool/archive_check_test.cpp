#include "tool/archive_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <string>

#include "environment/archiver_builtin.h"
#include "fakes/demo_project.h"
#include "fakes/memory_platform.h"
#include "fakes/noise.h"

namespace txs {
namespace {

using ::testing::ElementsAre;
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

// A name could have taken over the terminal that shows the report.
TEST_F(ArchiveCheck, ControlCharactersOfANameAreNotShown) {
  std::string archive = Pack("abc", "C:\\S\\x1x.txt");
  for (std::size_t at = 0; (at = archive.find("x1x", at)) != std::string::npos;) {
    archive.replace(at, 3, "x\x1Bx");
  }

  const std::vector<std::string> faults = Check(archive, {"a.txt", 3});

  ASSERT_EQ(faults.size(), 1u);
  EXPECT_EQ(faults[0], "holds \"x?x.txt\", not \"a.txt\"");
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

std::string LittleEndian(std::uint64_t figure, std::size_t bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes; ++i) text += static_cast<char>(figure >> (8 * i) & 0xFF);
  return text;
}

// The archive as a packer writes it that knows CRC and sizes only when the contents are through: a
// flag says so, the local header has none, and they follow the contents.
std::string WithDescriptor(std::string archive, bool signature, std::size_t size_bytes) {
  const std::size_t directory = archive.rfind("PK\x01\x02");
  const std::string crc = archive.substr(14, 4);
  std::string descriptor = signature ? std::string("PK\x07\x08") : std::string();
  descriptor += crc;
  for (const std::size_t at : {std::size_t{18}, std::size_t{22}}) {
    descriptor += archive.substr(at, 4) + std::string(size_bytes - 4, '\0');
  }
  archive[6] = static_cast<char>(archive[6] | 8);
  archive[directory + 8] = static_cast<char>(archive[directory + 8] | 8);
  archive.replace(archive.size() - 6, 4, LittleEndian(directory + descriptor.size(), 4));
  archive.insert(directory, descriptor);
  archive.replace(14, 12, 12, '\0');
  return archive;
}

TEST_F(ArchiveCheck, FiguresBehindTheContentsAreReadInEachOfTheirFourForms) {
  const std::string archive = Pack(Repetitive());
  const ArchiveExpectation expected{"a.txt", Repetitive().size()};

  for (const bool signature : {false, true}) {
    for (const std::size_t size_bytes : {std::size_t{4}, std::size_t{8}}) {
      EXPECT_THAT(Check(WithDescriptor(archive, signature, size_bytes), expected), IsEmpty())
          << signature << size_bytes;
    }
  }
}

TEST_F(ArchiveCheck, EveryFlippedByteOfTheFiguresBehindTheContentsIsFound) {
  const std::string archive = Pack(Repetitive());
  const std::size_t begin = archive.rfind("PK\x01\x02");
  const std::string described = WithDescriptor(archive, /*signature=*/true, /*size_bytes=*/8);

  for (std::size_t at = begin; at < described.rfind("PK\x01\x02"); ++at) {
    std::string changed = described;
    changed[at] = static_cast<char>(~changed[at]);
    EXPECT_EQ(Check(changed, {"a.txt", Repetitive().size()}).size(), 1u) << at - begin;
  }
}

TEST_F(ArchiveCheck, FiguresBehindTheContentsInNoKnownFormAreAFault) {
  std::string archive = WithDescriptor(Pack("abc"), /*signature=*/true, /*size_bytes=*/4);
  const std::size_t directory = archive.rfind("PK\x01\x02");
  archive.replace(archive.size() - 6, 4, LittleEndian(directory + 2, 4));
  archive.insert(directory, 2, '\0');

  EXPECT_EQ(Check(archive, {"a.txt", 3}).size(), 1u);
}

TEST_F(ArchiveCheck, MethodsAndVersionsThatTheSetupDoesNotKnowAreNamed) {
  const std::string archive = Pack("abc");
  const std::size_t directory = archive.rfind("PK\x01\x02");
  std::string other_method = archive;
  other_method[8] = other_method[directory + 10] = 12;
  std::string newer = archive;
  newer[4] = newer[directory + 6] = 63;

  EXPECT_THAT(Check(other_method, {"a.txt", 3}), ElementsAre("is packed by the unknown method 12"));
  EXPECT_THAT(Check(newer, {"a.txt", 3}),
              ElementsAre("is packed in a way that the setup does not know"));
}

// Packers of other systems write names in their own code page and do not say which.
TEST_F(ArchiveCheck, NameInAnUnknownCodePageIsComparedByItsAsciiLetters) {
  std::string archive = Pack("abc", "C:\\S\\MxLL.txt");
  archive[31] = archive[archive.rfind("PK\x01\x02") + 47] = '\x9A';  // Ü in code page 850

  EXPECT_THAT(Check(archive, {"m\u00FCll.txt", 3}), IsEmpty());
  EXPECT_EQ(Check(archive, {"m\u00FCllt.tx", 3}).size(), 1u);
}

TEST_F(ArchiveCheck, PiecesLongerThanAnyFileAreAFault) {
  const std::uint64_t half = std::uint64_t{1} << 63;

  EXPECT_THAT(
      CheckArchive(world.files, {{"C:\\P\\0.zip", half}, {"C:\\P\\1.zip", half}}, {"a.txt", 3}),
      ElementsAre("the pieces are too long"));
}

}  // namespace
}  // namespace txs
