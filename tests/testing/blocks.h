// SPDX-License-Identifier: MIT
//
// Clusters of a matrix as the entry points for blocks know them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "lib/molva.h"
#include "tests/testing/matrices.h"

namespace testing_support {

// Sums of the clusters of prepared rows, cluster by cluster, and what is measured from them.
struct ClusterArrays {
  ClusterArrays(const SparseMatrix& rows, const std::vector<int>& part, int nparts);

  MOLVA_View view() const;
  double Value(int crfun) const;

  int nparts, ncols;
  std::vector<std::int64_t> sums, pwgts;
  std::vector<double> dnorms, csim;
  std::vector<float> composites, whole;
};

// The rows of a prepared matrix as they are, and those from first to last - 1 of a matrix.
SparseMatrix PlainRows(const molva::PreparedMatrix& mat);
SparseMatrix RowsOf(const SparseMatrix& matrix, int first, int last);

// The changes of MOLVA_B_SumChanges, added to dense lists.
std::int64_t AddChanges(const SparseMatrix& rows, int nlists, const std::vector<int>& from,
                        const std::vector<int>& to, std::vector<std::int64_t>& lists);

}  // namespace testing_support
