// SPDX-License-Identifier: MIT
#include "lib/measure/tree_stats.h"

#include <algorithm>

#include "lib/matrix/composites.h"
#include "lib/matrix/control.h"
#include "lib/matrix/prepare.h"
#include "lib/molva.h"
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

void GetTreeStats(const PreparedMatrix& mat, int nparts, std::span<const int> part,
                  std::span<const int> ptree, std::span<int> pwgts, std::span<float> isims,
                  std::span<float> xsims) {
  TreeComposites tree = SumBelowNodes(mat, nparts, part, ptree, "GetClusterStats: centers");
  std::copy(tree.pwgts.begin(), tree.pwgts.end(), pwgts.begin());
  SetFloats(xsims, 0);
  const ChildTable children(tree.ftree);
  for (int x = 0; x <= 2 * nparts - 2; ++x) {
    isims[static_cast<std::size_t>(x)] = AverageSimilarity(tree, x, x);
    const int a = children.first(x);
    const int b = children.second(x);
    if (a < 0 || b < 0) continue;
    const float similarity = AverageSimilarity(tree, a, b);
    xsims[static_cast<std::size_t>(a)] = xsims[static_cast<std::size_t>(b)] = similarity;
  }
}

}  // namespace molva

void MOLVA_V_GetTreeStats(int nrows, int ncols, const int* rowptr, const int* rowind,
                          const float* rowval, int simfun, int rowmodel, int colmodel,
                          float colprune, int nparts, const int* part, const int* ptree, int* pwgts,
                          float* isims, float* xsims) {
  using namespace molva;
  const Control control{
      .simfun = simfun, .rowmodel = rowmodel, .colmodel = colmodel, .prune = colprune};
  PreparedCopy copy =
      MakePreparedCopy(control, {nrows, ncols, rowptr, rowind, rowval}, "MOLVA_V_GetTreeStats");
  MapPartIn(copy, part);
  nparts = std::max(nparts, 0);
  const std::size_t nodes = 2 * static_cast<std::size_t>(nparts);
  GetTreeStats(*copy.mat, nparts, copy.part(), {ptree, nodes}, {pwgts, nodes}, {isims, nodes},
               {xsims, nodes});
}
