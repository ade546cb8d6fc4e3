// SPDX-License-Identifier: MIT
//
// A branch of the complete tree as far as a picture has room for it, as a tree of its own: its n
// ends are rows or whole branches and numbered 0 to n - 1, the nodes above them follow.
#pragma once

#include <vector>

#include "lib/support/alloc.h"
#include "tools/export/tree.h"

namespace mardle::exporting {

struct Crown {
  int ends() const { return static_cast<int>(first_rows.size()); }

  std::vector<int> part;        // the end at or below which each row stands, -1 for other rows
  std::vector<int> first_rows;  // the row with the lowest number of each end
  molva::Array<int> ptree;      // 2n parents
};

// The crown of the branch below `top`, with at most `ends` ends; `counts` are the leaves below each
// node.
Crown CrownOf(const Tree& tree, const std::vector<int>& counts, int top, std::size_t ends);

}  // namespace mardle::exporting
