// SPDX-License-Identifier: MIT
//
// The engine's own working matrix. After preparation its rows are unit (or zero) vectors, so that
// the similarity of two rows is their dot product.
#pragma once

#include <cstddef>

#include "lib/support/alloc.h"
#include "lib/support/span.h"

namespace molva {

struct PreparedMatrix {
  int sparse = 0;  // 1 when fewer than nrows * ncols entries are stored; decides IDF and pruning
  int nrows = -1;
  int ncols = -1;
  Array<int> rowptr;    // nrows + 1 row starts
  Array<int> rowind;    // the column of each entry
  Array<float> rowval;  // the value of each entry
  Array<int> colptr;    // ncols + 1 column starts; empty until a column copy is built
  Array<int> colind;    // the row of each entry, increasing within a column
  Array<float> colval;  // the value of each entry
};

// A record without rows, in a block named "CreateMatrix: mat".
Owned<PreparedMatrix> CreateMatrix();

// Releases the record and its arrays; the handle is null afterwards.
void FreeMatrix(Owned<PreparedMatrix>& mat);

// The stored entries of one row, in stored order.
struct RowView {
  Span<const int> columns;
  Span<const float> values;
  std::size_t size() const { return columns.size(); }
};

inline RowView Row(const PreparedMatrix& mat, int i) {
  const int begin = mat.rowptr[i];
  const int size = mat.rowptr[i + 1] - begin;
  return {{mat.rowind.data() + begin, size}, {mat.rowval.data() + begin, size}};
}

Span<float> RowValues(PreparedMatrix& mat, int i);

// Builds the column-compressed copy: colptr, colind, colval.
void CreateColMat(PreparedMatrix& mat);

// The number of stored entries.
int EntryCount(const PreparedMatrix& mat);

}  // namespace molva
