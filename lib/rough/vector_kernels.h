// SPDX-License-Identifier: MIT
//
// The loops of the rough arithmetic that all vector lanes share, once for every kind of vector
// unit: the dot products of a sparse row with many composites that stand side by side, what the
// row's coming to each of their clusters can gain, and the most of that. The best unit that the
// processor has is used.
#pragma once

#include <cstddef>

#include "lib/matrix/prepared_matrix.h"
#include "lib/rough/full_rows.h"
#include "lib/support/span.h"

namespace molva {

// products[lane] = sum of v c over the entries v of the row, c = lanes[column * stride + lane], in
// single precision and any order, for every lane. The stride is 1, 2, 4 or a multiple of 8.
using DotFunction = void (*)(const RowView& row, const float* lanes, std::size_t stride,
                             float* products);

// The bounds on what comes to each cluster, lane by lane: GainBound's four numbers, what a product
// can be off per entry of the row (twice the product's), and the least d.G for which they hold. The
// three that go with d.G are null where the objective has none.
struct BoundLanes {
  std::size_t count;
  const double* base;
  const double* by_whole;
  const double* by_length;
  const double* by_both;
  const double* error;
  const double* least_whole;
};

// What the bounds are met with: the row's counted roundings, its sum of squares and its d.G.
struct RowFactors {
  double entries;
  double square;
  double whole;
};

// gains[lane] = the most that the row's coming can gain, infinite where no bound holds; nothing,
// that is -infinity, at home (-1: nowhere). Returns the most of all, not a number where one of them
// is not. The count is 1, 2, 4 or a multiple of 8.
using MeetFunction = double (*)(const BoundLanes& bounds, const float* products,
                                const RowFactors& row, int home, double* gains);

struct VectorKernel {
  const char* target;  // the kind of vector unit, as the compiler names it
  DotFunction dot;
  MeetFunction meet;
  DotFullRowsFunction dot_full_rows;
};

// The kernels that this processor can run, best first; the last one runs everywhere.
Span<const VectorKernel> AvailableKernels();

// The kernel in use, the best one unless a test has put another in its place.
const VectorKernel& CurrentKernel();
void SetKernel(const VectorKernel& kernel);

}  // namespace molva
