// SPDX-License-Identifier: MIT
//
// Leaving out columns of a row-compressed matrix.
#pragma once

#include <cstddef>

#include "lib/support/span.h"

namespace molva {

// The arrays of a row-compressed matrix.
struct CompressedRows {
  int nrows;
  int* rowptr;
  int* rowind;
  float* rowval;
};

// Keeps the columns j with keep(j) and numbers them 0, 1, ... in their order, in place; entries
// keep their order within a row. map[new] = map[old]; cmap is work space, both of one element per
// column. Returns the number of columns kept.
template <typename Keep>
int CompactColumns(const CompressedRows& rows, Span<int> map, Span<int> cmap, Keep keep) {
  int kept_columns = 0;
  for (std::size_t j = 0; j < cmap.size(); ++j) {
    cmap[j] = keep(j) ? kept_columns : -1;
    if (cmap[j] < 0) continue;
    map[kept_columns++] = map[j];
  }
  int kept_entries = 0;
  int begin = 0;
  for (int i = 0; i < rows.nrows; ++i) {
    const int end = rows.rowptr[i + 1];
    for (int p = begin; p < end; ++p) {
      const int column = cmap[rows.rowind[p]];
      if (column < 0) continue;
      rows.rowind[kept_entries] = column;
      rows.rowval[kept_entries++] = rows.rowval[p];
    }
    begin = end;
    rows.rowptr[i + 1] = kept_entries;
  }
  return kept_columns;
}

}  // namespace molva
