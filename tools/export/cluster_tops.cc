// SPDX-License-Identifier: MIT
#include "tools/export/cluster_tops.h"

#include "lib/support/span.h"
#include "tools/text/file_error.h"

namespace mardle::exporting {
namespace {

constexpr int kMixed = -2;

// The cluster of all rows below each node, kMixed where they are of several.
std::vector<int> ClustersBelow(const Tree& tree, molva::Span<const int> part) {
  std::vector<int> clusters(tree.parent.size(), kMixed);
  const molva::Span<int> of(clusters);
  for (const int leaf : tree.Leaves()) of[leaf] = part[leaf];
  for (int x = tree.nleaves; x <= tree.root; ++x) {
    const auto [first, second] = tree.ChildrenOf(x);
    if (of[first] == of[second]) of[x] = of[first];
  }
  return clusters;
}

}  // namespace

std::vector<int> ClusterTops(const Tree& tree, const Clustering& clustering,
                             const std::string& path) {
  const std::vector<int> clusters = ClustersBelow(tree, clustering.part);
  const std::vector<int> counts = LeafCounts(tree);
  std::vector<int> sizes(static_cast<std::size_t>(clustering.nclusters), 0);
  for (const int k : clustering.part) {
    if (k >= 0) ++sizes[static_cast<std::size_t>(k)];
  }
  std::vector<int> tops(sizes.size(), -1);
  for (std::size_t x = 0; x <= static_cast<std::size_t>(tree.root); ++x) {
    if (clusters[x] < 0) continue;
    const auto k = static_cast<std::size_t>(clusters[x]);
    if (counts[x] == sizes[k]) tops[k] = static_cast<int>(x);
  }
  for (std::size_t k = 0; k < tops.size(); ++k) {
    if (sizes[k] == 0 || tops[k] >= 0) continue;
    throw tools::FileError({path, 0}, "the tree does not keep the rows of cluster " +
                                          std::to_string(k) +
                                          " together, so it is not of this clustering");
  }
  return tops;
}

}  // namespace mardle::exporting
