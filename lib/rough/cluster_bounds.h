// SPDX-License-Identifier: MIT
//
// The bounds on what any row's coming to a cluster, or its going, can gain under an objective, with
// room for all that rough and full arithmetic round.
//
// A move from cluster f to cluster t gains, under a single sum, what the two terms gain. Under the
// two sums A and B of a combination it improves nothing unless a sum of weighted gains is positive:
//
//   (A + a) / (B - b) > v = A / B    only if  a + v b > 0, where B - b > 0
//   (A + a)^(1/4) (B + b) > A^(1/4) B  only if  a / (4 A) + b / B > 0, as log(1 + y) <= y
//
// So one sum of two bounds, one for each cluster, decides under every criterion.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include "lib/criteria/objectives.h"
#include "lib/rough/bound_arrays.h"
#include "lib/rough/gain_bounds.h"
#include "lib/rough/rounding.h"
#include "lib/rough/row_records.h"

namespace molva {

// What the gains of an objective's sums weigh, and below what their sum a move improves nothing.
struct GainWeights {
  double first = 1;
  double second = 0;
  double slack = 0;
  // What the second sum may lose to both clusters together; infinite where it does not matter.
  double second_can_lose = std::numeric_limits<double>::infinity();
};

template <typename Term, typename Direction>
GainWeights WeightsOf(const SingleSum<Term, Direction>&) {
  return {};
}

// Not-a-number, which bounds nothing, where a sum is not positive.
inline double PositiveOrNone(Wide x) {
  return x > 0 ? static_cast<double>(x) : std::numeric_limits<double>::quiet_NaN();
}

template <typename TermA, typename TermB>
GainWeights WeightsOf(const TwoSums<TermA, TermB, Ratio>& objective) {
  const double a = std::fabs(static_cast<double>(objective.a()));
  const double b = PositiveOrNone(objective.b());
  const double value = PositiveOrNone(objective.value());
  return {1, value, kSlack * (a + value * b), b / 2};
}

template <typename TermA, typename TermB>
GainWeights WeightsOf(const TwoSums<TermA, TermB, FourthRootProduct>& objective) {
  return {0.25 / PositiveOrNone(objective.a()), 1 / PositiveOrNone(objective.b()), 4 * kSlack};
}

// What is to be bounded: a cluster and all rows that may come or go.
struct BoundedCluster {
  BasicMeasure<double> measure;
  double length;  // no less than |D|
  const RowExtremes& rows;

  // 2 d.D + d.d is no larger than this, for any row.
  double MostChange() const { return rows.longest * (rows.longest + 2 * length) * (1 + kSlack); }
  double MostWhole() const {
    return std::max(std::fabs(rows.least_whole), std::fabs(rows.most_whole));
  }
  // The squared length after a row as close to the cluster as its own rows are has come or gone.
  double UsualLengthAfter(int change) const {
    const double q = measure.squared_length;
    const double after =
        q + change * 2 * q / static_cast<double>(measure.size) + rows.longest * rows.longest;
    return after > q / 4 ? after : q;
  }
  // How far the rough 2 d.D + d.d can be from what the full arithmetic adds, per counted entry: the
  // sum of |v c| is at most |d| |D|.
  double ErrorPerEntry() const {
    const double both = length + rows.longest;
    return 2 * kProductError * rows.longest * length + kWidePerEntry * both * both + kVanishing;
  }
  // Whether no product overflows, and sums round by no more than the bound says.
  bool IsTame() const {
    return measure.squared_length > 0 && length < kLongest && rows.longest < kLongest &&
           rows.most_entries <= kMostEntries;
  }
  // Whether the squared length stays positive whatever row comes or goes.
  bool StaysPositive() const {
    const double entries = rows.most_entries + kExtraEntries;
    return measure.squared_length - 2 * rows.longest * length - entries * ErrorPerEntry() > 0;
  }
};

// What a row's coming, or going, can gain.
struct ComingAndGoing {
  GainBound coming, going;
};

struct ClusterBounds {
  ComingAndGoing gains;
  double error = 0;  // of 2 d.D + d.d, per counted entry
  // The bounds hold for rows with a d.G of at least, and at most, so much.
  double least_coming = -std::numeric_limits<double>::infinity();
  double most_going = std::numeric_limits<double>::infinity();

  // The most that the row's going can gain, from its rough product with the composite.
  double Going(const RowFactors& row, float product) const {
    const double x = row.square - 2 * static_cast<double>(product) + row.entries * error;
    return row.whole <= most_going ? gains.going.At(x, row.whole) : kForEver;
  }

  // Whether they hold for all rows; from a cluster of two or fewer none goes.
  bool HoldFor(const BoundedCluster& c) const {
    const bool all_may_come =
        std::isfinite(gains.coming.base) && c.rows.least_whole >= least_coming;
    const bool all_may_go = std::isfinite(gains.going.base) && c.rows.most_whole <= most_going;
    return all_may_come && (all_may_go || c.measure.size <= 2);
  }
};

// Adds room to a bound: for the arithmetic, of the term before and all that changes it, and for
// what d.G is off.
inline void AddRoom(const BoundedCluster& c, double term, GainBound& bound) {
  const double most_x = c.MostChange();
  bound.base +=
      kSlack * (2 * std::fabs(term) + bound.Magnitude(most_x, c.MostWhole())) +
      (std::fabs(bound.by_whole) + std::fabs(bound.by_both) * most_x) * c.rows.whole_error;
}

template <typename Term>
ComingAndGoing TermGains(const BoundedCluster& c) {
  ComingAndGoing gains;
  if (!c.IsTame() || (Term::kUsesSimilarity && !c.StaysPositive())) return gains;
  gains = {GainBoundOf<Term>(c.measure, 1, c.UsualLengthAfter(1)),
           GainBoundOf<Term>(c.measure, -1, c.UsualLengthAfter(-1))};
  const double term = Term::Of(c.measure);
  AddRoom(c, term, gains.coming);
  AddRoom(c, term, gains.going);
  return gains;
}

// Two clusters change at a time.
inline GainBound Weighted(const GainWeights& weights, const GainBound& first,
                          const GainBound& second, const BoundedCluster& c) {
  if (!(2 * second.Magnitude(c.MostChange(), c.MostWhole()) < weights.second_can_lose)) return {};
  GainBound sum{0, 0, 0, 0};
  Add(weights.first, first, sum);
  Add(weights.second, second, sum);
  return sum;
}

// The gains of one cluster under every sum of an objective, which a move changes for its two
// clusters alone, and their weighted form, which it may change for all.
template <typename Objective>
class ClusterGains;

template <typename Term, typename Direction>
class ClusterGains<SingleSum<Term, Direction>> {
 public:
  void Measure(const BoundedCluster& c) { gains_ = TermGains<Term>(c); }
  ComingAndGoing Under(const GainWeights&, const BoundedCluster&) const { return gains_; }

 private:
  ComingAndGoing gains_;
};

template <typename TermA, typename TermB, typename Combination>
class ClusterGains<TwoSums<TermA, TermB, Combination>> {
 public:
  void Measure(const BoundedCluster& c) {
    first_ = TermGains<TermA>(c);
    second_ = TermGains<TermB>(c);
  }
  ComingAndGoing Under(const GainWeights& weights, const BoundedCluster& c) const {
    return {Weighted(weights, first_.coming, second_.coming, c),
            Weighted(weights, first_.going, second_.going, c)};
  }

 private:
  ComingAndGoing first_, second_;
};

template <typename Objective>
ClusterBounds BoundsOf(const ClusterGains<Objective>& gains, const GainWeights& weights,
                       const BoundedCluster& c) {
  ClusterBounds bounds{gains.Under(weights, c), c.ErrorPerEntry()};
  if constexpr (Objective::kUsesSimilarity) {
    const double error = 2 * c.rows.whole_error;
    bounds.least_coming = -c.measure.similarity + error;
    bounds.most_going = c.measure.similarity - error;
  }
  return bounds;
}

// By how much a bound on any row can have grown: its numbers changed, and the composite moved by a
// vector of the given length.
inline double GrowthOf(const GainBound& before, const GainBound& after, double moved,
                       const BoundedCluster& c) {
  const GainBound difference{after.base - before.base, after.by_whole - before.by_whole,
                             after.by_length - before.by_length, after.by_both - before.by_both};
  const double entries = c.rows.most_entries + kExtraEntries;
  const double shift = 2 * c.rows.longest * moved + entries * c.ErrorPerEntry();
  return difference.Magnitude(c.MostChange() + shift, c.MostWhole()) +
         (std::fabs(after.by_length) + std::fabs(after.by_both) * c.MostWhole()) * shift;
}

inline double GrowthOf(const ComingAndGoing& before, const ComingAndGoing& after, double moved,
                       const BoundedCluster& c) {
  return (1 + kSlack) * std::max(GrowthOf(before.coming, after.coming, moved, c),
                                 GrowthOf(before.going, after.going, moved, c));
}

}  // namespace molva
