// SPDX-License-Identifier: MIT
//
// The clusters under refinement, as the moves made so far left them: sizes, squared lengths,
// similarities, composites, and the bounds that the screen reads. Whatever changes, changes in
// Move.
#pragma once

#include <cmath>

#include "lib/criteria/objectives.h"
#include "lib/matrix/composites.h"
#include "lib/matrix/prepared_matrix.h"
#include "lib/rough/cluster_bounds.h"
#include "lib/rough/lanes.h"
#include "lib/rough/length_bound.h"
#include "lib/rough/move_screen.h"
#include "lib/rough/rough_looks.h"
#include "lib/rough/row_records.h"
#include "lib/support/span.h"
#include "lib/support/wide.h"

namespace molva {

// A cluster's numbers in single precision, in which they are stored.
struct StoredMeasure {
  int size;
  float squared_length;
  float similarity;  // 0 where the objective does not use it
};

template <typename Objective>
class KWayClusters {
 public:
  using Terms = typename Objective::Terms;

  // The clusters of `part`, every row counted in row order.
  KWayClusters(const RoutineNames& names, RowRecords& rows, int nparts, Span<const int> part)
      : rows_(rows),
        nparts_(nparts),
        looks_(RoughLooksAreUsed()),
        pwgts_(AllocIntsSet(nparts, 0, {names.per_cluster, ": pwgts"})),
        dnorms_(AllocFloats(nparts, {names.per_cluster, ": dnorms"})),
        centers_(nparts, rows.matrix().ncols, {names.per_cluster, ": centers"}),
        rough_(nparts, {names.per_cluster, ": dnorms"}),
        screen_(centers_, nparts, Objective::kUsesSimilarity, rows.extremes().are_full,
                {names.per_cluster, ": dnorms"}) {
    if constexpr (Objective::kUsesSimilarity) {
      csim_ = AllocFloats(nparts, {names.per_cluster, ": csim"});
      gcenter_ = AllocFloatsSet(rows.matrix().ncols, 0, {names.per_row, ": gcenter"});
    }
    CountRows(part);
    centers_.SquaredLengths(dnorms_);
    if constexpr (Objective::kUsesSimilarity) centers_.DotsWith(gcenter_, csim_);
    for (int k = 0; k < nparts_; ++k) objective_.AddCluster(TermsOf(k));
    objective_.Start();
    if (looks_) StartLooks();
  }

  int count() const { return nparts_; }
  int Size(int k) const { return pwgts_[k]; }
  Terms TermsOf(int k) const { return Objective::TermsOf(Measure(k)); }
  StoredMeasure Stored(int k) const {
    return {pwgts_[k], dnorms_[k], Objective::kUsesSimilarity ? csim_[k] : 0.0F};
  }
  ClusterMeasure Measure(int k) const {
    const StoredMeasure stored = Stored(k);
    return {stored.size, stored.squared_length, stored.similarity};
  }
  LaneView Composite(int k) const { return centers_[k]; }
  Span<const float> Whole() const { return gcenter_; }
  Objective& objective() { return objective_; }
  const Objective& objective() const { return objective_; }

  // What is remembered of the rows may be used from here on.
  void StartPass() {
    if (!looks_ || screen_.ClockRuns() || !BoundsHold()) return;
    for (int i = 0; i < rows_.count(); ++i) rows_[i].settled_until = kNever;
    screen_.RestartClock();
  }
  bool IsSettled(const RowRecord& row) const { return looks_ && screen_.IsSettled(row); }
  bool HasHope(RowRecord& row) { return !looks_ || screen_.HasHope(rows_, row); }
  // Whether rows are better looked at together: those that store every column, where there are more
  // composites than need no vectors.
  bool LooksAhead() const {
    return looks_ && rows_.extremes().are_full && centers_.stride() % 8 == 0;
  }
  // Looks at the rows to come ahead of their turn, as far as they are not settled.
  void LookAhead(Span<const int> to_come) {
    if (!screen_.ClockRuns()) return;
    RowRecord* records[kFullRows];
    std::size_t count = 0;
    for (const int i : to_come) {
      if (screen_.IsSettled(rows_[i])) continue;
      records[count++] = &rows_[i];
      if (count < kFullRows) continue;
      screen_.LookAhead(rows_, records);
      count = 0;
    }
  }
  // The row comes soon.
  [[gnu::always_inline]] void Prefetch(const RowRecord& row) const {
    if (looks_ && !screen_.IsSettled(row)) centers_.Prefetch(rows_.Entries(row));
  }
  // Whether rough looks are used.
  bool Looks() const { return looks_; }
  bool IsHopeful(int k) const { return !looks_ || screen_.IsHopeful(k); }

  // The row leaves its place for cluster `to`.
  void Move(RowRecord& row, int to, const StoredMeasure& without, const StoredMeasure& joined) {
    const int from = row.place;
    Store(from, without);
    Store(to, joined);
    centers_.Add(rows_.Entries(row), to);
    centers_.Subtract(rows_.Entries(row), from);
    row.place = to;
    row.settled_until = kNever;
    if (looks_) RenewBounds(row, from, to);
  }

 private:
  // What the screen needs to know of a cluster beyond what is stored.
  struct Rough {
    LengthBound length;
    ClusterGains<Objective> gains;
  };

  void CountRows(Span<const int> part) {
    for (int i = 0; i < rows_.count(); ++i) {
      RowRecord& record = rows_[i];
      const RowView row = rows_.Entries(record);
      record.place = part[i];
      record.settled_until = kNever;
      ++pwgts_[record.place];
      centers_.Add(row, record.place);
      if constexpr (Objective::kUsesSimilarity) AddRow(row, gcenter_);
    }
  }

  void Store(int k, const StoredMeasure& measure) {
    pwgts_[k] = measure.size;
    dnorms_[k] = measure.squared_length;
    if constexpr (Objective::kUsesSimilarity) csim_[k] = measure.similarity;
  }

  BoundedCluster Bounded(int k) const {
    const double similarity = Objective::kUsesSimilarity ? static_cast<double>(csim_[k]) : 0;
    return {{pwgts_[k], static_cast<double>(dnorms_[k]), similarity},
            rough_[k].length.Length(),
            rows_.extremes()};
  }

  void StartLooks() {
    if constexpr (Objective::kUsesSimilarity) rows_.MeasureAgainst(gcenter_);
    rough_.Fill({});
    const GainWeights weights = WeightsOf(objective_);
    screen_.SetSlack(weights.slack);
    for (int k = 0; k < nparts_; ++k) {
      rough_[k].length.Start(dnorms_[k]);
      rough_[k].gains.Measure(Bounded(k));
      screen_.SetBounds(k, BoundsOf<Objective>(rough_[k].gains, weights, Bounded(k)));
    }
    screen_.StopClock();
  }

  bool BoundsHold() const {
    for (int k = 0; k < nparts_; ++k) {
      if (!screen_.Bounds(k).HoldFor(Bounded(k))) return false;
    }
    return true;
  }

  void RenewBounds(const RowRecord& row, int from, int to) {
    const GainWeights weights = WeightsOf(objective_);
    for (const int k : {from, to}) {
      rough_[k].length.Change(row, dnorms_[k]);
      rough_[k].gains.Measure(Bounded(k));
    }
    double growth = std::fabs(weights.slack - screen_.Slack());
    screen_.SetSlack(weights.slack);
    if constexpr (Objective::kCouplesClusters) {
      double most = 0;
      for (int k = 0; k < nparts_; ++k) {
        most = std::max(most, Renew(k, weights, k == from || k == to ? Moved(row, k) : 0.0));
      }
      growth += 2 * most;
    } else {
      for (const int k : {from, to}) growth += Renew(k, weights, Moved(row, k));
    }
    screen_.RunClock(growth);
  }

  double Moved(const RowRecord& row, int k) const {
    return static_cast<double>(row.length) + rough_[k].length.Rounding(row);
  }

  // Sets the bounds of a cluster anew; by how much they may have grown, without end where they do
  // not hold for all rows.
  double Renew(int k, const GainWeights& weights, double moved) {
    const BoundedCluster cluster = Bounded(k);
    const ClusterBounds bounds = BoundsOf<Objective>(rough_[k].gains, weights, cluster);
    const double growth = GrowthOf(screen_.Bounds(k).gains, bounds.gains, moved, cluster);
    screen_.SetBounds(k, bounds);
    return bounds.HoldFor(cluster) ? growth : kForEver;
  }

  RowRecords& rows_;
  int nparts_;
  bool looks_;
  Objective objective_;
  Array<int> pwgts_;
  Array<float> dnorms_;
  Lanes centers_;
  Array<float> csim_;
  Array<float> gcenter_;
  Array<Rough> rough_;
  MoveScreen screen_;
};

}  // namespace molva
