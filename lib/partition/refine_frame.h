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
#include <optional>

#include "lib/criteria/objectives.h"
#include "lib/matrix/control.h"
#include "lib/matrix/prepared_matrix.h"
#include "lib/partition/kway_clusters.h"
#include "lib/partition/row_moves.h"
#include "lib/rough/row_records.h"
#include "lib/support/printed.h"
#include "lib/support/progress.h"
#include "lib/support/random.h"
#include "lib/support/span.h"
#include "lib/support/wide.h"

namespace molva {

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

  // Tries every cluster that a look left some hope for; returns the number of moves. After a move
  // the scan goes on with the next cluster against the new home, and the size of the new home is
  // not tested again.
  int Visit(int i, RowRecord& row) {
    RoughMoves<Objective> rough_moves(clusters_, rows_.Entries(row), row.place);
    FullMoves<Objective> full_moves(clusters_, rows_.Entries(row), row.place);
    int moves = 0;
    for (int k = 0; k < clusters_.count(); ++k) {
      if (k == row.place || !clusters_.IsHopeful(k)) continue;
      std::optional<Verdict> verdict;
      if (clusters_.Looks()) verdict = rough_moves.Judge(k);
      if (!verdict) verdict = full_moves.Judge(k);
      if (!verdict->improves) continue;
      clusters_.Move(row, k, verdict->without, verdict->joined);
      part_[i] = k;
      ++moves;
      if (k + 1 == clusters_.count() || !clusters_.HasHope(row)) break;
      rough_moves.MovedTo(k);
      full_moves.MovedTo(k);
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
