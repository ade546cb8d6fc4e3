// SPDX-License-Identifier: MIT
//
// The work of mardle-cluster: import, clustering, trees, record and page, in a folder that appears
// when all is there.
#pragma once

#include "tools/cluster/request.h"

namespace mardle::tools {

// Returns the status to end with. Throws FileError and std::runtime_error; no folder is left then.
int RunClustering(const ClusterRequest& request);

// Whether the file begins as matrices of mardle do: two or three whole numbers and nothing else in
// its first line; `numbers` is how many.
bool LooksLikeMatrix(const std::string& path, int& numbers);

}  // namespace mardle::tools
