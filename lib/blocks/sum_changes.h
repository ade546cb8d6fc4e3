// SPDX-License-Identifier: MIT
//
// What the rows of a block change in the sums of clusters when they move.
#pragma once

#include <cstdint>

#include "lib/matrix/prepared_matrix.h"
#include "lib/support/alloc.h"
#include "lib/support/span.h"

namespace molva {

// Sums of sparse vectors in units: those of list l are columns[p], increasing, with sums[p] other
// than 0, for p from starts[l] to starts[l + 1] - 1.
struct SparseSums {
  Array<std::int64_t> starts;
  Array<int> columns;
  Array<std::int64_t> sums;
};

// Takes row i from list from[i] and adds it to list to[i]; rows whose two are the same change
// nothing, and a number outside 0 to nlists-1 stands for no list.
SparseSums SumChanges(const PreparedMatrix& mat, int nlists, Span<const int> from,
                      Span<const int> to);

// A bound on the magnitude of any sum over some of the rows, in units: the largest magnitude of
// each row's entries, or all of them together where a column may stand twice.
std::int64_t ReachOfSums(const PreparedMatrix& mat);

}  // namespace molva
