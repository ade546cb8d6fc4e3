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

// Fewer rows and clusters mostly come to rest before their last pass, so the first guess waits for
// the first trial.
constexpr std::int64_t kRestless = 20000;

}  // namespace

TrialsAhead::TrialsAhead(const Control& control, const PreparedMatrix& mat, int nparts,
                         BlockName name)
    : control_(control),
      nparts_(nparts),
      name_(name),
      trials_(TeamSize(), name),
      is_guessing_(std::int64_t{mat.nrows} * nparts >= kRestless) {
  AddTrial(RowRecords(mat, name));
}

TrialsAhead::~TrialsAhead() {
  for (int t = 0; t < count_; ++t) Owned<Trial>(trials_[t]).reset();
}

void TrialsAhead::AddTrial(const RowRecords& measured) {
  trials_[count_] = AllocRecord<Trial>(name_, measured, name_).release();
  ++count_;
}

TrialsAhead::Outcome TrialsAhead::Next(int left) {
  if (taken_ == made_) MakeRound(Width(left));
  const Trial& trial = At(taken_++);
  return {{trial.part.data(), trial.part.size()}, trial.quality};
}

// What a trial prints has to come in order.
int TrialsAhead::Width(int left) const {
  if (!is_guessing_ || HasDebugBit(control_, MOLVA_DBG_REFINEMENT)) return 1;
  return std::min(TeamSize(), left);
}

void TrialsAhead::MakeRound(int width) {
  while (count_ < width) AddTrial(At(0).rows);
  RandomState state = CurrentRandomState();
  const std::int64_t permutations =
      std::int64_t{kSeedingPermutations} + std::max(control_.niter, 0);
  for (int t = 0; t < width; ++t) {
    Trial& trial = At(t);
    trial.start = state;
    state = AfterPermutations(state, trial.rows.count(), permutations);
    trial.expected_end = state;
    trial.is_unwanted = false;
  }
  ShareOutOne(width, [&](std::int64_t t) { Make(static_cast<int>(t), width); });
  // A trial counts if it started where the one before, which counts, has ended.
  made_ = 1;
  while (made_ < width && At(made_).start == At(made_ - 1).end) ++made_;
  taken_ = 0;
  const Trial& last = At(made_ - 1);
  is_guessing_ = last.end == last.expected_end;
  SetRandomState(last.end);
}

void TrialsAhead::Make(int t, int width) {
  Trial& trial = At(t);
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
  for (int t = first; t < width; ++t) At(t).is_unwanted = true;
}

}  // namespace molva
