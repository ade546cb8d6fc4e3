// SPDX-License-Identifier: MIT
#include "lib/support/tree_arrays.h"

#include <gtest/gtest.h>

#include <climits>
#include <vector>

namespace molva {
namespace {

// ((0 2) 1) over three leaves: node 3 joins 0 and 2, node 4 joins 1 and 3.
const std::vector<int> kTree = {3, 4, 3, 4, -1, -1};

TEST(TreeArrays, TheChildWithTheSmallerNumberComesFirst) {
  Array<int> slots = MakeChildTable(kTree, "Test: ftree");
  const ChildTable children(slots);
  EXPECT_EQ(children.first(3), 0);
  EXPECT_EQ(children.second(3), 2);
  EXPECT_EQ(children.first(4), 1);
  EXPECT_EQ(children.second(4), 3);
  EXPECT_TRUE(children.IsLeaf(0));
  EXPECT_FALSE(children.IsLeaf(3));
}

TEST(TreeArrays, FindTheRootBelowNodesThatStandForNothing) {
  // Four leaves, of which leaf 1 stands for nothing: the root is node 5, node 6 is unused.
  const std::vector<int> tree = {4, -1, 4, 5, 5, -1, -1, -1};
  Array<int> slots = MakeChildTable(tree, "Test: ftree");
  EXPECT_EQ(FindRoot(ChildTable(slots)), 5);
}

TEST(TreeArrays, TheRootOfASingleLeafIsTheLeaf) {
  const std::vector<int> tree = {-1, -1};
  Array<int> slots = MakeChildTable(tree, "Test: ftree");
  EXPECT_EQ(FindRoot(ChildTable(slots)), 0);
  Array<int> none = MakeChildTable({}, "Test: ftree");
  EXPECT_EQ(FindRoot(ChildTable(none)), -1);
}

TEST(TreeArrays, TakeAParentThatIsNotAboveItsNodeForNone) {
  const std::vector<int> tree = {0, 1, 4, 4, 2, -1, -1, -1};
  Array<int> slots = MakeChildTable(tree, "Test: ftree");
  const ChildTable children(slots);
  EXPECT_TRUE(children.IsLeaf(0));
  EXPECT_TRUE(children.IsLeaf(1));
  EXPECT_EQ(FindRoot(children), 4);
}

// Over two leaves the nodes are 0 to 2; element 3 stands for none.
TEST(TreeArrays, TakeAParentAboveAllNodesForNone) {
  for (const int parent : {3, 4, INT_MAX}) {
    const std::vector<int> tree = {parent, 2, -1, -1};
    Array<int> slots = MakeChildTable(tree, "Test: ftree");
    EXPECT_EQ(std::vector<int>(slots.begin(), slots.end()),
              (std::vector<int>{-1, -1, -1, -1, 1, -1, -1, -1}));
    std::vector<int> values = {1, 10, 0, 0};
    AddUpwards<int>(tree, values);
    EXPECT_EQ(values, (std::vector<int>{1, 10, 10, 0}));
  }
}

TEST(TreeArrays, AddCountsUpToTheLimitsOfAnInt) {
  const std::vector<int> tree = {3, 3, 4, 4, -1, -1};
  std::vector<int> values = {INT_MAX, 5, 1, 0, 0, 0};
  AddUpwards<int>(tree, values);
  EXPECT_EQ(values, (std::vector<int>{INT_MAX, 5, 1, INT_MAX, INT_MAX, 0}));
  values = {INT_MIN, -5, 1, 0, 0, 0};
  AddUpwards<int>(tree, values);
  EXPECT_EQ(values, (std::vector<int>{INT_MIN, -5, 1, INT_MIN, INT_MIN + 1, 0}));
}

TEST(TreeArrays, AddValuesUpwards) {
  std::vector<int> values = {1, 10, 100, 0, 0, 0};
  AddUpwards<int>(kTree, values);
  EXPECT_EQ(values[3], 101);
  EXPECT_EQ(values[4], 111);
}

std::vector<int> LeavesBelow(int node, const std::vector<int>& tree) {
  Array<int> slots = MakeChildTable(tree, "Test: ftree");
  std::vector<int> leaves;
  ForEachLeafBelow(node, tree, ChildTable(slots), [&leaves](int leaf) { leaves.push_back(leaf); });
  return leaves;
}

TEST(TreeArrays, VisitLeavesFirstChildrenFirst) {
  EXPECT_EQ(LeavesBelow(4, kTree), (std::vector<int>{1, 0, 2}));
  EXPECT_EQ(LeavesBelow(3, kTree), (std::vector<int>{0, 2}));
  EXPECT_EQ(LeavesBelow(2, kTree), (std::vector<int>{2}));
}

TEST(TreeArrays, VisitTheLeavesOfAChainOfAnyDepth) {
  // Leaf i + 1 joins all leaves before it.
  constexpr int kLeaves = 100000;
  std::vector<int> chain(2 * kLeaves, -1);
  chain[0] = kLeaves;
  for (int i = 1; i < kLeaves; ++i) chain[static_cast<std::size_t>(i)] = kLeaves + i - 1;
  for (int x = kLeaves; x < 2 * kLeaves - 2; ++x) chain[static_cast<std::size_t>(x)] = x + 1;
  EXPECT_EQ(LeavesBelow(2 * kLeaves - 2, chain).size(), static_cast<std::size_t>(kLeaves));
}

}  // namespace
}  // namespace molva
