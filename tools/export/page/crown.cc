// SPDX-License-Identifier: MIT
#include "tools/export/page/crown.h"

#include "lib/support/span.h"
#include "tools/export/page/tree_top.h"

namespace mardle::exporting {
namespace {

// The number of every node that the crown has, -1 for all others. Open nodes are numbered in their
// order, so that parents stay above their children.
std::vector<int> NumbersOf(const Tree& tree, const std::vector<int>& open, int top) {
  std::vector<int> numbers(tree.parent.size(), -1);
  const molva::Span<int> of(numbers);
  auto next = static_cast<int>(open.size()) + 1;
  for (const int x : open) of[x] = next++;
  int ends = 0;
  if (open.empty()) of[top] = ends++;
  for (const int x : open) {
    for (const int child : tree.ChildrenOf(x)) {
      if (of[child] < 0) of[child] = ends++;
    }
  }
  return numbers;
}

}  // namespace

Crown CrownOf(const Tree& tree, const std::vector<int>& counts, int top, std::size_t ends) {
  const molva::Span<const int> weights(counts);
  const std::vector<int> open = OpenNodes(
      top, ends, [&](int x) { return tree.ChildrenOf(x); }, [&](int x) { return weights[x]; });
  std::vector<int> numbers = NumbersOf(tree, open, top);
  const molva::Span<int> number(numbers);
  const auto nends = static_cast<int>(open.size()) + 1;
  Crown crown;
  crown.ptree = molva::AllocIntsSet(2 * std::int64_t{nends}, -1, "CrownOf: ptree");
  for (const int x : open) {
    for (const int child : tree.ChildrenOf(x)) crown.ptree[number[child]] = number[x];
  }
  // From the top down, what stands below an end takes its number.
  crown.part.assign(static_cast<std::size_t>(tree.nleaves), -1);
  crown.first_rows.assign(static_cast<std::size_t>(nends), -1);
  for (int x = top; x >= 0; --x) {
    const int parent = tree.parent[static_cast<std::size_t>(x)];
    if (number[x] < 0 && parent >= 0 && parent <= top) number[x] = number[parent];
    if (!tree.IsLeaf(x) || number[x] < 0) continue;
    crown.part[static_cast<std::size_t>(x)] = number[x];
    crown.first_rows[static_cast<std::size_t>(number[x])] = x;
  }
  return crown;
}

}  // namespace mardle::exporting
