// SPDX-License-Identifier: MIT
//
// The one kernel of the rough arithmetic: the dot products of a sparse row with many composites
// that stand side by side, once for every kind of vector unit. All versions add in the same order,
// so they give the same bits; the best that the processor has is used.
#pragma once

#include <cstddef>
#include <span>

#include "lib/matrix/prepared_matrix.h"

namespace molva {

// products[lane] = sum of v c over the entries v of the row, c = lanes[column * stride + lane], in
// double arithmetic, for every lane. The stride is 1, 2, 4 or a multiple of 8.
using DotFunction = void (*)(const RowView& row, const float* lanes, std::size_t stride,
                             double* products);

struct DotKernel {
  const char* target;  // the kind of vector unit, as the compiler names it
  DotFunction dot;
};

// The kernels that this processor can run, best first; the last one runs everywhere.
std::span<const DotKernel> AvailableDotKernels();

// The kernel in use, the best one unless a test has put another in its place.
DotFunction CurrentDotKernel();
void SetDotKernel(DotFunction dot);

}  // namespace molva
