// SPDX-License-Identifier: MIT
//
// A tree file, read back and checked. Leaves are 0 to nleaves - 1, every internal node is numbered
// above its children. Rows that preparation dropped are leaves without a parent; as many nodes
// behind the root then stand for nothing.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace mardle::exporting {

struct Tree {
  int nleaves = 0;
  int root = 0;
  std::vector<int> parent;                   // of each of the 2 nleaves - 1 nodes; -1 for none
  std::vector<double> similarity;            // of each node, as the file has it
  std::vector<std::array<int, 2>> children;  // of each node, the smaller first; -1 for none

  bool IsLeaf(int x) const { return x < nleaves; }
  const std::array<int, 2>& ChildrenOf(int x) const {
    return children[static_cast<std::size_t>(x)];
  }
  // The leaves in the tree, in increasing order.
  std::vector<int> Leaves() const;
};

// Fails when a line is not a parent and a similarity, and when the parents are not those of one
// binary tree.
Tree ReadTree(const std::string& path);

// What the height of a node is taken from.
enum class HeightsFrom {
  kOrder,       // 1, 2, ... for the internal nodes in the order of their numbers
  kSimilarity,  // 1 - similarity, but no less than the heights of the children
};

// The height of every node, 0 for leaves. No child is higher than its parent.
std::vector<double> Heights(const Tree& tree, HeightsFrom source);

// The number of leaves below every node; 1 for leaves.
std::vector<int> LeafCounts(const Tree& tree);

// A height or a length in its shortest form of up to ten digits.
std::string HeightText(double height);

}  // namespace mardle::exporting
