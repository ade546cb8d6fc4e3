// SPDX-License-Identifier: MIT
//
// The result files.
#pragma once

#include "programs/io/matrix.h"
#include "programs/run_params.h"

namespace mardle {

// Writes one line per row: its cluster, and with params.zscores its internal and external z-score.
// The name is params.outputfile, or else "FILENAME.clustering.NCLUSTERS". Ends the run with
// "Problems in opening the clustering file: %s" when the file cannot be opened.
void WriteClustering(const RunParams& params, const Matrix& mat, const int* part);

}  // namespace mardle
