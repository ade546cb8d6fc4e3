// SPDX-License-Identifier: MIT
#include "lib/tree/tree_reorder.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "lib/matrix/control.h"
#include "lib/molva.h"
#include "lib/support/pqueue.h"
#include "lib/support/tree_arrays.h"
#include "lib/support/wide.h"
#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::SparseMatrix;
using testing_support::SparseOf;

std::vector<int> ChildrenOf(const std::vector<int>& ptree) {
  Array<int> slots = MakeChildTable(ptree, "Test: ftree");
  return {slots.begin(), slots.end()};
}

// Reorders a tree over n leaves given by their dot products and weights.
std::vector<int> Reordered(int n, const std::vector<int>& weights, const std::vector<float>& smat,
                           const std::vector<int>& ptree) {
  std::vector<int> ftree = ChildrenOf(ptree);
  std::vector<float> copy = smat;
  MOLVA_S_TreeReorder(n, weights.data(), copy.data(), 1, 0, ptree.data(), ftree.data());
  EXPECT_EQ(copy, smat);
  return ftree;
}

std::vector<int> LeafOrder(const std::vector<int>& ptree, std::vector<int> ftree) {
  std::vector<int> leaves;
  const ChildTable children(ftree);
  ForEachLeafBelow(FindRoot(children), ptree, children,
                   [&leaves](int leaf) { leaves.push_back(leaf); });
  return leaves;
}

TEST(TreeReordering, KeepsATreeOfTwoLeaves) {
  const std::vector<int> ptree = {2, 2, -1, -1};
  EXPECT_EQ(LeafOrder(ptree, Reordered(2, {1, 1}, {1, 0, 0, 1}, ptree)), (std::vector<int>{0, 1}));
}

TEST(TreeReordering, KeepsATreeOfOneLeaf) {
  const std::vector<int> ptree = {-1, -1};
  EXPECT_EQ(Reordered(1, {1}, {1}, ptree), (std::vector<int>{-1, -1, -1, -1}));
}

// Leaves 0 and 1 form node 3, beside leaf 2 on its left or right.
std::vector<float> Similarities(float s02, float s12) {
  return {1, 0, s02, 0, 1, s12, s02, s12, 1};
}

TEST(TreeReordering, PutsTheChildMoreSimilarToTheRightNeighbourRight) {
  // The root's children are 2 and 3, by number; node 3 has its neighbour, leaf 2, on the left.
  const std::vector<int> ptree = {3, 3, 4, 4, -1, -1};
  EXPECT_EQ(LeafOrder(ptree, Reordered(3, {1, 1, 1}, Similarities(0.2F, 0.5F), ptree)),
            (std::vector<int>{2, 1, 0}));
  EXPECT_EQ(LeafOrder(ptree, Reordered(3, {1, 1, 1}, Similarities(0.5F, 0.2F), ptree)),
            (std::vector<int>{2, 0, 1}));
}

TEST(TreeReordering, KeepsTheOrderOfEquallySimilarChildren) {
  const std::vector<int> ptree = {3, 3, 4, 4, -1, -1};
  EXPECT_EQ(LeafOrder(ptree, Reordered(3, {1, 1, 1}, Similarities(0.5F, 0.5F), ptree)),
            (std::vector<int>{2, 0, 1}));
}

TEST(TreeReordering, KeepsTheOrderOfChildrenEquallySimilarToBothNeighbours) {
  // Node 4, of leaves 0 and 1, is more like leaf 3 than leaf 2 is, so it comes between the two.
  const std::vector<int> ptree = {4, 4, 5, 6, 5, 6, -1, -1};
  const std::vector<float> smat = {1,    0,    0.3F, 0.5F,  //
                                   0,    1,    0.3F, 0.5F,  //
                                   0.3F, 0.3F, 1,    0.1F,  //
                                   0.5F, 0.5F, 0.1F, 1};
  EXPECT_EQ(LeafOrder(ptree, Reordered(4, {1, 1, 1, 1}, smat, ptree)),
            (std::vector<int>{3, 0, 1, 2}));
}

TEST(TreeReordering, ComparesAveragesAndNotSums) {
  // Leaf 1 holds ten rows, so a product of 2 is an average of 0.2, below leaf 0's 0.5.
  const std::vector<int> ptree = {3, 3, 4, 4, -1, -1};
  EXPECT_EQ(LeafOrder(ptree, Reordered(3, {1, 10, 1}, Similarities(0.5F, 2), ptree)),
            (std::vector<int>{2, 0, 1}));
}

TEST(TreeReordering, UsesAMatrixInPlaceOtherwise) {
  const std::vector<int> ptree = {3, 3, 4, 4, -1, -1};
  std::vector<int> ftree = ChildrenOf(ptree);
  const std::vector<float> leaves = Similarities(0.2F, 0.5F);
  std::vector<float> smat(36, 7);
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) smat[6 * i + j] = leaves[3 * i + j];
  }
  const std::vector<int> weights = {1, 1, 1};
  MOLVA_S_TreeReorder(3, weights.data(), smat.data(), 2, 0, ptree.data(), ftree.data());
  EXPECT_EQ(LeafOrder(ptree, ftree), (std::vector<int>{2, 1, 0}));
  // The averages of node 3 with the leaves were built in place; the root's row stays undivided.
  EXPECT_FLOAT_EQ(smat[6 * 3 + 2], 0.35F);
  EXPECT_FLOAT_EQ(smat[6 * 4 + 2], 1 + 0.7F);
}

// The rule carried out directly: average similarities between sets of leaves, a list of neighbours.
class SlowReordering {
 public:
  SlowReordering(int n, std::vector<int> weights, std::vector<float> smat,
                 const std::vector<int>& ptree)
      : n_(n),
        weights_(std::move(weights)),
        smat_(std::move(smat)),
        ptree_(ptree),
        ftree_(ChildrenOf(ptree)),
        left_(2 * static_cast<std::size_t>(n), -1),
        right_(left_) {}

  std::vector<int> Run() {
    PQueue queue;
    PQueueInit(queue, 2 * n_);
    const int root = 2 * n_ - 2;
    const auto [first, second] = Children(root);
    Join(first, second);
    PQueueInsert(queue, first, static_cast<float>(Weight(first)));
    PQueueInsert(queue, second, static_cast<float>(Weight(second)));
    for (int x = PQueueGetMax(queue); x >= 0; x = PQueueGetMax(queue)) {
      if (x < n_) continue;
      auto [a, b] = Children(x);
      if (BetterSwapped(a, b, left_[At(x)], right_[At(x)])) std::swap(a, b);
      ftree_[2 * At(x)] = a;
      ftree_[2 * At(x) + 1] = b;
      Join(left_[At(x)], a);
      Join(b, right_[At(x)]);
      Join(a, b);
      for (const int child : {a, b}) {
        if (child >= n_) PQueueInsert(queue, child, static_cast<float>(Weight(child)));
      }
    }
    return ftree_;
  }

 private:
  static std::size_t At(int x) { return static_cast<std::size_t>(x); }
  std::pair<int, int> Children(int x) const { return {ftree_[2 * At(x)], ftree_[2 * At(x) + 1]}; }

  std::set<int> Leaves(int node) const {
    std::set<int> leaves;
    for (int leaf = 0; leaf < n_; ++leaf) {
      int x = leaf;
      while (x >= 0 && x != node) x = ptree_[At(x)];
      if (x == node) leaves.insert(leaf);
    }
    return leaves;
  }

  int Weight(int node) const {
    int weight = 0;
    for (const int leaf : Leaves(node)) weight += weights_[At(leaf)];
    return weight;
  }

  Wide Similarity(int x, int y) const {
    Wide sum = 0;
    for (const int i : Leaves(x)) {
      for (const int j : Leaves(y)) sum += smat_[At(i * n_ + j)];
    }
    return sum / (static_cast<Wide>(Weight(x)) * Weight(y));
  }

  bool BetterSwapped(int a, int b, int left, int right) const {
    Wide gain = 0;
    if (left >= 0) gain += Similarity(b, left) - Similarity(a, left);
    if (right >= 0) gain += Similarity(a, right) - Similarity(b, right);
    return gain > 1e-9;
  }

  void Join(int x, int y) {
    if (x >= 0) right_[At(x)] = y;
    if (y >= 0) left_[At(y)] = x;
  }

  int n_;
  std::vector<int> weights_;
  std::vector<float> smat_;
  const std::vector<int>& ptree_;
  std::vector<int> ftree_, left_, right_;
};

std::vector<int> RandomTree(std::mt19937& random, int n) {
  std::vector<int> ptree(2 * static_cast<std::size_t>(n), -1);
  std::vector<int> open;
  for (int leaf = 0; leaf < n; ++leaf) open.push_back(leaf);
  for (int node = n; node <= 2 * n - 2; ++node) {
    for (int child = 0; child < 2; ++child) {
      const std::size_t at = random() % open.size();
      ptree[static_cast<std::size_t>(open[at])] = node;
      open.erase(open.begin() + static_cast<std::ptrdiff_t>(at));
    }
    open.push_back(node);
  }
  return ptree;
}

TEST(TreeReordering, FollowsItsRuleOnRandomTrees) {
  std::mt19937 random(11);
  for (int round = 0; round < 60; ++round) {
    const int n = 2 + static_cast<int>(random() % 14);
    const std::vector<int> ptree = RandomTree(random, n);
    std::vector<int> weights;
    for (int i = 0; i < n; ++i) weights.push_back(1 + static_cast<int>(random() % 9));
    std::vector<float> smat(static_cast<std::size_t>(n * n));
    for (int i = 0; i < n; ++i) {
      for (int j = i; j < n; ++j) {
        const float s = static_cast<float>(random() % 1000) / 100;
        smat[static_cast<std::size_t>(i * n + j)] = smat[static_cast<std::size_t>(j * n + i)] = s;
      }
    }
    EXPECT_EQ(Reordered(n, weights, smat, ptree), SlowReordering(n, weights, smat, ptree).Run())
        << "round " << round;
  }
}

TEST(TreeReordering, OfRowsKeepsTheOrderWhenARowIsDropped) {
  // Reordering would put row 1 beside row 2.
  const SparseMatrix whole = SparseOf({{1, 0}, {0.6F, 0.8F}, {0, 1}});
  const std::vector<int> ptree = {3, 3, 4, 4, -1, -1};
  std::vector<int> ftree = ChildrenOf(ptree);
  MOLVA_V_TreeReorder(3, 2, whole.rowptr.data(), whole.rowind.data(), whole.rowval.data(),
                      MOLVA_SIM_COSINE, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 0, ptree.data(),
                      ftree.data());
  EXPECT_EQ(LeafOrder(ptree, ftree), (std::vector<int>{2, 1, 0}));

  const SparseMatrix gap = SparseOf({{1, 0}, {0.6F, 0.8F}, {0, 0}});
  ftree = ChildrenOf(ptree);
  MOLVA_V_TreeReorder(3, 2, gap.rowptr.data(), gap.rowind.data(), gap.rowval.data(),
                      MOLVA_SIM_COSINE, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 0, ptree.data(),
                      ftree.data());
  EXPECT_EQ(LeafOrder(ptree, ftree), (std::vector<int>{2, 0, 1}));
}

TEST(TreeReordering, OfClustersWeighsThemByTheirRows) {
  // Clusters 0 and 1 under node 3, cluster 2 beside them and like cluster 1.
  const SparseMatrix m = SparseOf({{1, 0}, {1, 0}, {0.6F, 0.8F}, {0.6F, 0.8F}, {0, 1}, {0, 1}});
  const std::vector<int> part = {0, 0, 1, 1, 2, 2};
  const std::vector<int> ptree = {3, 3, 4, 4, -1, -1};
  std::vector<int> ftree = ChildrenOf(ptree);
  MOLVA_V_ClusterTreeReorder(6, 2, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                             MOLVA_SIM_COSINE, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 0, 3,
                             part.data(), ptree.data(), ftree.data());
  EXPECT_EQ(LeafOrder(ptree, ftree), (std::vector<int>{2, 1, 0}));
}

// A tree over three leaves in which one pair of children is no pair of nodes below: the pair stays,
// and what hangs below is not turned.
TEST(TreeReordering, TakesPairsThatAreNoChildrenForNone) {
  const std::vector<int> ptree = {3, 3, 4, 4, -1, -1};
  const std::vector<int> weights = {1, 1, 1};
  const std::pair<int, int> pairs[] = {{0, -1}, {-1, 1}, {0, 0},    {3, 1},       {0, 5},
                                       {0, 99}, {2, 1},  {-7, -99}, {INT_MAX, 0}, {INT_MIN, 0}};
  for (const auto& [first, second] : pairs) {
    const std::vector<int> before = {-1, -1, -1, -1, -1, -1, first, second, 2, 3, -1, -1};
    std::vector<int> ftree = before;
    std::vector<float> smat = Similarities(0.2F, 0.5F);
    MOLVA_S_TreeReorder(3, weights.data(), smat.data(), 1, 0, ptree.data(), ftree.data());
    EXPECT_EQ(ftree, before);
  }
}

TEST(TreeReordering, TakesWeightsThatAddUpToMoreThanAnInt) {
  const std::vector<int> ptree = {3, 3, 4, 4, -1, -1};
  EXPECT_EQ(LeafOrder(ptree, Reordered(3, {INT_MAX, INT_MAX, 1}, Similarities(0.2F, 0.5F), ptree)),
            (std::vector<int>{2, 1, 0}));
}

TEST(TreeReordering, EndsTheRunOnMoreLeavesThanMemoryHolds) {
  for (const int n : {1 << 30, INT_MAX}) {
    EXPECT_EXIT(MOLVA_S_TreeReorder(n, nullptr, nullptr, 1, 0, nullptr, nullptr),
                testing::ExitedWithCode(0),
                "\\*\\*\\*Memory allocation failed for MOLVA_S_TreeReorder: nsmat. Requested size: "
                "18446744073709551615 bytes");
  }
}

TEST(TreeReordering, IsSafeWithEmptyClusters) {
  const SparseMatrix m = SparseOf({{1, 0}, {1, 0}, {0, 1}, {0, 1}});
  const std::vector<int> part = {0, 0, 2, 2};
  const std::vector<int> ptree = {4, -1, 4, -1, -1, -1};
  std::vector<int> ftree = ChildrenOf(ptree);
  const std::vector<int> before = ftree;
  MOLVA_V_ClusterTreeReorder(4, 2, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                             MOLVA_SIM_COSINE, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 0, 3,
                             part.data(), ptree.data(), ftree.data());
  EXPECT_EQ(ftree, before);
}

}  // namespace
}  // namespace molva
