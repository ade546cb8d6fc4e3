// SPDX-License-Identifier: MIT
//
// What a row's move from its home to another cluster makes of the two, and whether it improves the
// objective: by the full arithmetic, and in double where that tells the same.
#pragma once

#include <cmath>
#include <optional>

#include "lib/criteria/objectives.h"
#include "lib/matrix/prepared_matrix.h"
#include "lib/partition/kway_clusters.h"
#include "lib/rough/lanes.h"
#include "lib/support/narrowing.h"
#include "lib/support/wide.h"

namespace molva {

// |D - d|^2 from |D|^2, for a row d of the cluster with composite D: the terms are added to |D|^2
// one by one, in entry order.
inline Wide SquaredLengthWithout(const RowView& row, const LaneView& composite,
                                 Wide squared_length) {
  for (std::size_t p = 0; p < row.size(); ++p) {
    const float v = row.values[p];
    const double twice = 2 * static_cast<double>(composite[row.columns[p]]);
    squared_length += v * DifferenceOf<Wide>(v, twice);
  }
  return squared_length;
}

// |D + d|^2 from |D|^2, for a row d outside the cluster.
inline Wide SquaredLengthWith(const RowView& row, const LaneView& composite, Wide squared_length) {
  for (std::size_t p = 0; p < row.size(); ++p) {
    const float v = row.values[p];
    const double twice = 2 * static_cast<double>(composite[row.columns[p]]);
    squared_length += v * SumOf<Wide>(twice, v);
  }
  return squared_length;
}

inline Wide DotRow(const RowView& row, Span<const float> vector) {
  Wide sum = 0;
  for (std::size_t p = 0; p < row.size(); ++p) {
    sum += static_cast<Wide>(row.values[p]) * vector[row.columns[p]];
  }
  return sum;
}

// What is decided of a move, and what it makes of the row's home and of the other cluster. An
// objective that it improves counts it from then on. The measures mean nothing where it does not.
struct Verdict {
  bool improves;
  StoredMeasure without, joined;
};

// By the full arithmetic. What the row makes of its home is formed when a move from there is first
// judged.
template <typename Objective>
class FullMoves {
 public:
  FullMoves(KWayClusters<Objective>& clusters, const RowView& row, int home)
      : clusters_(clusters), row_(row), home_(home) {}

  void MovedTo(int home) {
    home_ = home;
    knows_home_ = false;
  }

  Verdict Judge(int k) {
    if (!knows_home_) LookAtHome();
    const ClusterMeasure target = clusters_.Measure(k);
    const ClusterMeasure joined{
        target.size + 1, SquaredLengthWith(row_, clusters_.Composite(k), target.squared_length),
        target.similarity + row_similarity_};
    const bool improves = clusters_.objective().Improve(terms_, Objective::TermsOf(target),
                                                        terms_without_, Objective::TermsOf(joined));
    return {improves, Stored(without_), Stored(joined)};
  }

 private:
  using Terms = typename Objective::Terms;

  void LookAtHome() {
    if constexpr (Objective::kUsesSimilarity) {
      if (!knows_row_) row_similarity_ = DotRow(row_, clusters_.Whole());
    }
    const ClusterMeasure with = clusters_.Measure(home_);
    without_ = {with.size - 1,
                SquaredLengthWithout(row_, clusters_.Composite(home_), with.squared_length),
                with.similarity - row_similarity_};
    knows_row_ = knows_home_ = true;
    terms_ = Objective::TermsOf(with);
    terms_without_ = Objective::TermsOf(without_);
  }

  static StoredMeasure Stored(const ClusterMeasure& cluster) {
    return {static_cast<int>(cluster.size), static_cast<float>(cluster.squared_length),
            static_cast<float>(cluster.similarity)};
  }

  KWayClusters<Objective>& clusters_;
  RowView row_;
  int home_;
  bool knows_row_ = false, knows_home_ = false;
  Wide row_similarity_ = 0;
  ClusterMeasure without_{};
  Terms terms_{}, terms_without_{};
};

// In double: nothing where that does not tell what the full arithmetic finds. Sums of two kinds of
// terms are not rounded before they are compared, so of them it never tells.
template <typename Objective>
class RoughMoves {
 public:
  RoughMoves(KWayClusters<Objective>&, const RowView&, int) {}
  void MovedTo(int) {}
  std::optional<Verdict> Judge(int) { return std::nullopt; }
};

// A cluster whose sums are known within an error.
struct RoughMeasure {
  std::int64_t size;
  Estimate squared_length, similarity;
};

// Lemma 14: what a term comes to, which goes with its similarity and with a power of its squared
// length that is no more than the first. Not a number where too little is known of the length.
template <typename Term>
Estimate TermOf(const RoughMeasure& cluster) {
  const Estimate& square = cluster.squared_length;
  if (!(square.value >= 4 * square.error && square.value > 0)) return {NAN, NAN};
  const double looseness = square.error / (square.value - square.error);
  const auto of = [&](double similarity) {
    return Term::Of(BasicMeasure<double>{cluster.size, square.value, similarity});
  };
  const double value = of(cluster.similarity.value);
  double error = (looseness + kRoomForQuotient) * std::fabs(value);
  if constexpr (Term::kUsesSimilarity) error += (1 + looseness) * of(2 * cluster.similarity.error);
  return {value, error};
}

template <typename Term, typename Direction>
class RoughMoves<SingleSum<Term, Direction>> {
 public:
  using Objective = SingleSum<Term, Direction>;

  RoughMoves(KWayClusters<Objective>& clusters, const RowView& row, int home)
      : clusters_(clusters), row_(row) {
    if constexpr (Term::kUsesSimilarity) row_similarity_ = RoughDotRow(row_, clusters_.Whole());
    MovedTo(home);
  }

  void MovedTo(int home) {
    const RoughMeasure with = Measure(home);
    without_ = {with.size - 1, SquaredLength<-1>(home, with), Similarity<-1>(with)};
    term_ = TermOf<Term>(with);
    term_without_ = TermOf<Term>(without_);
  }

  std::optional<Verdict> Judge(int k) {
    const RoughMeasure target = Measure(k);
    const RoughMeasure joined{target.size + 1, SquaredLength<1>(k, target), Similarity<1>(target)};
    const Narrowed before = NarrowedSum(term_, TermOf<Term>(target));
    const Narrowed after = NarrowedSum(term_without_, TermOf<Term>(joined));
    if (!before.is_certain || !after.is_certain) return std::nullopt;
    if (!Objective::IsImproved(before.value, after.value)) return Verdict{false, {}, {}};
    StoredMeasure stored_without, stored_joined;
    if (!Store(without_, stored_without) || !Store(joined, stored_joined)) return std::nullopt;
    clusters_.objective().Take(before.value, after.value);
    return Verdict{true, stored_without, stored_joined};
  }

 private:
  // As it is stored, so nothing is unknown of it.
  RoughMeasure Measure(int k) const {
    const StoredMeasure stored = clusters_.Stored(k);
    return {stored.size, {stored.squared_length, 0}, {stored.similarity, 0}};
  }

  // With the row, or without it where the sign is -1.
  template <int kSign>
  Estimate SquaredLength(int k, const RoughMeasure& cluster) const {
    const LaneView composite = clusters_.Composite(k);
    RoughSum sum{0, 0, static_cast<double>(row_.size()) + 1};
    for (std::size_t p = 0; p < row_.size(); ++p) {
      const auto v = static_cast<double>(row_.values[p]);
      sum.Add(v * (v + 2 * kSign * static_cast<double>(composite[row_.columns[p]])));
    }
    sum.Add(cluster.squared_length.value);
    return EstimateOf(sum);
  }
  template <int kSign>
  Estimate Similarity(const RoughMeasure& cluster) const {
    RoughSum sum = row_similarity_;
    sum.sum *= kSign;
    sum.Add(cluster.similarity.value);
    return EstimateOf(sum);
  }

  static RoughSum RoughDotRow(const RowView& row, Span<const float> vector) {
    RoughSum sum{0, 0, static_cast<double>(row.size()) + 1};
    for (std::size_t p = 0; p < row.size(); ++p) {
      sum.Add(static_cast<double>(row.values[p]) * static_cast<double>(vector[row.columns[p]]));
    }
    return sum;
  }

  // Whether what will be stored is certain.
  static bool Store(const RoughMeasure& cluster, StoredMeasure& stored) {
    const Narrowed square = NarrowedOf(cluster.squared_length);
    const Narrowed similarity = NarrowedOf(cluster.similarity);
    stored = {static_cast<int>(cluster.size), square.value, similarity.value};
    return square.is_certain && (similarity.is_certain || !Term::kUsesSimilarity);
  }

  KWayClusters<Objective>& clusters_;
  RowView row_;
  RoughSum row_similarity_;  // its terms are one more, the cluster's
  RoughMeasure without_{};
  Estimate term_{}, term_without_{};
};

}  // namespace molva
