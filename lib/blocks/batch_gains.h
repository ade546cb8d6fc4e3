// SPDX-License-Identifier: MIT
//
// What a criterion gains when one row changes its cluster and all others stay: the score of a move
// in a batch pass, where rows are judged against clusters that do not change meanwhile.
#pragma once

#include "lib/criteria/objectives.h"
#include "lib/criteria/terms.h"
#include "lib/support/alloc.h"
#include "lib/support/span.h"

namespace molva {

// Sums over many rows lose nothing here that a choice of clusters would see.
using BatchMeasure = BasicMeasure<double>;

// Gains(clusters) is made once for a pass; clusters[k] is the measure of cluster k. For each row:
//
//   Leaving   what the row's own cluster loses of each term; {} for a row without one
//   Of        what is gained when the row joins cluster k too, more than 0 if it is for the better
template <typename Objective>
class BatchGains;

template <typename Term, typename Direction>
class BatchGains<SingleSum<Term, Direction>> {
 public:
  struct Leaving {
    double change = 0;
  };

  explicit BatchGains(Span<const BatchMeasure> clusters)
      : terms_(AllocDoubles(static_cast<std::int64_t>(clusters.size()), "BatchGains: terms")) {
    for (std::size_t k = 0; k < clusters.size(); ++k) terms_[k] = Term::Of(clusters[k]);
  }

  Leaving Leave(int k, const BatchMeasure& without) const {
    return {Term::Of(without) - terms_[k]};
  }
  double Of(const Leaving& leaving, int k, const BatchMeasure& joined) const {
    return kSign * (leaving.change + (Term::Of(joined) - terms_[k]));
  }

 private:
  static constexpr double kSign = Direction::Better(1, 0) ? 1 : -1;
  Array<double> terms_;
};

// How much a ratio of two sums grows, both being changed.
inline double Growth(Ratio, double a, double b, double change_of_a, double change_of_b) {
  return (a + change_of_a) / (b + change_of_b) - a / b;
}

// Of a^(1/4) b what grows with it: (a / a0) (b / b0)^4 less 1.
inline double Growth(FourthRootProduct, double a, double b, double change_of_a,
                     double change_of_b) {
  const double factor = 1 + change_of_b / b;
  return (1 + change_of_a / a) * (factor * factor) * (factor * factor) - 1;
}

template <typename TermA, typename TermB, typename Combination>
class BatchGains<TwoSums<TermA, TermB, Combination>> {
 public:
  struct Leaving {
    double change_of_a = 0, change_of_b = 0;
  };

  explicit BatchGains(Span<const BatchMeasure> clusters)
      : terms_of_a_(AllocDoubles(static_cast<std::int64_t>(clusters.size()), "BatchGains: terms")),
        terms_of_b_(AllocDoubles(static_cast<std::int64_t>(clusters.size()), "BatchGains: terms")) {
    for (std::size_t k = 0; k < clusters.size(); ++k) {
      a_ += terms_of_a_[k] = TermA::Of(clusters[k]);
      b_ += terms_of_b_[k] = TermB::Of(clusters[k]);
    }
  }

  Leaving Leave(int k, const BatchMeasure& without) const {
    return {TermA::Of(without) - terms_of_a_[k], TermB::Of(without) - terms_of_b_[k]};
  }
  double Of(const Leaving& leaving, int k, const BatchMeasure& joined) const {
    return Growth(Combination{}, a_, b_, leaving.change_of_a + (TermA::Of(joined) - terms_of_a_[k]),
                  leaving.change_of_b + (TermB::Of(joined) - terms_of_b_[k]));
  }

 private:
  Array<double> terms_of_a_, terms_of_b_;
  double a_ = 0, b_ = 0;
};

}  // namespace molva
