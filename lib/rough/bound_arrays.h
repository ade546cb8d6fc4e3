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
  // For so many lanes, none of which can gain anything yet.
  BoundArrays(std::size_t lanes, BlockName name)
      : lanes_(lanes), numbers_(AllocDoublesSet(static_cast<std::int64_t>(lanes) * 6, 0, name)) {
    std::fill_n(numbers_.data(), lanes, -kForEver);
  }

  void Set(int lane, const GainBound& bound, double error, double least_whole) {
    double* number = numbers_.data() + lane;
    for (const double x :
         {bound.base, bound.by_whole, bound.by_length, bound.by_both, error, least_whole}) {
      *number = x;
      number += lanes_;
    }
  }

  BoundLanes LanesWithoutWhole() const {
    const double* first = numbers_.data();
    return {lanes_, first, nullptr, first + 2 * lanes_, nullptr, first + 4 * lanes_, nullptr};
  }
  BoundLanes Lanes() const {
    const double* first = numbers_.data();
    return {lanes_,
            first,
            first + lanes_,
            first + 2 * lanes_,
            first + 3 * lanes_,
            first + 4 * lanes_,
            first + 5 * lanes_};
  }

 private:
  std::size_t lanes_;
  Array<double> numbers_;
};

}  // namespace molva
