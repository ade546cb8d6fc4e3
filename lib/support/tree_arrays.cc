// SPDX-License-Identifier: MIT
#include "lib/support/tree_arrays.h"

namespace molva {

Array<int> MakeChildTable(Span<const int> ptree, BlockName name) {
  Array<int> slots = AllocIntsSet(2 * static_cast<std::int64_t>(ptree.size()), -1, name);
  const ChildTable children(slots);
  for (std::size_t x = 0; x + 2 < ptree.size(); ++x) {
    if (!HasParent(ptree, x)) continue;
    const int parent = ptree[x];
    int& slot = children.first(parent) < 0 ? children.first(parent) : children.second(parent);
    slot = static_cast<int>(x);
  }
  return slots;
}

int FindRoot(const ChildTable& children) {
  for (int x = children.nodes() - 1; x >= 0; --x) {
    if (!children.IsLeaf(x)) return x;
  }
  return children.nodes() > 0 ? 0 : -1;
}

}  // namespace molva
