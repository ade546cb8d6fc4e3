// SPDX-License-Identifier: MIT
#include "programs/data_numbers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "lib/support/alloc.h"

namespace {

using mardle::Matrix;
using mardle::RunParams;

constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();

// A dense matrix of two columns, or, with `columns`, a sparse one of two entries a row.
Matrix MatrixOf(const std::vector<float>& values, const std::vector<int>& columns = {}) {
  Matrix mat;
  mat.nrows = static_cast<int>(values.size()) / 2;
  mat.ncols = columns.empty() ? 2 : 4;
  mat.rowval = molva::AllocFloats(static_cast<int>(values.size()), "rowval");
  std::copy(values.begin(), values.end(), mat.rowval.get());
  if (columns.empty()) return mat;
  mat.rowptr = molva::AllocInts(mat.nrows + 1, "rowptr");
  for (int i = 0; i <= mat.nrows; ++i) mat.rowptr[i] = 2 * i;
  mat.rowind = molva::AllocInts(static_cast<int>(columns.size()), "rowind");
  std::copy(columns.begin(), columns.end(), mat.rowind.get());
  return mat;
}

bool Bring(const Matrix& mat, int rowmodel = 1) {
  RunParams params;
  params.rowmodel = rowmodel;
  params.colmodel = 1;
  return mardle::DataBringNotANumber(params, mat);
}

TEST(DataNumbers, BringNothingButNumbersAsARule) {
  for (const int rowmodel : {1, 2, 3, 4}) EXPECT_FALSE(Bring(MatrixOf({1, 2, 3, 4}), rowmodel));
}

TEST(DataNumbers, MayHoldNotANumberOfEitherSign) {
  EXPECT_TRUE(Bring(MatrixOf({1, 2, kNotANumber, 4})));
  EXPECT_TRUE(Bring(MatrixOf({1, 2, -kNotANumber, 4})));
}

TEST(DataNumbers, BecomeNotANumberWhereALogarithmIsTakenOfANegativeOne) {
  EXPECT_FALSE(Bring(MatrixOf({1, -2, 3, 4}), 3));
  EXPECT_TRUE(Bring(MatrixOf({1, -2, 3, 4}), 4));
}

// Zero by zero is made, not brought.
TEST(DataNumbers, AreNumbersInARowOfZerosUnderMaxTf) {
  EXPECT_FALSE(Bring(MatrixOf({0, 0, 3, 4}), 2));
}

// Infinity by its own length is made, too.
TEST(DataNumbers, AreNumbersWhenInfinite) { EXPECT_FALSE(Bring(MatrixOf({INFINITY, 1, 3, 4}))); }

// A column of one row is dropped, and what it holds with it.
TEST(DataNumbers, CountOnlyInColumnsThatAreKept) {
  EXPECT_FALSE(Bring(MatrixOf({1, 2, 1, kNotANumber}, {0, 1, 0, 2})));
  EXPECT_TRUE(Bring(MatrixOf({1, 2, kNotANumber, 2}, {0, 1, 0, 1})));
}

}  // namespace
