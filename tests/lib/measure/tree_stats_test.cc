// SPDX-License-Identifier: MIT
#include "lib/measure/tree_stats.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "lib/molva.h"
#include "tests/testing/allocation.h"
#include "tests/testing/matrices.h"
#include "tests/testing/oracles.h"
#include "tests/testing/trees.h"

namespace molva {
namespace {

using testing_support::BlockNames;
using testing_support::DenseRow;
using testing_support::Dot;
using testing_support::From;
using testing_support::IsBelow;
using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::RandomDocuments;
using testing_support::RandomPart;
using testing_support::RandomTree;
using testing_support::SparseMatrix;
using testing_support::SparseOf;
using Floats = std::vector<float>;
using Ints = std::vector<int>;
using Names = std::vector<std::string>;

struct NodeStats {
  explicit NodeStats(int nparts)
      : pwgts(2 * static_cast<std::size_t>(nparts), 99),
        isims(pwgts.size(), 99),
        xsims(pwgts.size(), 99) {}
  Ints pwgts;
  Floats isims, xsims;
};

NodeStats Measured(const PreparedMatrix& mat, const Ints& part, const Ints& ptree) {
  const int nparts = static_cast<int>(ptree.size() / 2);
  NodeStats s(nparts);
  GetTreeStats(mat, nparts, part, ptree, s.pwgts, s.isims, s.xsims);
  return s;
}

// Clusters {(1,0), (1,0)}, {(0,1)} and {(0,1), (1,0)}; 1 and 2 are joined first. Node 3 has the
// composite (1,2) of 3 rows, the root (3,2) of 5.
const Ints kThreeLeaves = {4, 3, 3, 4, -1, -1};

NodeStats OfFiveRows() {
  return Measured(*PreparedOf({{1, 0}, {1, 0}, {0, 1}, {0, 1}, {1, 0}}), {0, 0, 1, 2, 2},
                  kThreeLeaves);
}

TEST(TreeStats, CountTheRowsBelowEachNode) {
  const Ints pwgts = OfFiveRows().pwgts;
  EXPECT_EQ(Ints(pwgts.begin(), pwgts.begin() + 5), (Ints{2, 1, 2, 3, 5}));
}

TEST(TreeStats, AverageOverThePairsOfRowsBelowANode) {
  const Floats isims = OfFiveRows().isims;
  EXPECT_EQ(Floats(isims.begin(), isims.begin() + 5), (Floats{1, 1, 0.5F, 5 / 9.0F, 13 / 25.0F}));
}

// (0,1).(1,1) / 2 and (2,0).(1,2) / 6
TEST(TreeStats, AverageOverThePairsOfRowsOfTwoSiblings) {
  const Floats xsims = OfFiveRows().xsims;
  EXPECT_EQ(Floats(xsims.begin(), xsims.begin() + 5), (Floats{2 / 6.0F, 0.5F, 0.5F, 2 / 6.0F, 0}));
}

TEST(TreeStats, OfOneClusterHaveNoSibling) {
  const NodeStats s = Measured(*PreparedOf({{1, 0}, {0, 1}}), {0, 0}, {-1, -1});
  EXPECT_EQ(s.pwgts[0], 2);
  EXPECT_EQ(s.isims[0], 0.5F);
  EXPECT_EQ(s.xsims[0], 0);
}

// Cluster 1 is empty, its leaf joined to nothing; node 3 is the root.
TEST(TreeStats, OfAnEmptyClusterAreNotNumbers) {
  const NodeStats s = Measured(*PreparedOf({{1, 0}, {0, 1}}), {0, 2}, {3, -1, 3, -1, -1, -1});
  EXPECT_EQ(s.pwgts[1], 0);
  EXPECT_TRUE(std::isnan(s.isims[1]));
  EXPECT_EQ(s.isims[3], 0.5F);
  EXPECT_EQ(s.xsims[3], 0);
}

TEST(TreeStats, SkipRowsWithoutACluster) {
  const NodeStats s =
      Measured(*PreparedOf({{1, 0}, {1, 0}, {0, 1}, {0, 1}}), {0, 0, -1, 7}, {-1, -1});
  EXPECT_EQ(s.pwgts[0], 2);
  EXPECT_EQ(s.isims[0], 1);
}

// 50,000 rows squared leave an int.
TEST(TreeStats, CountPairsOfRowsBeyondAnInt) {
  constexpr int kRows = 100000;
  SparseMatrix m;
  m.nrows = kRows;
  m.ncols = 2;
  Ints part;
  for (int i = 0; i < kRows; ++i) {
    m.rowind.push_back(0);
    m.rowval.push_back(1);
    m.rowptr.push_back(i + 1);
    part.push_back(i % 2);
  }
  const NodeStats s = Measured(*Prepared(m), part, {2, 2, -1, -1});
  for (const std::size_t x : {0U, 1U, 2U}) EXPECT_FLOAT_EQ(s.isims[x], 1);
  EXPECT_FLOAT_EQ(s.xsims[0], 1);
}

// The average product of a row below one node and a row below another, or below the same.
double AverageProduct(const PreparedMatrix& mat, const Ints& part, const Ints& ptree, int x,
                      int y) {
  Wide sum = 0, pairs = 0;
  for (int i = 0; i < mat.nrows; ++i) {
    for (int r = 0; r < mat.nrows; ++r) {
      if (!IsBelow(part[static_cast<std::size_t>(i)], x, ptree)) continue;
      if (!IsBelow(part[static_cast<std::size_t>(r)], y, ptree)) continue;
      sum += Dot(DenseRow(mat, i), DenseRow(mat, r));
      pairs += 1;
    }
  }
  return static_cast<double>(sum / pairs);
}

TEST(TreeStats, EqualTheAveragesOverAllPairs) {
  for (const std::uint32_t seed : {1U, 2U, 3U}) {
    const auto mat = Prepared(RandomDocuments(seed, 40, 30, 4, 6));
    constexpr int kParts = 5;
    const Ints part = RandomPart(seed, mat->nrows, kParts);
    const Ints ptree = RandomTree(seed, kParts);
    const NodeStats s = Measured(*mat, part, ptree);
    for (int x = 0; x <= 2 * kParts - 2; ++x) {
      EXPECT_NEAR(s.isims[static_cast<std::size_t>(x)], AverageProduct(*mat, part, ptree, x, x),
                  1e-6);
      for (int y = 0; y <= 2 * kParts - 3; ++y) {
        if (x == y || x == 2 * kParts - 2) continue;
        if (ptree[static_cast<std::size_t>(x)] != ptree[static_cast<std::size_t>(y)]) continue;
        EXPECT_NEAR(s.xsims[static_cast<std::size_t>(x)], AverageProduct(*mat, part, ptree, x, y),
                    1e-6);
      }
    }
  }
}

NodeStats OfMatrix(const SparseMatrix& m, const Ints& part, const Ints& ptree) {
  const int nparts = static_cast<int>(ptree.size() / 2);
  NodeStats s(nparts);
  MOLVA_V_GetTreeStats(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                       MOLVA_SIM_COSINE, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, nparts, part.data(),
                       ptree.data(), s.pwgts.data(), s.isims.data(), s.xsims.data());
  return s;
}

// Row 1 is empty; the clusters of the others are found all the same.
TEST(TreeStatsEntryPoint, MapsTheClusteringToThePreparedRows) {
  const SparseMatrix m = SparseOf({{1, 0}, {0, 0}, {1, 0}, {0, 1}, {0, 1}, {1, 0}});
  const NodeStats s = OfMatrix(m, {0, -1, 0, 1, 2, 2}, kThreeLeaves);
  const NodeStats expected = OfFiveRows();
  EXPECT_EQ(s.pwgts, expected.pwgts);
  EXPECT_EQ(Floats(s.isims.begin(), s.isims.begin() + 5),
            Floats(expected.isims.begin(), expected.isims.begin() + 5));
  EXPECT_EQ(s.xsims, expected.xsims);
}

TEST(TreeStatsEntryPoint, NamesItsBlocks) {
  const SparseMatrix m = SparseOf({{1, 0}, {0, 1}, {1, 1}});
  const Names names = BlockNames([&] { OfMatrix(m, {0, 0, 0}, {-1, -1}); });
  EXPECT_EQ(Names(names.begin(), names.begin() + 3),
            (Names{"MOLVA_V_GetTreeStats: rperm", "MOLVA_V_GetTreeStats: cperm",
                   "MOLVA_V_GetTreeStats: ppart"}));
  const std::string centers = "GetClusterStats: centers";
  EXPECT_EQ(From("ShowTreeStats", names),
            (Names{"ShowTreeStats: ftree", centers, centers, centers, centers}));
}

}  // namespace
}  // namespace molva
