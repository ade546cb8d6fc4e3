// SPDX-License-Identifier: MIT
#include "programs/io/matrix.h"

namespace mardle {

void InitMatrix(Matrix& mat) { mat = Matrix(); }

molva::Owned<Matrix> CreateMatrix() { return molva::AllocRecord<Matrix>("CreateMatrix: mat"); }

void FreeMatrix(Matrix& mat) { molva::FreeAll(mat.rowptr, mat.rowind, mat.rowval); }

std::int64_t NonZeroCount(const Matrix& mat) {
  if (mat.rowptr) return mat.rowptr[mat.nrows];
  return static_cast<std::int64_t>(mat.nrows) * mat.ncols;
}

}  // namespace mardle
