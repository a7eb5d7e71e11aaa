// What every Clock promises.

#include <gtest/gtest.h>

#include <chrono>

#include "contract/real_worlds.h"
#include "fakes/fixed_clock.h"

namespace txs {
namespace {

class FixedWorld {
 public:
  [[nodiscard]] const Clock& Get() const { return clock_; }

 private:
  FixedClock clock_;
};

FileTime At(int year, unsigned month, unsigned day) {
  return std::chrono::sys_days(std::chrono::year(year) / static_cast<int>(month) /
                               static_cast<int>(day));
}

template <typename World>
class ClockContract : public testing::Test {
 protected:
  World world;
  const Clock& clock = world.Get();
};

using Worlds = testing::Types<FixedWorld, RealClockWorld>;
TYPED_TEST_SUITE(ClockContract, Worlds);

TYPED_TEST(ClockContract, AMomentIsBrokenDownInTheZoneOfTheUser) {
  const FileTime moment = At(2026, 11, 21) + std::chrono::hours(7) + std::chrono::minutes(11) +
                          std::chrono::seconds(45);

  EXPECT_EQ(this->clock.ToLocal(moment), (LocalTime{2026, 11, 21, 7, 11, 45}));
}

TYPED_TEST(ClockContract, PartsOfASecondDoNotCountNotEvenBefore1970) {
  const FileTime before = At(1970, 1, 1) - FileTicks(1);

  EXPECT_EQ(this->clock.ToLocal(before), (LocalTime{1969, 12, 31, 23, 59, 59}));
  EXPECT_EQ(this->clock.ToLocal(At(1970, 1, 1) + FileTicks(9'999'999)), LocalTime{});
}

TYPED_TEST(ClockContract, LeapDaysAndFarYearsAreReached) {
  EXPECT_EQ(this->clock.ToLocal(At(2024, 2, 29)), (LocalTime{2024, 2, 29, 0, 0, 0}));
  EXPECT_EQ(this->clock.ToLocal(At(1601, 1, 1)), (LocalTime{1601, 1, 1, 0, 0, 0}));
  EXPECT_EQ(this->clock.ToLocal(At(2107, 12, 31)), (LocalTime{2107, 12, 31, 0, 0, 0}));
}

TYPED_TEST(ClockContract, NowLiesInThisCentury) {
  EXPECT_GT(this->clock.Now(), At(2020, 1, 1));
  EXPECT_LT(this->clock.Now(), At(2100, 1, 1));
}

TYPED_TEST(ClockContract, DateAndTimeAreWrittenAsTheUserHasThem) {
  EXPECT_EQ(this->clock.ShortDateAndTime({2026, 1, 2, 7, 1, 5}), "02.01.2026 07:01:05");
}

}  // namespace
}  // namespace txs
