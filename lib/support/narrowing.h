// SPDX-License-Identifier: MIT
//
// What wide sums come to in single precision, told from double arithmetic wherever all that the sum
// can be comes to the same; docs/exactness.md derives the bounds. Only what is left is summed wide.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

namespace molva {

// Lemma 12: a sum of n terms formed in double, in any order, and the wide one lie within (n +
// kExtraTerms) kRoundingPerTerm of the terms' magnitudes, where a term is a product of two numbers
// of single precision, or of one and the difference of two.
constexpr double kRoundingPerTerm = 2 * 0x1p-53;
constexpr double kExtraTerms = 8;

// Room for a quotient and a root of such a sum, in double and wide, relative to it.
constexpr double kRoomForQuotient = 8 * 0x1p-53;

// A sum in double, and that of its terms' magnitudes.
struct RoughSum {
  double sum = 0;
  double magnitudes = 0;
  double terms = 0;  // how many

  void Add(double term) {
    sum += term;
    magnitudes += std::fabs(term);
  }
  double Error() const { return (terms + kExtraTerms) * kRoundingPerTerm * magnitudes; }
};

// What single precision makes of everything from the least to the most, if it is one number.
struct Narrowed {
  bool is_certain;
  float value;

  // Zero is certain where nothing else is possible, as its sign is that of what vanished.
  static Narrowed From(double least, double most) {
    const auto value = static_cast<float>(least);
    const bool is_one = value == static_cast<float>(most);
    return {is_one && (value != 0 || (least == 0 && most == 0)), value};
  }
};

// A number that is known within an error.
struct Estimate {
  double value;
  double error;
};

inline Estimate EstimateOf(const RoughSum& rough) { return {rough.sum, rough.Error()}; }

inline Narrowed NarrowedOf(const Estimate& known) {
  return Narrowed::From(known.value - known.error, known.value + known.error);
}
inline Narrowed NarrowedSum(const RoughSum& rough) { return NarrowedOf(EstimateOf(rough)); }
// Lemma 14: of two numbers whose errors leave room for rounding their sum, kRoomForQuotient.
inline Narrowed NarrowedSum(const Estimate& a, const Estimate& b) {
  return NarrowedOf({a.value + b.value, a.error + b.error});
}

// The sum divided by a count.
inline Narrowed NarrowedQuotient(const RoughSum& rough, double count) {
  const double error = rough.Error() + kRoomForQuotient * std::fabs(rough.sum);
  return Narrowed::From((rough.sum - error) / count, (rough.sum + error) / count);
}

// The root of a sum of squares, and one divided by it.
inline Narrowed NarrowedRoot(const RoughSum& squares) {
  const double error = squares.Error() + kRoomForQuotient * squares.sum;
  return Narrowed::From(std::sqrt(squares.sum - error), std::sqrt(squares.sum + error));
}
inline Narrowed NarrowedInverseRoot(const RoughSum& squares) {
  const double error = squares.Error() + kRoomForQuotient * squares.sum;
  if (!(squares.sum - error > 0)) return {false, 0};
  return Narrowed::From(1 / std::sqrt(squares.sum + error), 1 / std::sqrt(squares.sum - error));
}

// Lemma 13: a number of single precision and the product of two, added in double, come to the same
// single precision as added wide, unless the double lies midway between two numbers of single
// precision. Among the smallest numbers, which lie closer, nothing is said.
inline bool NarrowsAlike(double sum) {
  constexpr std::uint64_t kBelowSingle = (std::uint64_t{1} << 29) - 1;
  constexpr std::uint64_t kMidway = std::uint64_t{1} << 28;
  const bool is_small = std::fabs(sum) < 0x1p-126 && sum != 0;
  return (std::bit_cast<std::uint64_t>(sum) & kBelowSingle) != kMidway && !is_small;
}

}  // namespace molva
