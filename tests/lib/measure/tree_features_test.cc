// SPDX-License-Identifier: MIT
#include "lib/measure/tree_features.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <string>
#include <vector>

#include "lib/molva.h"
#include "tests/testing/allocation.h"
#include "tests/testing/features.h"
#include "tests/testing/matrices.h"
#include "tests/testing/oracles.h"
#include "tests/testing/trees.h"

namespace molva {
namespace {

using testing_support::BlockNames;
using testing_support::DenseRow;
using testing_support::Dot;
using testing_support::ExpectRanking;
using testing_support::Features;
using testing_support::From;
using testing_support::IsBelow;
using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::RandomDocuments;
using testing_support::RandomPart;
using testing_support::RandomTree;
using testing_support::SparseMatrix;
using testing_support::SparseOf;
using testing_support::WideVector;
using Ids = std::vector<int>;
using Names = std::vector<std::string>;
using Weights = std::vector<float>;

Features Found(const PreparedMatrix& mat, const Ids& part, const Ids& ptree, int nfeatures) {
  const int nparts = static_cast<int>(ptree.size() / 2);
  Features f(2 * nparts, nfeatures);
  Ids cperm(static_cast<std::size_t>(mat.ncols));
  std::iota(cperm.begin(), cperm.end(), 0);
  GetTreeFeatures(mat, nparts, part, ptree,
                  {cperm, nfeatures, f.internalids.data(), f.internalwgts.data()},
                  {cperm, nfeatures, f.externalids.data(), f.externalwgts.data()});
  return f;
}

// Clusters with the composites (2,0), (0,3) and (1,0); 1 and 2 are joined first. Node 3 has (1,3),
// the root (3,3).
const Ids kThreeLeaves = {4, 3, 3, 4, -1, -1};

Features OfThreeClusters(int nfeatures) {
  return Found(*PreparedOf({{2, 0}, {0, 3}, {1, 0}}), {0, 1, 2}, kThreeLeaves, nfeatures);
}

TEST(TreeFeatures, DescribeEveryNode) {
  const Features f = OfThreeClusters(1);
  EXPECT_EQ(Ids(f.internalids.begin(), f.internalids.begin() + 4), (Ids{0, 1, 0, 1}));
  EXPECT_EQ(Weights(f.internalwgts.begin(), f.internalwgts.begin() + 5),
            (Weights{1, 1, 1, 0.9F, 0.5F}));
  EXPECT_EQ(f.internalids[5], 99);
}

// (0,1) and (1,0) differ by 1 in either column; (1,3)/sqrt(10) and (1,0) by 3/sqrt(10) and
// 1 - 1/sqrt(10).
TEST(TreeFeatures, TellTheSecondOfTwoSiblingsFromTheFirst) {
  const Features f = OfThreeClusters(2);
  const double first = (1 - 1 / std::sqrt(10.0)) * (1 - 1 / std::sqrt(10.0));
  EXPECT_FLOAT_EQ(f.externalwgts[2 * 2], 0.5F);
  EXPECT_FLOAT_EQ(f.externalwgts[2 * 2 + 1], 0.5F);
  EXPECT_EQ(f.externalids[2 * 3], 1);
  EXPECT_EQ(f.externalids[2 * 3 + 1], 0);
  EXPECT_NEAR(f.externalwgts[2 * 3], 0.9 / (0.9 + first), 1e-6);
  EXPECT_NEAR(f.externalwgts[2 * 3 + 1], first / (0.9 + first), 1e-6);
}

TEST(TreeFeatures, WriteNothingThatTellsFirstSiblingsOrTheRootApart) {
  const Features f = OfThreeClusters(1);
  for (const std::size_t x : {0U, 1U, 4U, 5U}) {
    EXPECT_EQ(f.externalids[x], 99) << x;
    EXPECT_EQ(f.externalwgts[x], 0.25F) << x;
  }
}

TEST(TreeFeatures, LeaveSurplusSlotsEmptyAndTheirWeightsAsTheyWere) {
  const Features f = OfThreeClusters(3);
  EXPECT_EQ(f.internalids[3 * 4 + 2], -1);
  EXPECT_EQ(f.internalwgts[3 * 4 + 2], 0.25F);
  EXPECT_EQ(f.externalids[3 * 3 + 2], -1);
  EXPECT_EQ(f.externalwgts[3 * 3 + 2], 0.25F);
}

TEST(TreeFeatures, OfOneClusterAreDescriptiveOnly) {
  const Features f = Found(*PreparedOf({{1, 0}, {0, 3}}), {0, 0}, {-1, -1}, 1);
  EXPECT_EQ(f.internalids, (Ids{1, 99}));
  EXPECT_EQ(f.internalwgts, (Weights{0.9F, 0.25F}));
  EXPECT_EQ(f.externalids, (Ids{99, 99}));
}

TEST(TreeFeatures, OfSiblingsInOneDirectionAreNotNumbers) {
  const Features f = Found(*PreparedOf({{1, 0}, {5, 0}}), {0, 1}, {2, 2, -1, -1}, 2);
  EXPECT_TRUE(std::isnan(f.externalwgts[2]));
  EXPECT_TRUE(std::isnan(f.externalwgts[3]));
}

TEST(TreeFeatures, OfAZeroCompositeAreNotNumbers) {
  const Features f = Found(*PreparedOf({{1, 0}, {-1, 0}, {0, 1}}), {0, 0, 1}, {2, 2, -1, -1}, 1);
  EXPECT_TRUE(std::isnan(f.internalwgts[0]));
  EXPECT_TRUE(std::isnan(f.externalwgts[1]));
}

// Cluster 1 is empty, its leaf joined to nothing; clusters 0 and 2 are siblings.
TEST(TreeFeatures, LeaveOutAnEmptyCluster) {
  const Features f = Found(*PreparedOf({{1, 0}, {0, 1}}), {0, 2}, {3, -1, 3, -1, -1, -1}, 1);
  EXPECT_EQ(f.externalids[1], 99);
  EXPECT_FLOAT_EQ(f.externalwgts[2], 0.5F);
  EXPECT_EQ(f.internalwgts[3], 0.5F);
}

// The sum of the rows below node x.
WideVector CompositeBelow(const PreparedMatrix& mat, const Ids& part, const Ids& ptree, int x) {
  WideVector sum(static_cast<std::size_t>(mat.ncols));
  for (int i = 0; i < mat.nrows; ++i) {
    if (!IsBelow(part[static_cast<std::size_t>(i)], x, ptree)) continue;
    const WideVector row = DenseRow(mat, i);
    for (std::size_t j = 0; j < row.size(); ++j) sum[j] += row[j];
  }
  return sum;
}

WideVector SquaredShares(WideVector vector) {
  const Wide squared = Dot(vector, vector);
  for (Wide& v : vector) v = v * v / squared;
  return vector;
}

WideVector DifferenceOfUnits(const WideVector& a, const WideVector& b) {
  WideVector difference(a.size());
  for (std::size_t j = 0; j < a.size(); ++j) {
    difference[j] = a[j] / molva::Sqrt(Dot(a, a)) - b[j] / molva::Sqrt(Dot(b, b));
  }
  return difference;
}

TEST(TreeFeatures, RankEveryColumnByItsWeight) {
  constexpr int kParts = 5;
  for (const std::uint32_t seed : {1U, 2U, 3U}) {
    const auto mat = Prepared(RandomDocuments(seed, 40, 30, 4, 6));
    const Ids part = RandomPart(seed, mat->nrows, kParts);
    const Ids ptree = RandomTree(seed, kParts);
    const Features f = Found(*mat, part, ptree, mat->ncols);
    for (int x = 0; x <= 2 * kParts - 2; ++x) {
      const WideVector own = CompositeBelow(*mat, part, ptree, x);
      ExpectRanking(f.internalids, f.internalwgts, x, SquaredShares(own));
      for (int first = 0; first < x; ++first) {
        if (ptree[static_cast<std::size_t>(first)] != ptree[static_cast<std::size_t>(x)]) continue;
        const WideVector other = CompositeBelow(*mat, part, ptree, first);
        ExpectRanking(f.externalids, f.externalwgts, x,
                      SquaredShares(DifferenceOfUnits(own, other)));
      }
    }
  }
}

Features OfMatrix(const SparseMatrix& m, const Ids& part, const Ids& ptree, int nfeatures) {
  const int nparts = static_cast<int>(ptree.size() / 2);
  Features f(2 * nparts, nfeatures);
  MOLVA_V_GetTreeFeatures(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                          MOLVA_SIM_COSINE, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, nparts,
                          part.data(), ptree.data(), nfeatures, f.internalids.data(),
                          f.internalwgts.data(), f.externalids.data(), f.externalwgts.data());
  return f;
}

// Columns 0 and 2 occur once and are dropped, and with them row 0.
TEST(TreeFeaturesEntryPoint, NamesTheCallersColumns) {
  const SparseMatrix m =
      SparseOf({{7, 0, 0, 0}, {0, 1, 0, 0}, {0, 1, 5, 0}, {0, 0, 0, 1}, {0, 0, 0, 2}});
  const Features f = OfMatrix(m, {-1, 0, 0, 0, 1}, {2, 2, -1, -1}, 2);
  EXPECT_EQ(f.internalids, (Ids{1, 3, 3, 1, 1, 3, 99, 99}));
  EXPECT_EQ(Weights(f.internalwgts.begin(), f.internalwgts.begin() + 4),
            (Weights{0.8F, 0.2F, 1, 0}));
  EXPECT_EQ(Ids(f.externalids.begin() + 2, f.externalids.begin() + 4), (Ids{1, 3}));
}

TEST(TreeFeaturesEntryPoint, NamesItsBlocks) {
  const SparseMatrix m = SparseOf({{1, 0}, {0, 1}, {1, 1}});
  const Names names = BlockNames([&] { OfMatrix(m, {0, 0, 0}, {-1, -1}, 1); });
  EXPECT_EQ(Names(names.begin(), names.begin() + 3),
            (Names{"MOLVA_V_GetTreeFeatures: rperm", "MOLVA_V_GetTreeFeatures: cperm",
                   "MOLVA_V_GetTreeFeatures: ppart"}));
  const std::string centers = "GetClusterStats: centers";
  EXPECT_EQ(From("ShowTreeStats", names),
            (Names{"ShowTreeStats: ftree", centers, centers, centers, "GetTreeFeatures: pwgts",
                   "GetTreeFeatures: fcand"}));
}

}  // namespace
}  // namespace molva
