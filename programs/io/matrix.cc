// SPDX-License-Identifier: MIT
#include "programs/io/matrix.h"

#include <array>
#include <cstdio>

namespace mardle {

const char* Labels::operator[](std::int64_t i) const {
  const auto slot = static_cast<std::size_t>(i);
  if (texts_[slot] == nullptr) {
    std::array<char, 64> label;
    std::snprintf(label.data(), label.size(), "%s%05zu", prefix_, slot + 1);
    texts_.Set(slot, label.data());
  }
  return texts_[slot];
}

void InitMatrix(Matrix& mat) { mat = Matrix(); }

molva::Owned<Matrix> CreateMatrix() { return molva::AllocRecord<Matrix>("CreateMatrix: mat"); }

void FreeMatrix(Matrix& mat) { molva::FreeAll(mat.rowptr, mat.rowind, mat.rowval); }

std::int64_t NonZeroCount(const Matrix& mat) {
  if (mat.rowptr) return mat.rowptr[mat.nrows];
  return static_cast<std::int64_t>(mat.nrows) * mat.ncols;
}

}  // namespace mardle
