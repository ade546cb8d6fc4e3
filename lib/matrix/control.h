// SPDX-License-Identifier: MIT
//
// What every routine of the engine is given: codes, limits, debug bits, and the caller's matrix.
#pragma once

#include <algorithm>
#include <cstdint>

#include "lib/molva_codes.h"

namespace molva {

// Codes come unchecked from the caller; the routine that acts on one ends the run when it is
// unknown.
struct Control {
  int simfun = MOLVA_SIM_COSINE;
  int crfun = 0;
  int rowmodel = MOLVA_ROW_NONE;
  int colmodel = MOLVA_COL_NONE;
  float prune = 1.0F;
  int ntrials = 0;
  int niter = 0;
  int dbglvl = 0;
  int seed = 0;
};

inline bool HasDebugBit(const Control& control, MOLVA_Debug bit) {
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
