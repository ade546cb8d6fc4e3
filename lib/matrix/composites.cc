// SPDX-License-Identifier: MIT
#include "lib/matrix/composites.h"

namespace molva {

void AddRow(const RowView& row, std::span<float> vector) {
  for (std::size_t p = 0; p < row.size(); ++p) {
    vector[static_cast<std::size_t>(row.columns[p])] += row.values[p];
  }
}

void SubtractRow(const RowView& row, std::span<float> vector) {
  for (std::size_t p = 0; p < row.size(); ++p) {
    vector[static_cast<std::size_t>(row.columns[p])] -= row.values[p];
  }
}

void AccumulateComposites(const PreparedMatrix& mat, std::span<const int> part,
                          std::span<int> pwgts, Rows<float>& centers, std::span<float> gcenter) {
  for (int i = 0; i < mat.nrows; ++i) {
    const int k = part[static_cast<std::size_t>(i)];
    if (k < 0 || static_cast<std::size_t>(k) >= pwgts.size()) continue;
    ++pwgts[static_cast<std::size_t>(k)];
    AddRow(Row(mat, i), centers[k]);
    if (!gcenter.empty()) AddRow(Row(mat, i), gcenter);
  }
}

}  // namespace molva
