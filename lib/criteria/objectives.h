// SPDX-License-Identifier: MIT
//
// The nine objectives that refinement optimises, each built from one or two terms. An objective
// keeps the running total, judges a candidate move by the terms of its two clusters before and
// after, and tells the value by which trials are compared, always such that larger is better.
#pragma once

#include <cmath>

#include "lib/criteria/terms.h"
#include "lib/support/wide.h"

namespace molva {

struct Larger {
  template <typename Number>
  static constexpr bool Better(Number after, Number before) {
    return after > before;
  }
  static Wide Quality(Wide total, Wide nrows) { return total / nrows; }
};

// Smaller totals are better; their quality is inverted, so that the best trial has the largest.
struct Smaller {
  template <typename Number>
  static constexpr bool Better(Number after, Number before) {
    return after < before;
  }
  static Wide Quality(Wide total, Wide nrows) { return nrows / total; }
};

// One sum of terms over the clusters.
template <typename Term, typename Direction>
class SingleSum {
 public:
  static constexpr bool kUsesSimilarity = Term::kUsesSimilarity;
  using Terms = Wide;
  // Whether a move changes what moves between other clusters gain.
  static constexpr bool kCouplesClusters = false;

  static Terms TermsOf(const ClusterMeasure& cluster) { return Term::Of(cluster); }

  void AddCluster(Terms terms) { total_ += terms; }
  void Start() {}

  // The two sums are brought to single precision before they are compared: what differs beyond
  // that is no improvement.
  bool Improve(Terms from_before, Terms to_before, Terms from_after, Terms to_after) {
    const auto before = static_cast<float>(from_before + to_before);
    const auto after = static_cast<float>(from_after + to_after);
    if (!IsImproved(before, after)) return false;
    Take(before, after);
    return true;
  }
  static bool IsImproved(float before, float after) { return Direction::Better(after, before); }
  // The sum of two clusters' terms is another.
  void Take(float before, float after) { total_ += static_cast<Wide>(after) - before; }

  Wide Progress(Wide nrows) const { return total_ / nrows; }
  float Quality(Wide nrows) const { return static_cast<float>(Direction::Quality(total_, nrows)); }

 private:
  Wide total_ = 0;
};

// Two sums of terms, A and B, kept apart and combined into one value that must grow. Nothing is
// rounded here but the quality.
template <typename TermA, typename TermB, typename Combination>
class TwoSums {
 public:
  static constexpr bool kUsesSimilarity = TermA::kUsesSimilarity || TermB::kUsesSimilarity;
  struct Terms {
    Wide a, b;
  };
  static constexpr bool kCouplesClusters = true;

  static Terms TermsOf(const ClusterMeasure& cluster) {
    return {TermA::Of(cluster), TermB::Of(cluster)};
  }
  void AddCluster(Terms terms) {
    a_ += terms.a;
    b_ += terms.b;
  }
  void Start() { Keep(a_, b_, Combination::Of(a_, b_)); }

  bool Improve(Terms from_before, Terms to_before, Terms from_after, Terms to_after) {
    const Wide a = (a_ - (from_before.a + to_before.a)) + (from_after.a + to_after.a);
    const Wide b = (b_ - (from_before.b + to_before.b)) + (from_after.b + to_after.b);
    const Wide value = Combination::Of(a, b);
    if (!(value > value_)) return false;
    Keep(a, b, value);
    return true;
  }

  Wide a() const { return a_; }
  Wide b() const { return b_; }
  Wide value() const { return value_; }
  Wide Progress(Wide nrows) const { return value_ / Combination::Divisor(nrows); }
  float Quality(Wide nrows) const { return static_cast<float>(Progress(nrows)); }

 private:
  void Keep(Wide a, Wide b, Wide value) {
    a_ = a;
    b_ = b;
    value_ = value;
  }

  Wide a_ = 0;
  Wide b_ = 0;
  Wide value_ = 0;
};

// A ratio is reported as it is.
struct Ratio {
  static Wide Of(Wide a, Wide b) { return a / b; }
  static Wide Divisor(Wide) { return 1; }
};

// The fourth root of A times B, reported per row.
struct FourthRootProduct {
  static Wide Of(Wide a, Wide b) { return QuarterPower(a) * b; }
  static Wide Divisor(Wide nrows) { return nrows; }
};

// The routine that moves rows under an objective names its blocks: per cluster after itself, per
// row and per column after the frame that all share.
struct RoutineNames {
  const char* per_cluster;
  const char* per_row;
};

}  // namespace molva
