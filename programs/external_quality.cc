// SPDX-License-Identifier: MIT
#include "programs/external_quality.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "lib/support/tree_arrays.h"
#include "lib/support/vectors.h"
#include "lib/support/wide.h"

namespace mardle {

using molva::Wide;

std::int64_t CountClasses(std::span<const int> classes, const int* part,
                          molva::Rows<int>& classdist, std::span<int> ocldist) {
  const auto nclusters = static_cast<std::int64_t>(classdist.size());
  std::int64_t total = 0;
  for (std::size_t i = 0; i < classes.size(); ++i) {
    if (part[i] < 0 || part[i] >= nclusters) continue;
    const auto k = static_cast<std::size_t>(classes[i]);
    ++classdist[part[i]][k];
    if (!ocldist.empty()) ++ocldist[k];
    ++total;
  }
  return total;
}

float ComputeEntropy(int nclasses, std::int64_t /*total*/, std::span<const int> /*ocldist*/,
                     int size, std::span<const int> dist) {
  float entropy = 0;
  for (const int count : dist) {
    if (count <= 0) continue;
    const Wide share = static_cast<Wide>(count) / size;
    entropy = static_cast<float>(entropy - share * molva::Log2(share));
  }
  return static_cast<float>(entropy / molva::Log2(static_cast<Wide>(nclasses)));
}

float ComputePurity(int /*nclasses*/, std::int64_t /*total*/, std::span<const int> /*ocldist*/,
                    int size, std::span<const int> dist) {
  const int largest = dist[static_cast<std::size_t>(molva::ArgMaxInt(dist))];
  return static_cast<float>(static_cast<Wide>(largest) / size);
}

namespace {

float FScore(int common, int class_size, std::int64_t node_size) {
  if (common <= 0) return 0;
  const Wide recall = static_cast<float>(static_cast<Wide>(common) / class_size);
  const Wide precision = static_cast<float>(static_cast<Wide>(common) / node_size);
  return static_cast<float>(2 * recall * precision / (recall + precision));
}

}  // namespace

void ComputeFScores(int nclasses, int nrows, std::span<const int> classes,
                    std::span<const int> ocldist, std::span<const int> ptree,
                    std::span<float> fscores) {
  molva::Rows<int> tclassdist =
      molva::AllocIntMatrix(2 * std::int64_t{nrows}, nclasses, 0, "ComputeFScores: tclassdist");
  for (std::size_t i = 0; i < classes.size(); ++i) {
    if (ptree[i] != -1) tclassdist[i][static_cast<std::size_t>(classes[i])] = 1;
  }
  molva::SetFloats(fscores, 0);
  // Parents are numbered above their children, so a node is complete when it is met.
  for (std::size_t x = 0; x + 1 < tclassdist.size(); ++x) {
    const std::span<const int> counts = tclassdist[x];
    const auto node_size = std::accumulate(counts.begin(), counts.end(), std::int64_t{0});
    if (node_size == 0) continue;
    for (std::size_t k = 0; k < fscores.size(); ++k) {
      fscores[k] = std::max(fscores[k], FScore(counts[k], ocldist[k], node_size));
    }
    if (!molva::HasParent(ptree, x)) continue;
    const std::span<int> parent = tclassdist[ptree[x]];
    for (std::size_t k = 0; k < counts.size(); ++k) parent[k] += counts[k];
  }
}

float WeightedAverage(std::span<const int> sizes, std::span<const float> values,
                      std::int64_t total) {
  float sum = 0;
  for (std::size_t c = 0; c < sizes.size(); ++c) {
    sum = static_cast<float>(sum +
                             static_cast<Wide>(sizes[c]) * values[c] / static_cast<Wide>(total));
  }
  return sum;
}

}  // namespace mardle
