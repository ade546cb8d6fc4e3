// SPDX-License-Identifier: MIT
//
// A node is placed when the walk enters it, before its children, and its lines are drawn when the
// walk leaves it, after them.
#include "programs/plot_tree.h"

#include <array>
#include <cstdio>
#include <string>

namespace mardle {
namespace {

using molva::ChildTable;

// How many steps a child stands away from its parent.
int DepthBelow(int parent, int child, int n) {
  return child >= n ? parent - child : parent - n + 1;
}

std::string NodeLabel(int node) {
  std::array<char, 16> text;
  std::snprintf(text.data(), text.size(), "%-3d", node);
  return text.data();
}

// Walks through the tree from its root, first children first: enter(node) before its children,
// leave(node) after them. Climbs by a table of parents made on the way, so a tree of any depth
// needs no stack.
template <typename Enter, typename Leave>
void Walk(PlotTree& tree, Enter enter, Leave leave) {
  const ChildTable children = tree.children();
  molva::Array<int> parent =
      molva::AllocIntsSet(children.nodes(), -1, {tree.blocks.routine, ": ptree"});
  const int root = tree.root();
  int x = root;
  for (;;) {
    enter(x);
    while (!children.IsLeaf(x)) {
      parent[children.first(x)] = x;
      x = children.first(x);
      enter(x);
    }
    while (leave(x), x != root && children.first(parent[x]) != x) x = parent[x];
    if (x == root) return;
    const int above = parent[x];
    x = children.second(above);
    parent[x] = above;
  }
}

// Where the subtree of each node begins.
struct Starts {
  explicit Starts(PlotTree& tree)
      : x(molva::AllocDoubles(tree.children().nodes(), {tree.blocks.routine, tree.blocks.x})),
        y(molva::AllocDoubles(tree.children().nodes(), {tree.blocks.routine, tree.blocks.y})) {}
  void Set(int node, Point at) {
    x[node] = at.x;
    y[node] = at.y;
  }
  molva::Array<double> x, y;
};

}  // namespace

void SumSizes(std::span<const int> ptree, PlotTree& tree) {
  molva::AddUpwards<float>(ptree.first(tree.tsize.size()), tree.tsize);
}

void DrawTreeHorizontally(PlotPage& page, PlotTree& tree, Point at, double xstep, double ystep,
                          int labels) {
  const ChildTable children = tree.children();
  Starts start(tree);
  start.Set(tree.root(), at);
  const auto enter = [&](int v) {
    const double x = start.x[v];
    const double y = start.y[v];
    tree.xnode[v] = static_cast<float>(x);
    if (children.IsLeaf(v)) {
      tree.ynode[v] = static_cast<float>(y + 0.5 * (tree.tsize[v] - 1) * ystep);
      if ((labels & kLeafLabels) != 0) {
        page.Label({x + 0.5 * xstep, y}, 0, Along::kStart, Across::kCenter, NodeLabel(v));
      }
      return;
    }
    const int a = children.first(v);
    const int b = children.second(v);
    tree.ynode[v] = static_cast<float>(y + (tree.tsize[a] - 0.5) * ystep);
    if ((labels & kNodeLabels) != 0) {
      page.Label({x, tree.ynode[v]}, 90, Along::kCenter, Across::kTop, NodeLabel(v));
    }
    start.Set(a, {x + DepthBelow(v, a, tree.n) * xstep, y});
    start.Set(b, {x + DepthBelow(v, b, tree.n) * xstep, y + tree.tsize[a] * ystep});
  };
  const auto leave = [&](int v) {
    if (children.IsLeaf(v)) return;
    const int a = children.first(v);
    const int b = children.second(v);
    const double x = tree.xnode[v];
    page.Line({x, tree.ynode[a]}, {x, tree.ynode[b]});
    page.Line({x - 0.5 * xstep, tree.ynode[v]}, {x, tree.ynode[v]});
    page.Line({x, tree.ynode[a]}, {tree.xnode[a], tree.ynode[a]});
    page.Line({x, tree.ynode[b]}, {tree.xnode[b], tree.ynode[b]});
  };
  Walk(tree, enter, leave);
}

void DrawTreeVertically(PlotPage& page, PlotTree& tree, Point at, double xstep, double ystep,
                        int labels) {
  const ChildTable children = tree.children();
  Starts start(tree);
  start.Set(tree.root(), at);
  const auto enter = [&](int v) {
    const double x = start.x[v];
    const double y = start.y[v];
    tree.ynode[v] = static_cast<float>(y);
    if (children.IsLeaf(v)) {
      tree.xnode[v] = static_cast<float>(x);
      if ((labels & kLeafLabels) != 0) {
        page.Label({x, y - 0.5 * ystep}, 90, Along::kStart, Across::kCenter, NodeLabel(v));
      }
      return;
    }
    const int a = children.first(v);
    const int b = children.second(v);
    tree.xnode[v] = static_cast<float>(x + (tree.tsize[a] - 0.5) * xstep);
    if ((labels & kNodeLabels) != 0) {
      page.Label({tree.xnode[v], y}, 0, Along::kCenter, Across::kTop, NodeLabel(v));
    }
    start.Set(a, {x, y - DepthBelow(v, a, tree.n) * ystep});
    start.Set(b, {x + tree.tsize[a] * xstep, y - DepthBelow(v, b, tree.n) * ystep});
  };
  const auto leave = [&](int v) {
    if (children.IsLeaf(v)) return;
    const int a = children.first(v);
    const int b = children.second(v);
    const double y = tree.ynode[v];
    page.Line({tree.xnode[a], y}, {tree.xnode[b], y});
    page.Line({tree.xnode[v], y + 0.5 * ystep}, {tree.xnode[v], y});
    page.Line({tree.xnode[a], y}, {tree.xnode[a], tree.ynode[a]});
    page.Line({tree.xnode[b], y}, {tree.xnode[b], tree.ynode[b]});
  };
  Walk(tree, enter, leave);
}

}  // namespace mardle
