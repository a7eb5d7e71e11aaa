// The predefined runtime setups that a Scan relies on: what they install need not be packaged. See
// docs/formats/predefined-setups.md.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>

#include "environment/clock.h"
#include "environment/profile_document.h"

namespace txs {

class PredefinedSetups {
 public:
  void Clear() { covered_.clear(); }

  // Takes a setup into use: its description lists in section "Files", keys "1", "2", ..., bare file
  // names, each optionally with "#" and a date yyyy-mm-dd. A name without a date covers the file
  // whatever its age. An entry whose date cannot be read covers nothing: packaging a file twice
  // does less harm than leaving it out.
  void Use(const ProfileDocument& description);

  // Whether a setup in use lists the bare name of `path` and, where a date stands there, the file
  // was not changed on a later day.
  [[nodiscard]] bool Covers(std::string_view path, const LocalTime& last_write) const;

  // Whether a setup in use lists the bare name of `path`, for a file that this computer does not
  // have: then there is no younger one that would have to be packaged.
  [[nodiscard]] bool Lists(std::string_view path) const;

 private:
  using Day = std::tuple<int, int, int>;  // year, month, day: compares as days do

  [[nodiscard]] static std::optional<Day> ParseDay(std::string_view text);

  // By folded name: the last day on which the file may have been changed.
  std::unordered_map<std::string, Day> covered_;
};

}  // namespace txs
