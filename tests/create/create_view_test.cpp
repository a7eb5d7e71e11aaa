#include "create/create_view.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>
#include <string>

namespace txs {
namespace {

std::string SizeText(std::uint64_t bytes_done, std::uint64_t bytes_total) {
  return MakeCreateProgress(/*count_done=*/1, /*count_total=*/2, bytes_done, bytes_total).size_text;
}

TEST(CreateProgress, TheCountReadsDoneSlashTotal) {
  EXPECT_EQ(MakeCreateProgress(3, 17, 0, 0).count_text, "3 / 17");
  EXPECT_EQ(MakeCreateProgress(0, 0, 0, 0).count_text, "0 / 0");
}

TEST(CreateProgress, TheFiguresAreHandedOn) {
  const CreateProgress progress = MakeCreateProgress(3, 17, 5, 20);

  EXPECT_EQ(progress.count_done, 3u);
  EXPECT_EQ(progress.count_total, 17u);
  EXPECT_EQ(progress.bytes_done, 5u);
  EXPECT_EQ(progress.bytes_total, 20u);
  EXPECT_EQ(progress.size_text, "25 %");
}

TEST(CreateProgress, HalvesGoToTheEvenNeighbour) {
  EXPECT_EQ(SizeText(25, 1000), "2 %");
  EXPECT_EQ(SizeText(35, 1000), "4 %");
  EXPECT_EQ(SizeText(26, 1000), "3 %");
  EXPECT_EQ(SizeText(34, 1000), "3 %");
}

TEST(CreateProgress, ItNeverReads100BeforeTheLastByte) {
  EXPECT_EQ(SizeText(999, 1000), "99 %");
  EXPECT_EQ(SizeText(995, 1000), "99 %");
  EXPECT_EQ(SizeText(1000, 1000), "100 %");
}

TEST(CreateProgress, ItReads1AsSoonAsAnyByteIsDone) {
  EXPECT_EQ(SizeText(0, 1'000'000), "0 %");
  EXPECT_EQ(SizeText(1, 1'000'000), "1 %");
}

TEST(CreateProgress, NothingToDoReads0) {
  EXPECT_EQ(MakeCreateProgress(0, 0, 0, 0).size_text, "0 %");
}

TEST(CreateProgress, EmptyFilesReach100WithTheLastOfThem) {
  EXPECT_EQ(MakeCreateProgress(0, 2, 0, 0).size_text, "0 %");
  EXPECT_EQ(MakeCreateProgress(1, 2, 0, 0).size_text, "0 %");
  EXPECT_EQ(MakeCreateProgress(2, 2, 0, 0).size_text, "100 %");
}

TEST(CreateProgress, AFileThatGrewNeverOverfillsTheBar) {
  const CreateProgress progress = MakeCreateProgress(1, 1, 120, 100);

  EXPECT_EQ(progress.bytes_done, 100u);
  EXPECT_EQ(progress.size_text, "100 %");
}

TEST(CreateProgress, FiguresBeyondAnyDiskDoNotOverflow) {
  const std::uint64_t huge = std::numeric_limits<std::uint64_t>::max();

  EXPECT_EQ(SizeText(huge / 2, huge), "50 %");
  EXPECT_EQ(SizeText(huge - 1, huge), "99 %");
  EXPECT_EQ(SizeText(1, huge), "1 %");
  EXPECT_EQ(SizeText(huge, huge), "100 %");
}

TEST(CreateProgress, ThePercentageNeverFallsAndKeepsItsEndsForAllFigures) {
  std::mt19937_64 random(20260917);
  for (int round = 0; round < 200; ++round) {
    const std::uint64_t total = 1 + random() % (round < 100 ? 300 : 5'000'000'000);
    std::uint64_t done = 0;
    int previous = 0;
    while (true) {
      const int percentage = std::stoi(SizeText(done, total));

      ASSERT_GE(percentage, previous) << done << " of " << total;
      ASSERT_EQ(percentage == 0, done == 0) << done << " of " << total;
      ASSERT_EQ(percentage == 100, done == total) << done << " of " << total;
      const double exact = 100.0 * static_cast<double>(done) / static_cast<double>(total);
      ASSERT_NEAR(percentage, exact, 1.0) << done << " of " << total;
      previous = percentage;
      if (done == total) break;
      done += 1 + random() % (total - done);
    }
  }
}

}  // namespace
}  // namespace txs
