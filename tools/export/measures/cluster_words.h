// SPDX-License-Identifier: MIT
//
// The columns that say what a cluster is about.
#pragma once

#include <optional>
#include <vector>

#include "programs/io/engine_calls.h"
#include "tools/export/measures/cluster_sums.h"

namespace mardle::exporting {

struct ClusterWord {
  int column = -1;
  std::optional<double> describes;    // its share of the similarity inside, among the descriptive
  std::optional<double> tells_apart;  // its share of the distance to the rest, among the others
  bool weaker = false;                // it tells the cluster apart by being weaker in it
};

// The words of a cluster: the descriptive ones, best first, then those that only tell it apart,
// best first. Weights that are no numbers, as those of a cluster of all rows, rank nothing.
using ClusterWords = std::vector<ClusterWord>;

// Up to nfeatures columns of each kind for every cluster, as the library ranks them.
std::vector<ClusterWords> FindClusterWords(const EngineInput& in, int nfeatures,
                                           const ClusterSums& sums);

// The columns by which a cluster is called, at most `count`: those that tell it apart by being
// strong in it, best first, and when they are too few those that describe it.
std::vector<int> NameOf(const ClusterWords& words, std::size_t count);

}  // namespace mardle::exporting
