// SPDX-License-Identifier: MIT
//
// What the error bounds of rough arithmetic need to know of composites.
#pragma once

#include <cmath>

namespace molva {

// What double arithmetic may lose beyond the errors that are bounded one by one: a handful of
// roundings of 2^-53 each, taken a few times over.
constexpr double kSlack = 0x1p-46;

// A value and how far it can be from the true one.
struct RoughValue {
  double value;
  double error;
};

// A bound for the values of a composite: the sum of max|v| over all rows that ever joined it, times
// exp(m 2^-23) for the rounding of m additions and subtractions in single precision.
class ValueBound {
 public:
  // A row came (its largest size of a value) or went (0).
  void Add(double largest) {
    sum_ += largest;
    ++operations_;
    // exp(x) is at most 1 + 2x up to x = 1, and cheaper so.
    const double x = operations_ * 0x1p-23;
    value_ = sum_ * (x < 1 ? 1 + 2 * x : std::exp(x));
  }
  double Value() const { return value_; }

 private:
  double sum_ = 0;
  double operations_ = 0;
  double value_ = 0;
};

}  // namespace molva
