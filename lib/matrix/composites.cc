// SPDX-License-Identifier: MIT
#include "lib/matrix/composites.h"

#include <utility>

namespace molva {

void AddRow(const RowView& row, Span<float> vector) {
  for (std::size_t p = 0; p < row.size(); ++p) {
    vector[row.columns[p]] += row.values[p];
  }
}

void SubtractRow(const RowView& row, Span<float> vector) {
  for (std::size_t p = 0; p < row.size(); ++p) {
    vector[row.columns[p]] -= row.values[p];
  }
}

void AccumulateComposites(const PreparedMatrix& mat, Span<const int> part, Span<int> pwgts,
                          Rows<float>& centers, Span<float> gcenter) {
  for (int i = 0; i < mat.nrows; ++i) {
    const int k = part[i];
    if (k < 0 || std::cmp_greater_equal(k, pwgts.size())) continue;
    ++pwgts[k];
    AddRow(Row(mat, i), centers[k]);
    if (!gcenter.empty()) AddRow(Row(mat, i), gcenter);
  }
}

}  // namespace molva
