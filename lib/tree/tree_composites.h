// SPDX-License-Identifier: MIT
#pragma once

#include "lib/matrix/prepared_matrix.h"
#include "lib/support/span.h"
#include "lib/support/tree_arrays.h"

namespace molva {

// A tree over clusters with the sum and the number of the rows below each node.
struct TreeComposites {
  Array<int> ftree;     // child table, 2 * nparts pairs
  Rows<float> centers;  // composite of each node
  Array<int> pwgts;     // rows below each node
};

// The start of both analyses of a tree: ptree over nparts clusters, 2 * nparts elements. The blocks
// "ShowTreeStats: ftree" and "GetClusterStats: centers" are named the same in both; sizes are
// counted into a block of the given name.
TreeComposites SumBelowNodes(const PreparedMatrix& mat, int nparts, Span<const int> part,
                             Span<const int> ptree, BlockName sizes_name);

}  // namespace molva
