// SPDX-License-Identifier: MIT
//
// A number drawn for a row from its place in the whole collection alone, so that a row is in a
// sample, or in a share of the moves, wherever it is worked on.
#pragma once

#include <cstdint>

namespace molva {

// Mixes the bits of a number so that each of them changes half of the result's.
inline std::uint64_t MixBits(std::uint64_t x) {
  x += 0x9E3779B97F4A7C15U;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9U;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBU;
  return x ^ (x >> 31);
}

// Other salts draw other numbers.
inline std::uint64_t RowHash(std::int64_t row, std::uint64_t salt) {
  return MixBits(static_cast<std::uint64_t>(row) ^ MixBits(salt));
}

}  // namespace molva
