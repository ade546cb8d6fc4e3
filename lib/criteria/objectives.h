// SPDX-License-Identifier: MIT
//
// The nine objectives that refinement optimises, each built from one or two terms. An objective
// keeps the running total, judges a candidate move by the terms of its two clusters before and
// after, and tells the value by which trials are compared, always such that larger is better.
#pragma once

#include <cmath>
#include <limits>

#include "lib/criteria/terms.h"
#include "lib/rough/value_bound.h"
#include "lib/support/wide.h"

namespace molva {

struct Larger {
  static bool Better(Wide after, Wide before) { return after > before; }
  // Whether `after`, the best that it can be, is worse than `before` all the same.
  static bool Worse(double after, double before, double slack) { return after + slack < before; }
  static Wide Quality(Wide total, Wide nrows) { return total / nrows; }
};

// Smaller totals are better; their quality is inverted, so that the best trial has the largest.
struct Smaller {
  static bool Better(Wide after, Wide before) { return after < before; }
  static bool Worse(double after, double before, double slack) { return after - slack > before; }
  static Wide Quality(Wide total, Wide nrows) { return nrows / total; }
};

// All that a cluster can be, as a term sees it.
struct MeasureBounds {
  std::int64_t size;
  Interval squared_length;
  Interval similarity;
};

// The best value that a term can have, or not-a-number where its direction is not certain.
//
// I1 and I2 are wanted large and grow with the squared length, whatever its sign: a true squared
// length below the most gives less, or a root that is not a number, which no comparison prefers.
//
// The four terms with a similarity are wanted small. Over a positive squared length and a
// similarity that is not negative they fall with the one and grow with the other. Below zero they
// turn: over a negative squared length three of them are negative, which is best of all, and so
// they are under a negative similarity. Rows that cancel each other lead there, so the whole of
// both intervals has to lie on the right side, and the squared length off zero, where the terms are
// infinite.
template <typename Term>
double BestValue(const MeasureBounds& c) {
  if constexpr (Term::kUsesSimilarity) {
    const bool is_monotone = c.similarity.least >= 0 && c.squared_length.least > 0;
    if (!is_monotone) return std::numeric_limits<double>::quiet_NaN();
  }
  return Term::Of(BasicMeasure<double>{c.size, c.squared_length.most, c.similarity.least});
}

// One sum of terms over the clusters.
template <typename Term, typename Direction>
class SingleSum {
 public:
  static constexpr bool kUsesSimilarity = Term::kUsesSimilarity;
  using Terms = Wide;
  using RoughTerms = double;

  static Terms TermsOf(const ClusterMeasure& cluster) { return Term::Of(cluster); }
  static RoughTerms RoughTermsOf(const BasicMeasure<double>& cluster) { return Term::Of(cluster); }
  static RoughTerms BestTerms(const MeasureBounds& cluster) { return BestValue<Term>(cluster); }

  void AddCluster(Terms terms) { total_ += terms; }
  void Start() {}

  // The two sums are brought to single precision before they are compared: what differs beyond
  // that is no improvement.
  bool Improve(Terms from_before, Terms to_before, Terms from_after, Terms to_after) {
    const auto before = static_cast<float>(from_before + to_before);
    const auto after = static_cast<float>(from_after + to_after);
    if (!Direction::Better(after, before)) return false;
    total_ += static_cast<Wide>(after) - before;
    return true;
  }

  // Whether Improve would refuse the move for certain, from the terms before and the best that they
  // can be after. Rounding keeps order: a wide sum that is worse never rounds to a better one.
  static bool IsHopeless(RoughTerms from_before, RoughTerms to_before, RoughTerms from_after,
                         RoughTerms to_after) {
    const double before = from_before + to_before;
    const double after = from_after + to_after;
    return Direction::Worse(after, before, kSlack * (std::fabs(before) + std::fabs(after)));
  }

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
  struct RoughTerms {
    double a, b;
  };

  static Terms TermsOf(const ClusterMeasure& cluster) {
    return {TermA::Of(cluster), TermB::Of(cluster)};
  }
  static RoughTerms RoughTermsOf(const BasicMeasure<double>& cluster) {
    return {TermA::Of(cluster), TermB::Of(cluster)};
  }
  static RoughTerms BestTerms(const MeasureBounds& cluster) {
    return {BestValue<TermA>(cluster), BestValue<TermB>(cluster)};
  }

  void AddCluster(Terms terms) {
    a_ += terms.a;
    b_ += terms.b;
  }
  void Start() { Settle(a_, b_, Combination::Of(a_, b_)); }

  bool Improve(Terms from_before, Terms to_before, Terms from_after, Terms to_after) {
    const Wide a = (a_ - (from_before.a + to_before.a)) + (from_after.a + to_after.a);
    const Wide b = (b_ - (from_before.b + to_before.b)) + (from_after.b + to_after.b);
    const Wide value = Combination::Of(a, b);
    if (!(value > value_)) return false;
    Settle(a, b, value);
    return true;
  }

  // Whether Improve would refuse the move for certain.
  bool IsHopeless(const RoughTerms& from_before, const RoughTerms& to_before,
                  const RoughTerms& from_after, const RoughTerms& to_after) const {
    const double a_before = from_before.a + to_before.a;
    const double b_before = from_before.b + to_before.b;
    const double a_after = from_after.a + to_after.a;
    const double b_after = from_after.b + to_after.b;
    const auto& [a, b, value] = rough_;
    const double a_slack = kSlack * (std::fabs(a) + std::fabs(a_before) + std::fabs(a_after));
    const double b_slack = kSlack * (std::fabs(b) + std::fabs(b_before) + std::fabs(b_after));
    return Combination::IsBelow(a - a_before + a_after + a_slack, b - b_before + b_after, b_slack,
                                value);
  }

  Wide Progress(Wide nrows) const { return value_ / Combination::Divisor(nrows); }
  float Quality(Wide nrows) const { return static_cast<float>(Progress(nrows)); }

 private:
  void Settle(Wide a, Wide b, Wide value) {
    a_ = a;
    b_ = b;
    value_ = value;
    rough_ = {static_cast<double>(a), static_cast<double>(b), static_cast<double>(value)};
  }

  Wide a_ = 0;
  Wide b_ = 0;
  Wide value_ = 0;
  // The three in double arithmetic.
  struct {
    double a = 0, b = 0, value = 0;
  } rough_;
};

// A ratio is told as it is.
struct Ratio {
  static Wide Of(Wide a, Wide b) { return a / b; }
  static Wide Divisor(Wide) { return 1; }
  // Whether the ratio is certainly below the value, for the largest a that can be and b up to an
  // error.
  static bool IsBelow(double a, double b, double b_error, double value) {
    const double least = b - b_error;
    return least > 0 && value > 0 && a * (1 + kSlack) < value * least;
  }
};

// The fourth root of A times B, told per row.
struct FourthRootProduct {
  static Wide Of(Wide a, Wide b) { return std::pow(a, 0.25L) * b; }
  static Wide Divisor(Wide nrows) { return nrows; }
  // The fourth powers are compared, which takes no root.
  static bool IsBelow(double a, double b, double b_error, double value) {
    const double most = b + b_error;
    const double squared = most * most;
    const double target = value * value;
    return a >= 0 && most >= 0 && value > 0 &&
           a * squared * squared * (1 + kSlack) < target * target;
  }
};

// The routine that moves rows under an objective names its blocks: per cluster after itself, per
// row and per column after the shared frame.
struct RoutineNames {
  const char* per_cluster;
  const char* per_row;
};

// One row of the table of criteria.
template <typename ObjectiveType>
struct Criterion {
  using Objective = ObjectiveType;
  RoutineNames names;
};

// A tenth criterion would be one row here and its routine in refine.cc. Codes 8 and 9 cross: code 8
// is refined by the routine named H3 and code 9 by the one named G3.
inline constexpr Criterion<SingleSum<I1Term, Larger>> kCriterionI1{
    {"RefineClusteringKWayI1", "PartitionRefineKWayI1"}};
inline constexpr Criterion<SingleSum<I2Term, Larger>> kCriterionI2{
    {"RefineClusteringKWayI2", "PartitionRefineKWayI2"}};
inline constexpr Criterion<SingleSum<E1Term, Smaller>> kCriterionE1{
    {"RefineClusteringKWayE1", "PartitionRefineKWayE1"}};
inline constexpr Criterion<SingleSum<G1Term, Smaller>> kCriterionG1{
    {"RefineClusteringKWayG1", "PartitionRefineKWayG1"}};
inline constexpr Criterion<SingleSum<G1PrimeTerm, Smaller>> kCriterionG1Prime{
    {"RefineClusteringKWayG1Prime", "PartitionRefineKWayG1Prime"}};
inline constexpr Criterion<TwoSums<I1Term, E1Term, Ratio>> kCriterionH1{
    {"RefineClusteringKWayH1", "PartitionRefineKWayH1"}};
inline constexpr Criterion<TwoSums<I2Term, E1Term, Ratio>> kCriterionH2{
    {"RefineClusteringKWayH2", "PartitionRefineKWayH2"}};
inline constexpr Criterion<TwoSums<I1Term, I2Term, FourthRootProduct>> kCriterionCode8{
    {"RefineClusteringKWayH3", "PartitionRefineKWayH3"}};
inline constexpr Criterion<SingleSum<SizedG1Term, Smaller>> kCriterionCode9{
    {"RefineClusteringKWayG3", "PartitionRefineKWayG3"}};

}  // namespace molva
