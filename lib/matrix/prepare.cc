// SPDX-License-Identifier: MIT
#include "lib/matrix/prepare.h"

#include <algorithm>
#include <climits>
#include <numeric>

#include "lib/matrix/prune.h"
#include "lib/matrix/vector_model.h"
#include "lib/support/fatal.h"

namespace molva {
namespace {

void CheckRowStarts(const RawMatrix& raw) {
  if (raw.rowptr[0] != 0) FatalError("Row starts must begin with 0! Start=%d\n", raw.rowptr[0]);
  for (int i = 0; i < raw.nrows; ++i) {
    if (raw.rowptr[i + 1] < raw.rowptr[i]) {
      FatalError("Row starts must not decrease! Row=%d, Start=%d, Next=%d\n", i, raw.rowptr[i],
                 raw.rowptr[i + 1]);
    }
  }
}

// Columns index arrays of ncols elements from here on, so each is checked once.
void CheckColumns(const RawMatrix& raw) {
  for (int i = 0; i < raw.nrows; ++i) {
    for (int p = raw.rowptr[i]; p < raw.rowptr[i + 1]; ++p) {
      if (raw.rowind[p] < 0 || raw.rowind[p] >= raw.ncols) {
        FatalError("Column number is outside the matrix! Ncols=%d, ColNum=%d, Row=%d\n", raw.ncols,
                   raw.rowind[p], i);
      }
    }
  }
}

void AllocateEntries(PreparedMatrix& mat, std::int64_t entries) {
  mat.rowptr = AllocInts(std::int64_t{mat.nrows} + 1, "SetUpMatrix: mat->rowptr");
  mat.rowind = AllocInts(entries, "SetUpMatrix: mat->rowind");
  mat.rowval = AllocFloats(entries, "SetUpMatrix: mat->rowval");
}

void CopySparse(PreparedMatrix& mat, const RawMatrix& raw) {
  const int entries = raw.rowptr[raw.nrows];
  AllocateEntries(mat, entries);
  std::copy_n(raw.rowptr, raw.nrows + 1, mat.rowptr.data());
  std::copy_n(raw.rowind, entries, mat.rowind.data());
  std::copy_n(raw.rowval, entries, mat.rowval.data());
}

// Stores every cell: rowptr[i] = i * ncols, the columns of each row 0 to ncols-1.
void BuildFullIndex(PreparedMatrix& mat, const RawMatrix& raw) {
  if (raw.cells() > INT_MAX) {
    FatalError(
        "A matrix of %d rows and %d columns has more cells than %d, the most that can be stored in full!\n",
        raw.nrows, raw.ncols, INT_MAX);
  }
  AllocateEntries(mat, raw.cells());
  mat.rowptr[0] = 0;
  for (int i = 0; i < mat.nrows; ++i) {
    mat.rowptr[i + 1] = mat.rowptr[i] + mat.ncols;
    std::iota(mat.rowind.data() + mat.rowptr[i], mat.rowind.data() + mat.rowptr[i + 1], 0);
  }
}

void CopyDense(PreparedMatrix& mat, const RawMatrix& raw) {
  BuildFullIndex(mat, raw);
  std::copy_n(raw.rowval, mat.rowval.size(), mat.rowval.data());
}

}  // namespace

void CheckEntries(const RawMatrix& raw) {
  CheckRowStarts(raw);
  CheckColumns(raw);
}

void ExpandSparse(PreparedMatrix& mat, const RawMatrix& raw) {
  BuildFullIndex(mat, raw);
  mat.rowval.Fill(0);
  for (int i = 0; i < raw.nrows; ++i) {
    float* row = mat.rowval.data() + mat.rowptr[i];
    for (int p = raw.rowptr[i]; p < raw.rowptr[i + 1]; ++p) row[raw.rowind[p]] = raw.rowval[p];
  }
}

void SetUpMatrix(const Control& control, PreparedMatrix& mat, const RawMatrix& raw) {
  mat.nrows = raw.nrows;
  mat.ncols = raw.ncols;
  if (raw.dense()) {
    CopyDense(mat, raw);
  } else {
    CheckEntries(raw);
    const bool full = raw.rowptr[raw.nrows] == raw.cells();
    if (control.simfun == MOLVA_SIM_COSINE || (control.simfun == MOLVA_SIM_CORRELATION && full)) {
      CopySparse(mat, raw);
    } else if (control.simfun == MOLVA_SIM_CORRELATION) {
      ExpandSparse(mat, raw);
    } else {
      FatalError("Unknown similarity function: %d\n", control.simfun);
    }
  }
  // A sparse file in which every entry happens to be stored counts as dense, on purpose.
  mat.sparse = EntryCount(mat) < raw.cells() ? 1 : 0;
}

// The entries themselves stay where they are.
void DropEmptyRows(PreparedMatrix& mat, Span<int> rperm) {
  int kept = 0;
  for (int i = 0; i < mat.nrows; ++i) {
    const int end = mat.rowptr[i + 1];
    if (end == mat.rowptr[kept]) continue;
    rperm[kept] = i;
    mat.rowptr[++kept] = end;
  }
  mat.nrows = kept;
}

void PrepareMatrix(const Control& control, PreparedMatrix& mat, Span<int> rperm, Span<int> cperm) {
  ApplyRowModel(control, mat);
  ComputeScaleFactors(control, mat);
  NormalizeRows(control, mat);
  if (mat.sparse != 0) {
    SimilarityBasedFeatureSelection(control, mat, cperm);
    DropEmptyRows(mat, rperm);
    NormalizeRows(control, mat);
  } else {
    std::iota(rperm.begin(), rperm.end(), 0);
    std::iota(cperm.begin(), cperm.end(), 0);
  }
}

PreparedCopy MakePreparedCopy(const Control& control, const RawMatrix& raw, const char* routine,
                              Clustering clustering) {
  PreparedCopy copy;
  copy.rperm = AllocInts(raw.nrows, {routine, ": rperm"});
  copy.cperm = AllocInts(raw.ncols, {routine, ": cperm"});
  if (clustering == Clustering::kMapped) copy.ppart = AllocInts(raw.nrows, {routine, ": ppart"});
  copy.mat = CreateMatrix();
  SetUpMatrix(control, *copy.mat, raw);
  PrepareMatrix(control, *copy.mat, copy.rperm, copy.cperm);
  copy.nrows = copy.mat->nrows;
  return copy;
}

void MapPartIn(PreparedCopy& copy, Span<const int> part) {
  for (int i = 0; i < copy.nrows; ++i) {
    copy.ppart[i] = part[copy.rperm[i]];
  }
}

void MapPartOut(const PreparedCopy& copy, Span<int> part) {
  std::fill(part.begin(), part.end(), -1);
  for (int i = 0; i < copy.nrows; ++i) {
    part[copy.rperm[i]] = copy.ppart[i];
  }
}

}  // namespace molva
