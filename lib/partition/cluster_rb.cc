// SPDX-License-Identifier: MIT
#include "lib/partition/cluster_rb.h"

#include <algorithm>

#include "lib/matrix/submatrix.h"
#include "lib/partition/refine.h"
#include "lib/partition/reorder_clusters.h"
#include "lib/partition/trials.h"
#include "lib/support/progress.h"
#include "lib/support/random.h"
#include "lib/support/vectors.h"

namespace molva {
namespace {

// Half 0 of cluster c keeps its number and half 1 takes the new one; `halves` has one element per
// row of the cluster, in row order.
void ApplyHalves(int c, int new_cluster, Span<const int> halves, Span<int> part) {
  auto half = halves.begin();
  for (int& k : part) {
    if (k == c && *half++ == 1) k = new_cluster;
  }
}

void Bisect(const Control& control, const PreparedMatrix& mat, int c, int new_cluster,
            Span<int> part) {
  // The first cluster is the whole, which need not be copied to be split.
  if (new_cluster == 1 && EveryColumnOccurs(mat)) return BisectKMeans(control, mat, part);
  const Owned<PreparedMatrix> cluster = Cluster2Matrix(mat, c, part);
  Array<int> cpart = AllocInts(cluster->nrows, "PartitionMatRecursive: cpart");
  BisectKMeans(control, *cluster, cpart);
  ApplyHalves(c, new_cluster, cpart, part);
}

}  // namespace

void ClusterRB(const Control& control, const PreparedMatrix& mat, int nparts, bool refine,
               Span<int> part) {
  SeedGenerator(control.seed);
  PartitionMatRecursive(control, mat, nparts, part);
  if (refine) RefineClusteringKWay(control, mat, nparts, part);
  ReorderClusters(mat, nparts, part);
}

void PartitionMatRecursive(const Control& control, const PreparedMatrix& mat, int nparts,
                           Span<int> part) {
  // A single cluster needs no seed, so it may even be empty.
  if (nparts != 1) CheckClusterCount(nparts, mat.nrows);
  std::fill(part.begin(), part.end(), 0);
  for (int ncl = 1; ncl < nparts; ++ncl) {
    Bisect(control, mat, SelectACluster(ncl, part), ncl, part);
    ReportBisection(ncl, nparts - 1);
  }
}

int SelectACluster(int ncl, Span<const int> part) {
  Array<int> pwgts = AllocIntsSet(ncl, 0, "SelectACluster:pwgts ");
  for (const int k : part) ++pwgts[k];
  return ArgMaxInt(pwgts);
}

void BisectKMeans(const Control& control, const PreparedMatrix& mat, Span<int> part) {
  // The blank before "Sim" differs from the tab of direct clustering, and both stay.
  BestOfTrials(control, mat, 2, part, {"BisectKMeans: bpart", "Bisecting a cluster of size", " "});
}

}  // namespace molva
