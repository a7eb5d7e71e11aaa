// How the clock of a Linux host takes the user's formats from the registry or the locale.

#include "environment/clock_host.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "contract/environment_variable.h"
#include "fakes/memory_registry.h"

namespace txs {
namespace {

class HostWorld {
 public:
  HostWorld() {
    Set("sShortDate", "dd.MM.yyyy");
    Set("sTimeFormat", "HH:mm:ss");
  }
  void Set(std::string_view name, const std::string& value) {
    registry_.Write(Hive::kCurrentUser, "Control Panel\\International", name, value);
  }
  [[nodiscard]] const Clock& Get() const { return clock_; }

 private:
  EnvironmentVariable zone_{"TZ", "UTC0"};
  MemoryRegistry registry_;
  HostClock clock_{registry_};
};

FileTime At(int year, unsigned month, unsigned day) {
  return std::chrono::sys_days(std::chrono::year(year) / static_cast<int>(month) /
                               static_cast<int>(day));
}

TEST(HostClock, TheTimeZoneWithItsSummerTimeCounts) {
  const EnvironmentVariable zone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
  const MemoryRegistry registry;
  const HostClock clock(registry);

  EXPECT_EQ(clock.ToLocal(At(2026, 1, 15)), (LocalTime{2026, 1, 15, 1, 0, 0}));
  EXPECT_EQ(clock.ToLocal(At(2026, 7, 15)), (LocalTime{2026, 7, 15, 2, 0, 0}));
}

TEST(HostClock, ATimeThatWindowsCannotHaveIsTheFirstOf1970) {
  const MemoryRegistry registry;
  const HostClock clock(registry);

  EXPECT_EQ(clock.ToLocal(At(1601, 1, 1) - std::chrono::hours(48)), LocalTime{});
  EXPECT_EQ(clock.ToLocal(FileTime(FileTicks::min())), LocalTime{});
}

TEST(HostClock, NowIsTheTimeOfTheSystem) {
  const MemoryRegistry registry;
  const HostClock clock(registry);

  const auto before = std::chrono::floor<FileTicks>(std::chrono::system_clock::now());
  const FileTime now = clock.Now();
  const auto after = std::chrono::system_clock::now();

  EXPECT_GE(now, before);
  EXPECT_LE(now, after);
}

struct Pictures {
  const char* name;
  const char* date;
  const char* time;
  const char* expected;
};

class HostClockPictures : public testing::TestWithParam<Pictures> {};

TEST_P(HostClockPictures, AreFilled) {
  const EnvironmentVariable locale("LC_ALL", "C");
  HostWorld world;
  world.Set("sShortDate", GetParam().date);
  world.Set("sTimeFormat", GetParam().time);

  EXPECT_EQ(world.Get().ShortDateAndTime({2005, 3, 9, 15, 4, 7}), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Every, HostClockPictures,
    testing::Values(Pictures{"German", "dd.MM.yyyy", "HH:mm:ss", "09.03.2005 15:04:07"},
                    Pictures{"American", "M/d/yyyy", "h:mm:ss tt", "3/9/2005 3:04:07 PM"},
                    Pictures{"ShortYear", "d-M-yy", "H:m:s", "9-3-05 15:4:7"},
                    Pictures{"ShortestYear", "yyyy y", "hh t", "2005 5 03 P"},
                    Pictures{"Names", "ddd, d MMM dddd MMMM", "HH",
                             "Wed, 9 Mar Wednesday March 15"},
                    Pictures{"Literals", "d 'de' M 'o''clock'", "HH'h'mm", "9 de 3 o'clock 15h04"},
                    Pictures{"OpenLiteral", "d 'de", "HH", "9 de 15"},
                    Pictures{"QuoteAlone", "d''M", "HH", "9'3 15"}),
    [](const auto& pictures) { return pictures.param.name; });

TEST(HostClock, TwelveHoursBeginAtTwelve) {
  HostWorld world;
  world.Set("sTimeFormat", "h:mm tt");

  EXPECT_EQ(world.Get().ShortDateAndTime({2005, 3, 9, 0, 4, 0}), "09.03.2005 12:04 AM");
  EXPECT_EQ(world.Get().ShortDateAndTime({2005, 3, 9, 12, 4, 0}), "09.03.2005 12:04 PM");
  EXPECT_EQ(world.Get().ShortDateAndTime({2005, 3, 9, 11, 4, 0}), "09.03.2005 11:04 AM");
}

TEST(HostClock, TheUsersOwnHalfDaysAreWrittenEvenEmptyOnes) {
  HostWorld world;
  world.Set("sTimeFormat", "h:mm tt t");
  world.Set("s1159", "\xC3\xA4m");
  world.Set("s2359", "");

  EXPECT_EQ(world.Get().ShortDateAndTime({2005, 3, 9, 1, 4, 0}),
            "09.03.2005 1:04 \xC3\xA4m \xC3\xA4");
  EXPECT_EQ(world.Get().ShortDateAndTime({2005, 3, 9, 13, 4, 0}), "09.03.2005 1:04");
}

TEST(HostClock, WithoutPicturesTheLocaleOfTheEnvironmentWrites) {
  const EnvironmentVariable locale("LC_ALL", "C");
  const MemoryRegistry registry;
  const HostClock clock(registry);

  EXPECT_EQ(clock.ShortDateAndTime({2005, 3, 9, 15, 4, 7}), "03/09/05 15:04:07");
}

TEST(HostClock, OneMissingPictureLeavesThatPartToTheLocale) {
  const EnvironmentVariable locale("LC_ALL", "C");
  MemoryRegistry registry;
  registry.Write(Hive::kCurrentUser, "Control Panel\\International", "sShortDate", "yyyy-MM-dd");
  const HostClock clock(registry);

  EXPECT_EQ(clock.ShortDateAndTime({2005, 3, 9, 15, 4, 7}), "2005-03-09 15:04:07");
}

TEST(HostClock, ALocaleThatIsNotInstalledIsTheOneOfC) {
  const EnvironmentVariable locale("LC_ALL", "xx_XX.UTF-8");
  const MemoryRegistry registry;
  const HostClock clock(registry);

  EXPECT_EQ(clock.ShortDateAndTime({2005, 3, 9, 15, 4, 7}), "03/09/05 15:04:07");
}

}  // namespace
}  // namespace txs
