// SPDX-License-Identifier: MIT
#include "lib/measure/cluster_features.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>
#include <vector>

#include "lib/molva.h"
#include "tests/testing/allocation.h"
#include "tests/testing/features.h"
#include "tests/testing/matrices.h"
#include "tests/testing/oracles.h"

namespace molva {
namespace {

using testing_support::BlockNames;
using testing_support::CompositeOf;
using testing_support::Dot;
using testing_support::ExpectRanking;
using testing_support::Features;
using testing_support::From;
using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::RandomDocuments;
using testing_support::RandomPart;
using testing_support::SparseMatrix;
using testing_support::SparseOf;
using testing_support::WideVector;
using Ids = std::vector<int>;
using Names = std::vector<std::string>;
using Weights = std::vector<float>;

Features Found(const PreparedMatrix& mat, const Ids& part, int nparts, int nfeatures) {
  Features f(nparts, nfeatures);
  Ids cperm(static_cast<std::size_t>(mat.ncols));
  std::iota(cperm.begin(), cperm.end(), 0);
  GetClusterFeatures(mat, nparts, part,
                     {cperm, nfeatures, f.internalids.data(), f.internalwgts.data()},
                     {cperm, nfeatures, f.externalids.data(), f.externalwgts.data()});
  return f;
}

// Clusters {(1,0), (1,0), (0,1)} and {(0,1), (0,1)}: composites (2,1) and (0,2).
Features OfFiveRows(int nfeatures) {
  return Found(*PreparedOf({{1, 0}, {1, 0}, {0, 1}, {0, 1}, {0, 1}}), {0, 0, 0, 1, 1}, 2,
               nfeatures);
}

TEST(ClusterFeatures, DescribeAClusterByTheSharesOfItsSquaredLength) {
  const Features f = OfFiveRows(2);
  EXPECT_EQ(f.internalids, (Ids{0, 1, 1, 0}));
  EXPECT_EQ(f.internalwgts, (Weights{0.8F, 0.2F, 1, 0}));
}

// (2,1)/sqrt(5) - (0,1) has the squares 4/5 and (1 - 1/sqrt(5))^2, from either cluster.
TEST(ClusterFeatures, TellAClusterFromTheRestBySharesOfTheSquaredDistance) {
  const Features f = OfFiveRows(2);
  const double second = (1 - 1 / std::sqrt(5.0)) * (1 - 1 / std::sqrt(5.0));
  EXPECT_EQ(f.externalids, (Ids{0, 1, 0, 1}));
  for (const std::size_t k : {0U, 1U}) {
    EXPECT_NEAR(f.externalwgts[2 * k], 0.8 / (0.8 + second), 1e-6);
    EXPECT_NEAR(f.externalwgts[2 * k + 1], second / (0.8 + second), 1e-6);
  }
}

TEST(ClusterFeatures, LeaveSurplusSlotsEmptyAndTheirWeightsAsTheyWere) {
  const Features f = OfFiveRows(3);
  EXPECT_EQ(f.internalids, (Ids{0, 1, -1, 1, 0, -1}));
  EXPECT_EQ(f.externalids, (Ids{0, 1, -1, 0, 1, -1}));
  EXPECT_EQ(f.internalwgts[2], 0.25F);
  EXPECT_EQ(f.externalwgts[5], 0.25F);
}

TEST(ClusterFeatures, AreTheBestOfALongerList) {
  const Features all = OfFiveRows(2);
  const Features best = OfFiveRows(1);
  EXPECT_EQ(best.internalids, (Ids{all.internalids[0], all.internalids[2]}));
  EXPECT_EQ(best.externalwgts, (Weights{all.externalwgts[0], all.externalwgts[2]}));
}

TEST(ClusterFeatures, OfAZeroCompositeAreNotNumbers) {
  const Features f = Found(*PreparedOf({{1, 0}, {-1, 0}, {0, 1}}), {0, 0, 1}, 2, 2);
  for (const std::size_t slot : {0U, 1U}) {
    EXPECT_TRUE(std::isnan(f.internalwgts[slot]));
    EXPECT_TRUE(std::isnan(f.externalwgts[slot]));
  }
  EXPECT_EQ(f.internalwgts[2], 1);
}

TEST(ClusterFeatures, OfAnEmptyClusterAreNotNumbers) {
  const Features f = Found(*PreparedOf({{1, 0}, {0, 1}}), {0, 0}, 2, 1);
  EXPECT_TRUE(std::isnan(f.internalwgts[1]));
  EXPECT_TRUE(std::isnan(f.externalwgts[1]));
}

TEST(ClusterFeatures, OfASingleClusterTellItFromNothing) {
  const Features f = Found(*PreparedOf({{1, 0}, {1, 0}, {0, 1}}), {0, 0, 0}, 1, 2);
  EXPECT_EQ(f.internalwgts, (Weights{0.8F, 0.2F}));
  EXPECT_TRUE(std::isnan(f.externalwgts[0]));
  EXPECT_TRUE(std::isnan(f.externalwgts[1]));
}

TEST(ClusterFeatures, SkipRowsWithoutACluster) {
  const Features with = Found(*PreparedOf({{1, 0}, {1, 0}, {0, 1}, {0, 1}, {0, 1}, {0, 1}, {1, 0}}),
                              {0, 0, 0, 1, 1, -1, 2}, 2, 2);
  const Features without = OfFiveRows(2);
  EXPECT_EQ(with.internalwgts, without.internalwgts);
  EXPECT_EQ(with.externalwgts, without.externalwgts);
}

// The weight of every column of cluster k, from scratch.
WideVector DescriptiveWeights(const PreparedMatrix& mat, const Ids& part, int k) {
  WideVector weights = CompositeOf(mat, part, k);
  const Wide squared = Dot(weights, weights);
  for (Wide& w : weights) w = w * w / squared;
  return weights;
}

WideVector DiscriminatingWeights(const PreparedMatrix& mat, const Ids& part, int k) {
  const WideVector inside = CompositeOf(mat, part, k);
  WideVector outside = CompositeOf(mat, part, -1);
  for (std::size_t j = 0; j < inside.size(); ++j) outside[j] -= inside[j];
  WideVector weights(inside.size());
  for (std::size_t j = 0; j < inside.size(); ++j) {
    const Wide d = inside[j] / molva::Sqrt(Dot(inside, inside)) -
                   outside[j] / molva::Sqrt(Dot(outside, outside));
    weights[j] = d * d;
  }
  const Wide sum = std::accumulate(weights.begin(), weights.end(), Wide{0});
  for (Wide& w : weights) w /= sum;
  return weights;
}

TEST(ClusterFeatures, RankEveryColumnByItsWeight) {
  for (const std::uint32_t seed : {1U, 2U, 3U}) {
    const auto mat = Prepared(RandomDocuments(seed, 50, 40, 4, 7));
    const Ids part = RandomPart(seed, mat->nrows, 4);
    const Features f = Found(*mat, part, 4, mat->ncols);
    for (int k = 0; k < 4; ++k) {
      ExpectRanking(f.internalids, f.internalwgts, k, DescriptiveWeights(*mat, part, k));
      ExpectRanking(f.externalids, f.externalwgts, k, DiscriminatingWeights(*mat, part, k));
    }
  }
}

Features OfMatrix(const SparseMatrix& m, const Ids& part, int nparts, int nfeatures) {
  Features f(nparts, nfeatures);
  MOLVA_V_GetClusterFeatures(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                             MOLVA_SIM_COSINE, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, nparts,
                             part.data(), nfeatures, f.internalids.data(), f.internalwgts.data(),
                             f.externalids.data(), f.externalwgts.data());
  return f;
}

// Columns 0 and 2 occur once and are dropped, and with them row 0. Cluster 0 is left with the
// composite (2,1) over columns 1 and 3, cluster 1 with (0,2).
TEST(ClusterFeaturesEntryPoint, NamesTheCallersColumns) {
  const SparseMatrix m = SparseOf(
      {{7, 0, 0, 0}, {0, 1, 0, 0}, {0, 1, 5, 0}, {0, 0, 0, 2}, {0, 0, 0, 1}, {0, 0, 0, 3}});
  const Features f = OfMatrix(m, {-1, 0, 0, 0, 1, 1}, 2, 3);
  EXPECT_EQ(f.internalids, (Ids{1, 3, -1, 3, 1, -1}));
  EXPECT_EQ(f.internalwgts, (Weights{0.8F, 0.2F, 0.25F, 1, 0, 0.25F}));
  EXPECT_EQ(f.externalids, (Ids{1, 3, -1, 1, 3, -1}));
}

TEST(ClusterFeaturesEntryPoint, WritesNothingWithoutClustersOrSlots) {
  const SparseMatrix m = SparseOf({{1, 0}, {0, 1}, {1, 1}});
  EXPECT_TRUE(OfMatrix(m, {0, 0, 0}, 1, 0).internalids.empty());
  EXPECT_TRUE(OfMatrix(m, {0, 0, 0}, 0, 3).externalids.empty());
}

TEST(ClusterFeaturesEntryPoint, NamesItsBlocks) {
  const SparseMatrix m = SparseOf({{1, 0}, {0, 1}, {1, 1}});
  const Names names = BlockNames([&] { OfMatrix(m, {0, 0, 0}, 1, 1); });
  EXPECT_EQ(Names(names.begin(), names.begin() + 3),
            (Names{"MOLVA_V_GetClusterFeatures: rperm", "MOLVA_V_GetClusterFeatures: cperm",
                   "MOLVA_V_GetClusterFeatures: ppart"}));
  // The table of one composite and the composite.
  EXPECT_EQ(
      From("GetClusterFeatures", names),
      (Names{"GetClusterFeatures: centers", "GetClusterFeatures: centers",
             "GetClusterFeatures: gcenter", "GetClusterFeatures: vec", "GetClusterFeatures: fcand",
             "GetClusterFeatures: pwgts", "GetClusterFeatures: dnorms"}));
}

}  // namespace
}  // namespace molva
