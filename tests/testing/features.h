// SPDX-License-Identifier: MIT
//
// Feature lists in tests.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "tests/testing/oracles.h"

namespace testing_support {

// The lists of both kinds. Slots hold 99 and 0.25 until they are written.
struct Features {
  Features(int nlists, int nfeatures)
      : internalids(static_cast<std::size_t>(nlists * nfeatures), 99),
        externalids(internalids),
        internalwgts(internalids.size(), 0.25F),
        externalwgts(internalwgts) {}
  std::vector<int> internalids, externalids;
  std::vector<float> internalwgts, externalwgts;
};

// List k ranks all columns: each once, with its weight, the largest first.
inline void ExpectRanking(const std::vector<int>& ids, const std::vector<float>& weights, int k,
                          const WideVector& expected) {
  const std::size_t begin = static_cast<std::size_t>(k) * expected.size();
  std::vector<bool> listed(expected.size());
  for (std::size_t slot = begin; slot < begin + expected.size(); ++slot) {
    const auto column = static_cast<std::size_t>(ids[slot]);
    EXPECT_FALSE(listed[column]) << column;
    listed[column] = true;
    EXPECT_NEAR(weights[slot], static_cast<double>(expected[column]), 1e-6);
    if (slot > begin) {
      EXPECT_LE(weights[slot], weights[slot - 1]);
    }
  }
}

}  // namespace testing_support
