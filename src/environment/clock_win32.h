// The clock of Windows: its time zone, and dates as the user has set them in the system's settings.
#pragma once

#include <string>

#include "environment/clock.h"

namespace txs {

class WindowsClock : public Clock {
 public:
  // Dates as the user writes them, or with the formats of a locale ("de-DE").
  explicit WindowsClock(std::string locale = {}) : locale_(std::move(locale)) {}

  [[nodiscard]] FileTime Now() const override;

  // Times before 1601, which Windows cannot have, become 1970-01-01.
  [[nodiscard]] LocalTime ToLocal(FileTime time) const override;

  // A date that does not exist gives "".
  [[nodiscard]] std::string ShortDateAndTime(const LocalTime& time) const override;

 private:
  std::string locale_;
};

}  // namespace txs
