// SPDX-License-Identifier: MIT
//
// Binary trees in arrays. A tree over L leaves has at most 2L - 1 nodes: leaves 0 to L-1, internal
// nodes from L on, every parent numbered above its children. ptree[x] is the parent of node x, -1
// for the root and for nodes that stand for nothing; an entry that is no internal node above
// its own counts as -1. Arrays over nodes hold 2L elements.
#pragma once

#include <algorithm>
#include <climits>
#include <cstdint>

#include "lib/support/alloc.h"
#include "lib/support/span.h"

namespace molva {

// A view of 2L pairs of children: those of node x stand at positions 2x and 2x + 1, -1 where
// absent.
class ChildTable {
 public:
  explicit ChildTable(Span<int> slots) : slots_(slots) {}
  int& first(int x) const { return slots_[2 * std::int64_t{x}]; }
  int& second(int x) const { return slots_[2 * std::int64_t{x} + 1]; }
  bool IsLeaf(int x) const { return first(x) < 0; }
  int nodes() const { return static_cast<int>(slots_.size() / 2); }

 private:
  Span<int> slots_;
};

// The children of every node, from the parents of the nodes 0 to 2L-3: each takes its parent's
// first free slot, so the child with the smaller number comes first.
Array<int> MakeChildTable(Span<const int> ptree, BlockName name);

// The root of a tree of L leaves: the highest node that has children, or else the first leaf. -1
// without nodes.
int FindRoot(const ChildTable& children);

// Whether node x hangs below an internal node.
inline bool HasParent(Span<const int> ptree, std::int64_t x) {
  const auto elements = static_cast<int>(ptree.size());
  return ptree[x] > x && ptree[x] >= elements / 2 && ptree[x] < elements - 1;
}

// Sums of node values. Counts stop at the limits of an int, for callers may pass any.
inline float AddValues(float a, float b) { return a + b; }
inline int AddValues(int a, int b) {
  return static_cast<int>(std::clamp<std::int64_t>(std::int64_t{a} + b, INT_MIN, INT_MAX));
}

// Adds the value of every node 0 to 2L-3 into that of its parent, in increasing order, so that
// node values become sums over subtrees.
template <typename T>
void AddUpwards(Span<const int> ptree, Span<T> values) {
  for (std::size_t x = 0; x + 2 < ptree.size(); ++x) {
    if (!HasParent(ptree, x)) continue;
    T& parent = values[ptree[x]];
    parent = AddValues(parent, values[x]);
  }
}

// Calls visit(leaf) for every leaf below a node, first children first, climbing by the parents, so
// a tree of any depth needs no stack.
template <typename Visit>
void ForEachLeafBelow(int node, Span<const int> ptree, const ChildTable& children, Visit visit) {
  int x = node;
  for (;;) {
    while (!children.IsLeaf(x)) x = children.first(x);
    visit(x);
    for (;;) {
      if (x == node) return;
      const int parent = ptree[x];
      const bool second_waits = children.first(parent) == x && children.second(parent) >= 0;
      x = second_waits ? children.second(parent) : parent;
      if (second_waits) break;
    }
  }
}

}  // namespace molva
