// SPDX-License-Identifier: MIT
//
// Ranks the columns of composites by what they contribute.
#pragma once

#include <cstdint>

#include "lib/matrix/prepared_matrix.h"
#include "lib/support/key_value.h"
#include "lib/support/span.h"

namespace molva {

// The feature lists of one kind: nfeatures slots per cluster or node, list k from k * nfeatures on.
// A slot holds the caller's column and its weight; -1 marks an empty slot, whose weight is not
// written.
struct FeatureLists {
  Span<const int> cperm;  // caller's column of each prepared column
  int nfeatures;
  int* ids;
  float* weights;
};

// Fills list k with the columns that contribute most to D.D, the squared length of a composite:
// weights D[j]^2 / D.D. `fcand` is work space of one pair per column.
void RankDescriptive(Span<const float> composite, float squared_length, Span<KeyValue> fcand,
                     std::int64_t k, const FeatureLists& lists);

// Fills list k with the columns that contribute most to the squared distance of two unit vectors:
// weights (a[j] - b[j])^2 over their sum.
void RankDiscriminating(Span<const float> a, Span<const float> b, Span<KeyValue> fcand,
                        std::int64_t k, const FeatureLists& lists);

// Scales a vector by 1 / its length. The length is single precision, the factor is not; a zero
// vector becomes not-a-number.
void ScaleToUnitLength(Span<float> vector);

}  // namespace molva
