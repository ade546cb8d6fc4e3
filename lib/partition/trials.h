// SPDX-License-Identifier: MIT
//
// The best of several randomised clusterings.
#pragma once

#include "lib/matrix/control.h"
#include "lib/matrix/prepared_matrix.h"
#include "lib/support/span.h"

namespace molva {

// What differs between the two users of the trials.
struct TrialTexts {
  const char* block;    // the name of the best-so-far block
  const char* heading;  // starts the progress line, before the sizes
  const char* lead;     // stands before "Sim:" in the closing progress line
};

// Makes control.ntrials clusterings of `mat` into nparts clusters, each seeded at random and
// refined, and writes the best into `part`; a later trial replaces it only if strictly better. Ends
// the run when ntrials is below 1 or nparts is not between 1 and the number of rows. With debug bit
// 1 it prints a rule, "HEADING [nrows:%d ncols:%d nnz:%d]", and at the end "LEADSim: %.4f\n" with
// the best quality and a rule.
void BestOfTrials(const Control& control, const PreparedMatrix& mat, int nparts, Span<int> part,
                  const TrialTexts& texts);

// Ends the run unless 1 <= nparts <= nrows: every cluster needs a row to grow from.
void CheckClusterCount(int nparts, int nrows);

}  // namespace molva
