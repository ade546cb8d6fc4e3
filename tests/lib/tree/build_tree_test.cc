// SPDX-License-Identifier: MIT
#include "lib/tree/build_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <string>
#include <vector>

#include "lib/molva.h"
#include "lib/support/tree_arrays.h"
#include "tests/testing/fatal.h"
#include "tests/testing/matrices.h"
#include "tests/testing/oracles.h"

namespace molva {
namespace {

using testing_support::CompositeOf;
using testing_support::Dot;
using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::RandomDocuments;
using testing_support::RandomPart;
using testing_support::SparseMatrix;
using testing_support::SparseOf;

struct Tree {
  explicit Tree(int leaves)
      : ptree(2 * static_cast<std::size_t>(leaves), -9), tsims(ptree.size()) {}
  std::vector<int> ptree;
  std::vector<float> tsims;
};

Tree Built(const SparseMatrix& m, int treetype, int nparts, const std::vector<int>& part,
           int crfun = 2) {
  Tree tree(treetype == MOLVA_TREE_ROWS ? m.nrows : nparts);
  MOLVA_V_BuildTree(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                    MOLVA_SIM_COSINE, crfun, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, treetype, 0,
                    nparts, part.data(), tree.ptree.data(), tree.tsims.data());
  return tree;
}

// The leaves below every node.
std::vector<std::set<int>> LeafSets(const std::vector<int>& ptree) {
  const auto leaves = static_cast<int>(ptree.size() / 2);
  std::vector<std::set<int>> below(ptree.size());
  for (int leaf = 0; leaf < leaves; ++leaf) {
    for (int x = leaf; x >= 0; x = ptree[static_cast<std::size_t>(x)]) {
      below[static_cast<std::size_t>(x)].insert(leaf);
    }
  }
  return below;
}

// Every node but the root has a parent above it, and every internal node two children.
void ExpectBinaryTree(const std::vector<int>& ptree) {
  const std::size_t leaves = ptree.size() / 2;
  std::vector<int> children(ptree.size());
  for (std::size_t x = 0; x + 2 < ptree.size(); ++x) {
    ASSERT_GT(ptree[x], static_cast<int>(x));
    ++children[static_cast<std::size_t>(ptree[x])];
  }
  EXPECT_EQ(ptree[ptree.size() - 2], -1);
  EXPECT_EQ(ptree[ptree.size() - 1], -1);
  for (std::size_t x = leaves; x + 1 < ptree.size(); ++x) EXPECT_EQ(children[x], 2) << x;
}

TEST(TreeOverClusters, HasTheClustersAsLeavesAndAverageSimilaritiesAtNodes) {
  for (int crfun = 1; crfun <= 7; ++crfun) {
    const SparseMatrix matrix = RandomDocuments(3, 60, 40, 5, 9);
    const auto mat = Prepared(matrix);
    ASSERT_EQ(mat->nrows, 60);
    const std::vector<int> part = RandomPart(3, 60, 7);
    const Tree tree = Built(matrix, MOLVA_TREE_CLUSTERS, 7, part, crfun);
    ExpectBinaryTree(tree.ptree);
    const std::vector<std::set<int>> clusters = LeafSets(tree.ptree);
    for (std::size_t x = 7; x < 13; ++x) {
      std::vector<std::size_t> children;
      for (std::size_t y = 0; y < x; ++y) {
        if (tree.ptree[y] == static_cast<int>(x)) children.push_back(y);
      }
      std::vector<int> side(60);
      int sizes[] = {0, 0};
      for (std::size_t i = 0; i < 60; ++i) {
        side[i] = clusters[children[0]].contains(part[i])   ? 0
                  : clusters[children[1]].contains(part[i]) ? 1
                                                            : -2;
        if (side[i] >= 0) ++sizes[side[i]];
      }
      const Wide similarity = Dot(CompositeOf(*mat, side, 0), CompositeOf(*mat, side, 1)) /
                              (static_cast<Wide>(sizes[0]) * sizes[1]);
      EXPECT_NEAR(tree.tsims[x], static_cast<double>(similarity), 1e-5);
    }
  }
}

TEST(TreeOverClusters, JoinsTheMostSimilarClustersFirst) {
  // Clusters 0 and 2 share a column, cluster 1 stands apart.
  const SparseMatrix matrix = SparseOf(
      {{1, 1, 0, 0}, {1, 1, 0, 0}, {0, 0, 0, 1}, {0, 0, 0, 1}, {0, 1, 1, 0}, {0, 1, 1, 0}});
  const Tree tree = Built(matrix, MOLVA_TREE_CLUSTERS, 3, {0, 0, 1, 1, 2, 2});
  EXPECT_EQ(tree.ptree, (std::vector<int>{3, 4, 3, 4, -1, -1}));
  EXPECT_FLOAT_EQ(tree.tsims[3], 0.5F);
  EXPECT_FLOAT_EQ(tree.tsims[4], 0);
}

TEST(TreeOverClusters, OfOneClusterHasNoMerge) {
  const Tree tree = Built(SparseOf({{1, 0}, {0, 1}, {1, 1}}), MOLVA_TREE_CLUSTERS, 1, {0, 0, 0});
  EXPECT_EQ(tree.ptree, (std::vector<int>{-1, -1}));
  EXPECT_EQ(tree.tsims, (std::vector<float>{0, 0}));
}

TEST(TreeOverClusters, LeavesEmptyClustersOut) {
  // Clusters 1 and 3 of five are empty: leaves 0, 2 and 4 are joined by nodes 5 and 6.
  const SparseMatrix matrix = SparseOf(
      {{1, 1, 0, 0}, {1, 1, 0, 0}, {0, 0, 0, 1}, {0, 0, 0, 1}, {0, 1, 1, 0}, {0, 1, 1, 0}});
  const Tree tree = Built(matrix, MOLVA_TREE_CLUSTERS, 5, {0, 0, 2, 2, 4, 4});
  EXPECT_EQ(tree.ptree, (std::vector<int>{5, -1, 6, -1, 5, 6, -1, -1, -1, -1}));
  EXPECT_FLOAT_EQ(tree.tsims[5], 0.5F);
}

TEST(TreeOverClusters, IsEmptyWhenAllClustersButOneAre) {
  const Tree tree = Built(SparseOf({{1, 0}, {0, 1}, {1, 1}}), MOLVA_TREE_CLUSTERS, 3, {1, 1, 1});
  EXPECT_EQ(tree.ptree, std::vector<int>(6, -1));
}

TEST(CompleteTree, KeepsEveryClusterAsASubtree) {
  for (int crfun = 1; crfun <= 7; ++crfun) {
    const SparseMatrix matrix = RandomDocuments(4, 50, 40, 4, 9);
    const std::vector<int> part = RandomPart(4, 50, 6);
    const Tree tree = Built(matrix, MOLVA_TREE_ROWS, 6, part, crfun);
    ExpectBinaryTree(tree.ptree);
    const std::vector<std::set<int>> rows = LeafSets(tree.ptree);
    for (int k = 0; k < 6; ++k) {
      std::set<int> cluster;
      for (int i = 0; i < 50; ++i) {
        if (part[static_cast<std::size_t>(i)] == k) cluster.insert(i);
      }
      EXPECT_NE(std::find(rows.begin(), rows.end(), cluster), rows.end()) << "cluster " << k;
    }
  }
}

TEST(CompleteTree, HangsASingleRowDirectlyBelowTheClusters) {
  const SparseMatrix matrix = SparseOf({{1, 1, 0}, {1, 1, 0}, {0, 1, 1}, {0, 0, 1}});
  const Tree tree = Built(matrix, MOLVA_TREE_ROWS, 2, {0, 0, 0, 1});
  EXPECT_EQ(tree.ptree[3], 6);
}

// Three pairs and one row: the parents are numbered again at the end, the similarities are not.
TEST(CompleteTree, NumbersParentsAgainButNotSimilarities) {
  const SparseMatrix matrix = SparseOf(
      {{1, 1, 0, 0}, {1, 1, 0, 0}, {0, 0, 1, 1}, {0, 0, 3, 4}, {1, 1, 0, 0}, {0, 0, 1, 1}});
  const std::vector<int> part = {0, 0, 1, 1, 0, 1};
  const Tree tree = Built(matrix, MOLVA_TREE_ROWS, 2, part);
  // Cluster 0 makes nodes 6 and 7 (three equal rows, gains 0), cluster 1 nodes 8 and 9 (first rows
  // 2 and 5, gain 0, then row 3), the root is 10. Top down, node 9 gains less than node 7, so it is
  // next below the root; then 7 and 8 are open with gains of 0.
  const float near = 7 / std::sqrt(50.0F);
  EXPECT_NEAR(tree.tsims[6], 1, 1e-6);
  EXPECT_NEAR(tree.tsims[7], 1, 1e-6);
  EXPECT_NEAR(tree.tsims[8], 1, 1e-6);
  EXPECT_NEAR(tree.tsims[9], near, 1e-6);
  EXPECT_NEAR(tree.tsims[10], 0, 1e-6);
  EXPECT_EQ(tree.ptree[3], 9);
  EXPECT_EQ(tree.ptree[9], 10);
}

TEST(CompleteTree, ShiftsInternalNodesWhenPreparationDropsRows) {
  // Rows 1 and 4 are empty. Four prepared rows in two pairs: the root is node 6 + 4 - 2 = 8.
  const SparseMatrix matrix = SparseOf({{1, 0}, {0, 0}, {0, 1}, {1, 0}, {0, 0}, {0, 1}});
  const Tree tree = Built(matrix, MOLVA_TREE_ROWS, 2, {0, -1, 1, 0, -1, 1});
  const std::vector<int>& p = tree.ptree;
  EXPECT_EQ(p[1], -1);
  EXPECT_EQ(p[4], -1);
  EXPECT_EQ(p[0], p[3]);
  EXPECT_EQ(p[2], p[5]);
  EXPECT_EQ(std::set<int>({p[0], p[2]}), (std::set<int>{6, 7}));
  EXPECT_EQ(p[6], 8);
  EXPECT_EQ(p[7], 8);
  EXPECT_EQ(p[8], -1);
  EXPECT_EQ(std::vector<int>(p.begin() + 9, p.end()), (std::vector<int>{-1, -1, -1}));
}

TEST(CompleteTree, ShiftsTheMissingParentOfALoneRowToo) {
  // Only row 1 is left of three: its -1 is shifted by 2 and lies not above it, so it counts as
  // none.
  const SparseMatrix matrix = SparseOf({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
  SparseMatrix doubled = matrix;
  doubled.rowptr = {0, 1, 3, 4};
  doubled.rowind = {0, 1, 1, 2};
  doubled.rowval = {1, 1, 1, 1};
  const Tree tree = Built(doubled, MOLVA_TREE_ROWS, 1, {-1, 0, -1});
  EXPECT_EQ(tree.ptree, (std::vector<int>{-1, 1, -1, -1, -1, -1}));
  Array<int> ftree = MakeChildTable(tree.ptree, "Test: ftree");
  EXPECT_EQ(FindRoot(ChildTable(ftree)), 0);
}

TEST(CompleteTree, SkipsEmptyClusters) {
  const SparseMatrix matrix = SparseOf({{1, 0}, {1, 0}, {0, 1}, {0, 1}});
  const Tree tree = Built(matrix, MOLVA_TREE_ROWS, 5, {4, 4, 1, 1});
  ExpectBinaryTree(tree.ptree);
  EXPECT_EQ(tree.ptree[0], tree.ptree[1]);
  EXPECT_EQ(tree.ptree[2], tree.ptree[3]);
}

TEST(CompleteTree, OfOneRowIsALeaf) {
  const std::vector<float> values = {1, 2};
  Tree tree(1);
  const std::vector<int> part = {0};
  MOLVA_V_BuildTree(1, 2, nullptr, nullptr, values.data(), MOLVA_SIM_COSINE, 2, MOLVA_ROW_NONE,
                    MOLVA_COL_NONE, 1.0F, MOLVA_TREE_ROWS, 0, 1, part.data(), tree.ptree.data(),
                    tree.tsims.data());
  EXPECT_EQ(tree.ptree, (std::vector<int>{-1, -1}));
}

TEST(BestFirstNumbering, GivesTheSmallestGainTheNextLowerNumber) {
  // Leaves 0..3: node 4 joins 0 and 1, node 5 joins 2 and 3, node 6 both. Node 4 gained less, so it
  // comes next to the root and takes number 5.
  std::vector<int> ptree = {4, 4, 5, 5, 6, 6, -1, -1};
  const std::vector<float> gains = {0, 0, 0, 0, -3, -1, -5, 0};
  BestFirstTreeReorder(4, ptree, gains);
  EXPECT_EQ(ptree, (std::vector<int>{5, 5, 4, 4, 6, 6, -1, -1}));
}

TEST(BestFirstNumbering, RestoresTheMissingParentOfTheRoot) {
  std::vector<int> ptree = {2, 2, 7, 7};
  const std::vector<float> gains = {0, 0, -1, 0};
  BestFirstTreeReorder(2, ptree, gains);
  EXPECT_EQ(ptree, (std::vector<int>{2, 2, -1, -1}));
}

TEST(BestFirstNumbering, EndsTheRunWhenTheTreeFallsApart) {
  std::vector<int> ptree = {-1, -1, -1, -1, -1, -1};
  const std::vector<float> gains(6);
  EXPECT_FATAL(BestFirstTreeReorder(3, ptree, gains),
               "BestFirstTreeReorder internal error. Pqueue is empty! (3)\n");
}

// A negative number of clusters is taken as 0: a tree of no node, and no place for any row.
TEST(BuildTree, OverANegativeNumberOfClustersIsEmpty) {
  const SparseMatrix empty = SparseOf({{0, 0}, {0, 0}});
  for (const int nparts : {-1, -2, -1000}) {
    Tree tree(1);
    MOLVA_V_BuildTree(2, 2, empty.rowptr.data(), empty.rowind.data(), nullptr, MOLVA_SIM_COSINE, 2,
                      MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, MOLVA_TREE_CLUSTERS, 0, nparts,
                      std::vector{0, 0}.data(), tree.ptree.data(), tree.tsims.data());
    EXPECT_EQ(tree.ptree, (std::vector<int>{-9, -9}));
    EXPECT_EQ(Built(empty, MOLVA_TREE_ROWS, nparts, {0, 0}).ptree, std::vector<int>(4, -1));
  }
  EXPECT_FATAL(Built(SparseOf({{1, 0}, {1, 1}, {0, 1}}), MOLVA_TREE_ROWS, -1, {0, 0, 0}),
               "A complete tree needs a cluster for every row! Row=0, Cluster=0\n");
}

TEST(BuildTree, EndsTheRunOnAnUnknownType) {
  const SparseMatrix matrix = SparseOf({{1, 0}, {1, 1}, {0, 1}});
  EXPECT_FATAL(Built(matrix, 0, 1, {0, 0, 0}), "Unknown treetype=0\n");
  EXPECT_FATAL(Built(matrix, 3, 1, {0, 0, 0}), "Unknown treetype=3\n");
}

TEST(BuildTree, EndsTheRunOnCriteriaThatMergingCannotServe) {
  const SparseMatrix matrix = SparseOf({{1, 0}, {1, 1}, {0, 1}});
  for (const int treetype : {MOLVA_TREE_CLUSTERS, MOLVA_TREE_ROWS}) {
    EXPECT_FATAL(Built(matrix, treetype, 1, {0, 0, 0}, 8),
                 "Unknown clustering criterion function (CRFun) of 8\n");
  }
}

TEST(BuildTree, EndsTheRunOnARowWithoutAClusterInACompleteTree) {
  const SparseMatrix matrix = SparseOf({{1, 0}, {1, 1}, {0, 1}});
  EXPECT_FATAL(Built(matrix, MOLVA_TREE_ROWS, 2, {0, 2, 1}),
               "A complete tree needs a cluster for every row! Row=1, Cluster=2\n");
}

TEST(BuildTree, EndsTheRunBeforeItAsksForTheMatrixOfTooManyItems) {
  const SparseMatrix matrix = SparseOf({{1, 0}, {1, 1}, {0, 1}});
  EXPECT_FATAL(Built(matrix, MOLVA_TREE_CLUSTERS, 65537, {0, 0, 0}),
               "A tree over 65537 items cannot be built, the most is 65536!\n");
  const std::vector<float> values(2 * 65537, 1.0F);
  const std::vector<int> part(65537, 0);
  Tree tree(65537);
  EXPECT_FATAL(MOLVA_V_BuildTree(65537, 2, nullptr, nullptr, values.data(), MOLVA_SIM_COSINE, 2,
                                 MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, MOLVA_TREE_ROWS, 0, 1,
                                 part.data(), tree.ptree.data(), tree.tsims.data()),
               "A tree over 65537 items cannot be built, the most is 65536!\n");
}

}  // namespace
}  // namespace molva
