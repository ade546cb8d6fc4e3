// SPDX-License-Identifier: MIT
#include "lib/measure/tree_features.h"

#include <algorithm>

#include "lib/matrix/control.h"
#include "lib/matrix/prepare.h"
#include "lib/molva.h"
#include "lib/support/vectors.h"
#include "lib/tree/tree_composites.h"

namespace molva {

void GetTreeFeatures(const PreparedMatrix& mat, int nparts, std::span<const int> part,
                     std::span<const int> ptree, const FeatureLists& internal,
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

void MOLVA_V_GetTreeFeatures(int nrows, int ncols, const int* rowptr, const int* rowind,
                             const float* rowval, int simfun, int rowmodel, int colmodel,
                             float colprune, int nparts, const int* part, const int* ptree,
                             int nfeatures, int* internalids, float* internalwgts, int* externalids,
                             float* externalwgts) {
  using namespace molva;
  const Control control{
      .simfun = simfun, .rowmodel = rowmodel, .colmodel = colmodel, .prune = colprune};
  PreparedCopy copy =
      MakePreparedCopy(control, {nrows, ncols, rowptr, rowind, rowval}, "MOLVA_V_GetTreeFeatures");
  MapPartIn(copy, part);
  nparts = std::max(nparts, 0);
  const std::size_t nodes = 2 * static_cast<std::size_t>(nparts);
  GetTreeFeatures(*copy.mat, nparts, copy.part(), {ptree, nodes},
                  {copy.cperm, nfeatures, internalids, internalwgts},
                  {copy.cperm, nfeatures, externalids, externalwgts});
}
