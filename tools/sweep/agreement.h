// SPDX-License-Identifier: MIT
//
// How far two labellings of the same rows agree. Rows that have a label below 0 in either are left
// out; what the numbers of the labels are does not matter.
#pragma once

#include <span>

namespace mardle::tools {

// 1 when the labellings part the rows alike, about 0 when they agree as much as chance would have
// it: the share of pairs of rows that both keep together or both part, beyond that of chance.
double AdjustedRandIndex(std::span<const int> one, std::span<const int> other);

// The share of the rows that are in the largest class of their cluster.
double Purity(std::span<const int> clusters, std::span<const int> classes);

// Mutual information over the mean of the two entropies: 0 to 1.
double NormalizedMutualInformation(std::span<const int> one, std::span<const int> other);

}  // namespace mardle::tools
