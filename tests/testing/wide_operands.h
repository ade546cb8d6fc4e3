// SPDX-License-Identifier: MIT
//
// Pairs of wide numbers on which arithmetic goes wrong where it can, and what every operation makes
// of them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "lib/support/soft_wide.h"

namespace testing_support {

struct WidePair {
  molva::SoftWide a, b;
  std::uint64_t bits;  // for what begins with floats, doubles and integers
};

// Any numbers from any bits: many are halfway cases, next to each other, at the ends of the range,
// subnormal, infinite or no numbers.
WidePair PairFrom(const std::uint64_t (&bits)[4]);

// Pairs without end, the same for the same seed.
class WidePairs {
 public:
  explicit WidePairs(std::uint64_t seed) : state_(seed) {}
  WidePair Next();

 private:
  std::uint64_t Draw();
  std::uint64_t state_;
};

struct WideResult {
  const char* operation;
  molva::SoftWide value;
};

// What all operations on a pair leave; what is no wide number among it, converted to one.
std::vector<WideResult> ResultsOf(const WidePair& pair);

// The first operation that leaves other bits than `long double`, which has to have the same
// significands; empty where none does.
std::string DifferenceFromExtended(const WidePair& pair);

// The bits of all results in one number.
std::uint64_t Digest(std::uint64_t digest, const std::vector<WideResult>& results);

}  // namespace testing_support
