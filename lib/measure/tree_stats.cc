// SPDX-License-Identifier: MIT
#include "lib/measure/tree_stats.h"

#include <algorithm>

#include "lib/matrix/composites.h"
#include "lib/support/vectors.h"
#include "lib/support/wide.h"
#include "lib/tree/tree_composites.h"

namespace molva {
namespace {

// The average similarity between the rows below two nodes, or below one and the same.
float AverageSimilarity(const TreeComposites& tree, int x, int y) {
  const Wide product = DotFloats(tree.centers[x], tree.centers[y]);
  return static_cast<float>(product /
                            static_cast<Wide>(CountProduct(tree.pwgts[x], tree.pwgts[y])));
}

}  // namespace

void GetTreeStats(const PreparedMatrix& mat, int nparts, Span<const int> part,
                  Span<const int> ptree, Span<int> pwgts, Span<float> isims, Span<float> xsims) {
  TreeComposites tree = SumBelowNodes(mat, nparts, part, ptree, "GetClusterStats: centers");
  std::copy(tree.pwgts.begin(), tree.pwgts.end(), pwgts.begin());
  SetFloats(xsims, 0);
  const ChildTable children(tree.ftree);
  for (int x = 0; x <= 2 * nparts - 2; ++x) {
    isims[x] = AverageSimilarity(tree, x, x);
    const int a = children.first(x);
    const int b = children.second(x);
    if (a < 0 || b < 0) continue;
    const float similarity = AverageSimilarity(tree, a, b);
    xsims[a] = xsims[b] = similarity;
  }
}

}  // namespace molva
