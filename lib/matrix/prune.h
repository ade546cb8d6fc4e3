// SPDX-License-Identifier: MIT
//
// Column pruning: drops the columns that add little to the overall similarity of the collection.
#pragma once

#include "lib/matrix/control.h"
#include "lib/matrix/prepared_matrix.h"
#include "lib/support/span.h"

namespace molva {

// Ranks the columns by their weight in the unit-length sum of all rows and keeps the heaviest, up
// to and including the one whose squared weight carries the running sum past prune * prune. Columns
// stored once only are dropped in any case. cperm[new column] = old column.
void SimilarityBasedFeatureSelection(const Control& control, PreparedMatrix& mat, Span<int> cperm);

// Turns counts into marks: rmvec[j], one more than the entries stored in column j, becomes 0 for
// the columns that this keeps. `center` is the sum of all rows.
void MarkColumns(const Control& control, Span<float> center, Span<int> rmvec);

// Removes every column j with rmvec[j] != 0 and numbers the others 0, 1, ... in their order; the
// entries of a row keep their order. cperm[new column] = old column.
void EliminateColumns(PreparedMatrix& mat, Span<const int> rmvec, Span<int> cperm);

}  // namespace molva
