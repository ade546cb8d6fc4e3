// SPDX-License-Identifier: MIT
//
// Clusters a matrix file that is never held as a whole: a sample of its rows exactly, then all rows
// in passes over the file. What is kept are two labels for each row, the sample, and sums of
// clusters.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "programs/run_params.h"
#include "tools/run/matrix_blocks.h"

namespace mardle::tools {

struct SampleSettings {
  std::int64_t rows = 0;  // of the sample, more or less
  int passes = 12;        // over all rows, at most
};

struct SampledClusters {
  std::vector<int> part;  // the cluster of each row, -1 for none
  std::vector<std::int64_t> pwgts;
  std::vector<double> isim, isdev, esim, esdev;
  double value = 0;  // of the criterion
  int sampled_rows = 0;
  int passes = 0;
};

// Clusters the rows under the models and the criterion of params into params.nclusters clusters;
// the labels are those of molva.blocks in Python with the same settings. `say` is told of every
// pass. Ends the run on what the library ends it on, and when the sample has fewer rows than
// clusters.
SampledClusters ClusterBySample(const RunParams& params, const SampleSettings& settings,
                                const MatrixBlocks& blocks,
                                const std::function<void(const std::string&)>& say);

}  // namespace mardle::tools
