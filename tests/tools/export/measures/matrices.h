// SPDX-License-Identifier: MIT
//
// Small matrices as the exports read them.
#pragma once

#include <algorithm>
#include <vector>

#include "programs/io/engine_calls.h"
#include "programs/io/matrix.h"

namespace testing_support {

template <typename T>
molva::Array<T> ArrayOf(const std::vector<T>& values) {
  molva::Array<T> array(static_cast<std::int64_t>(values.size()), "ArrayOf: array");
  std::copy(values.begin(), values.end(), array.begin());
  return array;
}

// Stores the cells that are not zero; columns are called by the given labels.
inline mardle::Matrix SparseMatrixOf(const std::vector<std::vector<float>>& rows,
                                     const std::vector<const char*>& clabels = {}) {
  mardle::Matrix mat;
  mat.nrows = static_cast<int>(rows.size());
  mat.ncols = static_cast<int>(rows[0].size());
  std::vector<int> rowptr = {0};
  std::vector<int> rowind;
  std::vector<float> rowval;
  for (const std::vector<float>& row : rows) {
    for (std::size_t j = 0; j < row.size(); ++j) {
      if (row[j] == 0) continue;
      rowind.push_back(static_cast<int>(j));
      rowval.push_back(row[j]);
    }
    rowptr.push_back(static_cast<int>(rowind.size()));
  }
  mat.rowptr = ArrayOf(rowptr);
  mat.rowind = ArrayOf(rowind);
  mat.rowval = ArrayOf(rowval);
  mat.clabels = mardle::Labels(mat.ncols, "SparseMatrixOf: clabels", "col");
  for (std::size_t j = 0; j < clabels.size(); ++j) mat.clabels.Set(j, clabels[j]);
  return mat;
}

inline mardle::Matrix DenseMatrixOf(const std::vector<std::vector<float>>& rows) {
  mardle::Matrix mat;
  mat.nrows = static_cast<int>(rows.size());
  mat.ncols = static_cast<int>(rows[0].size());
  std::vector<float> cells;
  for (const std::vector<float>& row : rows) cells.insert(cells.end(), row.begin(), row.end());
  mat.rowval = ArrayOf(cells);
  mat.clabels = mardle::Labels(mat.ncols, "DenseMatrixOf: clabels", "col");
  return mat;
}

// Rows as they are, in clusters: no model, no pruning.
inline mardle::EngineInput PlainInput(const mardle::Matrix& mat, const std::vector<int>& part,
                                      int nclusters) {
  mardle::RunParams params;
  params.colmodel = MOLVA_COL_NONE;
  return mardle::RunInput(params, mat, {nclusters, part.data()});
}

}  // namespace testing_support
