// SPDX-License-Identifier: MIT
//
// A tree in the Newick form: (a:1,(b:1,c:1):2);
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "tools/export/tree.h"

namespace mardle::exporting {

// Leaf x is called labels[x]. The length of a branch is the difference of the heights at its ends.
void WriteNewick(const Tree& tree, const std::vector<std::string>& labels,
                 const std::vector<double>& heights, std::ostream& out);

}  // namespace mardle::exporting
