// SPDX-License-Identifier: MIT
#include "lib/matrix/prune.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::PreparedOf;

// The columns that pruning keeps, by their old numbers.
std::vector<int> Kept(const std::vector<std::vector<float>>& rows, float fraction) {
  const auto mat = PreparedOf(rows);
  std::vector<int> cperm(static_cast<std::size_t>(mat->ncols));
  SimilarityBasedFeatureSelection({.prune = fraction}, *mat, cperm);
  cperm.resize(static_cast<std::size_t>(mat->ncols));
  return cperm;
}

// Column sums 8, 4, 1 over two rows each, and column 3 in one row only. Squared weights are
// 64, 16, 1 and 4 of 85.
const std::vector<std::vector<float>> kRows = {{4, 2, 0, 2}, {4, 0, 0.5F, 0}, {0, 2, 0.5F, 0}};

TEST(ColumnPruning, DropsAColumnThatOccursInOneRowEvenAtTheDefault) {
  EXPECT_EQ(Kept(kRows, 1.0F), (std::vector<int>{0, 1, 2}));
}

TEST(ColumnPruning, KeepsTheColumnThatCarriesTheSumPastTheSquaredFraction) {
  // 64/85 = 0.753 reaches 0.75 = 0.866^2 with the first column alone.
  EXPECT_EQ(Kept(kRows, 0.866F), (std::vector<int>{0}));
  // 0.9^2 = 0.81 needs the second column.
  EXPECT_EQ(Kept(kRows, 0.9F), (std::vector<int>{0, 1}));
}

TEST(ColumnPruning, AFractionOfZeroKeepsTheHeaviestColumn) {
  EXPECT_EQ(Kept(kRows, 0.0F), (std::vector<int>{0}));
}

TEST(ColumnPruning, AFractionOfZeroKeepsWeightlessColumnsThatComeBeforeTheFirstWithWeight) {
  // Column 0 sums to 0 and is ranked before the negative column 1, whose square ends the walk.
  EXPECT_EQ(Kept({{1, -1, 0}, {-1, -1, -1}, {0, 0, -1}}, 0.0F), (std::vector<int>{0, 1}));
}

TEST(ColumnPruning, ANegativeFractionBehavesLikeItsAbsoluteValue) {
  EXPECT_EQ(Kept(kRows, -0.9F), Kept(kRows, 0.9F));
}

TEST(ColumnPruning, KeepsTheEntriesOfKeptColumnsInTheirOrder) {
  const auto mat = PreparedOf(kRows);
  std::vector<int> cperm(4);
  const std::vector<int> rmvec = {1, 0, 2, 0};
  EliminateColumns(*mat, rmvec, cperm);
  EXPECT_EQ(mat->ncols, 2);
  EXPECT_EQ(std::vector<int>(mat->rowptr.begin(), mat->rowptr.end()),
            (std::vector<int>{0, 2, 2, 3}));
  EXPECT_EQ(std::vector<int>(mat->rowind.begin(), mat->rowind.begin() + 3),
            (std::vector<int>{0, 1, 0}));
  EXPECT_EQ(std::vector<float>(mat->rowval.begin(), mat->rowval.begin() + 3),
            (std::vector<float>{2, 2, 2}));
  EXPECT_EQ(cperm[0], 1);
  EXPECT_EQ(cperm[1], 3);
}

}  // namespace
}  // namespace molva
