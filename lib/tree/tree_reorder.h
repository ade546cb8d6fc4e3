// SPDX-License-Identifier: MIT
//
// Chooses which child of every node stands left, so that neighbouring subtrees are as similar as
// possible; the worker under the three reordering entry points.
#pragma once

#include <span>

namespace molva {

// A tree of n leaves: wgts the rows in each leaf, ptree 2n parents, ftree 2n pairs of children,
// rewritten. smat has a stride of 2n and room for 2n rows; its leaf block holds the dot products of
// the leaves' composites, and the rest is built here.
void ReorderTree(int n, std::span<const int> wgts, float* smat, std::span<const int> ptree,
                 std::span<int> ftree);

}  // namespace molva
