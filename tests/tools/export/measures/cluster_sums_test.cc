// SPDX-License-Identifier: MIT
#include "tools/export/measures/cluster_sums.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/tools/export/measures/matrices.h"

namespace {

using mardle::Matrix;
using mardle::exporting::ClusterRows;
using mardle::exporting::ClusterSums;
using mardle::exporting::NearestClusters;
using mardle::exporting::ProductsOfSums;
using testing_support::PlainInput;
using testing_support::SparseMatrixOf;

// Rows along the axes and one between them; cluster 2 has no row in common with cluster 0.
const std::vector<int> kPart = {0, 0, 1, 2, 2};
Matrix FiveRows() {
  return SparseMatrixOf({{4, 0, 0}, {1, 0, 0}, {3, 4, 0}, {0, 2, 0}, {0, 3, 4}});
}

TEST(ClusterSums, AreOfUnitLength) {
  const Matrix mat = FiveRows();
  const ClusterSums sums(PlainInput(mat, kPart, 3), ClusterRows(kPart, 3));
  ASSERT_EQ(sums[1].size(), 2U);
  EXPECT_EQ(sums[1][0].column, 0);
  EXPECT_FLOAT_EQ(static_cast<float>(sums[1][0].value), 0.6F);
  EXPECT_FLOAT_EQ(static_cast<float>(sums[1][1].value), 0.8F);
}

TEST(ClusterSums, AreWeakWhereTheRestIsStronger) {
  // Cluster 1 is (0.6, 0.8), the rest (2, 1.6) along (0.78, 0.62): it is weaker in column 0 only.
  // Column 2 is in one row, so preparation drops it.
  const Matrix mat = FiveRows();
  const ClusterSums sums(PlainInput(mat, kPart, 3), ClusterRows(kPart, 3));
  EXPECT_TRUE(sums.IsWeaker(1, 0));
  EXPECT_FALSE(sums.IsWeaker(1, 1));
  EXPECT_FALSE(sums.IsWeaker(0, 0));
  EXPECT_TRUE(sums.IsWeaker(0, 1));
}

TEST(ClusterSums, OfAllRowsAreWeakerInNothing) {
  const Matrix mat = FiveRows();
  const std::vector<int> part(5, 0);
  const ClusterSums sums(PlainInput(mat, part, 1), ClusterRows(part, 1));
  EXPECT_FALSE(sums.IsWeaker(0, 0));
}

TEST(ClusterSums, HaveTheirProducts) {
  // The sums are (2, 0), (0.6, 0.8) and (0, 2): both rows of cluster 2 are left with column 1.
  const Matrix mat = FiveRows();
  const ClusterSums sums(PlainInput(mat, kPart, 3), ClusterRows(kPart, 3));
  const std::vector<float> wanted = {4, 1.2F, 0, 1.2F, 1, 1.6F, 0, 1.6F, 4};
  const std::vector<float> products = ProductsOfSums(sums);
  ASSERT_EQ(products.size(), wanted.size());
  for (std::size_t i = 0; i < wanted.size(); ++i) EXPECT_NEAR(products[i], wanted[i], 1e-5);
}

TEST(NearestClusters, ComeByTheCosineOfTheirSums) {
  const Matrix mat = FiveRows();
  const auto nearest =
      NearestClusters(ClusterSums(PlainInput(mat, kPart, 3), ClusterRows(kPart, 3)), 3);
  ASSERT_EQ(nearest[1].size(), 2U);
  EXPECT_EQ(nearest[1][0].cluster, 2);
  EXPECT_NEAR(nearest[1][0].similarity, 0.8, 1e-6);
  EXPECT_EQ(nearest[1][1].cluster, 0);
  EXPECT_NEAR(nearest[1][1].similarity, 0.6, 1e-6);
}

TEST(NearestClusters, ShareAColumn) {
  const Matrix mat = FiveRows();
  const auto nearest =
      NearestClusters(ClusterSums(PlainInput(mat, kPart, 3), ClusterRows(kPart, 3)), 3);
  ASSERT_EQ(nearest[0].size(), 1U);
  EXPECT_EQ(nearest[0][0].cluster, 1);
}

TEST(NearestClusters, AreNoMoreThanAskedForAndTheLowerNumberOfEquals) {
  const Matrix mat = SparseMatrixOf({{1, 1}, {1, 1}, {1, 1}, {1, 1}});
  const std::vector<int> part = {0, 1, 2, 3};
  const auto nearest =
      NearestClusters(ClusterSums(PlainInput(mat, part, 4), ClusterRows(part, 4)), 2);
  ASSERT_EQ(nearest[1].size(), 2U);
  EXPECT_EQ(nearest[1][0].cluster, 0);
  EXPECT_EQ(nearest[1][1].cluster, 2);
}

}  // namespace
