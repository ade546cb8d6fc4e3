// SPDX-License-Identifier: MIT
#include "lib/tree/tree_composites.h"

#include <algorithm>

#include "lib/matrix/composites.h"

namespace molva {

TreeComposites SumBelowNodes(const PreparedMatrix& mat, int nparts, Span<const int> part,
                             Span<const int> ptree, BlockName sizes_name) {
  const std::int64_t nodes = 2 * std::int64_t{nparts};
  TreeComposites tree{MakeChildTable(ptree, "ShowTreeStats: ftree"),
                      AllocFloatMatrix(nodes, mat.ncols, 0, "GetClusterStats: centers"),
                      AllocIntsSet(nodes, 0, sizes_name)};
  const Span<int> clusters(tree.pwgts.data(), std::max(nparts, 0));
  AccumulateComposites(mat, part, clusters, tree.centers, {});
  AddUpwards<int>(ptree, tree.pwgts);
  for (std::size_t x = 0; x + 2 < ptree.size(); ++x) {
    if (!HasParent(ptree, x)) continue;
    const Span<float> parent = tree.centers[ptree[x]];
    const Span<const float> own = tree.centers[x];
    for (std::size_t j = 0; j < own.size(); ++j) parent[j] += own[j];
  }
  return tree;
}

}  // namespace molva
