#include "environment/clock_host.h"

#include <locale.h>
#include <time.h>

#include <array>
#include <cstdint>
#include <ctime>
#include <string_view>
#include <variant>

#include "environment/code_page.h"

namespace txs {
namespace {

constexpr std::string_view kInternational = "Control Panel\\International";
// 1601-01-01, where the time of Windows begins, in seconds.
constexpr std::int64_t kFirstSecond = -11'644'473'600;

std::tm BrokenDown(const LocalTime& time) {
  std::tm parts = {};
  parts.tm_year = time.year - 1900;
  parts.tm_mon = time.month - 1;
  parts.tm_mday = time.day;
  parts.tm_hour = time.hour;
  parts.tm_min = time.minute;
  parts.tm_sec = time.second;
  // Finds the weekday; the copy keeps a date that does not exist as it is.
  std::tm normalized = parts;
  static_cast<void>(timegm(&normalized));
  parts.tm_wday = normalized.tm_wday;
  parts.tm_yday = normalized.tm_yday;
  parts.tm_isdst = -1;
  return parts;
}

std::string Digits(int number, std::size_t least_digits) {
  std::string text = std::to_string(number);
  if (text.size() < least_digits) text.insert(0, least_digits - text.size(), '0');
  return text;
}

std::string FirstCharacter(const std::string& text) {
  std::size_t length = text.empty() ? 0 : 1;
  while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) {
    ++length;
  }
  return text.substr(0, length);
}

// Calls field(letter, count) for each run of a letter; everything else, and what stands in single
// quotes, is taken as it is ('' is a quote).
template <typename Field>
std::string Fill(std::string_view picture, const Field& field) {
  std::string text;
  for (std::size_t at = 0; at < picture.size();) {
    const char c = picture[at];
    if (c == '\'') {
      ++at;
      if (at < picture.size() && picture[at] == '\'') {
        text += '\'';
        ++at;
        continue;
      }
      while (at < picture.size()) {
        if (picture[at] == '\'') {
          if (at + 1 == picture.size() || picture[at + 1] != '\'') break;
          ++at;
        }
        text += picture[at++];
      }
      ++at;
      continue;
    }
    std::size_t end = at;
    while (end < picture.size() && picture[end] == c) ++end;
    const bool is_letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    text += is_letter ? field(c, end - at) : std::string(picture.substr(at, end - at));
    at = end;
  }
  return text;
}

}  // namespace

// The locale for times that LC_ALL, LC_TIME or LANG names, without touching the process's own.
class HostClock::Locale {
 public:
  Locale() : locale_(newlocale(LC_TIME_MASK, "", nullptr)) {
    if (locale_ == nullptr) locale_ = newlocale(LC_TIME_MASK, "C", nullptr);
  }
  ~Locale() {
    if (locale_ != nullptr) freelocale(locale_);
  }
  Locale(const Locale&) = delete;
  Locale& operator=(const Locale&) = delete;

  [[nodiscard]] std::string Format(const std::tm& time, const char* format) const {
    std::array<char, 256> text;
    const std::size_t length = locale_ == nullptr
                                   ? strftime(text.data(), text.size(), format, &time)
                                   : strftime_l(text.data(), text.size(), format, &time, locale_);
    std::string utf8(text.data(), length);
    return IsUtf8(utf8) ? utf8 : AnsiToUtf8(utf8);  // a locale of another code set
  }

 private:
  locale_t locale_;
};

HostClock::HostClock(const Registry& registry)
    : registry_(registry), locale_(std::make_unique<Locale>()) {
  tzset();  // localtime_r need not do it
}

HostClock::~HostClock() = default;

FileTime HostClock::Now() const {
  return std::chrono::time_point_cast<FileTicks>(std::chrono::system_clock::now());
}

LocalTime HostClock::ToLocal(FileTime time) const {
  const std::int64_t seconds =
      std::chrono::floor<std::chrono::seconds>(time.time_since_epoch()).count();
  const std::time_t moment = seconds;
  std::tm parts = {};
  if (seconds < kFirstSecond || localtime_r(&moment, &parts) == nullptr) return {};
  return {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday,
          parts.tm_hour,        parts.tm_min,     parts.tm_sec};
}

std::string HostClock::ShortDateAndTime(const LocalTime& time) const {
  const auto setting = [&](std::string_view name) -> std::string {
    const auto value = registry_.Read(Hive::kCurrentUser, kInternational, name);
    const auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
    return text == nullptr ? std::string() : std::string(TrimBlanks(*text));
  };
  const std::tm parts = BrokenDown(time);

  std::string date;
  if (const std::string picture = setting("sShortDate"); !picture.empty()) {
    date = Fill(picture, [&](char letter, std::size_t count) -> std::string {
      switch (letter) {
        case 'd':
          if (count >= 3) return locale_->Format(parts, count == 3 ? "%a" : "%A");
          return Digits(time.day, count);
        case 'M':
          if (count >= 3) return locale_->Format(parts, count == 3 ? "%b" : "%B");
          return Digits(time.month, count);
        case 'y':
          return count >= 3 ? Digits(time.year, 4) : Digits(time.year % 100, count);
        default:
          return std::string(count, letter);
      }
    });
  } else {
    date = locale_->Format(parts, "%x");
  }

  std::string clock;
  if (const std::string picture = setting("sTimeFormat"); !picture.empty()) {
    clock = Fill(picture, [&](char letter, std::size_t count) -> std::string {
      const std::size_t digits = count >= 2 ? 2 : 1;
      switch (letter) {
        case 'H':
          return Digits(time.hour, digits);
        case 'h':
          return Digits(time.hour % 12 == 0 ? 12 : time.hour % 12, digits);
        case 'm':
          return Digits(time.minute, digits);
        case 's':
          return Digits(time.second, digits);
        case 't': {
          const bool is_morning = time.hour < 12;
          // An empty text is a choice of the user's; only a missing one has a default.
          const auto value =
              registry_.Read(Hive::kCurrentUser, kInternational, is_morning ? "s1159" : "s2359");
          const auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
          const std::string half_day = text ? *text : is_morning ? "AM" : "PM";
          return count >= 2 ? half_day : FirstCharacter(half_day);
        }
        default:
          return std::string(count, letter);
      }
    });
  } else {
    clock = locale_->Format(parts, "%X");
  }
  return std::string(TrimBlanks(date + " " + std::string(TrimBlanks(clock))));
}

}  // namespace txs
