// SPDX-License-Identifier: MIT
#include "programs/external_quality.h"

#include <algorithm>
#include <cmath>

#include "lib/support/vectors.h"
#include "lib/support/wide.h"

namespace mardle {

using molva::Wide;

float ComputeEntropy(int nclasses, std::int64_t /*total*/, std::span<const int> /*ocldist*/,
                     int size, std::span<const int> dist) {
  float entropy = 0;
  for (const int count : dist) {
    if (count <= 0) continue;
    const Wide share = static_cast<Wide>(count) / size;
    entropy = static_cast<float>(entropy - share * std::log2(share));
  }
  return static_cast<float>(entropy / std::log2(static_cast<Wide>(nclasses)));
}

float ComputePurity(int /*nclasses*/, std::int64_t /*total*/, std::span<const int> /*ocldist*/,
                    int size, std::span<const int> dist) {
  const int largest = dist[static_cast<std::size_t>(molva::ArgMaxInt(dist))];
  return static_cast<float>(static_cast<Wide>(largest) / size);
}

float WeightedByCluster(std::span<const int> pwgts, std::span<const float> values,
                        std::int64_t total) {
  float sum = 0;
  for (std::size_t c = 0; c < pwgts.size(); ++c) {
    sum = static_cast<float>(sum +
                             static_cast<Wide>(pwgts[c]) * values[c] / static_cast<Wide>(total));
  }
  return sum;
}

}  // namespace mardle
