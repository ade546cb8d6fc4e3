// SPDX-License-Identifier: MIT
#include "lib/partition/trials_ahead.h"

#include <algorithm>
#include <cstdint>

#include "lib/partition/initial_clustering.h"
#include "lib/partition/refine.h"
#include "lib/support/progress.h"
#include "lib/support/team.h"

namespace molva {
namespace {

// Not among the states, which have 48 bits.
constexpr RandomState kNoState = ~RandomState{0};

}  // namespace

TrialsAhead::TrialsAhead(const Control& control, const PreparedMatrix& mat, int nparts,
                         BlockName name)
    : control_(control), nparts_(nparts), name_(name) {
  trials_.emplace_back(RowRecords(mat, name), name);
}

TrialsAhead::Outcome TrialsAhead::Next(int left) {
  if (taken_ == made_) MakeRound(Width(left));
  const Trial& trial = trials_[static_cast<std::size_t>(taken_++)];
  return {{trial.part.data(), trial.part.size()}, trial.quality};
}

// What a trial prints has to come in order.
int TrialsAhead::Width(int left) const {
  if (!is_guessing_ || HasDebugBit(control_, MOLVA_DBG_REFINEMENT)) return 1;
  return std::min(TeamSize(), left);
}

void TrialsAhead::MakeRound(int width) {
  while (static_cast<int>(trials_.size()) < width) trials_.emplace_back(trials_[0].rows, name_);
  RandomState state = CurrentRandomState();
  const std::int64_t permutations =
      std::int64_t{kSeedingPermutations} + std::max(control_.niter, 0);
  for (Trial& trial : trials_) {
    trial.start = state;
    state = AfterPermutations(state, trial.rows.count(), permutations);
    trial.expected_end = state;
    trial.is_unwanted = false;
  }
  ShareOut(width, 1, [&](std::int64_t first, std::int64_t last, int) {
    for (std::int64_t t = first; t < last; ++t) Make(static_cast<int>(t), width);
  });
  // A trial counts if it started where the one before, which counts, has ended.
  made_ = 1;
  for (std::size_t t = 1; static_cast<int>(t) < width; ++t) {
    if (trials_[t].start != trials_[t - 1].end) break;
    ++made_;
  }
  taken_ = 0;
  const Trial& last = trials_[static_cast<std::size_t>(made_ - 1)];
  is_guessing_ = last.end == last.expected_end;
  SetRandomState(last.end);
}

void TrialsAhead::Make(int t, int width) {
  Trial& trial = trials_[static_cast<std::size_t>(t)];
  const Abandonable poll(trial.is_unwanted);
  trial.end = kNoState;
  try {
    SetRandomState(trial.start);
    InitialClustering(trial.rows, nparts_, trial.part);
    trial.quality = RefineClusteringKWay(control_, trial.rows, nparts_, trial.part);
    trial.end = CurrentRandomState();
    if (trial.end != trial.expected_end) Unwant(t + 1, width);
  } catch (const Abandoned&) {
  } catch (...) {
    Unwant(0, width);
    throw;
  }
}

void TrialsAhead::Unwant(int first, int width) {
  for (int t = first; t < width; ++t) trials_[static_cast<std::size_t>(t)].is_unwanted = true;
}

}  // namespace molva
