// SPDX-License-Identifier: MIT
//
// The same rows clustered into several numbers of clusters, with several seeds each.
#pragma once

#include <vector>

#include "programs/io/matrix.h"
#include "programs/run_params.h"
#include "tools/cluster/stage_line.h"
#include "tools/sweep/recommendation.h"
#include "tools/sweep/sweep_table.h"

namespace mardle::tools {

struct Sweep {
  int crfun = 0;
  std::vector<SweepRow> rows;
  Recommendation recommendation;
};

// Clusters as the parameters say, but into the numbers, which rise and begin with 2 or more, and
// with the seeds from 1 to nseeds, which is 2 or more. The curve of a sweep from 2 on begins with
// one cluster. Throws std::runtime_error with the messages of the library.
Sweep SweepNumbers(RunParams& params, const Matrix& mat, const std::vector<int>& numbers,
                   int nseeds, StageLine& line);

}  // namespace mardle::tools
