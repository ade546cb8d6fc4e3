// SPDX-License-Identifier: MIT
#include "lib/tree/tree_reorder.h"

#include <algorithm>
#include <utility>

#include "lib/matrix/composites.h"
#include "lib/matrix/similarities.h"
#include "lib/support/pqueue.h"
#include "lib/support/progress.h"
#include "lib/support/team.h"
#include "lib/support/tree_arrays.h"
#include "lib/support/vectors.h"
#include "lib/support/wide.h"

namespace molva {
namespace {

// A square matrix over all nodes of a tree.
struct NodeMatrix {
  float* values;
  std::size_t stride;
  float& at(int x, int y) const {
    return values[static_cast<std::size_t>(x) * stride + static_cast<std::size_t>(y)];
  }
};

// Sums rows, then columns, upwards. Every parent has a higher number than its children, so each
// node is complete before it is added and entry (x, y) ends as D_x.D_y.
void SumUpwards(int n, Span<const int> ptree, const NodeMatrix& s) {
  constexpr int kCellsOfAPiece = 1024;  // each in a row of its own, so waited for
  const int nodes = 2 * n - 1;
  for (int x = 0; x < nodes; ++x) {
    for (int y = x < n ? n : 0; y < 2 * n; ++y) s.at(x, y) = 0;
  }
  for (int x = 0; x < nodes - 1; ++x) {
    if (!HasParent(ptree, x)) continue;
    Poll();
    const int parent = ptree[x];
    for (int y = 0; y < nodes; ++y) s.at(parent, y) += s.at(x, y);
    ShareOut(nodes, kCellsOfAPiece, [&](std::int64_t first, std::int64_t last, int) {
      for (auto y = static_cast<int>(first); y < last; ++y) s.at(y, parent) += s.at(y, x);
    });
  }
}

// Turns dot products into average similarities. The root's row stays undivided, on purpose; no
// comparison reads it.
void DivideByWeights(int n, Span<const int> twgts, const NodeMatrix& s) {
  constexpr int kRowsAtATime = 256;
  constexpr int kRowsOfAPiece = 4;
  for (int begin = 0; begin < 2 * n - 2; begin += kRowsAtATime) {
    Poll();
    ShareOut(std::min(kRowsAtATime, 2 * n - 2 - begin), kRowsOfAPiece,
             [&](std::int64_t first, std::int64_t last, int) {
               for (int x = begin + static_cast<int>(first); x < begin + last; ++x) {
                 for (int y = 0; y < 2 * n - 1; ++y) {
                   const std::int64_t pairs = CountProduct(twgts[x], twgts[y]);
                   s.at(x, y) = static_cast<float>(s.at(x, y) / static_cast<Wide>(pairs));
                 }
               }
             });
  }
}

// The nodes as they stand from left to right at the present level of refinement.
struct Layout {
  Array<int> left;   // the neighbour to the left, -1 at the edge
  Array<int> right;  // the neighbour to the right

  // Puts two children side by side into the place of a node.
  void Replace(int node, int a, int b) {
    const int before = left[node];
    const int after = right[node];
    Link(before, a);
    Link(a, b);
    Link(b, after);
  }

 private:
  void Link(int x, int y) {
    if (x >= 0) right[x] = y;
    if (y >= 0) left[y] = x;
  }
};

// Whether the second child should stand left, beside one neighbour or between two. Ties keep the
// present order.
bool ShouldSwap(const NodeMatrix& s, int a, int b, int before, int after) {
  const auto wide = [&s](int x, int y) { return static_cast<Wide>(s.at(x, y)); };
  if (before >= 0 && after >= 0) {
    return wide(b, before) - wide(a, before) + (wide(a, after) - wide(b, after)) > 0;
  }
  if (before >= 0) return s.at(a, before) < s.at(b, before);
  return s.at(b, after) < s.at(a, after);
}

// 1 for the nodes whose children are two nodes below them that no other node has; the others count
// as leaves, so a table of any contents is walked within its bounds and in one pass.
Array<char> InnerNodes(const ChildTable& children) {
  Array<char> inner = Array<char>::Zeroed(children.nodes(), "ReorderTree: twgts");
  Array<char> taken = Array<char>::Zeroed(children.nodes(), "ReorderTree: twgts");
  for (int x = children.nodes() - 1; x >= 0; --x) {
    const int a = children.first(x);
    const int b = children.second(x);
    const bool below = a >= 0 && a < x && b >= 0 && b < x && a != b;
    if (!below || taken[a] != 0 || taken[b] != 0) continue;
    inner[x] = taken[a] = taken[b] = 1;
  }
  return inner;
}

void InsertByWeight(PQueue& queue, int node, Span<const int> twgts) {
  PQueueInsert(queue, node, static_cast<float>(twgts[node]));
}

// The heaviest subtrees are placed first and lighter ones fitted between neighbours that stand.
void OrderChildren(int n, Span<const int> twgts, const NodeMatrix& s, const ChildTable& children) {
  Layout layout{AllocIntsSet(2 * std::int64_t{n}, -1, "ReorderTree: left"),
                AllocIntsSet(2 * std::int64_t{n}, -1, "ReorderTree: right")};
  PQueue queue;
  PQueueInit(queue, 2 * n);
  const Array<char> inner = InnerNodes(children);
  int root = children.nodes() - 1;
  while (root >= 0 && inner[root] == 0) --root;
  if (root < 0) return;
  layout.Replace(root, children.first(root), children.second(root));
  InsertByWeight(queue, children.first(root), twgts);
  InsertByWeight(queue, children.second(root), twgts);
  for (int x = PQueueGetMax(queue); x >= 0; x = PQueueGetMax(queue)) {
    if (inner[x] == 0) continue;
    int& a = children.first(x);
    int& b = children.second(x);
    if (ShouldSwap(s, a, b, layout.left[x], layout.right[x])) std::swap(a, b);
    layout.Replace(x, a, b);
    for (const int child : {a, b}) {
      if (inner[child] != 0) InsertByWeight(queue, child, twgts);
    }
  }
}

std::size_t Nodes(int n) { return 2 * static_cast<std::size_t>(std::max(n, 0)); }

}  // namespace

std::int64_t NodeCells(int n) {
  const auto nodes = static_cast<std::int64_t>(Nodes(n));
  std::int64_t cells = 0;
  return __builtin_mul_overflow(nodes, nodes, &cells) ? INT64_MAX : cells;
}

void ReorderTree(int n, Span<const int> wgts, float* smat, Span<const int> ptree, Span<int> ftree) {
  if (n < 1) return;
  Array<int> twgts = AllocIntsSet(2 * std::int64_t{n}, 0, "ReorderTree: twgts");
  std::copy(wgts.begin(), wgts.end(), twgts.begin());
  AddUpwards<int>(ptree, twgts);
  const NodeMatrix similarities{smat, Nodes(n)};
  SumUpwards(n, ptree, similarities);
  DivideByWeights(n, twgts, similarities);
  OrderChildren(n, twgts, similarities, ChildTable(ftree));
}

void ReorderTreeOfRows(const Control& control, PreparedCopy& copy, Span<const int> ptree,
                       Span<int> ftree) {
  // A tree over rows some of which are gone keeps its order.
  if (copy.rows().size() != copy.rperm.size()) return;
  Array<int> rwgts = AllocIntsSet(copy.nrows, 1, "MOLVA_V_TreeReorder: rwgts");
  Array<float> smat = AllocFloats(NodeCells(copy.nrows), "MOLVA_V_TreeReorder: smat");
  ComputeRowSimilarities(control, *copy.mat, smat.data(), Nodes(copy.nrows));
  FreeMatrix(copy.mat);
  ReorderTree(copy.nrows, rwgts, smat.data(), ptree, ftree);
}

void ReorderTreeOfClusters(PreparedCopy& copy, int nparts, Span<const int> ptree, Span<int> ftree) {
  Array<int> pwgts = AllocInts(nparts, "MOLVA_V_ClusterTreeReorder: pwgts");
  Array<float> smat = AllocFloats(NodeCells(nparts), "MOLVA_V_ClusterTreeReorder: smat");
  ComputeCluster2ClusterSimilarities(*copy.mat, nparts, copy.part(), smat.data(), Nodes(nparts),
                                     pwgts);
  FreeMatrix(copy.mat);
  ReorderTree(nparts, pwgts, smat.data(), ptree, ftree);
}

}  // namespace molva
