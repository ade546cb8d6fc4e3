// SPDX-License-Identifier: MIT
#include "lib/partition/cluster_direct.h"

#include "lib/matrix/prepare.h"
#include "lib/molva.h"
#include "lib/partition/reorder_clusters.h"
#include "lib/partition/trials.h"
#include "lib/support/random.h"

namespace molva {

void PartitionMatKWay(const Control& control, const PreparedMatrix& mat, int nparts,
                      std::span<int> part) {
  BestOfTrials(control, mat, nparts, part,
               {"PartitionMatKWay: bpart", "Clustering a matrix of size", "\t"});
}

}  // namespace molva

void MOLVA_VP_ClusterDirect(int nrows, int ncols, const int* rowptr, const int* rowind,
                            const float* rowval, int simfun, int crfun, int rowmodel, int colmodel,
                            float prune, int ntrials, int niter, int seed, int dbglvl, int nparts,
                            int* part) {
  using namespace molva;
  const Control control{.simfun = simfun,
                        .crfun = crfun,
                        .rowmodel = rowmodel,
                        .colmodel = colmodel,
                        .prune = prune,
                        .ntrials = ntrials,
                        .niter = niter,
                        .dbglvl = dbglvl,
                        .seed = seed};
  PreparedCopy copy =
      MakePreparedCopy(control, {nrows, ncols, rowptr, rowind, rowval}, "MOLVA_VP_ClusterDirect");
  SeedGenerator(seed);
  PartitionMatKWay(control, *copy.mat, nparts, copy.part());
  ReorderClusters(*copy.mat, nparts, copy.part());
  MapPartOut(copy, part);
}
