#include "environment/retry_pauses.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace txs {
namespace {

using std::chrono::milliseconds;

std::vector<milliseconds> All(RetryPauses pauses) {
  std::vector<milliseconds> all;
  while (const auto pause = pauses.Next()) all.push_back(*pause);
  return all;
}

TEST(RetryPauses, DoubleUpToTheLongestAndEndWithTheTotal) {
  const RetryPauses pauses(RetryPauses::Limits{
      .first = milliseconds(5), .longest = milliseconds(20), .total = milliseconds(60)});

  EXPECT_THAT(All(pauses), testing::ElementsAre(milliseconds(5), milliseconds(10), milliseconds(20),
                                                milliseconds(20), milliseconds(5)));
}

TEST(RetryPauses, WithoutTimeThereIsNone) {
  EXPECT_THAT(All(RetryPauses(RetryPauses::Limits{.total = milliseconds(0)})), testing::IsEmpty());
}

TEST(RetryPauses, OneErrorMayHaveLessTimeThanAnother) {
  RetryPauses pauses(RetryPauses::Limits{
      .first = milliseconds(5), .longest = milliseconds(20), .total = milliseconds(60)});

  EXPECT_EQ(pauses.Next(milliseconds(12)), milliseconds(5));
  EXPECT_EQ(pauses.Next(milliseconds(12)), milliseconds(7));
  EXPECT_EQ(pauses.Next(milliseconds(12)), std::nullopt);
  EXPECT_EQ(pauses.Next(), milliseconds(20));
}

TEST(RetryPauses, AreBoundedWithoutLimitsOfTheirOwn) {
  milliseconds sum{0};
  for (const milliseconds pause : All(RetryPauses())) sum += pause;

  EXPECT_EQ(sum, RetryPauses::Limits().total);
}

}  // namespace
}  // namespace txs
