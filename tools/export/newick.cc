// SPDX-License-Identifier: MIT
#include "tools/export/newick.h"

#include "tools/export/escape.h"

namespace mardle::exporting {
namespace {

void WriteBranch(const Tree& tree, const std::vector<double>& heights, int x, std::ostream& out) {
  if (x == tree.root) {
    out << ";\n";
    return;
  }
  const auto at = static_cast<std::size_t>(x);
  out << ':' << HeightText(heights[static_cast<std::size_t>(tree.parent[at])] - heights[at]);
}

}  // namespace

// Climbs by the parents, so a tree of any depth needs no stack.
void WriteNewick(const Tree& tree, const std::vector<std::string>& labels,
                 const std::vector<double>& heights, std::ostream& out) {
  int x = tree.root;
  for (;;) {
    for (; !tree.IsLeaf(x); x = tree.ChildrenOf(x)[0]) out << '(';
    out << NewickLabel(labels[static_cast<std::size_t>(x)]);
    WriteBranch(tree, heights, x, out);
    for (;;) {
      if (x == tree.root) return;
      const int parent = tree.parent[static_cast<std::size_t>(x)];
      const auto [first, second] = tree.ChildrenOf(parent);
      if (x == first) {
        out << ',';
        x = second;
        break;
      }
      x = parent;
      out << ')';
      WriteBranch(tree, heights, x, out);
    }
  }
}

}  // namespace mardle::exporting
