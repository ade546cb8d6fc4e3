// SPDX-License-Identifier: MIT
//
// What merging two items gains, in double arithmetic with a bound.
#pragma once

#include <cmath>

#include "lib/criteria/terms.h"
#include "lib/rough/rounding.h"

namespace molva {

// The gain that the full arithmetic finds lies within the error, where that holds. Where it does
// not, nothing is known.
struct RoughGain {
  double gain;
  double error;
  bool holds;
};

// Lemma 11. Each item is as it is stored, its term rounded to double.
//
// With u = kUnitDouble: rough squared lengths round twice, by u times the sum of the magnitudes
// each, which is at most 16 times the result: 32 u. The terms round at most five times more and the
// terms of the items once; the difference and its sums four times. 64 u of the three terms'
// magnitudes leaves room for the rounding of the full arithmetic, 2^-64 in place of 2^-53.
template <typename Value>
inline RoughGain RoughGainOf(const BasicMeasure<double>& i, double term_i,
                             const BasicMeasure<double>& j, double term_j, double product) {
  const double squared_length = i.squared_length + j.squared_length + 2 * product;
  const double merged = Value::Term::Of(
      BasicMeasure<double>{i.size + j.size, squared_length, i.similarity + j.similarity});
  const double magnitudes = std::abs(merged) + std::abs(term_i) + std::abs(term_j);
  const double summands =
      std::abs(i.squared_length) + std::abs(j.squared_length) + std::abs(2 * product);
  return {Value::Gain(merged, term_i, term_j), kMergeError * magnitudes,
          summands <= kMostCancellation * squared_length};
}

}  // namespace molva
