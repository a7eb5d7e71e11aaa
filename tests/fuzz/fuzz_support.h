// What the fuzz targets share: how a promise is required, how an input is divided, and how the work
// that an input causes is counted.
//
// A target is one file that defines LLVMFuzzerTestOneInput. Linked with libFuzzer it is searched
// for inputs that break a promise (tools/fuzz.sh); linked with replay_main.cpp it runs the
// committed inputs as an ordinary test.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "environment/runtime_error.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace txs::fuzz {

// Says on standard error which promise was broken and ends the process, unless it `holds`.
void Require(bool holds, std::string_view promise);

[[nodiscard]] inline std::string_view AsText(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// The parts of an input, which the four bytes "\n%%\n" separate; at least one, at most `most`. The
// last one is the whole rest.
[[nodiscard]] std::vector<std::string_view> Parts(std::string_view input, std::size_t most);

// What stands before the next `mark` of *rest, which is taken off together with the mark; all of it
// when there is none.
[[nodiscard]] std::string_view TakeUntil(std::string_view* rest, char mark);

// Some text in UTF-8 without control characters, which a terminal could take for commands.
[[nodiscard]] bool IsShowable(std::string_view text);

// The number of the RuntimeError that `act` throws; nothing when it throws none. Any other
// exception ends the process, and so does a RuntimeError that says nothing.
template <typename Act>
[[nodiscard]] std::optional<ErrorNumber> ErrorFrom(Act act) {
  try {
    act();
  } catch (const RuntimeError& error) {
    Require(!error.Description().empty(), "an error describes what failed");
    return error.Number();
  }
  return std::nullopt;
}

// What was allocated since it was made, which grows as the work does: a loop that copies its text
// at every step shows here at once, whatever the machine and however short the time.
class Allocations {
 public:
  Allocations();

  // Requires that it was at most `per_input_byte` bytes for every byte of the input, and what an
  // input without a single byte may take.
  void RequireAtMost(std::size_t input_bytes, std::size_t per_input_byte, std::string_view promise,
                     std::size_t always = std::size_t{1} << 20) const;

 private:
  std::uint64_t total_at_start_;
};

}  // namespace txs::fuzz
