// SPDX-License-Identifier: MIT
//
// From the caller's matrix to the prepared copy that every entry point works on.
#pragma once

#include "lib/matrix/control.h"
#include "lib/matrix/prepared_matrix.h"
#include "lib/support/span.h"

namespace molva {

// Fills `mat` from the caller's arrays. Under the correlation coefficient and for dense input every
// cell is stored, zeros included. Ends the run on an unknown similarity with sparse input
// ("Unknown similarity function: %d\n"), on row starts that do not grow from 0, on a column outside
// 0 to ncols-1, and when there are more cells to store than an int can number.
void SetUpMatrix(const Control& control, PreparedMatrix& mat, const RawMatrix& raw);

// Ends the run on row starts that do not grow from 0 and on a column outside 0 to ncols-1.
void CheckEntries(const RawMatrix& raw);

// Stores every cell of a sparse matrix of the same shape, row by row; a column stored twice in a
// row keeps its last value.
void ExpandSparse(PreparedMatrix& mat, const RawMatrix& raw);

// Drops the rows without entries; rperm[row kept] = its number before.
void DropEmptyRows(PreparedMatrix& mat, Span<int> rperm);

// Row model, column model, normalisation; then, for a sparse matrix, column pruning, removal of
// rows without entries, and normalisation once more. rperm[prepared row] = caller's row and
// cperm[prepared column] = caller's column.
void PrepareMatrix(const Control& control, PreparedMatrix& mat, Span<int> rperm, Span<int> cperm);

// A prepared copy of the caller's matrix with its maps back. The routine's name names the blocks
// "NAME: rperm", "NAME: cperm" and "NAME: ppart".
struct PreparedCopy {
  Array<int> rperm;  // caller's row of each prepared row
  Array<int> cperm;  // caller's column of each prepared column
  Array<int> ppart;  // cluster of each prepared row
  Owned<PreparedMatrix> mat;
  int nrows = 0;  // prepared rows; workers may give the matrix up early

  // ppart and rperm cut to the prepared rows.
  Span<int> part() { return {ppart.data(), nrows}; }
  Span<const int> rows() const { return {rperm.data(), nrows}; }
};

// Without a clustering to map there is no ppart.
enum class Clustering { kMapped, kNone };
PreparedCopy MakePreparedCopy(const Control& control, const RawMatrix& raw, const char* routine,
                              Clustering clustering = Clustering::kMapped);

// Fills ppart from the caller's clustering.
void MapPartIn(PreparedCopy& copy, Span<const int> part);

// Fills the caller's clustering from ppart; rows that preparation dropped get -1.
void MapPartOut(const PreparedCopy& copy, Span<int> part);

}  // namespace molva
