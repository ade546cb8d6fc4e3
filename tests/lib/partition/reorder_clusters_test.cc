// SPDX-License-Identifier: MIT
#include "lib/partition/reorder_clusters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "tests/testing/matrices.h"
#include "tests/testing/oracles.h"

namespace molva {
namespace {

using testing_support::CompositeOf;
using testing_support::Dot;
using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::RandomDocuments;
using testing_support::RandomPart;

TEST(Renumbering, PutsTheTightestClusterFirst) {
  // Rows 0 and 1 are orthogonal, rows 2 and 3 are one: cluster 1 is tighter and becomes 0.
  const auto mat = PreparedOf({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 1}});
  std::vector<int> part = {0, 0, 1, 1};
  ReorderClusters(*mat, 2, part);
  EXPECT_EQ(part, (std::vector<int>{1, 1, 0, 0}));
}

TEST(Renumbering, KeepsASingleCluster) {
  const auto mat = PreparedOf({{1, 0}, {0, 1}});
  std::vector<int> part = {0, 0};
  ReorderClusters(*mat, 1, part);
  EXPECT_EQ(part, (std::vector<int>{0, 0}));
}

TEST(Renumbering, OrdersByInternalMinusExternalSimilarity) {
  const auto mat = Prepared(RandomDocuments(9, 80, 60, 6, 8));
  std::vector<int> part = RandomPart(9, mat->nrows, 6);
  const std::vector<int> before = part;
  ReorderClusters(*mat, 6, part);
  Wide last = 2;
  for (int k = 0; k < 6; ++k) {
    const auto composite = CompositeOf(*mat, part, k);
    const auto n = static_cast<Wide>(std::count(part.begin(), part.end(), k));
    const Wide internal = Dot(composite, composite);
    const Wide external = Dot(composite, CompositeOf(*mat, part, -1)) - internal;
    const Wide key = internal / (n * n) - external / ((mat->nrows - n) * n);
    EXPECT_LE(key, last + 1e-6);
    last = key;
  }
  // Only numbers change: rows together stay together.
  for (std::size_t i = 1; i < part.size(); ++i) {
    EXPECT_EQ(part[i] == part[0], before[i] == before[0]);
  }
}

}  // namespace
}  // namespace molva
