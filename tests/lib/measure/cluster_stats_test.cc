// SPDX-License-Identifier: MIT
#include "lib/measure/cluster_stats.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "lib/matrix/prepare.h"
#include "lib/molva.h"
#include "tests/testing/matrices.h"
#include "tests/testing/oracles.h"

namespace molva {
namespace {

using testing_support::DenseRow;
using testing_support::Dot;
using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::RandomDocuments;
using testing_support::RandomPart;
using testing_support::SparseMatrix;
using testing_support::SparseOf;

struct Stats {
  Stats(int nparts, int nrows)
      : pwgts(static_cast<std::size_t>(nparts)),
        isim(pwgts.size()),
        isdev(pwgts.size()),
        esim(pwgts.size()),
        esdev(pwgts.size()),
        izscores(static_cast<std::size_t>(nrows)),
        ezscores(izscores.size()) {}
  std::vector<int> pwgts;
  std::vector<float> isim, isdev, esim, esdev, izscores, ezscores;
};

Stats Measured(const PreparedMatrix& mat, const std::vector<int>& part, int nparts) {
  Stats s(nparts, mat.nrows);
  GetClusterStats(mat, part, {s.pwgts, s.isim, s.isdev, s.izscores, s.esim, s.esdev, s.ezscores});
  return s;
}

TEST(ClusterStats, ARowsSimilarityToItselfCounts) {
  // Two orthogonal unit rows: four ordered pairs, two of them a row with itself.
  const Stats s = Measured(*PreparedOf({{1, 0}, {0, 1}, {0, 1}}), {0, 0, 1}, 2);
  EXPECT_EQ(s.pwgts, (std::vector<int>{2, 1}));
  EXPECT_EQ(s.isim[0], 0.5F);
}

TEST(ClusterStats, IdenticalRowsHaveSimilarityOneAndNoDeviation) {
  const Stats s =
      Measured(*PreparedOf({{0, 1}, {0, 1}, {0, 1}, {1, 0}, {1, 0}}), {0, 0, 0, 1, 1}, 2);
  EXPECT_EQ(s.isim[0], 1);
  EXPECT_EQ(s.isdev[0], 0);
  EXPECT_EQ(s.esim[0], 0);
}

TEST(ClusterStats, MeasureASmallClusteringByHand) {
  // Cluster 0 holds (1,0), (1,0), (0,1), cluster 1 holds (0,1), (0,1).
  // D_0 = (2,1), D_1 = (0,2), G = (2,3): ISim 5/9 and 1, ESim (7-5)/6 and (6-4)/6.
  // Rows of cluster 0: internal 2/3, 2/3, 1/3; external 0, 0, 1.
  const Stats s =
      Measured(*PreparedOf({{1, 0}, {1, 0}, {0, 1}, {0, 1}, {0, 1}}), {0, 0, 0, 1, 1}, 2);
  EXPECT_FLOAT_EQ(s.isim[0], 5.0F / 9);
  EXPECT_FLOAT_EQ(s.esim[0], 1.0F / 3);
  EXPECT_FLOAT_EQ(s.isim[1], 1);
  EXPECT_FLOAT_EQ(s.esim[1], 1.0F / 3);
  // (1/9)^2 twice and (2/9)^2, over 3 - 1; the external (1/3)^2 twice and (2/3)^2, over 3 - 1 too.
  EXPECT_FLOAT_EQ(s.isdev[0], std::sqrt(6.0F / 81 / 2));
  EXPECT_FLOAT_EQ(s.esdev[0], std::sqrt(6.0F / 9 / 2));
  EXPECT_NEAR(s.izscores[0], 1 / std::sqrt(3.0), 1e-6);
  EXPECT_NEAR(s.izscores[2], -2 / std::sqrt(3.0), 1e-6);
  EXPECT_NEAR(s.ezscores[0], -1 / std::sqrt(3.0), 1e-6);
  EXPECT_NEAR(s.ezscores[2], 2 / std::sqrt(3.0), 1e-6);
}

// With the composite twice the row (1, e, e, e, e), e = 2^-12, each of the four small products is half
// a unit of the first, which single precision would lose one by one. Together they are two units: the
// row's average is 1 + 2^-22, as that of the cluster, and nothing deviates.
TEST(ClusterStats, SumTheAverageOfARowWide) {
  constexpr float kSmall = 0x1p-12F;
  const std::vector<float> row = {1, kSmall, kSmall, kSmall, kSmall};
  const Stats s = Measured(*PreparedOf({row, row, {0, 0, 0, 0, 1}}), {0, 0, 1}, 2);
  EXPECT_EQ(s.isim[0], 1 + 0x1p-22F);
  EXPECT_EQ(s.isdev[0], 0);
}

TEST(ClusterStats, EqualTheAveragesOverAllPairs) {
  const auto mat = Prepared(RandomDocuments(11, 60, 50, 4, 8));
  const std::vector<int> part = RandomPart(11, mat->nrows, 4);
  const Stats s = Measured(*mat, part, 4);
  for (int k = 0; k < 4; ++k) {
    Wide internal = 0, external = 0;
    for (int i = 0; i < mat->nrows; ++i) {
      if (part[static_cast<std::size_t>(i)] != k) continue;
      for (int r = 0; r < mat->nrows; ++r) {
        const Wide similarity = Dot(DenseRow(*mat, i), DenseRow(*mat, r));
        (part[static_cast<std::size_t>(r)] == k ? internal : external) += similarity;
      }
    }
    const auto cluster = static_cast<std::size_t>(k);
    const Wide n = s.pwgts[cluster];
    EXPECT_NEAR(s.isim[cluster], static_cast<double>(internal / (n * n)), 1e-6);
    EXPECT_NEAR(s.esim[cluster], static_cast<double>(external / (n * (mat->nrows - n))), 1e-6);
  }
}

TEST(ClusterStats, OfASingleRowHaveNoDeviation) {
  const Stats s = Measured(*PreparedOf({{1, 0}, {0, 1}, {0, 1}}), {0, 1, 1}, 2);
  EXPECT_TRUE(std::isnan(s.isdev[0]));
  EXPECT_TRUE(std::isnan(s.esdev[0]));
  EXPECT_TRUE(std::isnan(s.izscores[0]));
}

TEST(ClusterStats, OfAnEmptyClusterAreNotNumbers) {
  const Stats s = Measured(*PreparedOf({{1, 0}, {0, 1}}), {0, 0}, 2);
  EXPECT_EQ(s.pwgts[1], 0);
  EXPECT_TRUE(std::isnan(s.isim[1]));
  EXPECT_TRUE(std::isnan(s.esim[1]));
}

TEST(ClusterStats, OfAllRowsHaveNoExternalSide) {
  const Stats s = Measured(*PreparedOf({{1, 0}, {0, 1}}), {0, 0}, 1);
  EXPECT_TRUE(std::isnan(s.esim[0]));
  EXPECT_TRUE(std::isnan(s.esdev[0]));
  EXPECT_EQ(s.isim[0], 0.5F);
}

TEST(ClusterStats, SkipRowsWithoutACluster) {
  const Stats with = Measured(*PreparedOf({{1, 0}, {1, 0}, {0, 1}, {0, 1}}), {0, 0, -1, 5}, 1);
  EXPECT_EQ(with.pwgts[0], 2);
  EXPECT_EQ(with.isim[0], 1);
}

TEST(ClusterStatsEntryPoint, ReturnsScoresInTheCallersRowOrder) {
  // Row 1 is empty and dropped; its scores are not written.
  const SparseMatrix m = SparseOf({{1, 0}, {0, 0}, {1, 0}, {0, 1}, {0, 1}, {0, 1}});
  const std::vector<int> part = {0, -1, 0, 0, 1, 1};
  Stats s(2, 6);
  s.izscores.assign(6, 99);
  s.ezscores.assign(6, 99);
  MOLVA_V_GetClusterStats(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                          MOLVA_SIM_COSINE, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 2, part.data(),
                          s.pwgts.data(), s.isim.data(), s.isdev.data(), s.izscores.data(),
                          s.esim.data(), s.esdev.data(), s.ezscores.data());
  EXPECT_EQ(s.izscores[1], 99);
  EXPECT_EQ(s.ezscores[1], 99);
  EXPECT_NEAR(s.izscores[2], 1 / std::sqrt(3.0), 1e-6);
  EXPECT_NEAR(s.izscores[3], -2 / std::sqrt(3.0), 1e-6);
}

TEST(ClusterStatsEntryPoint, DoesWithoutScores) {
  const SparseMatrix m = SparseOf({{1, 0}, {1, 0}, {0, 1}, {0, 1}});
  const std::vector<int> part = {0, 0, 1, 1};
  Stats s(2, 4);
  MOLVA_V_GetClusterStats(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                          MOLVA_SIM_COSINE, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 2, part.data(),
                          s.pwgts.data(), s.isim.data(), s.isdev.data(), nullptr, s.esim.data(),
                          s.esdev.data(), nullptr);
  EXPECT_EQ(s.isim, (std::vector<float>{1, 1}));
}

}  // namespace
}  // namespace molva
