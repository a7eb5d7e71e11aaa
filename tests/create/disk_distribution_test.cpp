#include "create/disk_distribution.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "create/create_world.h"
#include "document/medium.h"
#include "environment/code_page.h"
#include "environment/runtime_error.h"

namespace txs {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

using Sizes = std::vector<std::uint64_t>;

constexpr std::uint64_t kKibi = 1024;

// The rules taken word by word, chunk by chunk: slow, and with nothing to get wrong.
DistributionPlan PlanChunkByChunk(const Sizes& sizes, std::uint64_t medium,
                                  std::uint64_t reserved) {
  DistributionPlan plan;
  std::int64_t free = static_cast<std::int64_t>(medium) - static_cast<std::int64_t>(reserved);
  std::uint64_t disk = 1;
  for (const std::uint64_t size : sizes) {
    ArchivePlacement placement;
    const auto need = static_cast<std::int64_t>(RoundUpTo1024(size));
    if (need < free) {
      placement.whole = true;
      placement.pieces = {{disk, size}};
      free -= need;
    } else {
      if (free < 1) {
        ++disk;
        free = static_cast<std::int64_t>(medium);
      }
      std::uint64_t piece = 0;
      std::uint64_t remaining = size;
      while (remaining > 0) {
        if (free < 1) {
          placement.pieces.push_back({disk, piece});
          piece = 0;
          ++disk;
          free = static_cast<std::int64_t>(medium);
        }
        const std::uint64_t chunk =
            std::min({std::uint64_t{10240}, static_cast<std::uint64_t>(free), remaining});
        piece += chunk;
        remaining -= chunk;
        free -= static_cast<std::int64_t>(RoundUpTo1024(chunk));
      }
      placement.pieces.push_back({disk, piece});
    }
    plan.archives.push_back(placement);
  }
  plan.disks_used = disk;
  return plan;
}

std::vector<std::string> DiskTexts(const DistributionPlan& plan) {
  std::vector<std::string> texts;
  for (const ArchivePlacement& placement : plan.archives) texts.push_back(placement.DiskText());
  return texts;
}

TEST(DiskPlan, RoomIsCountedInUnitsOf1024Bytes) {
  EXPECT_EQ(RoundUpTo1024(0), 0u);
  EXPECT_EQ(RoundUpTo1024(1), 1024u);
  EXPECT_EQ(RoundUpTo1024(1024), 1024u);
  EXPECT_EQ(RoundUpTo1024(1025), 2048u);
  EXPECT_EQ(RoundUpTo1024(std::uint64_t{5} << 32), std::uint64_t{5} << 32);
}

TEST(DiskPlan, TheUnlimitedMediumTakesEverythingOnDisk1) {
  const DistributionPlan plan = PlanDistribution({1, 5'000'000, 700'000'000, 0}, kUnlimitedBytes,
                                                 /*reserved_bytes=*/40'000);

  EXPECT_EQ(plan.disks_used, 1u);
  EXPECT_EQ(DiskTexts(plan), (std::vector<std::string>{"|1", "|1", "|1", "|1"}));
  for (const ArchivePlacement& placement : plan.archives) EXPECT_TRUE(placement.whole);
}

// "No limit" is 2,147,483,647 bytes, no multiple of 1024: what needs more goes on to disk 2.
TEST(DiskPlan, WithoutALimitMoreThanTwoGibibytesGoOnToTheNextDisk) {
  constexpr std::uint64_t kGibi = std::uint64_t{1} << 30;
  for (const Sizes& sizes :
       {Sizes{2 * kGibi - kKibi}, Sizes{2 * kGibi - 1}, Sizes{2 * kGibi}, Sizes{4 * kGibi + 1},
        Sizes{kGibi, kGibi - 2 * kKibi, 1, 1}, Sizes{kGibi, kGibi - kKibi, 1}}) {
    const DistributionPlan plan = PlanDistribution(sizes, kUnlimitedBytes, /*reserved_bytes=*/0);

    const DistributionPlan expected = PlanChunkByChunk(sizes, kUnlimitedBytes, 0);
    EXPECT_EQ(plan.disks_used, expected.disks_used) << sizes.back();
    EXPECT_EQ(DiskTexts(plan), DiskTexts(expected)) << sizes.back();
    for (std::size_t i = 0; i < sizes.size(); ++i) {
      EXPECT_EQ(plan.archives[i].whole, expected.archives[i].whole) << sizes[i];
      EXPECT_EQ(plan.archives[i].pieces, expected.archives[i].pieces) << sizes[i];
    }
  }
}

TEST(DiskPlan, AnArchiveThatNeedsJustTheFreeRoomStaysWholeAndFillsTheDisk) {
  const DistributionPlan plan = PlanDistribution({8 * kKibi, 1}, 10 * kKibi, 2 * kKibi);

  EXPECT_EQ(DiskTexts(plan), (std::vector<std::string>{"|1", "|2"}));
  EXPECT_FALSE(plan.archives[0].whole) << "the equal case takes the piecewise path";
  EXPECT_EQ(plan.archives[0].pieces, (std::vector<DiskPiece>{{1, 8 * kKibi}}));
  EXPECT_EQ(plan.disks_used, 2u);
}

TEST(DiskPlan, AnArchiveThatNeedsLessThanTheFreeRoomIsPlacedWhole) {
  const DistributionPlan plan = PlanDistribution({7 * kKibi}, 10 * kKibi, 2 * kKibi);

  EXPECT_TRUE(plan.archives[0].whole);
  EXPECT_EQ(plan.archives[0].pieces, (std::vector<DiskPiece>{{1, 7 * kKibi}}));
}

TEST(DiskPlan, AnArchiveLargerThanTwoMediaIsSpreadOverThreeDisks) {
  const DistributionPlan plan = PlanDistribution({25 * kKibi}, 10 * kKibi, /*reserved_bytes=*/0);

  EXPECT_EQ(DiskTexts(plan), (std::vector<std::string>{"|1|2|3"}));
  EXPECT_EQ(plan.archives[0].pieces,
            (std::vector<DiskPiece>{{1, 10 * kKibi}, {2, 10 * kKibi}, {3, 5 * kKibi}}));
  EXPECT_EQ(plan.disks_used, 3u);
}

TEST(DiskPlan, TheReservationCountsOnDisk1Only) {
  const DistributionPlan plan = PlanDistribution({15 * kKibi}, 10 * kKibi, 8 * kKibi);

  EXPECT_EQ(plan.archives[0].pieces,
            (std::vector<DiskPiece>{{1, 2 * kKibi}, {2, 10 * kKibi}, {3, 3 * kKibi}}));
}

TEST(DiskPlan, AFileOf1ByteTakes1024BytesOfRoom) {
  const DistributionPlan plan = PlanDistribution({1, 1, 1}, 3 * kKibi, /*reserved_bytes=*/0);

  // The third needs just what is left; a fourth would start disk 2.
  EXPECT_EQ(plan.disks_used, 1u);
  EXPECT_EQ(PlanDistribution({1, 1, 1, 1}, 3 * kKibi, 0).archives[3].DiskText(), "|2");
}

TEST(DiskPlan, AnEmptyFileTakesNoRoom) {
  const DistributionPlan plan = PlanDistribution({0, 0, 3 * kKibi}, 3 * kKibi, 0);

  EXPECT_EQ(DiskTexts(plan), (std::vector<std::string>{"|1", "|1", "|1"}));
  EXPECT_TRUE(plan.archives[0].whole);
  EXPECT_EQ(plan.disks_used, 1u);
}

TEST(DiskPlan, AnEmptyFileBehindAFullDiskStartsTheNext) {
  const DistributionPlan plan = PlanDistribution({3 * kKibi, 0}, 3 * kKibi, 0);

  EXPECT_EQ(DiskTexts(plan), (std::vector<std::string>{"|1", "|2"}));
}

TEST(DiskPlan, AReservationThatFillsDisk1PutsTheFirstArchiveOnDisk2) {
  const DistributionPlan plan = PlanDistribution({1}, 3 * kKibi, 3 * kKibi);

  EXPECT_EQ(DiskTexts(plan), (std::vector<std::string>{"|2"}));
}

TEST(DiskPlan, NoArchivesNeedOneDisk) {
  const DistributionPlan plan = PlanDistribution({}, kDisketteBytes, 32'000);

  EXPECT_TRUE(plan.archives.empty());
  EXPECT_EQ(plan.disks_used, 1u);
}

TEST(DiskPlan, RoomThatIsNoMultipleOf1024IsUsedToTheLastByte) {
  // 32000 reserved bytes are 31.25 units: a quarter of one is left at the end of disk 1.
  const DistributionPlan plan =
      PlanDistribution({kDisketteBytes - 32'000 + 5}, kDisketteBytes, 32'000);

  EXPECT_EQ(plan.archives[0].pieces,
            (std::vector<DiskPiece>{{1, kDisketteBytes - 32'000}, {2, 5}}));
}

TEST(DiskPlan, AThousandDisksCostWhatTheirArchivesCost) {
  const std::uint64_t large = kDisketteBytes * 1000;

  const DistributionPlan plan = PlanDistribution({large}, kDisketteBytes, /*reserved_bytes=*/0);

  EXPECT_EQ(plan.disks_used, 1000u);
  EXPECT_EQ(plan.archives[0].pieces.size(), 1000u);
}

TEST(DiskPlan, TheShortCutGivesWhatTheChunksGive) {
  std::mt19937_64 random(408);
  for (int round = 0; round < 3000; ++round) {
    const std::uint64_t media[] = {kDisketteBytes, 1,      1000,   10'240,
                                   10'241,         20'481, 65'536, 1 + random() % 200'000};
    const std::uint64_t medium = media[random() % std::size(media)];
    const std::uint64_t reserved = random() % 3 == 0 ? medium : random() % (medium + 1);
    const std::uint64_t limit = random() % 2 == 0 ? 3000 : std::min(medium * 4, kDisketteBytes * 2);
    Sizes sizes(random() % 12);
    for (std::uint64_t& size : sizes) {
      size = random() % (limit + 1);
      if (random() % 4 == 0) size = size / 1024 * 1024;
    }

    const DistributionPlan plan = PlanDistribution(sizes, medium, reserved);

    const DistributionPlan expected = PlanChunkByChunk(sizes, medium, reserved);
    ASSERT_EQ(plan.disks_used, expected.disks_used) << "round " << round;
    ASSERT_EQ(plan.archives.size(), expected.archives.size());
    for (std::size_t i = 0; i < sizes.size(); ++i) {
      ASSERT_EQ(plan.archives[i].whole, expected.archives[i].whole) << round << ", " << i;
      ASSERT_EQ(plan.archives[i].pieces, expected.archives[i].pieces) << round << ", " << i;
    }
  }
}

TEST(DiskPlan, PiecesSumToTheirArchiveAndNoDiskHoldsMoreThanItsMedium) {
  std::mt19937_64 random(903);
  for (int round = 0; round < 1000; ++round) {
    const std::uint64_t medium = round % 2 == 0 ? kDisketteBytes : 1 + random() % 100'000;
    const std::uint64_t reserved = random() % (medium + 1);
    Sizes sizes(random() % 20);
    for (std::uint64_t& size : sizes) size = random() % (medium * 2);

    const DistributionPlan plan = PlanDistribution(sizes, medium, reserved);

    std::vector<std::uint64_t> on_disk(plan.disks_used + 1);
    on_disk[1] = reserved;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
      std::uint64_t sum = 0;
      std::uint64_t previous = 0;
      for (const DiskPiece& piece : plan.archives[i].pieces) {
        ASSERT_GT(piece.disk, previous);
        ASSERT_LE(piece.disk, plan.disks_used);
        previous = piece.disk;
        sum += piece.bytes;
        on_disk[piece.disk] += piece.bytes;
      }
      ASSERT_EQ(sum, sizes[i]);
    }
    for (std::size_t disk = 1; disk < on_disk.size(); ++disk) ASSERT_LE(on_disk[disk], medium);
  }
}

TEST(DiskPlan, TellsWhatIsLeftOnDisk1AndNothingOnceThereIsAnother) {
  const std::uint64_t reserved = 40 * kKibi;
  const std::uint64_t medium = 100 * kKibi;

  EXPECT_EQ(PlanDistribution({}, medium, reserved).first_disk_free_bytes, 60 * kKibi);
  EXPECT_EQ(PlanDistribution({1, 9 * kKibi}, medium, reserved).first_disk_free_bytes, 50 * kKibi);
  EXPECT_EQ(PlanDistribution({60 * kKibi}, medium, reserved).first_disk_free_bytes, 0u);
  EXPECT_EQ(PlanDistribution({60 * kKibi, 1}, medium, reserved).first_disk_free_bytes, 0u);
}

// --- The stage

class DiskDistribution : public testing::Test {
 protected:
  DiskDistribution() {
    state_ = world_.MakeState();
    state_.medium_bytes = kDisketteBytes;
    state_.reserved_bytes = 32'000;
  }

  // A row with its archive of `size` bytes in the temporary directory.
  void AddArchive(const std::string& archive, std::size_t size) {
    const std::size_t row = world_.application.document.files.Append(
        "<ProjectDir>\\" + archive, "<ProjectDir>", /*registration=*/"");
    world_.application.document.files.Row(row).compressed_name = archive;
    archives_[archive] = Noise(size, static_cast<std::uint32_t>(row));
    world_.files.AddFile(std::string(kTemporary) + "\\" + archive, archives_[archive]);
  }
  bool Distribute() { return DistributeOnDisks(world_.application, world_.view, state_); }

  [[nodiscard]] std::string Disk(std::size_t row) const {
    return world_.application.document.files.Row(row).disk;
  }
  // "...\\DISK1" is the first.
  [[nodiscard]] std::string PathOnDisk(std::uint64_t disk, const std::string& name) const {
    return ParentFolder(state_.first_disk_directory) + "\\DISK" + std::to_string(disk) + "\\" +
           name;
  }
  [[nodiscard]] std::string OnDisk(std::uint64_t disk, const std::string& name) const {
    return world_.files.Contents(PathOnDisk(disk, name));
  }
  // All pieces of an archive in the order of the disks.
  [[nodiscard]] std::string Joined(const std::string& name) const {
    std::string bytes;
    for (std::uint64_t disk = 1; disk <= state_.disks_used; ++disk) {
      const std::string path = PathOnDisk(disk, name);
      if (world_.files.Has(path)) bytes += world_.files.Contents(path);
    }
    return bytes;
  }

  CreateWorld world_;
  CreateState state_;
  std::map<std::string, std::string> archives_;
};

TEST_F(DiskDistribution, OneDiskHoldsItsLabelAndTheArchives) {
  AddArchive("a.zip", 5000);
  AddArchive("b.zip", 1);

  EXPECT_TRUE(Distribute());

  EXPECT_EQ(world_.Output(),
            (std::map<std::string, std::string>{{"DISK1\\DISK1", " 1 "},
                                                {"DISK1\\a.zip", archives_["a.zip"]},
                                                {"DISK1\\b.zip", archives_["b.zip"]}}));
  EXPECT_THAT(world_.files.AllFilesIn(kTemporary), IsEmpty());
  EXPECT_EQ(Disk(1), "|1");
  EXPECT_EQ(Disk(2), "|1");
  EXPECT_EQ(state_.disks_used, 1u);
  EXPECT_EQ(state_.archive_bytes, 5001u);
}

TEST_F(DiskDistribution, TheDisksLabelOfStep5IsNoEstimateAnyMore) {
  AddArchive("a.zip", 2 * kDisketteBytes);
  world_.application.document.steps.disks_needed_label = "17";
  world_.application.document.steps.disks_needed_is_estimate = true;

  EXPECT_TRUE(Distribute());

  EXPECT_EQ(world_.application.document.steps.disks_needed_label, "3");
  EXPECT_FALSE(world_.application.document.steps.disks_needed_is_estimate);
}

TEST_F(DiskDistribution, WithoutRowsDisk1HoldsItsLabelOnly) {
  EXPECT_TRUE(Distribute());

  EXPECT_EQ(world_.Output(), (std::map<std::string, std::string>{{"DISK1\\DISK1", " 1 "}}));
  EXPECT_EQ(world_.application.document.steps.disks_needed_label, "1");
}

TEST_F(DiskDistribution, ASplitArchiveLiesInPiecesOfOneName) {
  AddArchive("big.zip", 3 * kDisketteBytes);

  EXPECT_TRUE(Distribute());

  EXPECT_EQ(Disk(1), "|1|2|3|4");
  EXPECT_EQ(OnDisk(1, "big.zip").size(), kDisketteBytes - 32'000);
  EXPECT_EQ(OnDisk(2, "big.zip").size(), kDisketteBytes);
  EXPECT_EQ(OnDisk(4, "big.zip").size(), 32'000u);
  EXPECT_EQ(Joined("big.zip"), archives_["big.zip"]);
  EXPECT_EQ(OnDisk(2, "DISK2"), " 2 ");
  EXPECT_EQ(OnDisk(4, "DISK4"), " 4 ");
  EXPECT_THAT(world_.files.AllFilesIn(kTemporary), IsEmpty());
}

TEST_F(DiskDistribution, AnArchiveThatJustFillsTheDiskStaysWholeThereAndTheNextStartsAnother) {
  state_.reserved_bytes = 0;
  AddArchive("full.zip", kDisketteBytes);
  AddArchive("next.zip", 1);

  EXPECT_TRUE(Distribute());

  EXPECT_EQ(Disk(1), "|1");
  EXPECT_EQ(Disk(2), "|2");
  EXPECT_EQ(OnDisk(1, "full.zip"), archives_["full.zip"]);
  EXPECT_EQ(OnDisk(2, "next.zip"), archives_["next.zip"]);
}

TEST_F(DiskDistribution, AWholeArchiveIsMovedAndASplitOneCopiedInChunksOfAtMost10240Bytes) {
  AddArchive("whole.zip", 100'000);
  AddArchive("split.zip", kDisketteBytes);

  EXPECT_TRUE(Distribute());

  EXPECT_EQ(world_.files.Times("MoveWhole"), 1u);
  const auto chunks = static_cast<std::size_t>(
      std::ranges::count_if(world_.files.diary, [](const MemoryFileSystem::DiaryEntry& entry) {
        return entry.operation == "Write" && entry.path.ends_with("split.zip");
      }));
  EXPECT_GE(chunks, kDisketteBytes / 10'240);
  EXPECT_LE(chunks, kDisketteBytes / 10'240 + 2);
}

TEST_F(DiskDistribution, DiskFieldsOfAnEarlierRunAreCleared) {
  AddArchive("a.zip", 5);
  AddArchive("b.zip", 2 * kDisketteBytes);
  world_.application.document.files.Row(1).disk = "|7";
  world_.application.document.files.Row(2).disk = "|8|9";

  EXPECT_TRUE(Distribute());

  EXPECT_EQ(Disk(1), "|1");
  EXPECT_EQ(Disk(2), "|1|2|3");
}

TEST_F(DiskDistribution, TheViewSeesTheActionTheArchiveAndTheProgressOfEveryChunk) {
  state_.medium_bytes = 64 * kKibi;
  state_.reserved_bytes = 50 * kKibi;
  AddArchive("a.zip", 10 * kKibi);
  AddArchive("b.zip", 10 * kKibi);

  EXPECT_TRUE(Distribute());

  EXPECT_THAT(world_.view.diary,
              ElementsAre("action Distributing", "progress 0 / 2, 0 %", "file a.zip",
                          "progress 1 / 2, 50 %", "file b.zip", "busy", "progress 1 / 2, 70 %",
                          "progress 1 / 2, 100 %", "not busy", "progress 2 / 2, 100 %"));
}

TEST_F(DiskDistribution, HiddenRowsFollowTheVisibleOnes) {
  AddArchive("a.zip", 5);
  const std::size_t row = world_.application.document.hidden_files.Append("C:\\h", "<WinDir>", "");
  world_.application.document.hidden_files.Row(row).compressed_name = "h.zip";
  world_.files.AddFile(std::string(kTemporary) + "\\h.zip", "hidden");

  EXPECT_TRUE(Distribute());

  EXPECT_EQ(world_.application.document.hidden_files.Row(1).disk, "|1");
  EXPECT_EQ(OnDisk(1, "h.zip"), "hidden");
}

TEST_F(DiskDistribution, AMissingArchiveIsMessage903) {
  AddArchive("a.zip", 5);
  AddArchive("b.zip", 5);
  world_.files.Vanish(std::string(kTemporary) + "\\b.zip");

  EXPECT_FALSE(Distribute());

  ASSERT_EQ(world_.messages.shown.size(), 1u);
  EXPECT_THAT(world_.messages.shown[0].prompt,
              StartsWith("Error distributing the compressed file 'b.zip' in the installation "
                         "directory!\r\n(53: "));
}

TEST_F(DiskDistribution, AnArchiveThatCannotBeMovedIsMessage903AndTheOnesBeforeStay) {
  AddArchive("a.zip", 5);
  AddArchive("b.zip", 5);
  world_.files.FailPath(std::string(kTemporary) + "\\b.zip", "MoveWhole", ErrorNumber::kDiskFull);

  EXPECT_FALSE(Distribute());

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(903));
  EXPECT_EQ(OnDisk(1, "a.zip"), archives_["a.zip"]);
  EXPECT_TRUE(world_.files.Has(std::string(kTemporary) + "\\b.zip"));
  EXPECT_EQ(Disk(1), "|1");
  EXPECT_EQ(Disk(2), "");
}

TEST_F(DiskDistribution, AFileInThePlaceOfTheNextDiskIsMessage903) {
  world_.files.AddFile(std::string(kOutput) + "\\DISK2", "a file, not a folder");
  AddArchive("big.zip", 2 * kDisketteBytes);

  EXPECT_FALSE(Distribute());

  ASSERT_EQ(world_.messages.shown.size(), 1u);
  EXPECT_THAT(world_.messages.shown[0].prompt,
              StartsWith("Error distributing the compressed file 'big.zip' in"));
}

TEST_F(DiskDistribution, AnArchiveNamedLikeAKitFileIsRefused) {
  AddArchive("ENGINE.zip", 5);
  world_.files.AddFile(state_.first_disk_directory + "\\Engine.ZIP", "kit");
  state_.first_disk_names.insert("engine.zip");

  EXPECT_FALSE(Distribute());

  ASSERT_EQ(world_.messages.shown.size(), 1u);
  EXPECT_THAT(world_.messages.shown[0].prompt,
              StartsWith("Error distributing the compressed file 'ENGINE.zip' in the installation "
                         "directory!\r\n(58: "));
  EXPECT_EQ(OnDisk(1, "Engine.ZIP"), "kit");
}

TEST_F(DiskDistribution, AnArchiveNamedLikeALabelIsRefused) {
  AddArchive("disk1", 5);

  EXPECT_FALSE(Distribute());

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(903));
  EXPECT_EQ(OnDisk(1, "DISK1"), " 1 ");
}

TEST_F(DiskDistribution, APieceNamedLikeTheLabelOfALaterDiskIsRefused) {
  AddArchive("disk2", 2 * kDisketteBytes);

  EXPECT_FALSE(Distribute());

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(903));
  EXPECT_EQ(OnDisk(2, "DISK2"), " 2 ");
}

TEST_F(DiskDistribution, TwoRowsWithOneArchiveNameAreRefused) {
  AddArchive("a.zip", 5);
  AddArchive("A.ZIP", 6);

  EXPECT_FALSE(Distribute());

  EXPECT_THAT(world_.messages.Ids(), ElementsAre(903));
}

TEST_F(DiskDistribution, AKitFileNamedLikeTheLabelIsRefused) {
  AddArchive("a.zip", 5);
  world_.files.AddFile(state_.first_disk_directory + "\\Disk1", "kit");
  state_.first_disk_names.insert("disk1");

  EXPECT_FALSE(Distribute());

  EXPECT_EQ(OnDisk(1, "DISK1"), "kit");
  EXPECT_THAT(world_.messages.shown.at(0).prompt,
              StartsWith("Error distributing the compressed file 'DISK1' in"));
}

TEST_F(DiskDistribution, CancelIsNoticedWhileTheArchivesAreMeasured) {
  AddArchive("a.zip", 5);
  world_.view.on_events = [](RecordingCreateView& view) { view.PressCancel(); };

  EXPECT_FALSE(Distribute());

  EXPECT_THAT(world_.Output(), IsEmpty());
  EXPECT_THAT(world_.messages.shown, IsEmpty());
}

TEST_F(DiskDistribution, CancelBetweenFilesLeavesWhatWasPlaced) {
  AddArchive("a.zip", 5);
  AddArchive("b.zip", 5);
  world_.view.on_events = [](RecordingCreateView& view) {
    if (view.files.size() == 2) view.PressCancel();
  };

  EXPECT_FALSE(Distribute());

  EXPECT_EQ(OnDisk(1, "a.zip"), archives_["a.zip"]);
  EXPECT_TRUE(world_.files.Has(std::string(kTemporary) + "\\b.zip"));
  EXPECT_THAT(world_.messages.shown, IsEmpty());
}

TEST_F(DiskDistribution, AHundredDisksAreLabelledUpToTheLast) {
  state_.medium_bytes = 10 * kKibi;
  state_.reserved_bytes = 0;
  AddArchive("big.zip", 1010 * kKibi - 3);

  EXPECT_TRUE(Distribute());

  EXPECT_EQ(OnDisk(101, "DISK101"), " 101 ");
  EXPECT_EQ(Joined("big.zip"), archives_["big.zip"]);
}

// Whatever the sizes, the kit and the medium: what lies on the disks is the archives.
TEST(DiskDistributionProperty, JoinedPiecesAreTheArchivesAndNoDiskIsOverfull) {
  std::mt19937_64 random(510);
  for (int round = 0; round < 60; ++round) {
    SCOPED_TRACE(round);
    CreateWorld world;
    CreateState state = world.MakeState();
    state.medium_bytes = 1 + random() % 60'000;
    state.reserved_bytes = random() % (state.medium_bytes + 1);
    FileList& list = world.application.document.files;
    std::vector<std::string> archives(random() % 8);
    for (std::size_t i = 0; i < archives.size(); ++i) {
      archives[i] = Noise(1 + random() % 100'000, static_cast<std::uint32_t>(random()));
      const std::string name = std::to_string(i) + ".zip";
      list.Row(list.Append("C:\\" + name, "<WinDir>", "")).compressed_name = name;
      world.files.AddFile(std::string(kTemporary) + "\\" + name, archives[i]);
    }

    ASSERT_TRUE(DistributeOnDisks(world.application, world.view, state));

    const std::map<std::string, std::string> output = world.Output();
    std::map<std::uint64_t, std::uint64_t> used{{1, state.reserved_bytes}};
    for (std::size_t i = 0; i < archives.size(); ++i) {
      std::string joined;
      std::string disks;
      for (std::uint64_t disk = 1; disk <= state.disks_used; ++disk) {
        const auto piece =
            output.find("DISK" + std::to_string(disk) + "\\" + std::to_string(i) + ".zip");
        if (piece == output.end()) continue;
        joined += piece->second;
        disks += "|" + std::to_string(disk);
        used[disk] += piece->second.size();
      }
      ASSERT_EQ(joined, archives[i]);
      ASSERT_EQ(list.Row(i + 1).disk, disks);
    }
    for (const auto& [disk, bytes] : used) ASSERT_LE(bytes, state.medium_bytes) << disk;
    for (std::uint64_t disk = 1; disk <= state.disks_used; ++disk) {
      const std::string label = "DISK" + std::to_string(disk);
      ASSERT_EQ(output.at(label + "\\" + label), " " + std::to_string(disk) + " ");
    }
    ASSERT_THAT(world.files.AllFilesIn(kTemporary), IsEmpty());
    ASSERT_EQ(world.view.progress.back().progress.size_text, archives.empty() ? "0 %" : "100 %");
  }
}

}  // namespace
}  // namespace txs
