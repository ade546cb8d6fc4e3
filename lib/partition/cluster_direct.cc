// SPDX-License-Identifier: MIT
#include "lib/partition/cluster_direct.h"

#include "lib/partition/reorder_clusters.h"
#include "lib/partition/trials.h"
#include "lib/support/random.h"

namespace molva {

void ClusterDirect(const Control& control, const PreparedMatrix& mat, int nparts, Span<int> part) {
  SeedGenerator(control.seed);
  PartitionMatKWay(control, mat, nparts, part);
  ReorderClusters(mat, nparts, part);
}

void PartitionMatKWay(const Control& control, const PreparedMatrix& mat, int nparts,
                      Span<int> part) {
  BestOfTrials(control, mat, nparts, part,
               {"PartitionMatKWay: bpart", "Clustering a matrix of size", "\t"});
}

}  // namespace molva
