// The arithmetic of the distribution; what really lies on the disks is checked in
// disk_distribution_test.cpp.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "create/disk_distribution.h"
#include "document/medium.h"

namespace txs {
namespace {

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

TEST(DiskDirectories, TheyStandBesideTheFirst) {
  EXPECT_EQ(DiskDirectory("C:\\Out\\DISK1", 1), "C:\\Out\\DISK1");
  EXPECT_EQ(DiskDirectory("C:\\Out\\DISK1", 12), "C:\\Out\\DISK12");
  EXPECT_EQ(DiskDirectory("C:\\DISK1", 2), "C:\\DISK2");
}

}  // namespace
}  // namespace txs
