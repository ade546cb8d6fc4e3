// SPDX-License-Identifier: MIT
#include "lib/matrix/submatrix.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::PreparedOf;

template <typename T>
std::vector<T> VectorOf(const Array<T>& array) {
  return {array.begin(), array.end()};
}

TEST(Submatrix, KeepsTheRowsOfTheClusterAndTheColumnsTheyUse) {
  const auto mat = PreparedOf({{1, 0, 0, 2}, {0, 5, 5, 0}, {0, 0, 0, 3}, {4, 0, 0, 0}});
  const std::vector<int> part = {1, 0, 1, 1};
  const auto cluster = Cluster2Matrix(*mat, 1, part);
  EXPECT_EQ(cluster->nrows, 3);
  EXPECT_EQ(cluster->ncols, 2);
  EXPECT_EQ(VectorOf(cluster->rowptr), (std::vector<int>{0, 2, 3, 4}));
  EXPECT_EQ(VectorOf(cluster->rowind), (std::vector<int>{0, 1, 1, 0}));
  EXPECT_EQ(VectorOf(cluster->rowval), (std::vector<float>{1, 2, 3, 4}));
}

TEST(Submatrix, OfAnEmptyClusterHasNoRows) {
  const auto mat = PreparedOf({{1, 2}});
  const std::vector<int> part = {0};
  const auto cluster = Cluster2Matrix(*mat, 3, part);
  EXPECT_EQ(cluster->nrows, 0);
  EXPECT_EQ(cluster->ncols, 0);
}

TEST(EveryColumnOccurs, TellsWhetherACopyOfAllRowsWouldKeepAllColumns) {
  EXPECT_TRUE(EveryColumnOccurs(*PreparedOf({{1, 0, 2}, {0, 5, 0}})));
  EXPECT_FALSE(EveryColumnOccurs(*PreparedOf({{1, 0, 2}, {0, 0, 5}})));
}

}  // namespace
}  // namespace molva
