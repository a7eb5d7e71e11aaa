#include "create/create_view.h"

#include <algorithm>
#include <limits>

namespace txs {
namespace {

// done * 100 / total, rounded half to even. 0 < total, done <= total.
std::uint64_t RoundedPercentage(std::uint64_t done, std::uint64_t total) {
  // Figures too large to be multiplied lose their low bits, which a whole percentage cannot show.
  while (total > std::numeric_limits<std::uint64_t>::max() / 200) {
    total /= 2;
    done /= 2;
  }
  const std::uint64_t quotient = done * 100 / total;
  const std::uint64_t twice_rest = done * 100 % total * 2;
  if (twice_rest > total || (twice_rest == total && quotient % 2 == 1)) return quotient + 1;
  return quotient;
}

}  // namespace

CreateProgress MakeCreateProgress(std::uint64_t count_done, std::uint64_t count_total,
                                  std::uint64_t bytes_done, std::uint64_t bytes_total) {
  CreateProgress progress;
  progress.count_done = count_done;
  progress.count_total = count_total;
  progress.bytes_done = std::min(bytes_done, bytes_total);
  progress.bytes_total = bytes_total;
  progress.count_text = std::to_string(count_done) + " / " + std::to_string(count_total);

  std::uint64_t percentage = 0;
  if (bytes_total == 0) {
    // Only empty files: the count alone tells when everything is done.
    percentage = count_total > 0 && count_done >= count_total ? 100 : 0;
  } else if (progress.bytes_done == bytes_total) {
    percentage = 100;
  } else if (progress.bytes_done > 0) {
    percentage =
        std::clamp<std::uint64_t>(RoundedPercentage(progress.bytes_done, bytes_total), 1, 99);
  }
  progress.size_text = std::to_string(percentage) + " %";
  return progress;
}

}  // namespace txs
