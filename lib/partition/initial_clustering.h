// SPDX-License-Identifier: MIT
//
// The starting point of a trial: clusters grown from random seeds.
#pragma once

#include "lib/matrix/control.h"
#include "lib/matrix/prepared_matrix.h"
#include "lib/rough/row_records.h"
#include "lib/support/span.h"

namespace molva {

// How many permutations it draws, each of the one before.
constexpr int kSeedingPermutations = 5;

// Writes a cluster 0 to nparts-1 for every row. The first nparts rows of a random order are seeds;
// every other row, in that order, joins the cluster whose composite grows most in length, the
// lowest-numbered one on ties. nparts must not exceed mat.nrows.
void InitialClustering(const PreparedMatrix& mat, int nparts, Span<int> part);

// The same over rows that were measured before.
void InitialClustering(const RowRecords& rows, int nparts, Span<int> part);

}  // namespace molva
