// SPDX-License-Identifier: MIT
//
// The dot products of several rows that store every column, in order, with many composites that
// stand side by side: a product of two matrices. A column of the composites is read once for all
// the rows, and no column is looked up.
#pragma once

#include <cstddef>

namespace molva {

// How many rows are taken together: as many as vector registers hold the sums of.
constexpr std::size_t kFullRows = 4;

// products[r][lane] = sum of rows[r][j] lanes[j * stride + lane] over all ncols columns j, in
// single precision and any order. The stride is a multiple of 8.
using DotFullRowsFunction = void (*)(const float* const* rows, std::size_t ncols,
                                     const float* lanes, std::size_t stride,
                                     float* const* products);

// With what every processor has, and with each kind of vector unit.
void DotFullRowsPortable(const float* const* rows, std::size_t ncols, const float* lanes,
                         std::size_t stride, float* const* products);
#if defined(__x86_64__)
void DotFullRowsAvx2(const float* const* rows, std::size_t ncols, const float* lanes,
                     std::size_t stride, float* const* products);
void DotFullRowsAvx512(const float* const* rows, std::size_t ncols, const float* lanes,
                       std::size_t stride, float* const* products);
#elif defined(__aarch64__)
void DotFullRowsNeon(const float* const* rows, std::size_t ncols, const float* lanes,
                     std::size_t stride, float* const* products);
#endif

}  // namespace molva
