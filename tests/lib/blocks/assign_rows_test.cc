// SPDX-License-Identifier: MIT
//
// Moves are compared with an oracle that moves the row and computes the criterion from scratch.
#include "lib/blocks/assign_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "lib/molva.h"
#include "tests/testing/blocks.h"
#include "tests/testing/matrices.h"
#include "tests/testing/oracles.h"

namespace molva {
namespace {

using testing_support::ClusterArrays;
using testing_support::CriterionValue;
using testing_support::PlainRows;
using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::QualityOf;
using testing_support::RandomDocuments;
using testing_support::RandomPart;
using testing_support::SparseMatrix;

constexpr int kClusters = 4;

std::vector<int> BestOf(int crfun, const ClusterArrays& clusters, const SparseMatrix& rows,
                        const std::vector<int>& part) {
  std::vector<int> best(part.size(), -7);
  const MOLVA_View view = clusters.view();
  MOLVA_B_AssignRows(rows.nrows, rows.rowptr.data(), rows.rowind.data(), rows.rowval.data(), crfun,
                     &view, part.data(), best.data());
  return best;
}

class BatchMoves : public ::testing::TestWithParam<int> {};

TEST_P(BatchMoves, GoWhereTheCriterionGainsMost) {
  const int crfun = GetParam();
  const auto mat = Prepared(RandomDocuments(11, 60, 40, kClusters, 8));
  const SparseMatrix rows = PlainRows(*mat);
  const std::vector<int> part = RandomPart(3, rows.nrows, kClusters);
  const ClusterArrays clusters(rows, part, kClusters);
  const std::vector<int> best = BestOf(crfun, clusters, rows, part);
  int moves = 0;
  for (std::size_t i = 0; i < part.size(); ++i) {
    std::vector<double> quality;
    for (int k = 0; k < kClusters; ++k) {
      std::vector<int> moved = part;
      moved[i] = k;
      quality.push_back(static_cast<double>(
          QualityOf(crfun, CriterionValue(crfun, *mat, moved, kClusters), rows.nrows)));
    }
    const double most = *std::max_element(quality.begin(), quality.end());
    EXPECT_NEAR(quality[static_cast<std::size_t>(best[i])], most, 1e-6 * std::fabs(most));
    if (best[i] != part[i]) ++moves;
  }
  EXPECT_GT(moves, rows.nrows / 4);
}

TEST_P(BatchMoves, OfRowsWithoutAClusterGoWhereJoiningGainsMost) {
  const int crfun = GetParam();
  const auto mat = Prepared(RandomDocuments(12, 61, 40, kClusters, 8));
  const SparseMatrix all = PlainRows(*mat);
  const SparseMatrix rows = testing_support::RowsOf(all, 0, all.nrows - 1);
  const SparseMatrix last = testing_support::RowsOf(all, all.nrows - 1, all.nrows);
  std::vector<int> part = RandomPart(4, rows.nrows, kClusters);
  const ClusterArrays clusters(rows, part, kClusters);
  const int joined = BestOf(crfun, clusters, last, {-1})[0];
  // All others keep their sums, and the whole that they are compared with.
  std::vector<double> quality;
  for (int k = 0; k < kClusters; ++k) {
    part.push_back(k);
    ClusterArrays with(all, part, kClusters);
    for (int c = 0; c < kClusters; ++c) {
      double similarity = 0;
      for (int j = 0; j < all.ncols; ++j) {
        const auto at = static_cast<std::size_t>(j * kClusters + c);
        similarity += static_cast<double>(with.composites[at]) *
                      static_cast<double>(clusters.whole[static_cast<std::size_t>(j)]);
      }
      with.csim[static_cast<std::size_t>(c)] = similarity;
    }
    quality.push_back(static_cast<double>(QualityOf(crfun, with.Value(crfun), all.nrows)));
    part.pop_back();
  }
  const double most = *std::max_element(quality.begin(), quality.end());
  EXPECT_NEAR(quality[static_cast<std::size_t>(joined)], most, 1e-6 * std::fabs(most));
}

INSTANTIATE_TEST_SUITE_P(AllCriteria, BatchMoves, ::testing::Range(1, 10));

TEST(BatchMove, NeverTakesARowFromAPair) {
  const auto mat = PreparedOf({{1, 0}, {0, 1}, {1, 0}, {1, 0}, {0.9F, 0.1F}});
  const SparseMatrix rows = PlainRows(*mat);
  const std::vector<int> part = {0, 0, 1, 1, 1};
  EXPECT_EQ(BestOf(MOLVA_CRFUN_I2, ClusterArrays(rows, part, 2), rows, part), part);
}

TEST(BatchMove, LeavesTheRowOutOfItsOwnCluster) {
  // The last row is more similar to its own cluster's sum, in which it stands itself, (0.6, 2.8),
  // than to (3, 0); without it that sum is (0, 2), and I2 gains by the move.
  const auto mat = PreparedOf({{1, 0}, {1, 0}, {1, 0}, {0, 1}, {0, 1}, {0.8F, 0.6F}});
  const SparseMatrix rows = PlainRows(*mat);
  const std::vector<int> part = {0, 0, 0, 1, 1, 1};
  const std::vector<int> best = BestOf(MOLVA_CRFUN_I2, ClusterArrays(rows, part, 2), rows, part);
  EXPECT_EQ(best, (std::vector<int>{0, 0, 0, 1, 1, 0}));
}

TEST(RowAverages, AreThoseOfTheRowsOwnProducts) {
  const auto mat = PreparedOf({{1, 0}, {0.6F, 0.8F}, {0, 1}});
  const SparseMatrix rows = PlainRows(*mat);
  const std::vector<int> part = {0, 0, 1};
  const ClusterArrays clusters(rows, part, 2);
  const MOLVA_View view = clusters.view();
  std::vector<float> internal(3), external(3);
  const std::vector<int> asked = {0, 0, -1};
  MOLVA_B_AverageRows(3, rows.rowptr.data(), rows.rowind.data(), rows.rowval.data(), &view,
                      asked.data(), internal.data(), external.data());
  EXPECT_FLOAT_EQ(internal[0], 0.8F);  // (1 + 0.6) / 2
  EXPECT_FLOAT_EQ(internal[1], 0.8F);  // (0.6 + 1) / 2
  EXPECT_NEAR(external[0], 0, 1e-7);   // (1, 0) with (0, 1)
  EXPECT_FLOAT_EQ(external[1], 0.8F);
  EXPECT_EQ(internal[2], 0);
  EXPECT_EQ(external[2], 0);
}

}  // namespace
}  // namespace molva
