// SPDX-License-Identifier: MIT
#include "tools/sweep/agreement.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <utility>

namespace mardle::tools {
namespace {

// Rows by both labels, and by each.
struct PairCounts {
  PairCounts(std::span<const int> one, std::span<const int> other);

  std::map<std::pair<int, int>, double> both;
  std::map<int, double> ones;
  std::map<int, double> others;
  double rows = 0;
};

PairCounts::PairCounts(std::span<const int> one, std::span<const int> other) {
  for (std::size_t i = 0; i < one.size(); ++i) {
    if (one[i] < 0 || other[i] < 0) continue;
    ++both[{one[i], other[i]}];
    ++ones[one[i]];
    ++others[other[i]];
    ++rows;
  }
}

// The pairs of rows that stand together in a part, over all parts.
template <typename Parts>
double PairsWithin(const Parts& parts) {
  double pairs = 0;
  for (const auto& [label, count] : parts) pairs += count * (count - 1) / 2;
  return pairs;
}

double Entropy(const std::map<int, double>& parts, double rows) {
  double entropy = 0;
  for (const auto& [label, count] : parts) entropy -= count / rows * std::log(count / rows);
  return entropy;
}

}  // namespace

double AdjustedRandIndex(std::span<const int> one, std::span<const int> other) {
  const PairCounts counts(one, other);
  const double together = PairsWithin(counts.both);
  const double in_one = PairsWithin(counts.ones);
  const double in_other = PairsWithin(counts.others);
  const double pairs = counts.rows * (counts.rows - 1) / 2;
  // Nobody disagrees about any pair; chance would have it so when all rows or none are together.
  if (together == in_one && together == in_other) return 1;
  const double chance = in_one / pairs * in_other;
  return (together - chance) / ((in_one + in_other) / 2 - chance);
}

double Purity(std::span<const int> clusters, std::span<const int> classes) {
  const PairCounts counts(clusters, classes);
  std::map<int, double> largest;
  for (const auto& [labels, count] : counts.both) {
    double& most = largest[labels.first];
    most = std::max(most, count);
  }
  double rows = 0;
  for (const auto& [cluster, count] : largest) rows += count;
  return rows / counts.rows;
}

double NormalizedMutualInformation(std::span<const int> one, std::span<const int> other) {
  const PairCounts counts(one, other);
  if (counts.ones.size() <= 1 && counts.others.size() <= 1) return 1;
  double information = 0;
  for (const auto& [labels, count] : counts.both) {
    const double by_chance =
        counts.ones.at(labels.first) / counts.rows * counts.others.at(labels.second) / counts.rows;
    information += count / counts.rows * std::log(count / counts.rows / by_chance);
  }
  if (information <= std::numeric_limits<double>::epsilon()) return 0;
  return information /
         ((Entropy(counts.ones, counts.rows) + Entropy(counts.others, counts.rows)) / 2);
}

}  // namespace mardle::tools
