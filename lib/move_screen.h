// SPDX-License-Identifier: MIT
//
// Finds out cheaply which moves of a row cannot improve the objective, so that refinement weighs
// only the others in full.
//
// One walk over the row gives its rough dot products with all clusters, in double arithmetic. From
// these, and a bound on how far they can be from what the full arithmetic would find, follow the
// best terms that the two clusters could have after the move. When even those are worse than the
// terms before, the move is hopeless, and the full arithmetic would refuse it too.
//
// The bound. A squared length after a move is q + sum of v (v +- 2c) over the n entries v of the
// row, c being the composite at their columns. Both arithmetics start from the same
// single-precision q, v and c. Rough sums round n + 3 times by 2^-53 at most, of terms that add up
// to no more than q + |d|^2 + 2 |d|_1 max|c|, with |d|_1 the sum of |v|; full sums round as often
// by 2^-64. Twice that, (n + 8) 2^-52 in front, covers both. max|c| is a ValueBound, which counts
// what joined the cluster and the rounding of every addition and subtraction. The similarity d.G is
// bounded the same way. Where a number is infinite or not a number no comparison holds, and the
// move is weighed in full.
#pragma once

#include <cmath>
#include <vector>

#include "lib/criteria.h"
#include "lib/lanes.h"
#include "lib/prepared_matrix.h"
#include "lib/value_bound.h"

namespace molva {

template <typename Objective>
class MoveScreen {
 public:
  // Clusters are lanes 0 to nparts - 1; where similarities matter, lane nparts is the whole.
  MoveScreen(const Lanes& lanes, int nparts)
      : lanes_(lanes),
        nparts_(nparts),
        products_(lanes.stride()),
        clusters_(static_cast<std::size_t>(nparts)),
        hopeful_(static_cast<std::size_t>(nparts)) {}

  // A row was added to a cluster's composite, to the whole, or taken out of a cluster's composite.
  void RowJoined(int cluster, const RowSize& row) { At(cluster).bound.Add(row.largest); }
  void RowLeft(int cluster) { At(cluster).bound.Add(0); }
  void RowCounted(const RowSize& row) { whole_bound_.Add(row.largest); }

  // The cluster's numbers as they are stored.
  void SetCluster(int cluster, int size, float squared_length, float similarity) {
    Cluster& c = At(cluster);
    c.measure = {size, static_cast<double>(squared_length), static_cast<double>(similarity)};
    c.terms = Objective::RoughTermsOf(c.measure);
  }

  // Weighs all moves of a row out of its cluster.
  void Weigh(const Objective& objective, const RowView& row, const RowSize& size, int from) {
    lanes_.DotRow(row, products_.data());
    const double unit = static_cast<double>(row.size() + 8) * 0x1p-52;
    double similarity = 0;
    double similarity_error = 0;
    if constexpr (Objective::kUsesSimilarity) {
      similarity = products_[static_cast<std::size_t>(nparts_)];
      similarity_error = unit * size.absolute * whole_bound_.Value();
    }
    const auto after = [&](int cluster, int sign) {
      const Cluster& c = At(cluster);
      const BasicMeasure<double> measure{
          c.measure.size + sign,
          c.measure.squared_length + 2 * sign * products_[static_cast<std::size_t>(cluster)] +
              size.square,
          c.measure.similarity + sign * similarity};
      const double length_error = unit * (std::fabs(c.measure.squared_length) + size.square +
                                          2 * size.absolute * c.bound.Value());
      return Objective::BestTerms(measure, length_error,
                                  similarity_error + unit * std::fabs(c.measure.similarity));
    };
    const typename Objective::RoughTerms from_after = after(from, -1);
    const typename Objective::RoughTerms from_before = At(from).terms;
    for (int k = 0; k < nparts_; ++k) {
      hopeful_[static_cast<std::size_t>(k)] =
          !objective.IsHopeless(from_before, At(k).terms, from_after, after(k, 1));
    }
  }

  // Whether the move to a cluster, as weighed last, is worth weighing in full.
  bool IsHopeful(int cluster) const { return hopeful_[static_cast<std::size_t>(cluster)] != 0; }

 private:
  struct Cluster {
    BasicMeasure<double> measure{};
    typename Objective::RoughTerms terms{};
    ValueBound bound;
  };

  Cluster& At(int cluster) { return clusters_[static_cast<std::size_t>(cluster)]; }

  const Lanes& lanes_;
  int nparts_;
  ValueBound whole_bound_;
  std::vector<double> products_;
  std::vector<Cluster> clusters_;
  std::vector<char> hopeful_;
};

}  // namespace molva
