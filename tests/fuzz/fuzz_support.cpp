#include "fuzz/fuzz_support.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "environment/code_page.h"

namespace {

std::uint64_t allocated_bytes = 0;

void* Allocate(std::size_t size) noexcept {
  allocated_bytes += size;
  return std::malloc(size == 0 ? 1 : size);
}

}  // namespace

// All that containers and texts take goes through here. The sanitizers see the malloc beneath.
void* operator new(std::size_t size) {
  void* const block = Allocate(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }

namespace txs::fuzz {

void Require(bool holds, std::string_view promise) {
  if (holds) return;
  std::fprintf(stderr, "BROKEN PROMISE: %.*s\n", static_cast<int>(promise.size()), promise.data());
  std::abort();
}

std::vector<std::string_view> Parts(std::string_view input, std::size_t most) {
  constexpr std::string_view kSeparator = "\n%%\n";
  std::vector<std::string_view> parts;
  while (parts.size() + 1 < most) {
    const std::size_t end = input.find(kSeparator);
    if (end == std::string_view::npos) break;
    parts.push_back(input.substr(0, end));
    input.remove_prefix(end + kSeparator.size());
  }
  parts.push_back(input);
  return parts;
}

std::string_view TakeUntil(std::string_view* rest, char mark) {
  const std::size_t end = std::min(rest->find(mark), rest->size());
  const std::string_view taken = rest->substr(0, end);
  rest->remove_prefix(std::min(end + 1, rest->size()));
  return taken;
}

bool IsShowable(std::string_view text) {
  return !text.empty() && IsUtf8(text) && std::none_of(text.begin(), text.end(), [](char c) {
    return static_cast<unsigned char>(c) < 0x20;
  });
}

Allocations::Allocations() : total_at_start_(allocated_bytes) {}

void Allocations::RequireAtMost(std::size_t input_bytes, std::size_t per_input_byte,
                                std::string_view promise, std::size_t always) const {
  Require(allocated_bytes - total_at_start_ <= always + std::uint64_t{input_bytes} * per_input_byte,
          promise);
}

}  // namespace txs::fuzz
