// SPDX-License-Identifier: MIT
//
// The one k-way refinement loop, a template over an objective; included by refine.cc alone.
//
// Rows are visited in random order. A visited row tries the clusters in increasing order and moves
// to each one that improves the objective at once, so it may move more than once in a visit. A
// candidate is judged from the row's entries alone: squared lengths of composites are carried
// along, and the composites change only with a move. Candidates that a rough look shows to be
// hopeless are passed over; what is decided and stored comes from the arithmetic below alone.
#pragma once

#include <cstdio>

#include "lib/criteria/objectives.h"
#include "lib/matrix/composites.h"
#include "lib/matrix/control.h"
#include "lib/matrix/prepared_matrix.h"
#include "lib/rough/lanes.h"
#include "lib/rough/move_screen.h"
#include "lib/rough/row_sizes.h"
#include "lib/support/progress.h"
#include "lib/support/random.h"
#include "lib/support/wide.h"

namespace molva {

// |D - d|^2 from |D|^2, for a row d of the cluster with composite D: the terms are added to |D|^2
// one by one, in entry order.
inline Wide SquaredLengthWithout(const RowView& row, const LaneView& composite,
                                 Wide squared_length) {
  for (std::size_t p = 0; p < row.size(); ++p) {
    const Wide v = row.values[p];
    const Wide c = composite[static_cast<std::size_t>(row.columns[p])];
    squared_length += v * (v - 2 * c);
  }
  return squared_length;
}

// |D + d|^2 from |D|^2, for a row d outside the cluster.
inline Wide SquaredLengthWith(const RowView& row, const LaneView& composite, Wide squared_length) {
  for (std::size_t p = 0; p < row.size(); ++p) {
    const Wide v = row.values[p];
    const Wide c = composite[static_cast<std::size_t>(row.columns[p])];
    squared_length += v * (2 * c + v);
  }
  return squared_length;
}

inline Wide DotRow(const RowView& row, std::span<const float> vector) {
  Wide sum = 0;
  for (std::size_t p = 0; p < row.size(); ++p) {
    sum += static_cast<Wide>(row.values[p]) * vector[static_cast<std::size_t>(row.columns[p])];
  }
  return sum;
}

// The state of one call: the clusters as the moves made so far left them.
template <typename Objective>
class KWayRefinement {
 public:
  KWayRefinement(const RoutineNames& names, const PreparedMatrix& mat, int nparts,
                 std::span<int> part)
      : mat_(mat),
        part_(part),
        nparts_(nparts),
        perm_(AllocInts(mat.nrows, {names.per_row, ": perm"})),
        pwgts_(AllocIntsSet(nparts, 0, {names.per_cluster, ": pwgts"})),
        dnorms_(AllocFloats(nparts, {names.per_cluster, ": dnorms"})),
        centers_(nparts + (Objective::kUsesSimilarity ? 1 : 0), mat.ncols,
                 {names.per_cluster, ": centers"}),
        screen_(mat, centers_, nparts, {names.per_cluster, ": dnorms"}) {
    if constexpr (Objective::kUsesSimilarity) {
      csim_ = AllocFloats(nparts, {names.per_cluster, ": csim"});
      gcenter_ = AllocFloatsSet(mat.ncols, 0, {names.per_row, ": gcenter"});
    }
    for (int i = 0; i < mat_.nrows; ++i) CountRow(i);
    centers_.SquaredLengths(dnorms_);
    if constexpr (Objective::kUsesSimilarity) centers_.DotsWith(gcenter_, csim_);
    for (int k = 0; k < nparts_; ++k) {
      objective_.AddCluster(Objective::TermsOf(Measure(k)));
      ShowToScreen(k);
    }
    objective_.Start();
  }

  // One pass over all rows in a fresh random order; returns the number of moves.
  int Pass() {
    RandomPermute(perm_, Start::kIdentity);
    int moves = 0;
    for (int j = 0; j < mat_.nrows; ++j) {
      const int i = perm_[j];
      AskForRows(mat_, perm_, j);
      if (j % kPollInterval == 0) Poll();
      if (j + kRowsAhead < mat_.nrows) screen_.AskFor(perm_[j + kRowsAhead]);
      // Rows leave only clusters of three or more, so no pair is broken up.
      if (pwgts_[part_[static_cast<std::size_t>(i)]] > 2) moves += Visit(i);
    }
    return moves;
  }

  Wide Progress() const { return objective_.Progress(mat_.nrows); }
  float Quality() const { return objective_.Quality(mat_.nrows); }

 private:
  using Terms = typename Objective::Terms;

  // The cluster that a visited row stands in, with the row and without it.
  struct Home {
    ClusterMeasure without;
    Terms terms, terms_without;
  };

  void CountRow(int i) {
    const RowView row = Row(mat_, i);
    const int k = part_[static_cast<std::size_t>(i)];
    ++pwgts_[k];
    centers_.Add(row, k);
    screen_.RowCounted(k, SizeOfRow(mat_, i));
    if constexpr (Objective::kUsesSimilarity) {
      AddRow(row, gcenter_);
      // The lane behind the clusters repeats the composite of all rows for the screen.
      centers_.Add(row, nparts_);
    }
  }

  ClusterMeasure Measure(int k) const {
    return {pwgts_[k], dnorms_[k], Objective::kUsesSimilarity ? csim_[k] : 0.0F};
  }

  void ShowToScreen(int k) {
    screen_.SetCluster(k, pwgts_[k], dnorms_[k], Objective::kUsesSimilarity ? csim_[k] : 0.0F);
  }

  Home HomeOf(const RowView& row, Wide row_similarity, int k) const {
    const ClusterMeasure with = Measure(k);
    const ClusterMeasure without{with.size - 1,
                                 SquaredLengthWithout(row, centers_[k], with.squared_length),
                                 with.similarity - row_similarity};
    return {without, Objective::TermsOf(with), Objective::TermsOf(without)};
  }

  // Tries every cluster for row i; returns the number of moves. After a move the scan goes on with
  // the next cluster against the new home, and the size of the new home is not tested again.
  int Visit(int i) {
    const RowView row = Row(mat_, i);
    const RowSize size = SizeOfRow(mat_, i);
    int& place = part_[static_cast<std::size_t>(i)];
    Wide row_similarity = 0;
    Home home;
    bool home_is_known = false;
    int moves = 0;
    if (screen_.IsSettled(objective_, i, size, place)) return 0;
    screen_.Weigh(objective_, i, size, place);
    for (int k = 0; k < nparts_; ++k) {
      if (!screen_.IsHopeful(k)) continue;
      if (!home_is_known) {
        if constexpr (Objective::kUsesSimilarity) row_similarity = DotRow(row, gcenter_);
        home = HomeOf(row, row_similarity, place);
        home_is_known = true;
      }
      const ClusterMeasure target = Measure(k);
      const ClusterMeasure joined{target.size + 1,
                                  SquaredLengthWith(row, centers_[k], target.squared_length),
                                  target.similarity + row_similarity};
      if (!objective_.Improve(home.terms, Objective::TermsOf(target), home.terms_without,
                              Objective::TermsOf(joined))) {
        continue;
      }
      Store(place, home.without);
      Store(k, joined);
      centers_.Add(row, k);
      centers_.Subtract(row, place);
      screen_.RowMoved(i, size, place, k);
      place = k;
      home_is_known = false;
      ++moves;
      if (k + 1 < nparts_) screen_.Weigh(objective_, i, size, place);
    }
    return moves;
  }

  // Here the wide values become single precision.
  void Store(int k, const ClusterMeasure& measure) {
    pwgts_[k] = static_cast<int>(measure.size);
    dnorms_[k] = static_cast<float>(measure.squared_length);
    if constexpr (Objective::kUsesSimilarity) csim_[k] = static_cast<float>(measure.similarity);
    ShowToScreen(k);
  }

  const PreparedMatrix& mat_;
  std::span<int> part_;
  int nparts_;
  Objective objective_;
  Array<int> perm_;
  Array<int> pwgts_;
  Array<float> dnorms_;
  Lanes centers_;
  Array<float> csim_;
  Array<float> gcenter_;
  MoveScreen<Objective> screen_;
};

inline void ReportStart(const Control& control, bool extra_line, Wide progress) {
  if (!HasDebugBit(control, kDebugRefinement)) return;
  if (extra_line) std::printf("\n");
  std::printf("\nInit: %.4f, ", static_cast<double>(progress));
}

inline void ReportPass(const Control& control, int moves, Wide progress) {
  if (!HasDebugBit(control, kDebugRefinement)) return;
  std::printf("%d %.4f, ", moves, static_cast<double>(progress));
}

inline void ReportEnd(const Control& control) {
  if (HasDebugBit(control, kDebugRefinement)) std::printf("\n");
}

// Refines `part` in place under the criterion, for at most control.niter passes or until a pass
// moves no row, and returns the quality by which trials are compared.
template <typename CriterionType>
float RefineKWay(const CriterionType& criterion, const Control& control, const PreparedMatrix& mat,
                 int nparts, std::span<int> part) {
  using Objective = typename CriterionType::Objective;
  KWayRefinement<Objective> clusters(criterion.names, mat, nparts, part);
  // The six criteria that look at the whole collection print a line more; only they do.
  ReportStart(control, Objective::kUsesSimilarity, clusters.Progress());
  for (int pass = 0; pass < control.niter; ++pass) {
    const int moves = clusters.Pass();
    ReportPass(control, moves, clusters.Progress());
    if (moves == 0) break;
  }
  ReportEnd(control);
  return clusters.Quality();
}

}  // namespace molva
