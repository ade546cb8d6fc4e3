// SPDX-License-Identifier: MIT
//
// A tree for Graphviz, drawn from left to right: leaves with their labels, internal nodes as points
// with their numbers and heights in the tooltips.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "tools/export/tree.h"

namespace mardle::exporting {

void WriteDot(const Tree& tree, const std::vector<std::string>& labels,
              const std::vector<double>& heights, std::ostream& out);

}  // namespace mardle::exporting
