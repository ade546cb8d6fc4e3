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

#include <algorithm>
#include <cstdio>

#include "lib/criteria/objectives.h"
#include "lib/matrix/control.h"
#include "lib/matrix/prepared_matrix.h"
#include "lib/partition/kway_clusters.h"
#include "lib/rough/lanes.h"
#include "lib/rough/row_records.h"
#include "lib/support/printed.h"
#include "lib/support/progress.h"
#include "lib/support/random.h"
#include "lib/support/span.h"
#include "lib/support/wide.h"

namespace molva {

// |D - d|^2 from |D|^2, for a row d of the cluster with composite D: the terms are added to |D|^2
// one by one, in entry order.
inline Wide SquaredLengthWithout(const RowView& row, const LaneView& composite,
                                 Wide squared_length) {
  for (std::size_t p = 0; p < row.size(); ++p) {
    const Wide v = row.values[p];
    const Wide c = composite[row.columns[p]];
    squared_length += v * (v - 2 * c);
  }
  return squared_length;
}

// |D + d|^2 from |D|^2, for a row d outside the cluster.
inline Wide SquaredLengthWith(const RowView& row, const LaneView& composite, Wide squared_length) {
  for (std::size_t p = 0; p < row.size(); ++p) {
    const Wide v = row.values[p];
    const Wide c = composite[row.columns[p]];
    squared_length += v * (2 * c + v);
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

// The state of one call.
template <typename Objective>
class KWayRefinement {
 public:
  KWayRefinement(const RoutineNames& names, RowRecords& rows, int nparts, Span<int> part)
      : rows_(rows),
        part_(part),
        perm_(AllocInts(rows.count(), {names.per_row, ": perm"})),
        clusters_(names, rows, nparts, part) {}

  // One pass over all rows in a fresh random order; returns the number of moves.
  int Pass() {
    RandomPermute(perm_, Start::kIdentity);
    clusters_.StartPass();
    const bool looks_ahead = clusters_.LooksAhead();
    int moves = 0;
    for (int j = 0; j < rows_.count(); ++j) {
      if (j % kPollInterval == 0) Poll();
      if (looks_ahead && j % kRowsAhead == 0) clusters_.LookAhead(RowsFrom(j));
      rows_.Prefetch(perm_.data(), j);
      if (j + kColumnsAhead < rows_.count()) clusters_.Prefetch(rows_[perm_[j + kColumnsAhead]]);
      RowRecord& row = rows_[perm_[j]];
      // Rows leave only clusters of three or more, so no pair is broken up.
      if (clusters_.Size(row.place) <= 2 || clusters_.IsSettled(row)) continue;
      if (clusters_.HasHope(row)) moves += Visit(perm_[j], row);
    }
    return moves;
  }

  Wide Progress() const { return clusters_.objective().Progress(rows_.count()); }
  float Quality() const { return clusters_.objective().Quality(rows_.count()); }

 private:
  static constexpr int kColumnsAhead = 2;
  static constexpr int kRowsAhead = 2 * static_cast<int>(kFullRows);

  Span<const int> RowsFrom(int j) const {
    return {perm_.data() + j, std::min(kRowsAhead, rows_.count() - j)};
  }

  // The cluster that a visited row stands in, with the row and without it.
  struct Home {
    ClusterMeasure without;
    typename Objective::Terms terms, terms_without;
  };

  Home HomeOf(const RowView& entries, Wide row_similarity, int k) const {
    const ClusterMeasure with = clusters_.Measure(k);
    const ClusterMeasure without{
        with.size - 1, SquaredLengthWithout(entries, clusters_.Composite(k), with.squared_length),
        with.similarity - row_similarity};
    return {without, Objective::TermsOf(with), Objective::TermsOf(without)};
  }

  // Tries every cluster that a look left some hope for; returns the number of moves. After a move
  // the scan goes on with the next cluster against the new home, and the size of the new home is
  // not tested again.
  int Visit(int i, RowRecord& row) {
    const RowView entries = rows_.Entries(row);
    Wide row_similarity = 0;
    if constexpr (Objective::kUsesSimilarity) row_similarity = DotRow(entries, clusters_.Whole());
    Home home = HomeOf(entries, row_similarity, row.place);
    int moves = 0;
    for (int k = 0; k < clusters_.count(); ++k) {
      if (k == row.place || !clusters_.IsHopeful(k)) continue;
      const ClusterMeasure target = clusters_.Measure(k);
      const ClusterMeasure joined{
          target.size + 1,
          SquaredLengthWith(entries, clusters_.Composite(k), target.squared_length),
          target.similarity + row_similarity};
      if (!clusters_.objective().Improve(home.terms, Objective::TermsOf(target), home.terms_without,
                                         Objective::TermsOf(joined))) {
        continue;
      }
      clusters_.Move(row, k, home.without, joined);
      part_[i] = k;
      ++moves;
      if (k + 1 == clusters_.count() || !clusters_.HasHope(row)) break;
      home = HomeOf(entries, row_similarity, k);
    }
    return moves;
  }

  RowRecords& rows_;
  Span<int> part_;
  Array<int> perm_;
  KWayClusters<Objective> clusters_;
};

inline void ReportStart(const Control& control, bool extra_line, Wide progress) {
  if (!HasDebugBit(control, MOLVA_DBG_REFINEMENT)) return;
  if (extra_line) std::printf("\n");
  std::printf("\nInit: %.4f, ", Printed(progress));
}

inline void ReportPass(const Control& control, int moves, Wide progress) {
  if (!HasDebugBit(control, MOLVA_DBG_REFINEMENT)) return;
  std::printf("%d %.4f, ", moves, Printed(progress));
}

inline void ReportEnd(const Control& control) {
  if (HasDebugBit(control, MOLVA_DBG_REFINEMENT)) std::printf("\n");
}

// Refines `part` in place under the criterion, for at most control.niter passes or until a pass
// moves no row, and returns the quality by which trials are compared.
template <typename CriterionType>
float RefineKWay(const CriterionType& criterion, const Control& control, RowRecords& rows,
                 int nparts, Span<int> part) {
  using Objective = typename CriterionType::Objective;
  KWayRefinement<Objective> clusters(criterion.names, rows, nparts, part);
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
