// SPDX-License-Identifier: MIT
//
// A tree whose leaves are sets of rows, with the numbers of its nodes.
#pragma once

#include <vector>

#include "lib/support/alloc.h"
#include "tools/export/page/page_run.h"

namespace mardle::exporting {

// Lists of columns, nfeatures a node, best first; -1 in slots without a column.
struct FeatureLists {
  molva::Array<int> ids;
  molva::Array<float> weights;
};

// Over n leaves: 0 to n - 1 are the leaves, every other node is numbered above its children, and
// arrays hold 2n elements.
struct MeasuredTree {
  bool IsLeaf(int x) const { return left(x) < 0; }
  int left(int x) const { return children[2 * std::int64_t{x}]; }
  int right(int x) const { return children[2 * std::int64_t{x} + 1]; }

  int nleaves = 0;
  molva::Array<int> ptree;     // the parent of each node
  molva::Array<int> children;  // left and right child of each node, -1 where absent
  int root = -1;
  molva::Array<int> pwgts;  // of each node: the rows below it
  molva::Array<float> isims, xsims;
  FeatureLists descriptive;  // as many slots a node as the run has features
};

// The products of all clusters, for trees over many. The library finds them for every call column by
// column, which takes minutes for some thousand clusters; where this is not empty it is given them.
struct ClusterProducts {
  std::vector<int> sizes = {};
  std::vector<float> table = {};  // row by row
};

// The tree over the clusters, built under the criterion of the run.
molva::Array<int> BuildParents(const PageRun& run, const int* part, int nclusters,
                               const ClusterProducts& products);

// Orders the children of each node and measures all nodes; `part` is the leaf of each row, -1 for
// rows that stand below none.
MeasuredTree MeasureTree(const PageRun& run, const int* part, int nleaves, molva::Array<int> ptree,
                         const ClusterProducts& products = {});

struct Feature {
  const char* name;
  double share;  // of 1
};
// The columns of a node, best first. Shares that are no numbers rank nothing, and their columns are
// left out.
std::vector<Feature> FeaturesOf(const PageRun& run, const MeasuredTree& tree, int x);

}  // namespace mardle::exporting
