#include "environment/clock_win32.h"

#include <windows.h>

#include <array>
#include <chrono>
#include <cstdint>

#include "environment/code_page.h"
#include "environment/windows_calls_win32.h"

namespace txs {
namespace {

// 1601-01-01, where the time of Windows begins, in ticks since 1970.
constexpr std::int64_t kFirstTick = -116'444'736'000'000'000;

// Fills a text whose length only the system knows.
template <typename Fill>
std::string Filled(const Fill& fill) {
  std::array<wchar_t, 256> text = {};
  const int length = fill(text.data(), static_cast<int>(text.size()));
  return length <= 1 ? std::string() : ToUtf8({text.data(), static_cast<std::size_t>(length - 1)});
}

}  // namespace

FileTime WindowsClock::Now() const {
  return std::chrono::time_point_cast<FileTicks>(std::chrono::system_clock::now());
}

LocalTime WindowsClock::ToLocal(FileTime time) const {
  const std::int64_t ticks = time.time_since_epoch().count();
  if (ticks < kFirstTick) return {};
  const auto since_1601 =
      static_cast<std::uint64_t>(ticks) - static_cast<std::uint64_t>(kFirstTick);
  const FILETIME file_time = {static_cast<DWORD>(since_1601), static_cast<DWORD>(since_1601 >> 32)};
  SYSTEMTIME utc = {};
  SYSTEMTIME local = {};
  if (!FileTimeToSystemTime(&file_time, &utc)) return {};
  // Summer time as it was that year; without a zone the system takes today's rule for all years.
  TIME_ZONE_INFORMATION zone = {};
  const bool is_known = GetTimeZoneInformationForYear(utc.wYear, nullptr, &zone) != 0;
  if (!SystemTimeToTzSpecificLocalTime(is_known ? &zone : nullptr, &utc, &local)) return {};
  return {local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond};
}

std::string WindowsClock::ShortDateAndTime(const LocalTime& time) const {
  SYSTEMTIME parts = {};
  parts.wYear = static_cast<WORD>(time.year);
  parts.wMonth = static_cast<WORD>(time.month);
  parts.wDay = static_cast<WORD>(time.day);
  parts.wHour = static_cast<WORD>(time.hour);
  parts.wMinute = static_cast<WORD>(time.minute);
  parts.wSecond = static_cast<WORD>(time.second);
  const std::wstring name = ToWide(locale_);
  const wchar_t* const locale = locale_.empty() ? LOCALE_NAME_USER_DEFAULT : name.c_str();
  const std::string date = Filled([&](wchar_t* text, int size) {
    return GetDateFormatEx(locale, DATE_SHORTDATE, &parts, nullptr, text, size, nullptr);
  });
  const std::string clock = Filled([&](wchar_t* text, int size) {
    return GetTimeFormatEx(locale, 0, &parts, nullptr, text, size);
  });
  return std::string(TrimBlanks(date + " " + clock));
}

}  // namespace txs
