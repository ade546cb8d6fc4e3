// SPDX-License-Identifier: MIT
//
// Finds out cheaply which moves of a row cannot improve the objective, so that refinement weighs
// only the others in full.
//
// One look at a row forms its products with all composites and meets them with the bounds of the
// clusters: what its going from home and its coming elsewhere can gain, in double arithmetic. The
// full arithmetic would refuse every move whose two bounds add up to less than nothing.
//
// How much less is remembered. A clock runs with every move by as much as a bound can have grown
// for any row, so a row that lacked more than the clock has run since is passed over without a
// look.
#pragma once

#include "lib/rough/bound_arrays.h"
#include "lib/rough/cluster_bounds.h"
#include "lib/rough/lanes.h"
#include "lib/rough/row_records.h"
#include "lib/rough/two_bounds.h"
#include "lib/rough/two_lanes.h"
#include "lib/rough/vector_kernels.h"
#include "lib/support/span.h"

namespace molva {

class MoveScreen {
 public:
  // Clusters are the lanes 0 to nparts - 1; whether the objective looks at the whole, and whether
  // every row stores every column, in order. The blocks carry the given name.
  MoveScreen(const Lanes& lanes, int nparts, bool uses_whole, bool are_full, BlockName name);

  // The bounds of a cluster as it stands now.
  void SetBounds(int k, const ClusterBounds& bounds);
  const ClusterBounds& Bounds(int k) const { return bounds_[k]; }
  // Below what sum of two bounds a move improves nothing.
  void SetSlack(double slack) { slack_ = slack; }
  double Slack() const { return slack_; }

  // What was remembered holds for as long as the clock runs on. It runs for ever, and nothing is
  // passed over, from when a cluster has no bounds that hold for all rows until it is started anew.
  void RunClock(double growth) { clock_ = RoundedUpSum(clock_, growth); }
  void StopClock() { clock_ = kForEver; }
  bool ClockRuns() const { return clock_ < kLastHour; }
  // Starts it again; everything remembered has to be forgotten by then.
  void RestartClock() { clock_ = 0; }

  // Whether no move of the row can improve anything by what is remembered of it.
  bool IsSettled(const RowRecord& row) const { return clock_ < row.settled_until; }

  // Looks at all moves of a row out of its home. False when all are hopeless, which is remembered.
  [[gnu::always_inline]] bool HasHope(const RowRecords& rows, RowRecord& row) {
    return nparts_ == 2 ? HasHopeAmongTwo(rows, row) : HasHopeAmongMany(rows.Entries(row), row);
  }

  // Looks at kFullRows full rows ahead of their turn, all of whose products are formed together.
  // What moves in between is on the clock.
  void LookAhead(const RowRecords& rows, RowRecord* const* records);

  // Whether the move to a cluster, as looked at last, is worth weighing in full.
  bool IsHopeful(int k) const { return !(gains_[k] < threshold_); }

 private:
  // Far enough from where the clock's steps would be lost.
  static constexpr double kLastHour = 0x1p300;

  [[gnu::always_inline]] bool HasHopeAmongTwo(const RowRecords& rows, RowRecord& row) {
    const RowView entries = rows.Entries(row);
    const RowFactors factors = FactorsOf(row);
    const float* const values = entries.values.data();
    const Pair products =
        are_full_ ? DotTwoFull(values, entries.size(), lanes_.Values())
                  : DotTwo({entries.columns.data(), values, entries.size(), rows.RoomFrom(row)},
                           lanes_.Values());
    return Conclude(two_bounds_.MostGain(factors, products, row.place, uses_whole_), row);
  }
  bool HasHopeAmongMany(const RowView& entries, RowRecord& row);
  bool Meet(const float* products, RowRecord& row);

  bool Conclude(double most, RowRecord& row) {
    const double lacking = -slack_ - most;
    const bool is_hopeless = lacking > 0;
    // So much that what adding to the clock rounds does not count.
    row.settled_until = is_hopeless ? clock_ + lacking * (1 - kSlack) - clock_ * kSlack : kNever;
    return !is_hopeless;
  }

  const Lanes& lanes_;
  int nparts_;
  bool uses_whole_;
  bool are_full_;
  VectorKernel kernel_;
  Array<float> products_;  // of kFullRows rows
  // Of coming to each cluster, where there are more than two; of two, the other is hopeful if any
  // is.
  Array<double> gains_;
  BoundArrays coming_;
  Array<ClusterBounds> bounds_;
  TwoBounds two_bounds_;
  double slack_ = 0;
  double clock_ = 0;
  double threshold_ = 0;  // of the gains
};

}  // namespace molva
