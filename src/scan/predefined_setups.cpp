#include "scan/predefined_setups.h"

#include <algorithm>
#include <charconv>

#include "environment/code_page.h"
#include "environment/system_tools.h"
#include "environment/windows_path.h"

namespace txs {
namespace {

constexpr int kAnyYear = 100000;

std::optional<int> ParseDigits(std::string_view text) {
  int number = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stopped != end || number < 0) return std::nullopt;
  return number;
}

}  // namespace

std::optional<PredefinedSetups::Day> PredefinedSetups::ParseDay(std::string_view text) {
  text = TrimBlanks(text);
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  const std::optional<int> year = ParseDigits(text.substr(0, 4));
  const std::optional<int> month = ParseDigits(text.substr(5, 2));
  const std::optional<int> day = ParseDigits(text.substr(8, 2));
  if (!year || !month || !day || *month < 1 || *month > 12 || *day < 1 || *day > 31) {
    return std::nullopt;
  }
  return Day{*year, *month, *day};
}

void PredefinedSetups::Use(const ProfileDocument& description) {
  for (std::size_t number = 1;; ++number) {
    const std::optional<std::string> entry =
        description.Value("Files", NumberedKey(number, /*digits=*/1));
    if (!entry || entry->empty()) return;
    const std::string_view text = *entry;
    const std::size_t mark = text.find('#');
    const std::optional<Day> day =
        mark == std::string_view::npos ? Day{kAnyYear, 1, 1} : ParseDay(text.substr(mark + 1));
    if (!day) continue;
    // Two setups may carry the same file; the younger one decides.
    Day& last_day = covered_[FoldCase(TrimBlanks(text.substr(0, mark)))];
    last_day = std::max(last_day, *day);
  }
}

bool PredefinedSetups::Covers(std::string_view path, const LocalTime& last_write) const {
  if (covered_.empty()) return false;
  const auto found = covered_.find(FoldCase(FileName(path)));
  if (found == covered_.end()) return false;
  return Day{last_write.year, last_write.month, last_write.day} <= found->second;
}

bool PredefinedSetups::Lists(std::string_view path) const {
  return covered_.contains(FoldCase(FileName(path)));
}

}  // namespace txs
