// How the clock of Windows writes and converts times.

#include "environment/clock_win32.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <chrono>
#include <string>

#include "environment/windows_calls_win32.h"

namespace txs {
namespace {

FileTime At(int year, unsigned month, unsigned day) {
  return std::chrono::sys_days(std::chrono::year(year) / static_cast<int>(month) /
                               static_cast<int>(day));
}

TEST(WindowsClock, ATimeThatWindowsCannotHaveIsTheFirstOf1970) {
  const WindowsClock clock;

  EXPECT_EQ(clock.ToLocal(At(1601, 1, 1) - std::chrono::hours(48)), LocalTime{});
  EXPECT_EQ(clock.ToLocal(FileTime(FileTicks::min())), LocalTime{});
  EXPECT_EQ(clock.ToLocal(FileTime(FileTicks::max())), LocalTime{});
}

TEST(WindowsClock, NowIsTheTimeOfTheSystem) {
  const auto before = std::chrono::floor<FileTicks>(std::chrono::system_clock::now());
  const FileTime now = WindowsClock().Now();
  const auto after = std::chrono::system_clock::now();

  EXPECT_GE(now, before);
  EXPECT_LE(now, after);
}

TEST(WindowsClock, EachLocaleWritesItsOwnFormats) {
  const LocalTime time = {2005, 3, 9, 15, 4, 7};

  EXPECT_EQ(WindowsClock("ro-RO").ShortDateAndTime(time), "09.03.2005 15:04:07");
  EXPECT_EQ(WindowsClock("en-US").ShortDateAndTime(time), "3/9/2005 3:04:07 PM");
}

TEST(WindowsClock, TheUsersFormatsAreThoseOfTheSystemsSettings) {
  wchar_t picture[100] = {};
  ASSERT_NE(GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_SSHORTDATE, picture, 100), 0);
  const SYSTEMTIME time = {2005, 3, 3, 9, 15, 4, 7, 0};
  wchar_t date[100] = {};
  ASSERT_NE(GetDateFormatEx(LOCALE_NAME_USER_DEFAULT, 0, &time, picture, date, 100, nullptr), 0);

  const std::string written = WindowsClock().ShortDateAndTime({2005, 3, 9, 15, 4, 7});

  EXPECT_TRUE(written.starts_with(ToUtf8(date) + " ")) << written;
}

TEST(WindowsClock, ADateThatDoesNotExistIsNotWritten) {
  EXPECT_EQ(WindowsClock("de-DE").ShortDateAndTime({2005, 13, 40, 99, 4, 7}), "");
}

// Run by CTest once more with TZ in Central Europe.
TEST(WindowsClockInBerlin, TheTimeZoneWithItsSummerTimeCounts) {
  TIME_ZONE_INFORMATION zone = {};
  GetTimeZoneInformation(&zone);
  ASSERT_EQ(zone.Bias, -60) << "run this one with TZ=Europe/Berlin";
  const WindowsClock clock;

  EXPECT_EQ(clock.ToLocal(At(2026, 1, 15)), (LocalTime{2026, 1, 15, 1, 0, 0}));
  EXPECT_EQ(clock.ToLocal(At(2026, 7, 15)), (LocalTime{2026, 7, 15, 2, 0, 0}));
}

// And once more with TZ on the east coast of America, where the rule changed in 2007.
TEST(WindowsClockInNewYork, SummerTimeIsThatOfTheYear) {
  TIME_ZONE_INFORMATION zone = {};
  GetTimeZoneInformation(&zone);
  ASSERT_EQ(zone.Bias, 300) << "run this one with TZ=America/New_York";
  const WindowsClock clock;

  EXPECT_EQ(clock.ToLocal(At(2006, 3, 20)), (LocalTime{2006, 3, 19, 19, 0, 0}));
  EXPECT_EQ(clock.ToLocal(At(2006, 4, 20)), (LocalTime{2006, 4, 19, 20, 0, 0}));
  EXPECT_EQ(clock.ToLocal(At(2008, 3, 20)), (LocalTime{2008, 3, 19, 20, 0, 0}));
}

}  // namespace
}  // namespace txs
