// SPDX-License-Identifier: MIT
#include "programs/feature_report.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "lib/support/alloc.h"
#include "lib/support/printed.h"

namespace mardle {
namespace {

using molva::AllocFloats;
using molva::AllocInts;

constexpr char kSeparator[] =
    "--------------------------------------------------------------------------------\n";

// Deviations and z-scores are measured with the rest and not printed.
struct ClusterNumbers {
  ClusterNumbers(int nclusters, int nrows, std::int64_t slots)
      : pwgts(AllocInts(nclusters, "ShowClusterFeatures: pwgts")),
        cintsim(AllocFloats(nclusters, "ShowClusterFeatures: cintsim")),
        cextsim(AllocFloats(nclusters, "ShowClusterFeatures: cextsim")),
        cintsdev(AllocFloats(nclusters, "ShowClusterFeatures: cintsdev")),
        izscores(AllocFloats(nrows, "ShowClusterFeatures: izscores")),
        cextsdev(AllocFloats(nclusters, "ShowClusterFeatures: cextsdev")),
        ezscores(AllocFloats(nrows, "ShowClusterFeatures: ezscores")),
        internalids(AllocInts(slots, "ShowClusterFeatures: internalids")),
        internalwgts(AllocFloats(slots, "ShowClusterFeatures: internalwgts")),
        externalids(AllocInts(slots, "ShowClusterFeatures: externalids")),
        externalwgts(AllocFloats(slots, "ShowClusterFeatures: externalwgts")) {}

  molva::Array<int> pwgts;
  molva::Array<float> cintsim, cextsim, cintsdev, izscores, cextsdev, ezscores;
  molva::Array<int> internalids;
  molva::Array<float> internalwgts;
  molva::Array<int> externalids;
  molva::Array<float> externalwgts;
};

ClusterNumbers NumbersOfClusters(const RunParams& params, const Matrix& mat,
                                 const Clusters& clusters) {
  const std::int64_t slots = std::int64_t{clusters.count} * std::max(params.nfeatures, 0);
  ClusterNumbers n(clusters.count, mat.nrows, slots);
  const EngineInput input = RunInput(params, mat, clusters);
  MeasureClusters(input, {.pwgts = n.pwgts,
                          .cintsim = n.cintsim,
                          .cintsdev = n.cintsdev,
                          .izscores = n.izscores,
                          .cextsim = n.cextsim,
                          .cextsdev = n.cextsdev,
                          .ezscores = n.ezscores});
  DescribeClusters(input, params.nfeatures,
                   {n.internalids, n.internalwgts, n.externalids, n.externalwgts});
  return n;
}

// The slots of one list. Only a filled last slot ends the line without a comma.
void PrintList(const Matrix& mat, int nfeatures, const int* ids, const float* weights) {
  for (int slot = 0; slot < nfeatures; ++slot) {
    if (ids[slot] == -1) continue;
    std::printf(" %s %4.1f%%%s", mat.clabels[ids[slot]], 100.0 * molva::Printed(weights[slot]),
                slot < nfeatures - 1 ? "," : "");
  }
  std::printf("\n");
}

}  // namespace

void ShowClusterFeatures(const RunParams& params, const Matrix& mat, const Clusters& clusters) {
  const ClusterNumbers n = NumbersOfClusters(params, mat, clusters);
  std::printf("%s%d-way clustering solution - Descriptive & Discriminating Features...\n%s",
              kSeparator, clusters.count, kSeparator);
  for (int k = 0; k < clusters.count; ++k) {
    const std::int64_t begin = std::int64_t{k} * std::max(params.nfeatures, 0);
    std::printf("Cluster %3d, Size: %5d, ISim: %.3f, ESim: %.3f\n", k, n.pwgts[k],
                molva::Printed(n.cintsim[k]), molva::Printed(n.cextsim[k]));
    std::printf("      Descriptive: ");
    PrintList(mat, params.nfeatures, n.internalids.get() + begin, n.internalwgts.get() + begin);
    std::printf("   Discriminating: ");
    PrintList(mat, params.nfeatures, n.externalids.get() + begin, n.externalwgts.get() + begin);
    if (k < clusters.count - 1) std::printf("\n");
  }
  std::printf("%s", kSeparator);
}

}  // namespace mardle
