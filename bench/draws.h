// SPDX-License-Identifier: MIT
//
// Random numbers for made-up matrices. Only the generator itself is the standard library's, as its
// distributions may differ from one to the next.
#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace bench {

using Random = std::mt19937;

// From 0, below 1.
inline double Uniform(Random& random) { return static_cast<double>(random()) * 0x1p-32; }

// Of mean 0 and variance 1, by the polar form of two of them.
inline double Normal(Random& random) {
  const double radius = std::sqrt(-2 * std::log(1 - Uniform(random)));
  return radius * std::cos(2 * std::numbers::pi * Uniform(random));
}

// Draws t from n with probability proportional to 1 / (t + 1)^slope.
class UnequalShares {
 public:
  UnequalShares(int n, double slope) {
    double sum = 0;
    for (int t = 0; t < n; ++t) sums_.push_back(sum += std::pow(t + 1, -slope));
  }

  std::size_t Draw(Random& random) const {
    const auto reached =
        std::upper_bound(sums_.begin(), sums_.end() - 1, Uniform(random) * sums_.back());
    return static_cast<std::size_t>(reached - sums_.begin());
  }

 private:
  std::vector<double> sums_;  // of the first shares
};

}  // namespace bench
