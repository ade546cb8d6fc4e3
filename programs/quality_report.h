// SPDX-License-Identifier: MIT
//
// The main table of a run.
#pragma once

#include "programs/io/matrix.h"
#include "programs/run_params.h"

namespace mardle {

// Prints one line per cluster with its size and its internal and external similarity, and, when the
// rows carry two classes or more, its entropy, purity and class counts, under a heading with the
// criterion value and the solution's entropy and purity.
void EvaluateClusters(const RunParams& params, const Matrix& mat, const int* part, float crvalue);

}  // namespace mardle
