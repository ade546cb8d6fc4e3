// SPDX-License-Identifier: MIT
#include "lib/measure/tree_features.h"

#include "lib/support/vectors.h"
#include "lib/tree/tree_composites.h"

namespace molva {

void GetTreeFeatures(const PreparedMatrix& mat, int nparts, Span<const int> part,
                     Span<const int> ptree, const FeatureLists& internal,
                     const FeatureLists& external) {
  TreeComposites tree = SumBelowNodes(mat, nparts, part, ptree, "GetTreeFeatures: pwgts");
  Array<KeyValue> fcand = AllocKeyValues(mat.ncols, "GetTreeFeatures: fcand");
  for (int x = 0; x <= 2 * nparts - 2; ++x) {
    RankDescriptive(tree.centers[x], DotFloats(tree.centers[x], tree.centers[x]), fcand, x,
                    internal);
  }
  const ChildTable children(tree.ftree);
  for (int x = 2 * nparts - 2; x >= nparts; --x) {
    const int a = children.first(x);
    const int b = children.second(x);
    if (a < 0 || b < 0) continue;
    ScaleToUnitLength(tree.centers[a]);
    ScaleToUnitLength(tree.centers[b]);
    RankDiscriminating(tree.centers[b], tree.centers[a], fcand, b, external);
  }
}

}  // namespace molva
