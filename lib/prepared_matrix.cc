// SPDX-License-Identifier: MIT
#include "lib/prepared_matrix.h"

namespace molva {

Owned<PreparedMatrix> CreateMatrix() { return AllocRecord<PreparedMatrix>("CreateMatrix: mat"); }

void FreeMatrix(Owned<PreparedMatrix>& mat) { mat.reset(); }

RowView Row(const PreparedMatrix& mat, int i) {
  const int begin = mat.rowptr[i];
  const auto size = static_cast<std::size_t>(mat.rowptr[i + 1] - begin);
  return {{mat.rowind.data() + begin, size}, {mat.rowval.data() + begin, size}};
}

std::span<float> RowValues(PreparedMatrix& mat, int i) {
  const int begin = mat.rowptr[i];
  return {mat.rowval.data() + begin, static_cast<std::size_t>(mat.rowptr[i + 1] - begin)};
}

int EntryCount(const PreparedMatrix& mat) { return mat.rowptr[mat.nrows]; }

}  // namespace molva
