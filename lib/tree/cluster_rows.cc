// SPDX-License-Identifier: MIT
//
// Agglomerative clustering of the rows themselves: one tree over all rows, cut into clusters.
#include <algorithm>

#include "lib/matrix/prepare.h"
#include "lib/matrix/similarities.h"
#include "lib/molva.h"
#include "lib/support/vectors.h"
#include "lib/tree/agglomerate.h"
#include "lib/tree/build_tree.h"

void MOLVA_VA_Cluster(int nrows, int ncols, const int* rowptr, const int* rowind,
                      const float* rowval, int simfun, int crfun, int rowmodel, int colmodel,
                      float colprune, int dbglvl, int nparts, int* part, int* ptree, float* tsims) {
  using namespace molva;
  const Control control{.simfun = simfun,
                        .crfun = crfun,
                        .rowmodel = rowmodel,
                        .colmodel = colmodel,
                        .prune = colprune,
                        .dbglvl = dbglvl};
  PreparedCopy copy =
      MakePreparedCopy(control, {nrows, ncols, rowptr, rowind, rowval}, "MOLVA_VA_Cluster");
  const int n = copy.mat->nrows;
  CheckItemCount(n);
  const std::int64_t nodes = 2 * static_cast<std::int64_t>(copy.rperm.size());
  Array<float> gains = AllocFloats(nodes, "MOLVA_VA_Cluster: gains");
  Array<int> pptree = AllocInts(nodes, "MOLVA_VA_Cluster: pptree");
  Array<int> rwgts = AllocIntsSet(nrows, 1, "MOLVA_VA_Cluster: rwgts");
  Array<float> ptsims = AllocFloats(nodes, "MOLVA_VA_Cluster: ptsims");
  Array<float> smat = AllocFloats(static_cast<std::int64_t>(n) * n, "MOLVA_VA_Cluster: smat");
  ComputeRowSimilarities(control, *copy.mat, smat.data(), static_cast<std::size_t>(n));

  const std::span<int> ppart = copy.part();
  FreeMatrix(copy.mat);
  const std::size_t prepared = 2 * ppart.size();
  const TreeArrays tree{
      {pptree.data(), prepared}, {ptsims.data(), prepared}, {gains.data(), prepared}};
  MergeItems(control, {n, rwgts.data(), smat.data(), tree.ptree, tree.tsims, tree.gains}, nparts,
             ppart);

  const auto written = static_cast<std::size_t>(nodes);
  SetFloats({tsims, written}, 0);
  TranslateTree({copy.rperm.get(), ppart.size()}, tree, {{ptree, written}, {tsims, written}, {}});
  std::fill_n(part, copy.rperm.size(), -1);
  for (std::size_t i = 0; i < ppart.size(); ++i) part[copy.rperm[i]] = ppart[i];
}
