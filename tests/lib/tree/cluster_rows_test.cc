// SPDX-License-Identifier: MIT
//
// Agglomerative clustering of the rows, MOLVA_VA_Cluster.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "lib/matrix/control.h"
#include "lib/molva.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"
#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::OutputOf;
using testing_support::SparseMatrix;
using testing_support::SparseOf;

struct Result {
  explicit Result(int n)
      : part(static_cast<std::size_t>(n), -7), ptree(2 * part.size(), -7), tsims(ptree.size(), 9) {}
  std::vector<int> part, ptree;
  std::vector<float> tsims;
};

Result Clustered(const SparseMatrix& m, int nparts, int dbglvl = 0) {
  Result result(m.nrows);
  MOLVA_VA_Cluster(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                   MOLVA_SIM_COSINE, 2, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, dbglvl, nparts,
                   result.part.data(), result.ptree.data(), result.tsims.data());
  return result;
}

// Rows 1 and 4 are empty, the others form two groups.
SparseMatrix TwoGroups() {
  return SparseOf({{1, 0}, {0, 0}, {0, 1}, {1, 0}, {0, 0}, {0, 1}, {1, 0}});
}

TEST(RowMerging, ClustersTheRowsAndLeavesDroppedOnesOut) {
  const Result result = Clustered(TwoGroups(), 2);
  EXPECT_EQ(result.part[1], -1);
  EXPECT_EQ(result.part[4], -1);
  EXPECT_EQ(result.part[0], result.part[3]);
  EXPECT_EQ(result.part[0], result.part[6]);
  EXPECT_EQ(result.part[2], result.part[5]);
  EXPECT_NE(result.part[0], result.part[2]);
}

TEST(RowMerging, NumbersTheNodesOfTheTreeFromTheNumberOfRowsOn) {
  // Five rows are left of seven: nodes 7 to 10, the root is 10.
  const Result result = Clustered(TwoGroups(), 2);
  EXPECT_EQ(result.ptree[1], -1);
  EXPECT_EQ(result.ptree[4], -1);
  EXPECT_EQ(std::count(result.ptree.begin(), result.ptree.end(), 10), 2);
  EXPECT_EQ(result.ptree[10], -1);
  for (std::size_t x = 11; x < 14; ++x) EXPECT_EQ(result.ptree[x], -1);
  // Equal rows first, the two groups last.
  for (std::size_t x = 7; x < 10; ++x) EXPECT_EQ(result.tsims[x], 1);
  EXPECT_EQ(result.tsims[10], 0);
  for (std::size_t leaf = 0; leaf < 7; ++leaf) EXPECT_EQ(result.tsims[leaf], 0);
}

TEST(RowMerging, ReportsItsProgressAtTheFirstBit) {
  // Of 25 products of the five rows 9 + 4 are above 0.
  EXPECT_EQ(OutputOf([] { Clustered(TwoGroups(), 2, 1); }),
            "Computing pairwise similarities:.:Done! (5, fill=0.520)\n"
            "Populating the priority queue... Done!\n");
}

TEST(RowMerging, EndsTheRunWhenThereAreMoreClustersThanRows) {
  EXPECT_FATAL(Clustered(TwoGroups(), 6), "Cannot cut a tree over 5 items into 6 clusters!\n");
}

TEST(RowMerging, EndsTheRunBeforeItAsksForTheMatrixOfTooManyRows) {
  const std::vector<float> values(65537, 1.0F);
  Result result(65537);
  EXPECT_FATAL(MOLVA_VA_Cluster(65537, 1, nullptr, nullptr, values.data(), MOLVA_SIM_COSINE, 2,
                                MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 0, 1, result.part.data(),
                                result.ptree.data(), result.tsims.data()),
               "A tree over 65537 items cannot be built, the most is 65536!\n");
}

}  // namespace
}  // namespace molva
