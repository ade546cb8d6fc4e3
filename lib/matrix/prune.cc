// SPDX-License-Identifier: MIT
#include "lib/matrix/prune.h"

#include <numeric>

#include "lib/support/compact_columns.h"
#include "lib/support/sort.h"
#include "lib/support/vectors.h"
#include "lib/support/wide.h"

namespace molva {
namespace {

// Adds every row to `center` and every stored entry to the count of its column.
void SumColumns(const PreparedMatrix& mat, Span<float> center, Span<int> counts) {
  for (int i = 0; i < mat.nrows; ++i) {
    const RowView row = Row(mat, i);
    for (std::size_t p = 0; p < row.size(); ++p) {
      const int j = row.columns[p];
      center[j] += row.values[p];
      ++counts[j];
    }
  }
}

// The columns as (weight in the unit-length center, column), heaviest first.
Array<KeyValue> RankColumns(Span<float> center) {
  const float length = NormFloats(center);
  Array<KeyValue> fcand = AllocKeyValues(static_cast<std::int64_t>(center.size()),
                                         "SimilarityBasedFeatureSelection: fcand");
  for (std::size_t j = 0; j < center.size(); ++j) {
    fcand[j] = {center[j] / length, static_cast<int>(j)};
  }
  SortKeyValuesDecreasing(fcand);
  return fcand;
}

}  // namespace

void SimilarityBasedFeatureSelection(const Control& control, PreparedMatrix& mat, Span<int> cperm) {
  // Counts start at 1, so every column that the walk does not reach is marked for removal.
  Array<int> rmvec = AllocIntsSet(mat.ncols, 1, "SimilarityBasedFeatureSelection: rmvec");
  Array<float> center = AllocFloatsSet(mat.ncols, 0, "SimilarityBasedFeatureSelection: center");
  SumColumns(mat, center, rmvec);
  MarkColumns(control, center, rmvec);
  EliminateColumns(mat, rmvec, cperm);
}

void MarkColumns(const Control& control, Span<float> center, Span<int> rmvec) {
  const Array<KeyValue> fcand = RankColumns(center);
  const Wide target = static_cast<Wide>(control.prune) * control.prune;
  Wide reached = 0;
  for (std::size_t position = 0; position < fcand.size() && reached <= target; ++position) {
    const auto [weight, j] = fcand[position];
    const bool occurs_twice = rmvec[j] > 2;
    rmvec[j] = occurs_twice ? 0 : 1;
    if (occurs_twice) reached += static_cast<Wide>(weight) * weight;
  }
}

void EliminateColumns(PreparedMatrix& mat, Span<const int> rmvec, Span<int> cperm) {
  Array<int> cmap = AllocInts(mat.ncols, "EliminateColumns: cmap");
  std::iota(cperm.begin(), cperm.end(), 0);
  mat.ncols = CompactColumns({mat.nrows, mat.rowptr.data(), mat.rowind.data(), mat.rowval.data()},
                             cperm, cmap, [rmvec](std::size_t j) { return rmvec[j] == 0; });
}

}  // namespace molva
