// SPDX-License-Identifier: MIT
//
// The main table of a run.
#pragma once

#include <span>

#include "programs/io/engine_calls.h"
#include "programs/io/matrix.h"
#include "programs/run_params.h"

namespace mardle {

// Prints one line per cluster with its size and its internal and external similarity, and, when the
// rows carry two classes or more, its entropy, purity and class counts, under a heading with the
// criterion value and the solution's entropy and purity. With classes and the complete tree (2
// nrows parents; empty when none was built) it also prints how well each class is found in the
// tree.
void EvaluateClusters(const RunParams& params, const Matrix& mat, const Clusters& clusters,
                      std::span<const int> ptree, float crvalue);

}  // namespace mardle
