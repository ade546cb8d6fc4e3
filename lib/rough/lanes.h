// SPDX-License-Identifier: MIT
//
// The composites of all clusters side by side: the values of one column stand together, one lane
// per cluster, so that a single walk over a row gives its dot products with every cluster.
#pragma once

#include <concepts>
#include <cstddef>

#include "lib/matrix/prepared_matrix.h"
#include "lib/rough/rounding.h"
#include "lib/rough/vector_kernels.h"
#include "lib/support/span.h"
#include "lib/support/wide.h"

namespace molva {

// One composite in its lane, indexed by column.
struct LaneView {
  const float* first;
  std::size_t stride;
  template <std::integral Index>
  float operator[](Index column) const {
    return first[static_cast<std::size_t>(column) * stride];
  }
};

class Lanes {
 public:
  // `count` zero vectors of ncols elements, in one block of the given name, which the sums over
  // them carry as well.
  Lanes(int count, int ncols, BlockName name);

  LaneView operator[](int lane) const { return {values_ + lane, stride_}; }
  // Writes the row's entries; a column stored twice keeps its last value.
  void Set(const RowView& row, int lane);
  void Add(const RowView& row, int lane);
  void Subtract(const RowView& row, int lane);

  // The dot products of lanes 0 to n-1 with themselves and with another vector, as DotFloats gives
  // them: wide, in column order, rounded once. One walk over the block serves all lanes.
  void SquaredLengths(Span<float> squares) const;
  void DotsWith(Span<const float> vector, Span<float> dots) const;

  // Lanes are padded to whole vectors; DotRow fills this many numbers.
  std::size_t stride() const { return stride_; }

  // products[lane] = row . lane, in single precision, for every lane. The sums may be formed in any
  // order: they are rough values whose error is bounded by the number of entries.
  void DotRow(const RowView& row, float* products) const { dot_(row, values_, stride_, products); }
  // Fetches the columns of a short row that comes soon; those of a longer one come while it is
  // walked over, and two lanes take next to no room. (Put in place, as g++ leaves out what only
  // fetches.)
  [[gnu::always_inline]] void Prefetch(const RowView& row) const {
    if (row.size() > kShortRow || stride_ <= 2) return;
    for (const int j : row.columns) {
      const float* column = values_ + static_cast<std::size_t>(j) * stride_;
      for (std::size_t lane = 0; lane < stride_; lane += kLine) __builtin_prefetch(column + lane);
    }
  }
  const float* Values() const { return values_; }

 private:
  static constexpr std::size_t kShortRow = 16;
  static constexpr std::size_t kLine = 64 / sizeof(float);

  Array<double> RoughSquares() const;
  Wide SquaredLength(std::size_t lane) const;
  template <typename Sum, typename AddTerm>
  Array<Sum> SumsWith(Span<const float> vector, std::size_t lanes, AddTerm add) const;
  bool DotsAreCertain(Span<const float> vector, Span<float> dots) const;

  int ncols_;
  std::size_t stride_;
  BlockName name_;
  Array<float> block_;
  float* values_;  // in the block, from the beginning of a cache line on
  DotFunction dot_;
};

}  // namespace molva
