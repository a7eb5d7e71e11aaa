#include "document/trailing_number.h"

namespace txs {

std::string IncrementTrailingNumber(std::string_view text) {
  // Digit by digit instead of through an integer: the number may be longer than any integer type.
  std::string result(text);
  std::size_t at = result.size();
  while (at > 0 && result[at - 1] >= '0' && result[at - 1] <= '9') {
    --at;
    if (result[at] != '9') {
      ++result[at];
      return result;
    }
    result[at] = '0';
  }
  if (at == result.size()) return result;
  result.insert(at, 1, '1');
  return result;
}

}  // namespace txs
