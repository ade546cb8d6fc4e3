// SPDX-License-Identifier: MIT
#include "tests/testing/blocks.h"

namespace testing_support {

ClusterArrays::ClusterArrays(const SparseMatrix& rows, const std::vector<int>& part, int clusters)
    : nparts(clusters), ncols(rows.ncols) {
  const auto k = static_cast<std::size_t>(nparts);
  const auto m = static_cast<std::size_t>(ncols);
  sums.resize(k * m);
  pwgts.resize(k);
  dnorms.resize(k);
  csim.resize(k);
  composites.resize(k * m);
  whole.resize(m);
  for (const int cluster : part) ++pwgts[static_cast<std::size_t>(cluster)];
  AddChanges(rows, nparts, std::vector<int>(part.size(), -1), part, sums);
  MOLVA_B_MeasureSums(nparts, ncols, sums.data(), dnorms.data(), csim.data());
  MOLVA_B_MakeView(nparts, ncols, sums.data(), 1.0, composites.data(), whole.data());
}

MOLVA_View ClusterArrays::view() const {
  return {nparts, ncols, composites.data(), whole.data(), pwgts.data(), dnorms.data(), csim.data()};
}

double ClusterArrays::Value(int crfun) const {
  return MOLVA_B_CriterionValue(crfun, nparts, pwgts.data(), dnorms.data(), csim.data());
}

SparseMatrix PlainRows(const molva::PreparedMatrix& mat) {
  const int entries = mat.rowptr[mat.nrows];
  return {mat.nrows,
          mat.ncols,
          {mat.rowptr.data(), mat.rowptr.data() + mat.nrows + 1},
          {mat.rowind.data(), mat.rowind.data() + entries},
          {mat.rowval.data(), mat.rowval.data() + entries}};
}

SparseMatrix RowsOf(const SparseMatrix& matrix, int first, int last) {
  SparseMatrix rows;
  rows.ncols = matrix.ncols;
  for (int i = first; i < last; ++i, ++rows.nrows) {
    const int begin = matrix.rowptr[static_cast<std::size_t>(i)];
    const int end = matrix.rowptr[static_cast<std::size_t>(i) + 1];
    rows.rowind.insert(rows.rowind.end(), matrix.rowind.begin() + begin,
                       matrix.rowind.begin() + end);
    rows.rowval.insert(rows.rowval.end(), matrix.rowval.begin() + begin,
                       matrix.rowval.begin() + end);
    rows.rowptr.push_back(static_cast<int>(rows.rowind.size()));
  }
  return rows;
}

std::int64_t AddChanges(const SparseMatrix& rows, int nlists, const std::vector<int>& from,
                        const std::vector<int>& to, std::vector<std::int64_t>& lists) {
  std::vector<std::int64_t> starts(static_cast<std::size_t>(nlists) + 1);
  int* columns = nullptr;
  std::int64_t* sums = nullptr;
  const std::int64_t reach = MOLVA_B_SumChanges(
      rows.nrows, rows.ncols, rows.rowptr.data(), rows.rowind.data(), rows.rowval.data(), nlists,
      from.data(), to.data(), starts.data(), &columns, &sums);
  for (int l = 0; l < nlists; ++l) {
    const auto list = static_cast<std::size_t>(l);
    for (std::int64_t p = starts[list]; p < starts[list + 1]; ++p) {
      lists[list * static_cast<std::size_t>(rows.ncols) + static_cast<std::size_t>(columns[p])] +=
          sums[p];
    }
  }
  MOLVA_Free(columns);
  MOLVA_Free(sums);
  return reach;
}

}  // namespace testing_support
