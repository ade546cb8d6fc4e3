// SPDX-License-Identifier: MIT
#include "tools/export/cluster_tops.h"

#include <gmock/gmock.h>

#include "tests/testing/files.h"
#include "tests/tools/export/failures.h"

namespace {

using mardle::exporting::Clustering;
using mardle::exporting::ClusterTops;
using mardle::exporting::ReadTree;
using mardle::exporting::Tree;
using testing::ElementsAre;
using testing_support::TempFolder;

// ((0, 1), (3, 4)) over five rows, row 2 dropped: 5 = (0, 1), 6 = (3, 4), 7 = (5, 6).
Tree FourRows() {
  const TempFolder folder;
  return ReadTree(folder.Write("t", "5 0\n5 0\n-1 0\n6 0\n6 0\n7 0\n7 0\n-1 0\n-1 0\n"));
}

Clustering Of(std::vector<int> part, int nclusters) {
  Clustering clustering;
  clustering.part = std::move(part);
  clustering.nclusters = nclusters;
  return clustering;
}

TEST(ClusterTops, AreTheNodesAboveTheRowsOfTheClusters) {
  EXPECT_THAT(ClusterTops(FourRows(), Of({1, 1, -1, 0, 0}, 2), "t"), ElementsAre(6, 5));
  EXPECT_THAT(ClusterTops(FourRows(), Of({0, 0, -1, 0, 0}, 1), "t"), ElementsAre(7));
}

TEST(ClusterTops, AreLeavesForClustersOfOneRow) {
  EXPECT_THAT(ClusterTops(FourRows(), Of({0, 2, -1, 1, 1}, 3), "t"), ElementsAre(0, 6, 1));
}

TEST(ClusterTops, AreMissingForEmptyClusters) {
  EXPECT_THAT(ClusterTops(FourRows(), Of({2, 2, -1, 0, 0}, 3), "t"), ElementsAre(6, -1, 5));
}

TEST(ClusterTops, RefuseATreeOfAnotherClustering) {
  EXPECT_EQ(
      testing_support::FailureMessage([] {
        ClusterTops(FourRows(), Of({0, 1, -1, 1, 0}, 2), "t");
      }),
      "t: the tree does not keep the rows of cluster 0 together, so it is not of this clustering");
}

TEST(ClusterTops, RefuseATreeThatLacksARowOfACluster) {
  EXPECT_EQ(
      testing_support::FailureMessage([] {
        ClusterTops(FourRows(), Of({0, 0, 1, 1, 1}, 2), "t");
      }),
      "t: the tree does not keep the rows of cluster 1 together, so it is not of this clustering");
}

}  // namespace
