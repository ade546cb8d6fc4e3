// SPDX-License-Identifier: MIT
//
// From the rows of a block to the vectors that are clustered, with column weights and a choice of
// columns that come from all blocks together.
#pragma once

#include <cstdint>

#include "lib/matrix/control.h"
#include "lib/matrix/prepare.h"
#include "lib/molva_blocks.h"
#include "lib/support/span.h"

namespace molva {

// Adds the number of entries stored in each column.
void CountColumns(const RawMatrix& raw, Span<std::int64_t> counts);

// Adds the rows, in units, to the sums of their columns.
void SumColumns(const PreparedMatrix& mat, Span<std::int64_t> sums);

// Marks the columns that pruning keeps, from counts and sums over all blocks; without sums those
// that are stored twice or more.
void ChooseColumns(float prune, Span<const std::int64_t> counts, Span<const std::int64_t> sums,
                   Span<signed char> kept);

// Row model, weights, normalisation; then the choice of columns, removal of rows without entries,
// and normalisation once more. Ends the run on a value that is no finite number.
PreparedCopy PrepareBlock(const MOLVA_Space& space, const RawMatrix& raw);

}  // namespace molva
