// `IncrementTrailingNumber`: the next name in a numbered series.
#pragma once

#include <string>
#include <string_view>

namespace txs {

// Adds one to the number at the end of `text`, keeping its width with leading zeros: DISK1 gives
// DISK2, A09 gives A10, X99 gives X100. Text without a trailing digit comes back unchanged. The
// number may have any length.
[[nodiscard]] std::string IncrementTrailingNumber(std::string_view text);

}  // namespace txs
