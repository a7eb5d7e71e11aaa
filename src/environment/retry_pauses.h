// How long to wait before trying again what another program keeps from us for a moment.
#pragma once

#include <algorithm>
#include <chrono>
#include <optional>

namespace txs {

// The pauses of one operation: each twice the one before, all together bounded. Virus scanners and
// indexers hold a fresh file for some milliseconds, seldom for a second.
class RetryPauses {
 public:
  struct Limits {
    std::chrono::milliseconds first{5};
    std::chrono::milliseconds longest{250};
    std::chrono::milliseconds total{2000};
  };

  RetryPauses() = default;
  explicit RetryPauses(const Limits& limits) : limits_(limits), next_(limits.first) {}

  // The time to wait before the next attempt; nothing when it is time to give up. `most` bounds the
  // pauses so far and this one, beside the limit for all.
  [[nodiscard]] std::optional<std::chrono::milliseconds> Next(
      std::chrono::milliseconds most = std::chrono::milliseconds::max()) {
    const std::chrono::milliseconds pause = std::min(next_, std::min(limits_.total, most) - spent_);
    if (pause <= std::chrono::milliseconds::zero()) return std::nullopt;
    spent_ += pause;
    next_ = std::min(next_ * 2, limits_.longest);
    return pause;
  }

 private:
  Limits limits_;
  std::chrono::milliseconds next_ = limits_.first;
  std::chrono::milliseconds spent_{0};
};

}  // namespace txs
