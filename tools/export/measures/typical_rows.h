// SPDX-License-Identifier: MIT
//
// The rows that show best what a cluster is like.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "tools/export/measures/cluster_rows.h"

namespace mardle::exporting {

// Up to `count` rows of cluster k that are most similar to its rows, most similar first: those with
// the largest internal z-scores. Equal rows stand in the order of the matrix, and scores that are
// no numbers, as those of a single row, come last.
std::vector<int> TypicalRows(const ClusterRows& rows, std::span<const float> izscores, int k,
                             std::size_t count);

}  // namespace mardle::exporting
