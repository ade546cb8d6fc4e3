// SPDX-License-Identifier: MIT
#include "lib/tree/cluster_rows.h"

#include "lib/matrix/similarities.h"
#include "lib/support/vectors.h"
#include "lib/tree/agglomerate.h"
#include "lib/tree/build_tree.h"

namespace molva {

void ClusterRows(const Control& control, PreparedCopy& copy, int nparts, Span<int> ptree,
                 Span<float> tsims) {
  const int n = copy.nrows;
  CheckItemCount(n);
  const auto nrows = static_cast<std::int64_t>(copy.rperm.size());
  Array<float> gains = AllocFloats(2 * nrows, "MOLVA_VA_Cluster: gains");
  Array<int> pptree = AllocInts(2 * nrows, "MOLVA_VA_Cluster: pptree");
  Array<int> rwgts = AllocIntsSet(nrows, 1, "MOLVA_VA_Cluster: rwgts");
  Array<float> ptsims = AllocFloats(2 * nrows, "MOLVA_VA_Cluster: ptsims");
  Array<float> smat = AllocFloats(static_cast<std::int64_t>(n) * n, "MOLVA_VA_Cluster: smat");
  ComputeRowSimilarities(control, *copy.mat, smat.data(), static_cast<std::size_t>(n));
  FreeMatrix(copy.mat);

  const std::int64_t nodes = 2 * std::int64_t{n};
  const TreeArrays tree{{pptree.data(), nodes}, {ptsims.data(), nodes}, {gains.data(), nodes}};
  MergeItems(control, {n, rwgts.data(), smat.data(), tree.ptree, tree.tsims, tree.gains}, nparts,
             copy.part());
  SetFloats(tsims, 0);
  TranslateTree(copy.rows(), tree, {ptree, tsims, {}});
}

}  // namespace molva
