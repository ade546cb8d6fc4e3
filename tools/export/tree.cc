// SPDX-License-Identifier: MIT
#include "tools/export/tree.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>

#include "tools/export/fields.h"
#include "tools/text/file_error.h"

namespace mardle::exporting {
namespace {

std::string NodeText(int x) { return "node " + std::to_string(x); }

// Node x stands in line x + 1.
tools::FileError ErrorAtNode(const std::string& path, int x, const std::string& why) {
  return tools::FileError({path, x + 1}, why);
}

Tree ReadLines(const std::string& path) {
  Tree tree;
  FieldFile file(path);
  while (file.Next()) {
    if (file.line() >= INT_MAX) file.Refuse("the tree has too many nodes");
    if (file.fields() != 2) {
      file.Refuse("a parent and a similarity are wanted; fields found: " +
                  std::to_string(file.fields()));
    }
    tree.parent.push_back(file.Int(0));
    tree.similarity.push_back(file.Number(1));
  }
  if (file.line() % 2 == 0) {
    file.Refuse("the file ends here; a tree of n leaves has 2n - 1 lines, an odd number");
  }
  tree.nleaves = static_cast<int>(tree.parent.size() / 2) + 1;
  return tree;
}

void AddChild(const std::string& path, int x, Tree& tree) {
  const int parent = tree.parent[static_cast<std::size_t>(x)];
  if (parent == -1) return;
  const auto nodes = static_cast<int>(tree.parent.size());
  if (parent <= x || parent < tree.nleaves || parent >= nodes) {
    throw ErrorAtNode(path, x,
                      "parent " + std::to_string(parent) + " is no internal node above " +
                          NodeText(x) + "; they are " + std::to_string(tree.nleaves) + " to " +
                          std::to_string(nodes - 1));
  }
  std::array<int, 2>& children = tree.children[static_cast<std::size_t>(parent)];
  if (children[1] != -1) throw ErrorAtNode(path, x, NodeText(parent) + " has a third child");
  children[children[0] == -1 ? 0 : 1] = x;
}

// The root is the highest node with children; the nodes behind it have neither children nor
// parent, those before it have both.
void CheckInternalNodes(const std::string& path, const Tree& tree) {
  for (int x = tree.nleaves; x <= tree.root; ++x) {
    if (tree.ChildrenOf(x)[1] == -1) {
      throw ErrorAtNode(path, x, NodeText(x) + " has fewer than two children");
    }
    if (x < tree.root && tree.parent[static_cast<std::size_t>(x)] == -1) {
      throw ErrorAtNode(path, x, NodeText(x) + " is a second root");
    }
  }
}

int HighestNodeWithChildren(const Tree& tree) {
  auto x = static_cast<int>(tree.parent.size()) - 1;
  while (x >= 0 && tree.ChildrenOf(x)[0] == -1) --x;
  return x;
}

}  // namespace

std::vector<int> Tree::Leaves() const {
  std::vector<int> leaves;
  for (int x = 0; x < nleaves; ++x) {
    if (parent[static_cast<std::size_t>(x)] != -1 || x == root) leaves.push_back(x);
  }
  return leaves;
}

Tree ReadTree(const std::string& path) {
  Tree tree = ReadLines(path);
  tree.children.assign(tree.parent.size(), {-1, -1});
  for (int x = 0; x < static_cast<int>(tree.parent.size()); ++x) AddChild(path, x, tree);
  tree.root = tree.nleaves == 1 ? 0 : HighestNodeWithChildren(tree);
  if (tree.root < 0) throw tools::FileError({path, 0}, "no node has a parent, so there is no tree");
  CheckInternalNodes(path, tree);
  return tree;
}

std::vector<double> Heights(const Tree& tree, HeightsFrom source) {
  std::vector<double> heights(tree.parent.size(), 0);
  for (int x = tree.nleaves; x <= tree.root; ++x) {
    const auto at = static_cast<std::size_t>(x);
    if (source == HeightsFrom::kOrder) {
      heights[at] = x - tree.nleaves + 1;
      continue;
    }
    const auto [first, second] = tree.ChildrenOf(x);
    const double below = std::max(heights[static_cast<std::size_t>(first)],
                                  heights[static_cast<std::size_t>(second)]);
    // A similarity that is no number leaves the node at its children's height.
    heights[at] = std::fmax(1 - tree.similarity[at], below);
  }
  return heights;
}

std::vector<int> LeafCounts(const Tree& tree) {
  std::vector<int> counts(tree.parent.size(), 0);
  for (int x = 0; x <= tree.root; ++x) {
    const auto at = static_cast<std::size_t>(x);
    if (tree.IsLeaf(x)) counts[at] = 1;
    if (tree.parent[at] != -1) counts[static_cast<std::size_t>(tree.parent[at])] += counts[at];
  }
  return counts;
}

std::string HeightText(double height) {
  std::array<char, 40> text;
  std::snprintf(text.data(), text.size(), "%.10g", height);
  return text.data();
}

}  // namespace mardle::exporting
