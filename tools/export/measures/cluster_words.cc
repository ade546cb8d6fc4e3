// SPDX-License-Identifier: MIT
#include "tools/export/measures/cluster_words.h"

#include <algorithm>
#include <cmath>

namespace mardle::exporting {
namespace {

// Lists of the library: nfeatures slots a cluster, -1 in slots without a column.
struct Lists {
  Lists(int nclusters, int nfeatures)
      : slots(std::int64_t{nclusters} * nfeatures),
        ids(molva::AllocIntsSet(slots, -1, "FindClusterWords: ids")),
        weights(molva::AllocFloatsSet(slots, 0, "FindClusterWords: weights")) {}
  std::int64_t slots;
  molva::Array<int> ids;
  molva::Array<float> weights;
};

ClusterWord& WordOf(ClusterWords& words, int column) {
  const auto found = std::find_if(words.begin(), words.end(), [column](const ClusterWord& word) {
    return word.column == column;
  });
  if (found != words.end()) return *found;
  ClusterWord& word = words.emplace_back();
  word.column = column;
  return word;
}

// Calls take(column, share) for the columns of a list, best first.
template <typename Take>
void ForEachSlot(const Lists& lists, int k, int nfeatures, Take take) {
  const std::int64_t begin = std::int64_t{k} * nfeatures;
  for (std::int64_t slot = begin; slot < begin + nfeatures; ++slot) {
    if (lists.ids[slot] < 0 || !std::isfinite(lists.weights[slot])) continue;
    take(lists.ids[slot], static_cast<double>(lists.weights[slot]));
  }
}

}  // namespace

std::vector<ClusterWords> FindClusterWords(const EngineInput& in, int nfeatures,
                                           const ClusterSums& sums) {
  Lists descriptive(in.clusters.count, nfeatures);
  Lists discriminating(in.clusters.count, nfeatures);
  DescribeClusters(
      in, nfeatures,
      {descriptive.ids, descriptive.weights, discriminating.ids, discriminating.weights});
  std::vector<ClusterWords> all;
  for (int k = 0; k < in.clusters.count; ++k) {
    ClusterWords& words = all.emplace_back();
    ForEachSlot(descriptive, k, nfeatures,
                [&](int column, double share) { WordOf(words, column).describes = share; });
    ForEachSlot(discriminating, k, nfeatures, [&](int column, double share) {
      ClusterWord& word = WordOf(words, column);
      word.tells_apart = share;
      word.weaker = sums.IsWeaker(k, column);
    });
  }
  return all;
}

std::vector<int> NameOf(const ClusterWords& words, std::size_t count) {
  std::vector<ClusterWord> telling;
  for (const ClusterWord& word : words) {
    if (word.tells_apart.value_or(0) > 0 && !word.weaker) telling.push_back(word);
  }
  std::stable_sort(telling.begin(), telling.end(), [](const ClusterWord& a, const ClusterWord& b) {
    return *a.tells_apart > *b.tells_apart;
  });
  for (const ClusterWord& word : words) {
    const bool waits = word.tells_apart.value_or(0) == 0 || word.weaker;
    if (waits && word.describes.value_or(0) > 0) telling.push_back(word);
  }
  std::vector<int> name;
  for (const ClusterWord& word : telling) {
    if (name.size() < count) name.push_back(word.column);
  }
  return name;
}

}  // namespace mardle::exporting
