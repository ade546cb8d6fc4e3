// SPDX-License-Identifier: MIT
//
// How well clusters agree with classes: numbers only.
#pragma once

#include <cstdint>
#include <span>

#include "lib/support/alloc.h"

namespace mardle {

// Counts the rows of each class in each cluster and, where `ocldist` is not empty, in all clusters;
// rows without a cluster are left out. Returns the number of rows counted. Counts begin as they
// are.
std::int64_t CountClasses(std::span<const int> classes, const int* part,
                          molva::Rows<int>& classdist, std::span<int> ocldist);

// The entropy of one cluster from its class distribution and its size, between 0 (one class only)
// and 1: the sum over its classes of -(n/size) log2(n/size), divided by log2(nclasses). `total` and
// `ocldist`, the counts of all clustered rows, are not used.
float ComputeEntropy(int nclasses, std::int64_t total, std::span<const int> ocldist, int size,
                     std::span<const int> dist);

// The share of the cluster's largest class.
float ComputePurity(int nclasses, std::int64_t total, std::span<const int> ocldist, int size,
                    std::span<const int> dist);

// Each class's best F-score over all nodes of the complete tree of nrows leaves: with recall and
// precision of a node for the class, 2 R P / (R + P), 0 where they share no row. Rows whose parent
// is -1 are not in the tree. `ocldist` counts the rows of each class.
void ComputeFScores(int nclasses, int nrows, std::span<const int> classes,
                    std::span<const int> ocldist, std::span<const int> ptree,
                    std::span<float> fscores);

// The average of values (of clusters, of classes) weighted by sizes: the sum of
// sizes[c] values[c] / total, single precision after every term.
float WeightedAverage(std::span<const int> sizes, std::span<const float> values,
                      std::int64_t total);

}  // namespace mardle
