// SPDX-License-Identifier: MIT
//
// What is left to know of a row's dot products with all clusters when other rows have moved since
// they were formed, so that most rows need not be walked again in every pass.
//
// A row x that moves changes the composites of two clusters by a vector of length |x|, give or take
// the rounding of its entries. Each cluster adds up these lengths: its drift C. The product of a
// row d with the composite then differs from what it was by at most |d| times the growth of C. Kept
// is the product less |d| C for the clusters that the row may go to, of which the most that the
// product can be is wanted, and plus |d| C for the cluster that it stands in, of which the least is
// wanted.
//
// The memory is an aid that a run can do without: where it would be larger than the matrix, or
// cannot be had, every row is simply walked.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "lib/matrix/prepared_matrix.h"
#include "lib/rough/value_bound.h"

namespace molva {

class ProductMemory {
 public:
  // Among more clusters than some tens one has always moved too far for a row to be settled.
  static constexpr int kWidest = 32;

  // `width` products for every row of the matrix.
  ProductMemory(const PreparedMatrix& mat, int width) : width_(static_cast<std::size_t>(width)) {
    const std::int64_t count = std::int64_t{mat.nrows} * width;
    const bool is_lighter = count <= 2 * std::int64_t{EntryCount(mat)};
    if (0 < width && width <= kWidest && is_lighter) kept_ = Array<float>::OrNone(count);
    kept_.Fill(std::numeric_limits<float>::quiet_NaN());
  }
  explicit operator bool() const { return static_cast<bool>(kept_); }

  // Row i will be looked up soon.
  void AskFor(int i) const {
    constexpr std::size_t kCacheLine = 64 / sizeof(float);
    for (std::size_t k = 0; k < width_; k += kCacheLine) __builtin_prefetch(Of(i) + k);
  }

  // Keeps the products of row i, which stands in cluster `from`, under drifts indexed like them.
  template <typename Drift>
  void Keep(int i, const RowSize& row, int from, const double* products, Drift drift) {
    float* kept = Of(i);
    for (std::size_t k = 0; k < width_; ++k) {
      const double reach = row.length * drift(k);
      kept[k] = static_cast<float>(k == static_cast<std::size_t>(from) ? products[k] + reach
                                                                       : products[k] - reach);
    }
  }
  // Row i has moved to cluster `to`: what is kept of it holds no longer.
  void Forget(int i, int to) { Of(i)[to] = std::numeric_limits<float>::quiet_NaN(); }

  // The most, and the least, that a product can be under today's drift, each for what it is kept
  // for: the one of a cluster that the row may join, the other of the cluster that it stands in.
  double Most(int i, const RowSize& row, std::size_t k, double drift) const {
    const double reach = row.length * drift;
    const auto kept = static_cast<double>(Of(i)[k]);
    return kept + reach + Rounding(kept, reach);
  }
  double Least(int i, const RowSize& row, std::size_t k, double drift) const {
    const double reach = row.length * drift;
    const auto kept = static_cast<double>(Of(i)[k]);
    return kept - reach - Rounding(kept, reach);
  }

 private:
  // Keeping rounded once by 2^-24, the rest is double arithmetic.
  static double Rounding(double kept, double reach) {
    return 0x1p-23 * std::fabs(kept) + kSlack * reach + 0x1p-140;
  }

  float* Of(int i) { return kept_.data() + static_cast<std::size_t>(i) * width_; }
  const float* Of(int i) const { return kept_.data() + static_cast<std::size_t>(i) * width_; }

  std::size_t width_;
  Array<float> kept_;
};

}  // namespace molva
