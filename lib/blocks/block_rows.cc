// SPDX-License-Identifier: MIT
#include "lib/blocks/block_rows.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "lib/blocks/fixed_point.h"
#include "lib/matrix/prune.h"
#include "lib/matrix/vector_model.h"
#include "lib/support/alloc.h"
#include "lib/support/fatal.h"

namespace molva {
namespace {

void SetUpBlock(const Control& control, PreparedMatrix& mat, const RawMatrix& raw) {
  SetUpMatrix(control, mat, raw);
  // The cells of a row then stand in one order, whatever other rows are in the block.
  const bool fills_cells = control.simfun == MOLVA_SIM_CORRELATION && !raw.dense();
  if (fills_cells && raw.rowptr[raw.nrows] == raw.cells()) ExpandSparse(mat, raw);
}

void KeepColumns(PreparedMatrix& mat, const signed char* kept, Span<int> cperm) {
  Array<int> rmvec = AllocInts(mat.ncols, "PrepareBlock: rmvec");
  for (int j = 0; j < mat.ncols; ++j) rmvec[j] = kept[j] == 0 ? 1 : 0;
  EliminateColumns(mat, rmvec, cperm);
}

void RequireFiniteValues(const PreparedMatrix& mat, Span<const int> rperm) {
  for (int i = 0; i < mat.nrows; ++i) {
    for (const float value : Row(mat, i).values) {
      if (!std::isfinite(value)) {
        FatalError("A row of a block has values that are no finite numbers! Row=%d\n", rperm[i]);
      }
    }
  }
}

}  // namespace

void CountColumns(const RawMatrix& raw, Span<std::int64_t> counts) {
  if (raw.dense()) {
    for (std::int64_t& count : counts) count += raw.nrows;
    return;
  }
  CheckEntries(raw);
  for (int p = 0; p < raw.rowptr[raw.nrows]; ++p) ++counts[raw.rowind[p]];
}

void SumColumns(const PreparedMatrix& mat, Span<std::int64_t> sums) {
  for (int i = 0; i < mat.nrows; ++i) {
    const RowView row = Row(mat, i);
    for (std::size_t p = 0; p < row.size(); ++p) {
      AddUnits(ToUnits(row.values[p]), sums[row.columns[p]]);
    }
  }
}

void ChooseColumns(float prune, Span<const std::int64_t> counts, Span<const std::int64_t> sums,
                   Span<signed char> kept) {
  const auto ncols = static_cast<std::int64_t>(counts.size());
  constexpr std::int64_t kEnough = 2;
  Array<int> rmvec = AllocInts(ncols, "ChooseColumns: rmvec");
  for (std::int64_t j = 0; j < ncols; ++j) {
    const auto stored = static_cast<int>(std::min(counts[j], kEnough));
    rmvec[j] = sums.empty() ? static_cast<int>(stored < kEnough) : stored + 1;
  }
  if (!sums.empty()) {
    Array<float> center = AllocFloats(ncols, "ChooseColumns: center");
    for (std::int64_t j = 0; j < ncols; ++j) center[j] = static_cast<float>(FromUnits(sums[j]));
    MarkColumns({.prune = prune}, center, rmvec);
  }
  for (std::int64_t j = 0; j < ncols; ++j) kept[j] = rmvec[j] == 0 ? 1 : 0;
}

PreparedCopy PrepareBlock(const MOLVA_Space& space, const RawMatrix& raw) {
  const Control control{.simfun = space.simfun, .rowmodel = space.rowmodel};
  PreparedCopy copy;
  copy.rperm = AllocInts(raw.nrows, "PrepareBlock: rperm");
  copy.cperm = AllocInts(raw.ncols, "PrepareBlock: cperm");
  copy.mat = CreateMatrix();
  PreparedMatrix& mat = *copy.mat;
  SetUpBlock(control, mat, raw);
  ApplyRowModel(control, mat);
  if (space.weights != nullptr) ScaleColumns(mat, {space.weights, raw.ncols});
  NormalizeRows(control, mat);
  std::iota(copy.rperm.begin(), copy.rperm.end(), 0);
  if (space.kept != nullptr) {
    KeepColumns(mat, space.kept, copy.cperm);
    DropEmptyRows(mat, copy.rperm);
    NormalizeRows(control, mat);
  }
  copy.nrows = mat.nrows;
  RequireFiniteValues(mat, copy.rows());
  return copy;
}

}  // namespace molva
