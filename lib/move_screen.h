// SPDX-License-Identifier: MIT
//
// Finds out cheaply which moves of a row cannot improve the objective, so that refinement weighs
// only the others in full.
//
// One walk over the row gives its rough dot products with all clusters, in double arithmetic. From
// these, and a bound on how far they can be from what the full arithmetic would find, follow the
// best terms that the two clusters could have after the move. When even those are worse than the
// terms before, the move is hopeless, and the full arithmetic would refuse it too. Products that
// are remembered from an earlier walk serve as well, with what the moves since then can have
// changed.
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

#include "lib/criteria.h"
#include "lib/lanes.h"
#include "lib/prepared_matrix.h"
#include "lib/product_memory.h"
#include "lib/value_bound.h"

namespace molva {

template <typename Objective>
class MoveScreen {
 public:
  // Clusters are lanes 0 to nparts - 1; where similarities matter, lane nparts is the whole. The
  // blocks carry the given name.
  MoveScreen(const PreparedMatrix& mat, const Lanes& lanes, int nparts, BlockName name)
      : mat_(mat),
        lanes_(lanes),
        nparts_(nparts),
        products_(AllocDoubles(static_cast<std::int64_t>(lanes.stride()), name)),
        clusters_(nparts, name),
        hopeful_(nparts, name),
        memory_(mat, nparts + (Objective::kUsesSimilarity ? 1 : 0)) {
    clusters_.Fill({});
  }

  // A row was added to a cluster's composite and, where similarities matter, to the whole, before
  // any row was weighed.
  void RowCounted(int cluster, const RowSize& row) {
    clusters_[cluster].bound.Add(row.largest);
    whole_bound_.Add(row.largest);
  }

  // Row i has moved between two composites.
  void RowMoved(int i, const RowSize& row, int from, int to) {
    clusters_[from].bound.Add(0);
    clusters_[to].bound.Add(row.largest);
    const auto entries = static_cast<double>(Row(mat_, i).size());
    for (Cluster* c : {&clusters_[from], &clusters_[to]}) {
      c->drift += row.length + entries * 0x1p-24 * c->bound.Value();
    }
    if (memory_) memory_.Forget(i, to);
  }

  // The cluster's numbers as they are stored.
  void SetCluster(int cluster, int size, float squared_length, float similarity) {
    Cluster& c = clusters_[cluster];
    c.measure = {size, static_cast<double>(squared_length), static_cast<double>(similarity)};
    c.terms = Objective::RoughTermsOf(c.measure);
  }

  // Row i will be visited soon.
  void AskFor(int i) const {
    if (memory_) memory_.AskFor(i);
  }

  // Whether all moves of row i out of its cluster are hopeless by what is remembered of it.
  bool IsSettled(const Objective& objective, int i, const RowSize& size, int from) const {
    if (!memory_) return false;
    const Move move{objective, size, UnitOf(i), from, RememberedSimilarity(i, size)};
    const RoughTerms after = After(
        move, from, -1, memory_.Least(i, size, static_cast<std::size_t>(from), DriftOf(from)));
    for (int k = 0; k < nparts_; ++k) {
      if (k == from) continue;
      const auto lane = static_cast<std::size_t>(k);
      if (!IsHopeless(move, after, k, memory_.Most(i, size, lane, DriftOf(k)))) return false;
    }
    return true;
  }

  // Weighs all moves of row i out of its cluster.
  void Weigh(const Objective& objective, int i, const RowSize& size, int from) {
    lanes_.DotRow(Row(mat_, i), products_.data());
    if (memory_) {
      memory_.Keep(i, size, from, products_.data(),
                   [this](std::size_t k) { return DriftOf(static_cast<int>(k)); });
    }
    const Move move{objective, size, UnitOf(i), from, WalkedSimilarity(i, size)};
    const RoughTerms after = After(move, from, -1, {products_[from], 0});
    for (int k = 0; k < nparts_; ++k) {
      hopeful_[k] = k != from && !IsHopeless(move, after, k, {products_[k], 0});
    }
  }

  // Whether the move to a cluster, as weighed last, is worth weighing in full.
  bool IsHopeful(int cluster) const { return hopeful_[cluster] != 0; }

 private:
  using RoughTerms = typename Objective::RoughTerms;

  struct Cluster {
    BasicMeasure<double> measure{};
    RoughTerms terms{};
    ValueBound bound;
    double drift = 0;  // the length of all moves into and out of it
  };

  // What is the same for all moves of one row.
  struct Move {
    const Objective& objective;
    const RowSize& row;
    double unit;  // (n + 8) 2^-52
    int from;
    RoughValue similarity;  // d.G
  };

  double UnitOf(int i) const { return static_cast<double>(Row(mat_, i).size() + 8) * 0x1p-52; }

  // The composite of all rows does not drift.
  double DriftOf(int lane) const { return lane < nparts_ ? clusters_[lane].drift : 0; }

  RoughValue WalkedSimilarity(int i, const RowSize& size) const {
    if constexpr (!Objective::kUsesSimilarity) return {0, 0};
    return {products_[nparts_], UnitOf(i) * size.absolute * whole_bound_.Value()};
  }

  RoughValue RememberedSimilarity(int i, const RowSize& size) const {
    if constexpr (!Objective::kUsesSimilarity) return {0, 0};
    const RoughValue kept = memory_.Most(i, size, static_cast<std::size_t>(nparts_), 0);
    return {kept.value, kept.error + UnitOf(i) * size.absolute * whole_bound_.Value()};
  }

  // The best terms of a cluster that the row joins (sign 1) or leaves (-1).
  RoughTerms After(const Move& move, int cluster, int sign, const RoughValue& product) const {
    const Cluster& c = clusters_[cluster];
    const RowSize& row = move.row;
    const BasicMeasure<double> measure{
        c.measure.size + sign, c.measure.squared_length + 2 * sign * product.value + row.square,
        c.measure.similarity + sign * move.similarity.value};
    const double length_error = move.unit * (std::fabs(c.measure.squared_length) + row.square +
                                             2 * row.absolute * c.bound.Value()) +
                                2 * product.error;
    const double similarity_error =
        move.similarity.error + move.unit * std::fabs(c.measure.similarity);
    return Objective::BestTerms(measure, length_error, similarity_error);
  }

  bool IsHopeless(const Move& move, const RoughTerms& from_after, int k,
                  const RoughValue& product) const {
    return move.objective.IsHopeless(clusters_[move.from].terms, clusters_[k].terms, from_after,
                                     After(move, k, 1, product));
  }

  const PreparedMatrix& mat_;
  const Lanes& lanes_;
  int nparts_;
  ValueBound whole_bound_;
  Array<double> products_;
  Array<Cluster> clusters_;
  Array<char> hopeful_;
  ProductMemory memory_;
};

}  // namespace molva
