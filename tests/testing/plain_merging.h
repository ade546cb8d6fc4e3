// SPDX-License-Identifier: MIT
//
// The merging of items as its definition reads: the whole matrix, a heap of all pairs with a table
// of positions beside it, every gain from scratch. What the engines are compared with bit for bit.
#pragma once

#include <span>
#include <vector>

namespace testing_support {

// The trees of BuildSimHAC: 2n elements each, -1, 0 and 0 where nothing was written.
struct PlainTree {
  std::vector<int> ptree;
  std::vector<float> tsims;
  std::vector<float> gains;
};

// Merges n items of the given weights under criterion 1 to 7; smat holds their n x n products.
PlainTree PlainMerging(int crfun, std::span<const int> pwgts, std::vector<float> smat);

}  // namespace testing_support
