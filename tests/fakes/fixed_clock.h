// A clock that stands still until a test sets it; the user's time zone is UTC, the locale German.
#pragma once

#include <array>
#include <cstdio>
#include <string>

#include "environment/clock.h"

namespace txs {

class FixedClock : public Clock {
 public:
  FileTime now = std::chrono::sys_days(std::chrono::year(2026) / 11 / 21) + std::chrono::hours(7) +
                 std::chrono::minutes(11) + std::chrono::seconds(45);

  [[nodiscard]] FileTime Now() const override { return now; }

  [[nodiscard]] LocalTime ToLocal(FileTime time) const override {
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(std::chrono::floor<std::chrono::seconds>(time - day));
    return {static_cast<int>(date.year()),
            static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day())),
            static_cast<int>(clock.hours().count()),
            static_cast<int>(clock.minutes().count()),
            static_cast<int>(clock.seconds().count())};
  }

  [[nodiscard]] std::string ShortDateAndTime(const LocalTime& time) const override {
    std::array<char, 96> text;
    const int length =
        std::snprintf(text.data(), text.size(), "%02d.%02d.%04d %02d:%02d:%02d", time.day,
                      time.month, time.year, time.hour, time.minute, time.second);
    return std::string(text.data(), static_cast<std::size_t>(length));
  }
};

}  // namespace txs
