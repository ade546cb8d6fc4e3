// SPDX-License-Identifier: MIT
//
// The library's hash takes eight bytes at a time: state = (state ^ mix(bytes)) * kFactor. The
// mixing can be undone, so whatever the first eight are, the second eight can bring about a given
// state.
#include "tests/testing/colliding_texts.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace testing_support {
namespace {

constexpr std::uint64_t kFactor = 0xc6a4a7935bd1e995;
constexpr std::uint64_t kSeed = 0xc70f6907;
constexpr int kShift = 47;

// The number whose product with an odd factor is 1, by Newton's steps: each doubles the right bits.
constexpr std::uint64_t Inverse(std::uint64_t factor) {
  std::uint64_t inverse = factor;
  for (int step = 0; step < 6; ++step) inverse *= 2 - factor * inverse;
  return inverse;
}

// A shift by more than half of the bits undoes itself.
constexpr std::uint64_t Shifted(std::uint64_t bytes) { return bytes ^ (bytes >> kShift); }
constexpr std::uint64_t Mixed(std::uint64_t bytes) { return Shifted(bytes * kFactor) * kFactor; }
constexpr std::uint64_t Unmixed(std::uint64_t bytes) {
  return Shifted(bytes * Inverse(kFactor)) * Inverse(kFactor);
}
static_assert(Unmixed(Mixed(0x123456789abcdef0)) == 0x123456789abcdef0);

std::string TextOf(std::uint64_t first, std::uint64_t second) {
  std::string text(16, ' ');
  std::memcpy(text.data(), &first, 8);
  std::memcpy(text.data() + 8, &second, 8);
  return text;
}

bool FitsALine(const std::string& text) {
  return std::none_of(text.begin(), text.end(),
                      [](char c) { return static_cast<unsigned char>(c) <= ' '; });
}

}  // namespace

std::vector<std::string> CollidingTexts(std::size_t n) {
  constexpr std::uint64_t kLength = 16;
  constexpr std::uint64_t kWanted = 0x0123456789abcdef;
  std::vector<std::string> texts;
  for (std::uint64_t number = 0; texts.size() < n; ++number) {
    const std::uint64_t first = 0x4040404040404040 + (number & 7) + (number >> 3 << 8);
    const std::uint64_t state = ((kSeed ^ (kLength * kFactor)) ^ Mixed(first)) * kFactor;
    const std::string text = TextOf(first, Unmixed(state ^ kWanted));
    if (FitsALine(text)) texts.push_back(text);
  }
  return texts;
}

}  // namespace testing_support
