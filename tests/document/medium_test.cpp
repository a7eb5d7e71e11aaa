#include "document/medium.h"

#include <gtest/gtest.h>

#include <limits>

namespace txs {
namespace {

TEST(Medium, IsADisketteOrUnlimited) {
  EXPECT_EQ(MediumSizeBytes(0), 1457152u);
  EXPECT_EQ(MediumSizeBytes(1), 2147483647u);
}

TEST(Medium, CountsAnyOtherIndexAsTheDiskette) {
  EXPECT_EQ(MediumSizeBytes(2), kDisketteBytes);
  EXPECT_EQ(MediumSizeBytes(-1), kDisketteBytes);
}

TEST(DisksNeeded, IsOneForNothing) { EXPECT_EQ(EstimateDisksNeeded(0, kDisketteBytes), 1u); }

TEST(DisksNeeded, AssumesTwoThirdsAndRoundsToTheNearest) {
  // 1,457,152 bytes of archives are one medium and give 2; a little less than half of one gives 1.
  EXPECT_EQ(EstimateDisksNeeded(2185728, kDisketteBytes), 2u);
  EXPECT_EQ(EstimateDisksNeeded(1092861, kDisketteBytes), 1u);
  EXPECT_EQ(EstimateDisksNeeded(1092867, kDisketteBytes), 2u);
}

TEST(DisksNeeded, RoundsTwoThirdsBeforeItDivides) {
  // 7 / 1.5 is 4.67, rounded 5, and 5 / 10 + 1 just reaches the half; 4.67 would not.
  EXPECT_EQ(EstimateDisksNeeded(7, 10), 2u);
  // 23 / 1.5 is 15.33, rounded 15, and 15 / 10 + 1 lies just at the half; 15.33 would exceed it.
  EXPECT_EQ(EstimateDisksNeeded(23, 10), 2u);
}

TEST(DisksNeeded, SendsHalvesToTheEvenNeighbour) {
  // Archives of 5, 15 and 25 on media of 10: 1.5, 2.5 and 3.5.
  EXPECT_EQ(EstimateDisksNeeded(8, 10), 2u);
  EXPECT_EQ(EstimateDisksNeeded(22, 10), 2u);
  EXPECT_EQ(EstimateDisksNeeded(23, 10), 2u);
  EXPECT_EQ(EstimateDisksNeeded(38, 10), 4u);
}

TEST(DisksNeeded, IsExactForHugeTotals) {
  constexpr std::uint64_t kHuge = std::numeric_limits<std::uint64_t>::max();

  // 2^64 - 1 is divisible by 3; two thirds of it lie beyond what a floating-point number tells
  // apart.
  EXPECT_EQ(EstimateDisksNeeded(kHuge, 1), 12297829382473034411u);
  EXPECT_EQ(EstimateDisksNeeded(kHuge, 12297829382473034410u), 2u);
  EXPECT_EQ(EstimateDisksNeeded(kHuge - 1, 12297829382473034409u), 2u);
  EXPECT_EQ(EstimateDisksNeeded(3, kHuge), 1u);
}

}  // namespace
}  // namespace txs
