// SPDX-License-Identifier: MIT
//
// The bounds of all clusters, number by number side by side, as the vector kernels take them.
#pragma once

#include <algorithm>
#include <limits>

#include "lib/rough/gain_bounds.h"
#include "lib/rough/rounding.h"
#include "lib/rough/row_records.h"
#include "lib/rough/vector_kernels.h"

namespace molva {

constexpr double kForEver = std::numeric_limits<double>::infinity();
constexpr double kNever = -kForEver;
constexpr double kNoLeast = -kForEver;  // of a number that need not be large

inline RowFactors FactorsOf(const RowRecord& row) {
  return {static_cast<double>(row.size) + kExtraEntries, row.square, row.whole};
}

class BoundArrays {
 public:
  // For so many lanes, none of which can gain anything yet, with or without the three numbers that
  // go with d.G.
  BoundArrays(std::size_t lanes, bool uses_whole, BlockName name)
      : numbers_(AllocDoublesSet(static_cast<std::int64_t>(lanes) * 6, 0, name)) {
    double* first = numbers_.data();
    std::fill_n(first, lanes, -kForEver);
    const auto numbers = [&](std::size_t n) { return first + n * lanes; };
    lanes_ = {lanes, first, nullptr, numbers(2), nullptr, numbers(4), nullptr};
    if (!uses_whole) return;
    lanes_.by_whole = numbers(1);
    lanes_.by_both = numbers(3);
    lanes_.least_whole = numbers(5);
  }

  void Set(int lane, const GainBound& bound, double error, double least_whole) {
    double* number = numbers_.data() + lane;
    for (const double x :
         {bound.base, bound.by_whole, bound.by_length, bound.by_both, error, least_whole}) {
      *number = x;
      number += lanes_.count;
    }
  }

  const BoundLanes& Lanes() const { return lanes_; }

 private:
  Array<double> numbers_;
  BoundLanes lanes_;
};

}  // namespace molva
