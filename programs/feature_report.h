// SPDX-License-Identifier: MIT
#pragma once

#include "programs/io/engine_calls.h"
#include "programs/io/matrix.h"
#include "programs/run_params.h"

namespace mardle {

// Prints one block per cluster: its size and similarities, the columns that describe it and those
// that tell it from the rest, each with its share in percent.
void ShowClusterFeatures(const RunParams& params, const Matrix& mat, const Clusters& clusters);

}  // namespace mardle
