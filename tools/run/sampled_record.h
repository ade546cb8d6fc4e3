// SPDX-License-Identifier: MIT
//
// The record beside the clustering file of the sampled form.
#pragma once

#include <string>
#include <vector>

#include "programs/run_params.h"
#include "tools/run/sampled_clusters.h"

namespace mardle::tools {

// Writes it; reads the matrix once more, for its hash. The arguments are the options of mardle, in
// full, the matrix and the number of clusters. Throws FileError.
void WriteSampledRecord(const std::vector<std::string>& arguments, const RunParams& params,
                        const SampleSettings& settings, const SampledClusters& found);

}  // namespace mardle::tools
