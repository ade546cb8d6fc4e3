// SPDX-License-Identifier: MIT
#include "lib/tree/tree_composites.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/testing/allocation.h"
#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::BlockNames;
using testing_support::PreparedOf;
using Floats = std::vector<float>;
using Ints = std::vector<int>;
using Names = std::vector<std::string>;

Floats VectorOf(std::span<const float> values) { return {values.begin(), values.end()}; }

Ints VectorOf(const Array<int>& values) { return {values.begin(), values.end()}; }

// Clusters 0 and 2 are joined first, then cluster 1.
const Ints kThreeLeaves = {3, 4, 3, 4, -1, -1};

TEST(TreeComposites, SumTheRowsBelowEachNode) {
  const auto mat = PreparedOf({{1, 0}, {0, 2}, {4, 4}, {1, 0}});
  const TreeComposites tree = SumBelowNodes(*mat, 3, Ints{0, 1, 2, 0}, kThreeLeaves, "Test: pwgts");
  EXPECT_EQ(VectorOf(tree.pwgts), (Ints{2, 1, 1, 3, 4, 0}));
  EXPECT_EQ(VectorOf(tree.centers[0]), (Floats{2, 0}));
  EXPECT_EQ(VectorOf(tree.centers[1]), (Floats{0, 2}));
  EXPECT_EQ(VectorOf(tree.centers[2]), (Floats{4, 4}));
  EXPECT_EQ(VectorOf(tree.centers[3]), (Floats{6, 4}));
  EXPECT_EQ(VectorOf(tree.centers[4]), (Floats{6, 6}));
}

TEST(TreeComposites, ListTheSmallerChildFirst) {
  const auto mat = PreparedOf({{1, 0}, {0, 2}, {4, 4}});
  const TreeComposites tree = SumBelowNodes(*mat, 3, Ints{0, 1, 2}, kThreeLeaves, "Test: pwgts");
  EXPECT_EQ(VectorOf(tree.ftree), (Ints{-1, -1, -1, -1, -1, -1, 0, 2, 1, 3, -1, -1}));
}

TEST(TreeComposites, OfOneClusterAreThoseOfTheCluster) {
  const auto mat = PreparedOf({{1, 0}, {0, 2}});
  const TreeComposites tree = SumBelowNodes(*mat, 1, Ints{0, 0}, Ints{-1, -1}, "Test: pwgts");
  EXPECT_EQ(VectorOf(tree.pwgts), (Ints{2, 0}));
  EXPECT_EQ(VectorOf(tree.centers[0]), (Floats{1, 2}));
}

// Cluster 1 is empty: it has no parent, and node 4 stands for nothing.
TEST(TreeComposites, LeaveOutAnEmptyCluster) {
  const auto mat = PreparedOf({{1, 0}, {0, 2}});
  const TreeComposites tree =
      SumBelowNodes(*mat, 3, Ints{0, 2}, Ints{3, -1, 3, -1, -1, -1}, "Test: pwgts");
  EXPECT_EQ(VectorOf(tree.pwgts), (Ints{1, 0, 1, 2, 0, 0}));
  EXPECT_EQ(VectorOf(tree.centers[3]), (Floats{1, 2}));
  EXPECT_EQ(VectorOf(tree.centers[4]), (Floats{0, 0}));
}

TEST(TreeComposites, SkipRowsWithoutACluster) {
  const auto mat = PreparedOf({{1, 0}, {0, 2}, {4, 4}, {9, 9}, {9, 9}});
  const TreeComposites tree =
      SumBelowNodes(*mat, 3, Ints{0, 1, 2, -1, 3}, kThreeLeaves, "Test: pwgts");
  EXPECT_EQ(VectorOf(tree.pwgts), (Ints{1, 1, 1, 2, 3, 0}));
  EXPECT_EQ(VectorOf(tree.centers[4]), (Floats{5, 6}));
}

// The names of the child table and of the composites are those of other routines.
TEST(TreeComposites, NameTheirBlocks) {
  const auto mat = PreparedOf({{1, 0}, {0, 2}});
  const Names names = BlockNames([&] {
    SumBelowNodes(*mat, 1, Ints{0, 0}, Ints{-1, -1}, "Test: pwgts");
  });
  const std::string centers = "GetClusterStats: centers";
  EXPECT_EQ(names, (Names{"ShowTreeStats: ftree", centers, centers, centers, "Test: pwgts"}));
}

}  // namespace
}  // namespace molva
