// SPDX-License-Identifier: MIT
#include "lib/rough/row_sizes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::PreparedOf;
using testing_support::SparseMatrix;

// One row as it is stored, columns repeated or out of order included.
Owned<PreparedMatrix> StoredRow(const std::vector<int>& columns, const std::vector<float>& values) {
  auto mat = CreateMatrix();
  mat->nrows = 1;
  mat->ncols = 10;
  mat->rowptr = AllocInts(2, "Test");
  mat->rowptr[0] = 0;
  mat->rowptr[1] = static_cast<int>(columns.size());
  mat->rowind = AllocInts(mat->rowptr[1], "Test");
  mat->rowval = AllocFloats(mat->rowptr[1], "Test");
  std::copy(columns.begin(), columns.end(), mat->rowind.data());
  std::copy(values.begin(), values.end(), mat->rowval.data());
  return mat;
}

TEST(RowSize, TellsTheNormsOfARow) {
  const RowSize size = SizeOf(Row(*PreparedOf({{3, 0, -4}}), 0));
  EXPECT_EQ(size.square, 25);
  EXPECT_GE(size.absolute, 7);
  EXPECT_LE(size.absolute, 7 * (1 + 1e-12));
  EXPECT_GE(size.length, 5);
  EXPECT_LE(size.length, 5 * (1 + 1e-12));
  EXPECT_EQ(size.largest, 4);
}

TEST(RowSize, OfARowThatIsMeasuredOnTheSpotIsTheSame) {
  auto mat = PreparedOf({{3, 0, -4}, {0, 1, 1}});
  const RowSize on_the_spot = SizeOfRow(*mat, 1);
  MeasureRows(*mat, "Test: sizes");
  EXPECT_EQ(SizeOfRow(*mat, 1).length, on_the_spot.length);
}

// Entries in one column add up: (3 + 4, 0) is longer than (3, 4).
TEST(RowSize, BoundsTheLengthOfARowThatRepeatsAColumn) {
  auto mat = StoredRow({5, 5}, {3, 4});
  MeasureRows(*mat, "Test: sizes");
  EXPECT_EQ(mat->rowsize[0].square, 25);
  EXPECT_GE(mat->rowsize[0].length, 7);
}

TEST(RowSize, IsExactForColumnsOutOfOrder) {
  auto mat = StoredRow({5, 2}, {3, 4});
  MeasureRows(*mat, "Test: sizes");
  EXPECT_LE(mat->rowsize[0].length, 5 * (1 + 1e-12));
}

TEST(RowSize, IsNotANumberWhereAValueIsNone) {
  const RowSize size = SizeOf(Row(*StoredRow({1, 2}, {1, std::nanf("")}), 0));
  EXPECT_TRUE(std::isnan(size.square));
  EXPECT_TRUE(std::isnan(size.absolute));
  EXPECT_TRUE(std::isnan(size.largest));
}

}  // namespace
}  // namespace molva
