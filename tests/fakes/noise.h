// Bytes that no archiver shrinks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

namespace txs {

// The same for the same seed, on every computer.
inline std::string Noise(std::size_t size, std::uint32_t seed = 1) {
  std::mt19937 random(seed);
  std::string bytes(size, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random());
  return bytes;
}

}  // namespace txs
