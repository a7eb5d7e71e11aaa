// The clock of a Linux host: its time zone, and dates as the user of the studio's computer has
// them.
#pragma once

#include <memory>
#include <string>

#include "environment/clock.h"
#include "environment/registry.h"

namespace txs {

class HostClock : public Clock {
 public:
  // `registry` must outlive the clock.
  explicit HostClock(const Registry& registry);
  ~HostClock() override;

  [[nodiscard]] FileTime Now() const override;

  // Times before 1601, which Windows cannot have, become 1970-01-01.
  [[nodiscard]] LocalTime ToLocal(FileTime time) const override;

  // By the pictures sShortDate and sTimeFormat that the registry has below HKEY_CURRENT_USER
  // "Control Panel\International" (with s1159 and s2359 for "tt"); the part without a picture as
  // the locale of the process's environment writes it.
  [[nodiscard]] std::string ShortDateAndTime(const LocalTime& time) const override;

 private:
  class Locale;

  const Registry& registry_;
  std::unique_ptr<Locale> locale_;
};

}  // namespace txs
