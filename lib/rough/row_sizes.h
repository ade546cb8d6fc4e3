// SPDX-License-Identifier: MIT
//
// What the error bounds of rough arithmetic need to know of each row. Rows do not change while they
// are clustered, so their sizes are measured once for all trials.
#pragma once

#include "lib/matrix/prepared_matrix.h"

namespace molva {

RowSize SizeOf(const RowView& row);

// Fills mat.rowsize, in a block of the given name.
void MeasureRows(PreparedMatrix& mat, BlockName name);

// The size of row i, measured on the spot where that was not done before.
inline RowSize SizeOfRow(const PreparedMatrix& mat, int i) {
  return mat.rowsize ? mat.rowsize[i] : SizeOf(Row(mat, i));
}

}  // namespace molva
