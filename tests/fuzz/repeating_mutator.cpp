// Besides its own changes, lets libFuzzer repeat a piece of an input until it is long: what costs
// more than its length shows in long inputs only, and single changes hardly ever lead to one. A
// number in the piece may count up, as the keys of numbered lists do.

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t max_size);
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t max_size, unsigned int seed);

namespace {

constexpr unsigned kOneIn = 64;
constexpr std::size_t kLongestPiece = 80;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The last number of the text counts up; text without one stays.
void CountUp(std::string& text) {
  const auto last = std::find_if(text.rbegin(), text.rend(), IsDigit);
  if (last == text.rend()) return;
  std::size_t at = text.size() - static_cast<std::size_t>(last - text.rbegin());
  const std::size_t end = at;
  while (at > 0 && IsDigit(text[at - 1])) {
    --at;
    if (text[at] != '9') {
      ++text[at];
      return;
    }
    text[at] = '0';
  }
  if (at < end) text.insert(at, 1, '1');
}

}  // namespace

std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t max_size,
                                    unsigned int seed) {
  std::minstd_rand random(seed);
  random.discard(1);
  if (size == 0 || random() % kOneIn != 0) return LLVMFuzzerMutate(data, size, max_size);

  const std::string input(reinterpret_cast<const char*>(data), size);
  std::size_t begin = random() % size;
  std::size_t length = 1 + random() % std::min(kLongestPiece, size - begin);
  if (random() % 2 == 0) {  // whole lines
    const std::size_t line = input.rfind('\n', begin);
    begin = line == std::string::npos ? 0 : line + 1;
    length = std::min(input.find('\n', begin + length), size - 1) + 1 - std::min(begin, size - 1);
    length = std::min(length, size - std::min(begin, size));
  }
  std::string piece = input.substr(begin, length);
  const bool counts = random() % 2 == 0;
  const std::size_t wanted = std::min<std::size_t>(max_size, std::size_t{256} << random() % 9);
  std::string output = input.substr(0, begin);
  while (!piece.empty() && output.size() < wanted) {
    output += piece;
    if (counts) CountUp(piece);
  }
  output += input.substr(begin);
  output.resize(std::min(output.size(), max_size));
  std::copy(output.begin(), output.end(), data);
  return output.size();
}
