// SPDX-License-Identifier: MIT
#include "tools/export/measures/column_levels.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/tools/export/measures/matrices.h"

namespace {

using mardle::Matrix;
using mardle::exporting::ClusterRows;
using mardle::exporting::ColumnLevels;
using testing_support::DenseMatrixOf;
using testing_support::SparseMatrixOf;

const std::vector<int> kPart = {0, 0, 0, 1, -1};

TEST(ColumnLevels, AreSharesOfTheRowsThatHoldASparseColumn) {
  const Matrix mat = SparseMatrixOf({{5, 0, 1}, {1, 0, 1}, {0, 2, 1}, {7, 0, 1}, {1, 1, 1}});
  const ColumnLevels levels(mat, ClusterRows(kPart, 2));
  EXPECT_TRUE(levels.are_shares());
  EXPECT_DOUBLE_EQ(levels.Inside(0, 0), 2.0 / 3);
  EXPECT_DOUBLE_EQ(levels.Elsewhere(0, 0), 1);
  EXPECT_DOUBLE_EQ(levels.Inside(1, 1), 0);
  EXPECT_DOUBLE_EQ(levels.Elsewhere(1, 1), 1.0 / 3);  // the row without a cluster does not count
}

TEST(ColumnLevels, CountAColumnThatARowStoresTwiceOnce) {
  Matrix mat = SparseMatrixOf({{1, 1}, {1, 0}});
  mat.rowind[1] = 0;
  const std::vector<int> part = {0, 0};
  EXPECT_DOUBLE_EQ(ColumnLevels(mat, ClusterRows(part, 1)).Inside(0, 0), 1);
}

TEST(ColumnLevels, DoNotCountAZeroThatIsStored) {
  Matrix mat = SparseMatrixOf({{1, 1}, {1, 1}});
  mat.rowval[0] = 0;
  const std::vector<int> part = {0, 0};
  EXPECT_DOUBLE_EQ(ColumnLevels(mat, ClusterRows(part, 1)).Inside(0, 0), 0.5);
}

TEST(ColumnLevels, AreZeroWhereThereAreNoRows) {
  const Matrix mat = SparseMatrixOf({{1}, {1}});
  const std::vector<int> part = {1, 1};
  const ColumnLevels levels(mat, ClusterRows(part, 2));
  EXPECT_EQ(levels.Inside(0, 0), 0);
  EXPECT_EQ(levels.Elsewhere(1, 0), 0);
}

TEST(ColumnLevels, AreAveragesOfADenseColumn) {
  const Matrix mat = DenseMatrixOf({{1, -2}, {2, 0}, {6, 5}, {8, 1}, {99, 99}});
  const ColumnLevels levels(mat, ClusterRows(kPart, 2));
  EXPECT_FALSE(levels.are_shares());
  EXPECT_DOUBLE_EQ(levels.Inside(0, 0), 3);
  EXPECT_DOUBLE_EQ(levels.Elsewhere(0, 0), 8);
  EXPECT_DOUBLE_EQ(levels.Inside(0, 1), 1);
}

TEST(ColumnLevels, StandAboveTheAverageByDeviations) {
  // The average is 4 with a deviation of sqrt((9 + 9 + 1 + 1) / 4).
  const Matrix mat = DenseMatrixOf({{1, 3}, {3, 3}, {5, 3}, {7, 3}, {99, 3}});
  const std::vector<int> part = {0, 0, 1, 1, -1};
  const ColumnLevels levels(mat, ClusterRows(part, 2));
  EXPECT_DOUBLE_EQ(levels.Standing(0, 0), -2 / std::sqrt(5.0));
  EXPECT_DOUBLE_EQ(levels.Standing(1, 0), 2 / std::sqrt(5.0));
  EXPECT_EQ(levels.Standing(1, 1), 0);
}

}  // namespace
