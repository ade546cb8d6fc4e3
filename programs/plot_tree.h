// SPDX-License-Identifier: MIT
//
// Binary trees on a plot page: all leaves in line, an internal node the further from them the later
// it was formed.
#pragma once

#include <span>

#include "lib/support/alloc.h"
#include "lib/support/tree_arrays.h"
#include "programs/plot_page.h"

namespace mardle {

// Names of a tree's blocks: the routine and its two tables of positions.
struct NodeBlocks {
  const char* routine;
  const char* x;
  const char* y;
};

// A tree over n leaves, root 2n - 2. Leaf sizes are the room each leaf takes, in steps, and grow to
// those of subtrees by SumSizes.
struct PlotTree {
  int n = 0;
  molva::Array<int> ftree;    // 2n pairs of children
  molva::Array<float> tsize;  // 2n sizes
  molva::Array<float> xnode;  // where each node was drawn
  molva::Array<float> ynode;
  NodeBlocks blocks = {"PlotSparseTreeMatrix", ": xnode", ": ynode"};

  molva::ChildTable children() { return molva::ChildTable(ftree); }
  int root() const { return 2 * n - 2; }
};

enum TreeLabels : int { kNoLabels = 0, kLeafLabels = 1, kNodeLabels = 2 };

// Adds the sizes of the nodes 0 to 2n-3 into those of their parents.
void SumSizes(std::span<const int> ptree, PlotTree& tree);

// The depth runs along x, the leaves stack up by increasing y, the first child below the second.
// `at` is where the root's subtree begins: its x, and the y of its first leaf.
void DrawTreeHorizontally(PlotPage& page, PlotTree& tree, Point at, double xstep, double ystep,
                          int labels);

// The depth runs down along y (for a positive ystep), the leaves spread by increasing x.
void DrawTreeVertically(PlotPage& page, PlotTree& tree, Point at, double xstep, double ystep,
                        int labels);

}  // namespace mardle
