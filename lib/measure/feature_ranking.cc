// SPDX-License-Identifier: MIT
#include "lib/measure/feature_ranking.h"

#include <algorithm>

#include "lib/support/sort.h"
#include "lib/support/vectors.h"
#include "lib/support/wide.h"

namespace molva {
namespace {

// Sorts the candidates and writes the best into list k, each weight being key * scale.
void WriteRanked(Span<KeyValue> fcand, Wide scale, std::int64_t k, const FeatureLists& lists) {
  SortKeyValuesDecreasing(fcand);
  const std::int64_t begin = k * lists.nfeatures;
  const int filled = std::min(lists.nfeatures, static_cast<int>(fcand.size()));
  for (int i = 0; i < filled; ++i) {
    const KeyValue& candidate = fcand[i];
    lists.ids[begin + i] = lists.cperm[candidate.value];
    lists.weights[begin + i] = static_cast<float>(candidate.key * scale);
  }
  for (int i = filled; i < lists.nfeatures; ++i) lists.ids[begin + i] = -1;
}

}  // namespace

void RankDescriptive(Span<const float> composite, float squared_length, Span<KeyValue> fcand,
                     std::int64_t k, const FeatureLists& lists) {
  for (std::size_t j = 0; j < composite.size(); ++j) {
    const Wide d = composite[j];
    fcand[j] = {static_cast<float>(d * d / squared_length), static_cast<int>(j)};
  }
  WriteRanked(fcand, 1, k, lists);
}

void RankDiscriminating(Span<const float> a, Span<const float> b, Span<KeyValue> fcand,
                        std::int64_t k, const FeatureLists& lists) {
  // The keys are added as they are stored.
  Wide sum = 0;
  for (std::size_t j = 0; j < a.size(); ++j) {
    const Wide difference = static_cast<Wide>(a[j]) - b[j];
    fcand[j] = {static_cast<float>(difference * difference), static_cast<int>(j)};
    sum += fcand[j].key;
  }
  WriteRanked(fcand, 1 / sum, k, lists);
}

void ScaleToUnitLength(Span<float> vector) {
  const Wide factor = 1 / static_cast<Wide>(NormFloats(vector));
  for (float& v : vector) v = static_cast<float>(v * factor);
}

}  // namespace molva
