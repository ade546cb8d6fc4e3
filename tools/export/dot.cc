// SPDX-License-Identifier: MIT
#include "tools/export/dot.h"

#include "tools/export/escape.h"

namespace mardle::exporting {

void WriteDot(const Tree& tree, const std::vector<std::string>& labels,
              const std::vector<double>& heights, std::ostream& out) {
  out << "digraph tree {\n  rankdir=LR;\n  node [shape=box];\n  edge [arrowhead=none];\n";
  for (const int leaf : tree.Leaves()) {
    out << "  n" << leaf << " [label=" << DotString(labels[static_cast<std::size_t>(leaf)])
        << "];\n";
  }
  for (int x = tree.nleaves; x <= tree.root; ++x) {
    const auto [first, second] = tree.ChildrenOf(x);
    out << "  n" << x << " [shape=point, tooltip=\"node " << x << ", height "
        << HeightText(heights[static_cast<std::size_t>(x)]) << "\"];\n  n" << x << " -> {n" << first
        << " n" << second << "};\n";
  }
  out << "}\n";
}

}  // namespace mardle::exporting
