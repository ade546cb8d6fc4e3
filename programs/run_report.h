// SPDX-License-Identifier: MIT
//
// The frame of the console report.
#pragma once

#include "programs/io/matrix.h"
#include "programs/run_params.h"

namespace mardle {

// Prints the banner, the matrix, the options with the number of clusters to be made, and the
// heading under which the solution follows.
void PrintRunInfo(const RunParams& params, const Matrix& mat, int nclusters);

// Prints the three timers and the closing line; returns the length of that line, newline included.
int PrintTimingInfo(const RunTimers& timers);

}  // namespace mardle
