// Times of files and of the day, and how the user's system writes them.
#pragma once

#include <chrono>
#include <cstdint>
#include <ratio>
#include <string>

namespace txs {

// 100-nanosecond ticks since 1970-01-01 00:00 UTC: what Windows stores, reaching back to 1601.
using FileTicks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
using FileTime = std::chrono::time_point<std::chrono::system_clock, FileTicks>;

// A moment on the wall clock of the user's time zone.
struct LocalTime {
  int year = 1970;
  int month = 1;  // 1 to 12
  int day = 1;    // 1 to 31
  int hour = 0;
  int minute = 0;
  int second = 0;

  bool operator==(const LocalTime&) const = default;
};

class Clock {
 public:
  virtual ~Clock() = default;

  [[nodiscard]] virtual FileTime Now() const = 0;

  // Never fails; a time that the system cannot convert becomes 1970-01-01.
  [[nodiscard]] virtual LocalTime ToLocal(FileTime time) const = 0;

  // The user's short date, a blank, and the time, as the system's locale writes them
  // ("21.11.2026 07:11:45"). UTF-8.
  [[nodiscard]] virtual std::string ShortDateAndTime(const LocalTime& time) const = 0;
};

}  // namespace txs
