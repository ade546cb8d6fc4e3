// SPDX-License-Identifier: MIT
//
// The engine's own working matrix. After preparation its rows are unit (or zero) vectors, so that
// the similarity of two rows is their dot product.
#pragma once

#include <cstddef>
#include <span>

#include "lib/support/alloc.h"

namespace molva {

// How large a row d is; each number is rounded up. A row may store a column more than once.
struct RowSize {
  double square = 0;    // the sum of v^2: |d|^2 where all columns differ
  double length = 0;    // |d|, entries in one column added up
  double absolute = 0;  // |d|_1, the sum of |v|
  double largest = 0;   // the largest |value|, entries in one column added up
  int additions = 1;    // the most entries that one column can have

  bool ColumnsDiffer() const { return additions <= 1; }
};

struct PreparedMatrix {
  int sparse = 0;  // 1 when fewer than nrows * ncols entries are stored; decides IDF and pruning
  int nrows = -1;
  int ncols = -1;
  Array<int> rowptr;       // nrows + 1 row starts
  Array<int> rowind;       // the column of each entry
  Array<float> rowval;     // the value of each entry
  Array<RowSize> rowsize;  // the size of each row; empty until the rows are measured
  Array<int> colptr;       // ncols + 1 column starts; empty until a column copy is built
  Array<int> colind;       // the row of each entry, increasing within a column
  Array<float> colval;     // the value of each entry
};

// A record without rows, in a block named "CreateMatrix: mat".
Owned<PreparedMatrix> CreateMatrix();

// Releases the record and its arrays; the handle is null afterwards.
void FreeMatrix(Owned<PreparedMatrix>& mat);

// The stored entries of one row, in stored order.
struct RowView {
  std::span<const int> columns;
  std::span<const float> values;
  std::size_t size() const { return columns.size(); }
};

inline RowView Row(const PreparedMatrix& mat, int i) {
  const int begin = mat.rowptr[i];
  const auto size = static_cast<std::size_t>(mat.rowptr[i + 1] - begin);
  return {{mat.rowind.data() + begin, size}, {mat.rowval.data() + begin, size}};
}

// Rows that are taken in a random order would be waited for. So what tells of a row is asked for a
// while before it is needed, and soon after that its entries.
constexpr int kRowsAhead = 4;
void AskForRows(const PreparedMatrix& mat, std::span<const int> order, int position);

std::span<float> RowValues(PreparedMatrix& mat, int i);

// Builds the column-compressed copy: colptr, colind, colval.
void CreateColMat(PreparedMatrix& mat);

// The number of stored entries.
int EntryCount(const PreparedMatrix& mat);

}  // namespace molva
