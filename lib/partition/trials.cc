// SPDX-License-Identifier: MIT
#include "lib/partition/trials.h"

#include <algorithm>
#include <cstdio>

#include "lib/partition/trials_ahead.h"
#include "lib/support/fatal.h"
#include "lib/support/printed.h"
#include "lib/support/progress.h"

namespace molva {
namespace {

constexpr char kRule[] =
    "------------------------------------------------------------------------------\n";

void ReportStart(const Control& control, const PreparedMatrix& mat, const char* heading) {
  if (HasDebugBit(control, MOLVA_DBG_CLUSTERING)) {
    std::printf("\n%s%s [nrows:%d ncols:%d nnz:%d]", kRule, heading, mat.nrows, mat.ncols,
                EntryCount(mat));
    std::fflush(stdout);
  }
  if (HasDebugBit(control, MOLVA_DBG_REFINEMENT)) std::printf("\n");
}

void ReportEnd(const Control& control, const char* lead, float quality) {
  if (!HasDebugBit(control, MOLVA_DBG_CLUSTERING)) return;
  std::printf("%sSim: %.4f\n%s", lead, Printed(quality), kRule);
}

}  // namespace

void BestOfTrials(const Control& control, const PreparedMatrix& mat, int nparts, Span<int> part,
                  const TrialTexts& texts) {
  CheckClusterCount(nparts, mat.nrows);
  if (control.ntrials < 1) {
    FatalError("At least one trial is needed to find a clustering! NTrials=%d\n", control.ntrials);
  }
  ReportStart(control, mat, texts.heading);
  TrialsAhead trials(control, mat, nparts, texts.block);
  float best = 0;
  for (int trial = 0; trial < control.ntrials; ++trial) {
    const TrialsAhead::Outcome outcome = trials.Next(control.ntrials - trial);
    if (trial == 0 || outcome.quality > best) {
      best = outcome.quality;
      std::copy(outcome.part.begin(), outcome.part.end(), part.begin());
    }
    ReportTrial(trial + 1, control.ntrials);
  }
  ReportEnd(control, texts.lead, best);
}

void CheckClusterCount(int nparts, int nrows) {
  if (nparts < 1 || nparts > nrows) {
    FatalError("Cannot make %d clusters out of %d rows with entries!\n", nparts, nrows);
  }
}

}  // namespace molva
