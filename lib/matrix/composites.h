// SPDX-License-Identifier: MIT
//
// The loop that every analysis starts with: cluster sizes and sums of rows.
#pragma once

#include <cstdint>

#include "lib/matrix/prepared_matrix.h"
#include "lib/support/span.h"

namespace molva {

// Adds a row into a dense vector, entry by entry in stored order.
void AddRow(const RowView& row, Span<float> vector);
void SubtractRow(const RowView& row, Span<float> vector);

// Adds every row, in row order, into the size and the composite of its cluster and into gcenter,
// the composite of all rows (left out when empty). The caller has zeroed all three. Rows without a
// cluster, or with one outside 0 to pwgts.size()-1, are skipped.
void AccumulateComposites(const PreparedMatrix& mat, Span<const int> part, Span<int> pwgts,
                          Rows<float>& centers, Span<float> gcenter);

// Products of counts, formed in 64 bits: two clusters of 50,000 rows would overflow an int.
inline std::int64_t CountProduct(int a, int b) { return static_cast<std::int64_t>(a) * b; }

}  // namespace molva
