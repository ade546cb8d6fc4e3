// SPDX-License-Identifier: MIT
//
// What every routine of the engine is told: codes, limits, debug bits, and the caller's matrix.
#pragma once

#include <algorithm>
#include <cstdint>

namespace molva {

enum Similarity : int { kCosine = 1, kCorrelation = 2 };
enum RowModel : int { kRowNone = 1, kRowMaxTf = 2, kRowSqrt = 3, kRowLog = 4 };
enum ColumnModel : int { kColumnNone = 1, kColumnIdf = 2 };

// Debug levels are sums of these.
enum DebugBit : int { kDebugClustering = 1, kDebugRefinement = 2, kDebugMerging = 4 };

// Codes come unchecked from the caller; the routine that acts on one ends the run when it is
// unknown.
struct Control {
  int simfun = kCosine;
  int crfun = 0;
  int rowmodel = kRowNone;
  int colmodel = kColumnNone;
  float prune = 1.0F;
  int ntrials = 0;
  int niter = 0;
  int dbglvl = 0;
  int seed = 0;
};

inline bool HasDebugBit(const Control& control, DebugBit bit) {
  return (control.dbglvl & bit) != 0;
}

// The caller's matrix: row-compressed, or dense row by row when rowptr is null. Negative counts are
// taken as 0.
struct RawMatrix {
  RawMatrix(int row_count, int column_count, const int* row_starts, const int* columns,
            const float* values)
      : nrows(std::max(row_count, 0)),
        ncols(std::max(column_count, 0)),
        rowptr(row_starts),
        rowind(columns),
        rowval(values) {}

  bool dense() const { return rowptr == nullptr; }
  std::int64_t cells() const { return static_cast<std::int64_t>(nrows) * ncols; }

  int nrows;
  int ncols;
  const int* rowptr;    // nrows + 1 row starts
  const int* rowind;    // the column of each entry
  const float* rowval;  // the value of each entry, or all nrows * ncols of them
};

}  // namespace molva
