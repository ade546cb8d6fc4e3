// SPDX-License-Identifier: MIT
//
// The sampled form of a run: a matrix file larger than memory, clustered in passes over it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/run/sampled_clusters.h"

namespace mardle::tools {

// Takes --sample, --sample=ROWS and --passes=N out of the arguments; nothing when there is no
// --sample. Throws std::invalid_argument on numbers that are none.
std::optional<SampleSettings> TakeSampleOptions(std::vector<std::string>& arguments);

// Clusters the file, writes the clustering file, prints the report and writes a record beside the
// clustering, which both say that this is the sampled form. Throws std::invalid_argument on options
// of mardle that this form does not have, and std::runtime_error with the messages of mardle.
void RunSampled(const std::vector<std::string>& arguments, SampleSettings settings);

}  // namespace mardle::tools
