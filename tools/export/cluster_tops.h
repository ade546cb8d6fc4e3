// SPDX-License-Identifier: MIT
//
// Where the clusters are in a complete tree.
#pragma once

#include <string>
#include <vector>

#include "tools/export/clustering.h"
#include "tools/export/tree.h"

namespace mardle::exporting {

// The node below which the rows of each cluster stand and no others; -1 for a cluster without rows.
// Fails when a cluster has no such node, as the tree is then not of this clustering; `path` is the
// tree's.
std::vector<int> ClusterTops(const Tree& tree, const Clustering& clustering,
                             const std::string& path);

}  // namespace mardle::exporting
