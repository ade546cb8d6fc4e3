// SPDX-License-Identifier: MIT
//
// How long a composite D can be, from the squared length q that is carried along with it.
//
// The two part by a little with every row that comes or goes: q is rounded to single precision, the
// full arithmetic rounds on the way to it, D itself is rounded entry by entry, and where a column
// repeats in a row, q grows by the sum of v^2 and D by |d|. The sum of all that is the excess, by
// which |D|^2 can be above q.
#pragma once

#include <algorithm>
#include <cmath>

#include "lib/rough/rounding.h"
#include "lib/rough/row_records.h"

namespace molva {

class LengthBound {
 public:
  // No less than |D|; not a number where q and all that is known of it say nothing.
  double Length() const { return length_; }

  // D is exactly as it is, and q its squared length, stored in single precision.
  void Start(double q) {
    excess_ = 0;
    Store(q, 0);
  }

  // The length of what adding the row to D, or taking it away, rounds: 1 for each column, or as
  // often as the column may repeat.
  double Rounding(const RowRecord& row) const {
    const double times = row.repeats != 0 ? static_cast<double>(row.size) : 1.0;
    return kCompositeRounding * times * (length_ + static_cast<double>(row.length));
  }

  // The row came or went, and q is the new squared length as it is stored.
  void Change(const RowRecord& row, double q) {
    const auto length = static_cast<double>(row.length);
    const double rounding = Rounding(row);
    const double most = length_ + length;
    const double entries = static_cast<double>(row.size) + kExtraEntries;
    Store(q, entries * kWidePerEntry * (most * most + excess_) + rounding * (2 * most + rounding) +
                 (row.repeats != 0 ? length * length : 0.0));
  }

 private:
  void Store(double q, double error) {
    excess_ = RoundedUpSum(excess_, error + kStoredSquare * std::fabs(q) + kVanishing);
    length_ = std::sqrt(q + excess_) * (1 + kSlack);
  }

  double excess_ = 0;
  double length_ = 0;
};

}  // namespace molva
