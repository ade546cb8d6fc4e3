// SPDX-License-Identifier: MIT
#include "tools/export/linkage.h"

namespace mardle::exporting {

void WriteLinkage(const Tree& tree, const std::vector<double>& heights, std::ostream& out) {
  const std::vector<int> counts = LeafCounts(tree);
  std::vector<int> numbers(tree.parent.size(), -1);
  int next = 0;
  for (const int leaf : tree.Leaves()) numbers[static_cast<std::size_t>(leaf)] = next++;
  for (int x = tree.nleaves; x <= tree.root; ++x) {
    const auto at = static_cast<std::size_t>(x);
    numbers[at] = next++;
    const auto [first, second] = tree.ChildrenOf(x);
    out << numbers[static_cast<std::size_t>(first)] << '\t'
        << numbers[static_cast<std::size_t>(second)] << '\t' << HeightText(heights[at]) << '\t'
        << counts[at] << '\n';
  }
}

}  // namespace mardle::exporting
