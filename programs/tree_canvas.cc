// SPDX-License-Identifier: MIT
//
// The drawing is measured first, so the canvas is no larger than what is drawn. Children are
// numbered below their parents: going down the numbers, every node has its place before its
// children are placed, and no tree is too deep.
#include "programs/tree_canvas.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

#include "lib/support/vectors.h"

namespace mardle {
namespace {

using molva::ChildTable;

constexpr int kColumnStep = 2;

struct Label {
  explicit Label(int node) { length = std::snprintf(text.data(), text.size(), "%-3d", node); }
  std::array<char, 16> text{};
  int length;
};

int ColumnOf(int node, int n, const ChildTable& children) {
  return kColumnStep * (children.IsLeaf(node) ? n : 2 * n - 2 - node);
}

// The number of nodes in each node's subtree.
molva::Array<int> SubtreeSizes(int n, const ChildTable& children) {
  molva::Array<int> tsize = molva::AllocIntsSet(2 * std::int64_t{n}, 1, "ShowHACTree: tsize");
  for (int x = n; x < 2 * n - 1; ++x) {
    if (children.IsLeaf(x)) continue;
    tsize[x] += tsize[children.first(x)] + tsize[children.second(x)];
  }
  return tsize;
}

// The first child stands on the next line, the second below the whole subtree of the first.
void PlaceNodes(int n, const ChildTable& children, TreeDrawing& drawing) {
  const molva::Array<int> tsize = SubtreeSizes(n, children);
  const int root = molva::FindRoot(children);
  drawing.lines = 1;
  if (root < 0) return;
  drawing.ynode[root] = 1;
  for (int x = root; x >= 0; --x) {
    if (drawing.ynode[x] < 0) continue;
    // The root stands at column 0 even where unused nodes are numbered above it.
    const int column = x == root ? 0 : ColumnOf(x, n, children);
    drawing.xnode[x] = column + Label(x).length;
    drawing.width = std::max(drawing.width, drawing.xnode[x]);
    drawing.lines = std::max(drawing.lines, drawing.ynode[x] + 1);
    if (children.IsLeaf(x)) continue;
    drawing.ynode[children.first(x)] = drawing.ynode[x] + 1;
    drawing.ynode[children.second(x)] = drawing.ynode[x] + tsize[children.first(x)] + 1;
  }
}

void DrawBranch(TreeDrawing& drawing, int line, int from_column, int to_column) {
  const std::span<char> text = drawing.canvas[line];
  std::fill(text.begin() + from_column + 1, text.begin() + to_column, '-');
}

void DrawNode(int x, const ChildTable& children, bool fill_lines, TreeDrawing& drawing) {
  const Label label(x);
  const int line = drawing.ynode[x];
  const int column = drawing.xnode[x] - label.length;
  char* place = drawing.canvas[line].data() + column;
  std::copy_n(label.text.data(), label.length, place);
  if (!fill_lines) place[label.length] = '\0';
  if (children.IsLeaf(x)) return;

  const auto column_of = [&drawing](int child) {
    return drawing.xnode[child] - Label(child).length;
  };
  const int a = children.first(x);
  const int b = children.second(x);
  for (int y = line + 1; y <= drawing.ynode[b]; ++y) {
    drawing.canvas[y][static_cast<std::size_t>(column)] = '|';
  }
  DrawBranch(drawing, drawing.ynode[a], column, column_of(a));
  DrawBranch(drawing, drawing.ynode[b], column, column_of(b));
}

}  // namespace

TreeDrawing DrawTree(int n, const ChildTable& children, bool fill_lines) {
  TreeDrawing drawing;
  drawing.xnode = molva::AllocIntsSet(2 * std::int64_t{n}, 0, "ShowHACTree: xnode");
  drawing.ynode = molva::AllocIntsSet(2 * std::int64_t{n}, -1, "ShowHACTree: ynode");
  PlaceNodes(n, children, drawing);
  drawing.canvas = molva::AllocByteMatrix(drawing.lines, std::int64_t{drawing.width} + 1, ' ',
                                          "ShowHACTree: canvas");
  for (int y = 0; y < drawing.lines; ++y) {
    drawing.canvas[y][static_cast<std::size_t>(drawing.width)] = '\0';
  }
  for (int x = 0; x < 2 * n; ++x) {
    if (drawing.ynode[x] >= 0) DrawNode(x, children, fill_lines, drawing);
  }
  return drawing;
}

}  // namespace mardle
