// SPDX-License-Identifier: MIT
//
// A tree as a linkage table, the form that dendrogram routines take: one line per merge with its
// two parts, its height and the number of leaves below it. The m leaves in the tree are numbered 0
// to m - 1 in the order of the file, so that dropped rows leave no gap; merge i makes part m + i.
#pragma once

#include <ostream>

#include "tools/export/tree.h"

namespace mardle::exporting {

void WriteLinkage(const Tree& tree, const std::vector<double>& heights, std::ostream& out);

}  // namespace mardle::exporting
