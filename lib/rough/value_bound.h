// SPDX-License-Identifier: MIT
//
// What the error bounds of rough arithmetic need to know of composites.
#pragma once

#include <cmath>

namespace molva {

// What double arithmetic may lose beyond the errors that are bounded one by one: a handful of
// roundings of 2^-53 each, taken a few times over.
constexpr double kSlack = 0x1p-46;

// All that a number can be: it lies between the two ends, or the two are not numbers.
struct Interval {
  double least;
  double most;

  static Interval Around(double value, double error) { return {value - error, value + error}; }
  static Interval UpTo(double size) { return {-size, size}; }
};

// A sum that is never below the true one, however many terms come: none may be negative.
inline double RoundedUpSum(double sum, double term) { return (sum + term) * (1 + 0x1p-51); }

// A bound for the values of a composite: the sum of max|v| over all rows that ever joined it, times
// exp(m 2^-23) for the rounding of m additions and subtractions in single precision.
class ValueBound {
 public:
  // A row came, which adds no more than `largest` to a column, in so many additions at most.
  void Join(double largest, int additions) {
    sum_ += largest;
    Count(additions);
  }
  // A row went.
  void Leave(int additions) { Count(additions); }
  double Value() const { return value_; }

 private:
  void Count(int additions) {
    operations_ += additions;
    // exp(x) is at most 1 + 2x up to x = 1, and cheaper so.
    const double x = operations_ * 0x1p-23;
    value_ = sum_ * (x < 1 ? 1 + 2 * x : std::exp(x));
  }

  double sum_ = 0;
  double operations_ = 0;
  double value_ = 0;
};

}  // namespace molva
