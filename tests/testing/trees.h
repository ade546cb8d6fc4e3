// SPDX-License-Identifier: MIT
//
// Small trees for tests, as arrays of parents.
#pragma once

#include <cstdint>
#include <random>
#include <utility>
#include <vector>

namespace testing_support {

// A random binary tree over n leaves: 2n parents, -1 for the root and behind it.
inline std::vector<int> RandomTree(std::uint32_t seed, int n) {
  std::mt19937 random(seed);
  std::vector<int> ptree(2 * static_cast<std::size_t>(n), -1);
  std::vector<int> open;
  for (int x = 0; x < n; ++x) open.push_back(x);
  for (int node = n; node <= 2 * n - 2; ++node) {
    for (int child = 0; child < 2; ++child) {
      std::swap(open[random() % open.size()], open.back());
      ptree[static_cast<std::size_t>(open.back())] = node;
      open.pop_back();
    }
    open.push_back(node);
  }
  return ptree;
}

// Whether node x is `ancestor` or below it.
inline bool IsBelow(int x, int ancestor, const std::vector<int>& ptree) {
  while (x != ancestor && x >= 0) x = ptree[static_cast<std::size_t>(x)];
  return x == ancestor;
}

}  // namespace testing_support
