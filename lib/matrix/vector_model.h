// SPDX-License-Identifier: MIT
//
// The scalings that turn raw rows into the vectors that are clustered. Each value is computed wide
// and stored back as a float.
#pragma once

#include <cstdint>

#include "lib/matrix/control.h"
#include "lib/matrix/prepared_matrix.h"
#include "lib/support/span.h"

namespace molva {

// Scales every stored entry v by the row model:
//   MAXTF  0.5 + 0.5 v / m, m the largest absolute value of the row
//   SQRT   1 + sqrt v for v > 0, 1 - sqrt |v| for v < 0, zero stays
//   LOG    1 + log2 v for v > 0, not-a-number for v < 0, zero stays
// Any other code is fatal: "Unknown RowModel value of %d\n".
void ApplyRowModel(const Control& control, PreparedMatrix& mat);

// Scales every column by the column model. IDF multiplies column j by ln(nrows / c), c the number
// of entries stored in it, and is fatal on a matrix that is not sparse. Any other code is fatal:
// "Unknown ColModel value of %d\n".
void ComputeScaleFactors(const Control& control, PreparedMatrix& mat);

// The factor of a column with `stored` entries in a matrix of nrows rows under IDF; 0 without
// entries.
float IdfWeight(std::int64_t stored, std::int64_t nrows);

// Multiplies every entry by the factor of its column.
void ScaleColumns(PreparedMatrix& mat, Span<const float> vscale);

// Makes every row a unit vector, for the correlation coefficient after its mean (the sum of its
// entries over ncols) was subtracted from its entries. A zero row stays. Any other code is fatal:
// "Unknown similarity function: %d\n".
void NormalizeRows(const Control& control, PreparedMatrix& mat);

}  // namespace molva
