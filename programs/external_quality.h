// SPDX-License-Identifier: MIT
//
// How well clusters agree with classes: numbers only.
#pragma once

#include <cstdint>
#include <span>

namespace mardle {

// The entropy of one cluster from its class distribution and its size, between 0 (one class only)
// and 1: the sum over its classes of -(n/size) log2(n/size), divided by log2(nclasses). `total` and
// `ocldist`, the counts of all clustered rows, are not used.
float ComputeEntropy(int nclasses, std::int64_t total, std::span<const int> ocldist, int size,
                     std::span<const int> dist);

// The share of the cluster's largest class.
float ComputePurity(int nclasses, std::int64_t total, std::span<const int> ocldist, int size,
                    std::span<const int> dist);

// The average of per-cluster values weighted by cluster size: the sum of pwgts[c] values[c] / total
// in cluster order, single precision after every term.
float WeightedByCluster(std::span<const int> pwgts, std::span<const float> values,
                        std::int64_t total);

}  // namespace mardle
