// SPDX-License-Identifier: MIT
//
// What the ways of merging share: the items and the tree that comes out, two items as one, and the
// record of a merge.
#pragma once

#include <cstdint>

#include "lib/criteria/terms.h"
#include "lib/matrix/composites.h"
#include "lib/support/span.h"
#include "lib/support/wide.h"

namespace molva {

// The items to merge and the tree that comes out. smat[i * n + j] = D_i.D_j is used in place and
// overwritten; the arrays over nodes hold 2n elements.
struct Merging {
  int n;
  const int* pwgts;  // rows in each item
  float* smat;
  Span<int> ptree;    // parent of each node; the root's is not written
  Span<float> tsims;  // average similarity between the rows of a node's children; leaves 0
  Span<float> gains;  // what the merge added to the criterion; leaves are not written
};

// Two items as one, from each alone and the product of their composites.
inline ClusterMeasure Merged(const ClusterMeasure& i, const ClusterMeasure& j, Wide product) {
  return {i.size + j.size, i.squared_length + j.squared_length + 2 * product,
          i.similarity + j.similarity};
}

// The average similarity between a row of one item and a row of the other.
inline Wide AverageSimilarity(float product, int rows_i, int rows_j) {
  return static_cast<Wide>(product) / static_cast<Wide>(CountProduct(rows_i, rows_j));
}

// Nodes a and b became the children of `node`.
inline void RecordMerge(const Merging& merging, int a, int b, int node, float gain,
                        Wide similarity) {
  merging.ptree[a] = node;
  merging.ptree[b] = node;
  merging.gains[node] = gain;
  merging.tsims[node] = static_cast<float>(similarity);
}

}  // namespace molva
