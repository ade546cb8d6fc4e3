// SPDX-License-Identifier: MIT
//
// The bounds of two clusters as a row of either meets them: what its going from the one and its
// coming to the other can gain together, both in one vector of two numbers.
#pragma once

#include "lib/rough/cluster_bounds.h"
#include "lib/rough/two_lanes.h"
#include "lib/rough/vector_kernels.h"

namespace molva {

class TwoBounds {
 public:
  // The bounds of both clusters have to be set before rows meet them.
  void Set(int k, const ClusterBounds& bounds) {
    Put(k, bounds.gains.going, -2, bounds.error, from_[k]);
    from_[k].most_whole = bounds.most_going;
    Put(k, bounds.gains.coming, 2, bounds.error, from_[1 - k]);
    from_[1 - k].least_whole = bounds.least_coming;
  }

  // What the row's going from home and its coming to the other can gain at the most together:
  // infinite, or not a number, where a bound does not hold for it. `uses_whole` tells whether the
  // bounds have any use for d.G.
  double MostGain(const RowFactors& row, const Pair& products, int home, bool uses_whole) const {
    const Side& b = from_[home];
    const Pair x = b.twice * products + row.square + row.entries * b.error;
    if (!uses_whole) return Sum(b.base + b.by_length * x);
    if (!(row.whole >= b.least_whole && row.whole <= b.most_whole)) return kForEver;
    return Sum(b.base + b.by_whole * row.whole + (b.by_length + b.by_both * row.whole) * x);
  }

 private:
  // The numbers of the two clusters for the rows of one of them.
  struct Side {
    Pair twice{};  // 2 d.D counts for the row that comes, and against the one that goes
    Pair error{};
    Pair base{}, by_whole{}, by_length{}, by_both{};
    double least_whole = 0, most_whole = 0;
  };

  static void Put(int k, const GainBound& bound, double twice, double error, Side& side) {
    side.twice[k] = twice;
    side.error[k] = error;
    side.base[k] = bound.base;
    side.by_whole[k] = bound.by_whole;
    side.by_length[k] = bound.by_length;
    side.by_both[k] = bound.by_both;
  }
  static double Sum(const Pair& pair) { return pair[0] + pair[1]; }

  Side from_[2];
};

}  // namespace molva
