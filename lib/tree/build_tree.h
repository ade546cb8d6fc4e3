// SPDX-License-Identifier: MIT
//
// Trees over a clustering; the worker under MOLVA_V_BuildTree and its parts.
#pragma once

#include "lib/matrix/control.h"
#include "lib/matrix/prepare.h"
#include "lib/matrix/prepared_matrix.h"
#include "lib/support/span.h"

namespace molva {

// The arrays of a tree that is built: 2L elements for L leaves.
struct TreeArrays {
  Span<int> ptree;
  Span<float> tsims;
  Span<float> gains;
};

// The tree of a kind over the clustering in `copy`, 2 * nparts parents or twice as many as the
// caller has rows. Any other kind is fatal: "Unknown treetype=%d\n".
void BuildTree(const Control& control, PreparedCopy& copy, int treetype, int nparts,
               Span<int> ptree, Span<float> tsims);

// A tree over the clusters: leaf c is cluster c. Clusters without rows are left out: their parents
// stay -1, and internal nodes still begin at nparts.
void BuildPartitionTree(const Control& control, const PreparedMatrix& mat, int nparts,
                        Span<const int> part, const TreeArrays& tree);

// A tree over all rows in which the rows of each cluster form a subtree and the clusters are joined
// above. Memory is bounded by the square of the largest cluster. ptree is -1 throughout on entry.
void BuildPartitionedTree(const Control& control, const PreparedMatrix& mat, int nparts,
                          Span<const int> part, const TreeArrays& tree);

// Renumbers the internal nodes of a tree of nleaves leaves so that, from the root down, the open
// node whose merge gained least receives the next lower number. Only ptree is renumbered; gains and
// tsims keep their old order, on purpose.
void BestFirstTreeReorder(int nleaves, Span<int> ptree, Span<const float> gains);

// Copies a tree over items into one over more leaves: item i becomes leaf leaf_of[i], and internal
// nodes move up by the difference. Nodes of `to` that stand for nothing get the parent -1; its
// tsims and gains are written at internal nodes only, gains not at all when that span is empty. A
// lone item is leaf and root in one; its -1 is shifted like any parent, to a leaf's
// number, which readers take for none.
void TranslateTree(Span<const int> leaf_of, const TreeArrays& from, const TreeArrays& to);

}  // namespace molva
