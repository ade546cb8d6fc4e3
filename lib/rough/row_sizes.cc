// SPDX-License-Identifier: MIT
#include "lib/rough/row_sizes.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <span>
#include <utility>

#include "lib/rough/value_bound.h"

namespace molva {

namespace {

// Where a column may repeat, |d|_1 stands in: no vector of these entries is longer, and none of its
// values is larger.
void BoundVector(const RowView& row, bool columns_differ, RowSize& size) {
  size.additions = columns_differ ? 1 : static_cast<int>(row.size());
  size.length = columns_differ ? std::sqrt(size.square) * (1 + kSlack) : size.absolute;
  if (!columns_differ) size.largest = size.absolute;
}

RowSize SizeOf(const RowView& row, bool columns_differ) {
  RowSize size;
  for (const float value : row.values) {
    const double v = std::fabs(static_cast<double>(value));
    size.square += v * v;
    size.absolute += v;
    size.largest = std::max(size.largest, v);
  }
  // Rounded up, and left as it is when a value is not a number: comparisons then fail.
  size.absolute *= 1 + kSlack;
  if (std::isnan(size.square)) size.largest = size.square;
  BoundVector(row, columns_differ, size);
  return size;
}

bool Increases(std::span<const int> columns) {
  return std::adjacent_find(columns.begin(), columns.end(), std::greater_equal<int>()) ==
         columns.end();
}

// Whether no column occurs twice in row i; `last_row` tells in which row each column was last seen.
bool ColumnsDiffer(std::span<const int> columns, int i, Array<int>& last_row) {
  bool differ = true;
  for (const int j : columns) differ = std::exchange(last_row[j], i) != i && differ;
  return differ;
}

}  // namespace

RowSize SizeOf(const RowView& row) { return SizeOf(row, Increases(row.columns)); }

void MeasureRows(PreparedMatrix& mat, BlockName name) {
  mat.rowsize = Array<RowSize>(mat.nrows, name);
  Array<int> last_row = AllocIntsSet(mat.ncols, -1, name);
  for (int i = 0; i < mat.nrows; ++i) {
    const RowView row = Row(mat, i);
    mat.rowsize[i] = SizeOf(row, ColumnsDiffer(row.columns, i, last_row));
  }
}

}  // namespace molva
