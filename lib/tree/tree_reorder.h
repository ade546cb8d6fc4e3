// SPDX-License-Identifier: MIT
//
// Chooses which child of every node stands left, so that neighbouring subtrees are as similar as
// possible; the workers under the three reordering entry points.
#pragma once

#include <cstdint>

#include "lib/matrix/control.h"
#include "lib/matrix/prepare.h"
#include "lib/support/span.h"

namespace molva {

// A tree of n leaves: wgts the rows in each leaf, ptree 2n parents, ftree 2n pairs of children,
// rewritten. smat has a stride of 2n and room for 2n rows; its leaf block holds the dot products of
// the leaves' composites, and the rest is built here.
void ReorderTree(int n, Span<const int> wgts, float* smat, Span<const int> ptree, Span<int> ftree);

// The same for a tree over the prepared rows, which does nothing when preparation dropped a row,
// and for one over the clusters of a clustering. The copy gives up its matrix.
void ReorderTreeOfRows(const Control& control, PreparedCopy& copy, Span<const int> ptree,
                       Span<int> ftree);
void ReorderTreeOfClusters(PreparedCopy& copy, int nparts, Span<const int> ptree, Span<int> ftree);

// The cells of a matrix over all nodes of a tree of n leaves; more than any block has when an
// integer cannot tell.
std::int64_t NodeCells(int n);

}  // namespace molva
