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
//
// Both ends. What is remembered of a product is the one end that makes a move look best. The other
// end matters too, as most terms turn where a squared length passes zero; it is |d| |D| at the
// most. The squared length q that is carried along is |D|^2 up to an excess, which grows with every
// move: by the rounding of q to single precision, by what q + 2 d.D + |d|^2 is rounded, by (|D| +
// e)^2 less |D|^2 when the additions to D round by a vector of length e, and, where a column
// repeats in a row, by the difference between the sum of v^2 and |d|^2.
#pragma once

#include <cmath>

#include "lib/criteria/objectives.h"
#include "lib/matrix/prepared_matrix.h"
#include "lib/rough/lanes.h"
#include "lib/rough/product_memory.h"
#include "lib/rough/rough_looks.h"
#include "lib/rough/value_bound.h"

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
        looks_(RoughLooksAreUsed()),
        memory_(mat, looks_ ? nparts + (Objective::kUsesSimilarity ? 1 : 0) : 0) {
    clusters_.Fill({});
  }

  // A row was added to a cluster's composite and, where similarities matter, to the whole, before
  // any row was weighed.
  void RowCounted(int cluster, const RowSize& row) {
    clusters_[cluster].bound.Join(row.largest, row.additions);
    whole_bound_.Join(row.largest, row.additions);
  }

  // Row i has moved between two composites, whose numbers were set before.
  void RowMoved(int i, const RowSize& row, int from, int to) {
    clusters_[from].bound.Leave(row.additions);
    clusters_[to].bound.Join(row.largest, row.additions);
    for (Cluster* c : {&clusters_[from], &clusters_[to]}) {
      const double rounding = static_cast<double>(Row(mat_, i).size()) * 0x1p-24 * c->bound.Value();
      c->drift = RoundedUpSum(c->drift, row.length + rounding);
      c->LoseTrack(LengthError(UnitOf(i), row, *c) +
                   (row.ColumnsDiffer() ? 0 : row.absolute * row.absolute));
      c->LoseTrack(2 * (c->length + row.length) * rounding + rounding * rounding);
    }
    if (memory_) memory_.Forget(i, to);
  }

  // The cluster's numbers as they are stored.
  void SetCluster(int cluster, int size, float squared_length, float similarity) {
    Cluster& c = clusters_[cluster];
    c.measure = {size, static_cast<double>(squared_length), static_cast<double>(similarity)};
    c.terms = Objective::RoughTermsOf(c.measure);
    c.LoseTrack(0x1p-22 * std::fabs(c.measure.squared_length) + 0x1p-140);
  }

  // Row i will be visited soon.
  void AskFor(int i) const {
    if (memory_) memory_.AskFor(i);
  }

  // Whether all moves of row i out of its cluster are hopeless by what is remembered of it.
  bool IsSettled(const Objective& objective, int i, const RowSize& size, int from) const {
    if (!memory_) return false;
    const Move move{objective, size, UnitOf(i), from, RememberedSimilarity(i, size)};
    const auto least = memory_.Least(i, size, static_cast<std::size_t>(from), DriftOf(from));
    const RoughTerms after = After(move, from, -1, {least, LongestProduct(size, from)});
    for (int k = 0; k < nparts_; ++k) {
      if (k == from) continue;
      const double most = memory_.Most(i, size, static_cast<std::size_t>(k), DriftOf(k));
      if (!IsHopeless(move, after, k, {-LongestProduct(size, k), most})) return false;
    }
    return true;
  }

  // Weighs all moves of row i out of its cluster.
  void Weigh(const Objective& objective, int i, const RowSize& size, int from) {
    if (!looks_) {
      for (int k = 0; k < nparts_; ++k) hopeful_[k] = k != from;
      return;
    }
    lanes_.DotRow(Row(mat_, i), products_.data());
    if (memory_) {
      memory_.Keep(i, size, from, products_.data(),
                   [this](std::size_t k) { return DriftOf(static_cast<int>(k)); });
    }
    const Move move{objective, size, UnitOf(i), from, WalkedSimilarity(i, size)};
    const RoughTerms after = After(move, from, -1, {products_[from], products_[from]});
    for (int k = 0; k < nparts_; ++k) {
      hopeful_[k] = k != from && !IsHopeless(move, after, k, {products_[k], products_[k]});
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
    double drift = 0;   // the length of all moves into and out of it
    double excess = 0;  // how far |D|^2 can be above the squared length that is carried along
    double length = 0;  // no less than |D|

    void LoseTrack(double error) {
      excess = RoundedUpSum(excess, error);
      length = std::sqrt(measure.squared_length + excess) * (1 + kSlack);
    }
  };

  // What is the same for all moves of one row.
  struct Move {
    const Objective& objective;
    const RowSize& row;
    double unit;  // (n + 8) 2^-52
    int from;
    Interval similarity;  // d.G
  };

  double UnitOf(int i) const { return static_cast<double>(Row(mat_, i).size() + 8) * 0x1p-52; }

  // The composite of all rows does not drift.
  double DriftOf(int lane) const { return lane < nparts_ ? clusters_[lane].drift : 0; }

  Interval WalkedSimilarity(int i, const RowSize& size) const {
    if constexpr (!Objective::kUsesSimilarity) return {0, 0};
    return Interval::Around(products_[nparts_], UnitOf(i) * size.absolute * whole_bound_.Value());
  }

  // Nothing drifts here, so both ends are known from the one product that is kept.
  Interval RememberedSimilarity(int i, const RowSize& size) const {
    if constexpr (!Objective::kUsesSimilarity) return {0, 0};
    const double error = UnitOf(i) * size.absolute * whole_bound_.Value();
    const auto whole = static_cast<std::size_t>(nparts_);
    return {memory_.Least(i, size, whole, 0) - error, memory_.Most(i, size, whole, 0) + error};
  }

  // No product of the row with the composite is larger: the end that memory does not keep.
  double LongestProduct(const RowSize& row, int cluster) const {
    return row.length * clusters_[cluster].length;
  }

  // How far a squared length after a move can be from what the full arithmetic finds.
  static double LengthError(double unit, const RowSize& row, const Cluster& c) {
    return unit *
           (std::fabs(c.measure.squared_length) + row.square + 2 * row.absolute * c.bound.Value());
  }

  // The best terms of a cluster that the row joins (sign 1) or leaves (-1).
  RoughTerms After(const Move& move, int cluster, int sign, const Interval& product) const {
    const Cluster& c = clusters_[cluster];
    const double length_error = LengthError(move.unit, move.row, c);
    const double similarity_error = move.unit * std::fabs(c.measure.similarity);
    const double base = c.measure.squared_length + move.row.square;
    const auto [least, most] = Signed(sign, product);
    const auto [least_similar, most_similar] = Signed(sign, move.similarity);
    return Objective::BestTerms({c.measure.size + sign,
                                 {base + 2 * least - length_error, base + 2 * most + length_error},
                                 {c.measure.similarity + least_similar - similarity_error,
                                  c.measure.similarity + most_similar + similarity_error}});
  }

  static Interval Signed(int sign, const Interval& x) {
    return sign > 0 ? x : Interval{-x.most, -x.least};
  }

  bool IsHopeless(const Move& move, const RoughTerms& from_after, int k,
                  const Interval& product) const {
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
  bool looks_;
  ProductMemory memory_;
};

}  // namespace molva
