// SPDX-License-Identifier: MIT
#include "lib/tree/agglomerate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <string>
#include <vector>

#include "lib/molva.h"
#include "lib/support/tree_arrays.h"
#include "lib/support/wide.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"
#include "tests/testing/matrices.h"
#include "tests/testing/oracles.h"

namespace molva {
namespace {

using testing_support::DenseRow;
using testing_support::Dot;
using testing_support::OutputOf;
using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::RandomDocuments;
using testing_support::WideVector;

struct Tree {
  explicit Tree(int n)
      : part(static_cast<std::size_t>(n)),
        ptree(2 * part.size()),
        tsims(ptree.size()),
        gains(ptree.size()) {}
  std::vector<int> part, ptree;
  std::vector<float> tsims, gains;
};

// The rows of a matrix as items, with their composites in full.
struct Rows {
  explicit Rows(const PreparedMatrix& mat) {
    for (int i = 0; i < mat.nrows; ++i) vectors.push_back(DenseRow(mat, i));
    for (const WideVector& a : vectors) {
      for (const WideVector& b : vectors) smat.push_back(static_cast<float>(Dot(a, b)));
    }
  }
  int n() const { return static_cast<int>(vectors.size()); }
  std::vector<WideVector> vectors;
  std::vector<float> smat;
};

Tree Merged(const Rows& rows, int crfun, int nparts = 1, int dbglvl = 0) {
  Tree tree(rows.n());
  const std::vector<int> weights(rows.vectors.size(), 1);
  std::vector<float> smat = rows.smat;
  MOLVA_SA_Cluster(rows.n(), weights.data(), smat.data(), crfun, 2, dbglvl, nparts,
                   tree.part.data(), tree.ptree.data(), tree.tsims.data(), tree.gains.data());
  return tree;
}

// A set of items during slow merging.
struct Item {
  int node;
  Wide size;
  WideVector composite;
};

Wide Sum(int term, const std::vector<Item>& items, const WideVector& whole) {
  Wide sum = 0;
  for (const Item& item : items) {
    const Wide squared = Dot(item.composite, item.composite);
    const Wide outside = Dot(item.composite, whole);
    const Wide terms[] = {squared / item.size, molva::Sqrt(squared),
                          -item.size * outside / molva::Sqrt(squared), -outside / squared,
                          -item.size * item.size * outside / squared};
    sum += terms[term - 1];
  }
  return sum;
}

// The criterion in the form that merging makes as large as it can.
Wide Criterion(int crfun, const std::vector<Item>& items, const WideVector& whole) {
  if (crfun == 6) return Sum(1, items, whole) / -Sum(3, items, whole);
  if (crfun == 7) return Sum(2, items, whole) / -Sum(3, items, whole);
  return Sum(crfun, items, whole);
}

std::vector<Item> AfterMerge(std::vector<Item> items, std::size_t i, std::size_t j, int node) {
  for (std::size_t c = 0; c < items[i].composite.size(); ++c) {
    items[i].composite[c] += items[j].composite[c];
  }
  items[i].size += items[j].size;
  items[i].node = node;
  items.erase(items.begin() + static_cast<std::ptrdiff_t>(j));
  return items;
}

// Follows a tree merge by merge, trying every other merge from scratch at each step: none is better
// by more than single precision can tell, and gains and similarities are what the merge did.
void ExpectBestMerges(int crfun, const Rows& rows, const Tree& tree) {
  WideVector whole(rows.vectors[0].size());
  std::vector<Item> items;
  for (int i = 0; i < rows.n(); ++i) {
    const WideVector& row = rows.vectors[static_cast<std::size_t>(i)];
    items.push_back({i, 1, row});
    for (std::size_t c = 0; c < whole.size(); ++c) whole[c] += row[c];
  }
  for (int node = rows.n(); node <= 2 * rows.n() - 2; ++node) {
    std::vector<std::size_t> merged;
    for (std::size_t s = 0; s < items.size(); ++s) {
      if (tree.ptree[static_cast<std::size_t>(items[s].node)] == node) merged.push_back(s);
    }
    ASSERT_EQ(merged.size(), 2U) << "node " << node;
    const Wide before = Criterion(crfun, items, whole);
    const Item& a = items[merged[0]];
    const Item& b = items[merged[1]];
    const Wide similarity = Dot(a.composite, b.composite) / (a.size * b.size);
    const std::vector<Item> after = AfterMerge(items, merged[0], merged[1], node);
    const Wide gain = Criterion(crfun, after, whole) - before;
    const Wide tolerance = 2e-5 * std::max(Wide{1}, Fabs(before));
    EXPECT_NEAR(tree.gains[static_cast<std::size_t>(node)], static_cast<double>(gain),
                static_cast<double>(tolerance));
    EXPECT_NEAR(tree.tsims[static_cast<std::size_t>(node)], static_cast<double>(similarity), 1e-5);
    for (std::size_t i = 0; i < items.size(); ++i) {
      for (std::size_t j = i + 1; j < items.size(); ++j) {
        const Wide other = Criterion(crfun, AfterMerge(items, i, j, node), whole) - before;
        EXPECT_LE(other, gain + tolerance) << "node " << node;
      }
    }
    items = after;
  }
}

TEST(Merging, TakesTheBestOfAllMergesUnderEveryCriterion) {
  for (int crfun = 1; crfun <= 7; ++crfun) {
    for (const std::uint32_t seed : {1U, 2U}) {
      SCOPED_TRACE("criterion " + std::to_string(crfun));
      const Rows rows(*Prepared(RandomDocuments(seed, 14, 20, 3, 7)));
      ExpectBestMerges(crfun, rows, Merged(rows, crfun));
    }
  }
}

TEST(Merging, TakesTheBestOfAllMergesWithManyTies) {
  for (int crfun = 1; crfun <= 7; ++crfun) {
    SCOPED_TRACE("criterion " + std::to_string(crfun));
    const Rows rows(*PreparedOf({{1, 0, 0},
                                 {0, 1, 0},
                                 {1, 0, 0},
                                 {0, 0, 1},
                                 {0, 1, 0},
                                 {1, 0, 0},
                                 {0, 0, 1},
                                 {0.6F, 0.8F, 0}}));
    ExpectBestMerges(crfun, rows, Merged(rows, crfun));
  }
}

TEST(Merging, OfTwoItemsMakesNodeTwo) {
  const Rows rows(*PreparedOf({{1, 0}, {0.6F, 0.8F}}));
  const Tree tree = Merged(rows, 2);
  EXPECT_EQ(tree.ptree, (std::vector<int>{2, 2, -1, -1}));
  EXPECT_FLOAT_EQ(tree.tsims[2], 0.6F);
  // |d_0 + d_1| = sqrt(2 + 2 0.6).
  EXPECT_FLOAT_EQ(tree.gains[2], std::sqrt(3.2F) - 2);
}

TEST(Merging, OfOneItemWritesNothingButZeroSimilarities) {
  const Rows rows(*PreparedOf({{1, 0}}));
  Tree tree(1);
  tree.tsims = {9, 9};
  tree.gains = {9, 9};
  const std::vector<int> weights = {1};
  std::vector<float> smat = rows.smat;
  MOLVA_SA_Cluster(1, weights.data(), smat.data(), 2, 2, 0, 1, tree.part.data(), tree.ptree.data(),
                   tree.tsims.data(), tree.gains.data());
  EXPECT_EQ(tree.ptree, (std::vector<int>{-1, -1}));
  EXPECT_EQ(tree.tsims, (std::vector<float>{0, 0}));
  EXPECT_EQ(tree.gains, (std::vector<float>{9, 9}));
  EXPECT_EQ(tree.part[0], 0);
}

TEST(Merging, EndsWithZeroItemsOfComposite) {
  // Gains of zero vectors are not numbers under I2; the tree is finished all the same.
  const Rows rows(*PreparedOf({{0, 0}, {1, 0}, {0, 0}, {0, 1}, {0, 0}}));
  for (int crfun = 1; crfun <= 7; ++crfun) {
    const Tree tree = Merged(rows, crfun);
    for (std::size_t x = 0; x < 8; ++x) EXPECT_GT(tree.ptree[x], static_cast<int>(x));
  }
}

// Heaps with many equal gains are decided by positions. Items 0..3 are one row each of the same
// direction: all gains are equal at every step. By hand: pairs enter as 01 02 03 12 13 23 and none
// moves up; 01 is taken, 23 fills the root. Then (k, 0) and (k, 1) leave and (3, 0), (2, 0) enter
// in the order of the list 0 3 2.
TEST(Merging, DecidesTiesByThePositionsOfItsQueue) {
  const Rows rows(*PreparedOf({{1, 0}, {1, 0}, {1, 0}, {1, 0}}));
  const Tree tree = Merged(rows, 2);
  EXPECT_EQ(tree.ptree, (std::vector<int>{4, 4, 5, 5, 6, 6, -1, -1}));
}

TEST(Merging, OfRatiosGivesTiesToThePairFoundFirst) {
  const Rows rows(*PreparedOf({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}));
  for (const int crfun : {6, 7}) {
    EXPECT_EQ(Merged(rows, crfun).ptree, (std::vector<int>{3, 3, 4, 4, -1, -1})) << crfun;
  }
}

TEST(Merging, ReportsEveryMerge) {
  const Rows rows(*PreparedOf({{1, 0}, {0, 1}}));
  // I2: 2 at first, sqrt 2 after the merge.
  EXPECT_EQ(OutputOf([&] { Merged(rows, 2, 1, 4); }),
            "Merging [    0     1 ->     2] [    2], CRval=1.41e+00 -0.585786 0.000000\n");
  // H2: I2 over E1 is 2 / 2 at first and sqrt 2 / (2 sqrt 2) after.
  EXPECT_EQ(OutputOf([&] { Merged(rows, 7, 1, 4); }),
            "Merging [    0     1 ->     2] [    2], CRval=5.00e-01 -0.500000\n");
}

TEST(Merging, ReportsItsQueueAtTheFirstBit) {
  const Rows rows(*PreparedOf({{1, 0}, {0, 1}}));
  EXPECT_EQ(OutputOf([&] { Merged(rows, 2, 1, 1); }), "Populating the priority queue... Done!\n");
  EXPECT_EQ(OutputOf([&] { Merged(rows, 7, 1, 1); }), "");
}

TEST(Merging, LeavesTheCallersMatrixAloneOnRequest) {
  const Rows rows(*PreparedOf({{1, 0}, {0, 1}, {0.6F, 0.8F}}));
  const std::vector<int> weights = {1, 1, 1};
  Tree tree(3);
  std::vector<float> smat = rows.smat;
  MOLVA_SA_Cluster(3, weights.data(), smat.data(), 2, 1, 0, 1, tree.part.data(), tree.ptree.data(),
                   tree.tsims.data(), tree.gains.data());
  EXPECT_EQ(smat, rows.smat);
  EXPECT_EQ(tree.ptree, Merged(rows, 2).ptree);
}

TEST(Merging, CutsTheTreeByUndoingTheLastMerges) {
  const Rows rows(*PreparedOf({{1, 0, 0}, {0, 1, 0}, {1, 0, 0}, {0, 0, 1}, {0, 1, 0}}));
  const std::vector<int> part = Merged(rows, 2, 3).part;
  EXPECT_EQ(part[0], part[2]);
  EXPECT_EQ(part[1], part[4]);
  EXPECT_NE(part[0], part[1]);
  EXPECT_NE(part[0], part[3]);
  EXPECT_NE(part[1], part[3]);
  EXPECT_EQ(*std::max_element(part.begin(), part.end()), 2);
}

TEST(Merging, NumbersTheClustersOfACutByTheListOfNodes) {
  // ((0 1) (2 3)) by nodes 4, 5, 6. Cut in two: the root is replaced by its children 4 and 5. Cut
  // in three: 5, the highest, leaves the list; 4 stays first, then 2 and 3.
  const std::vector<int> ptree = {4, 4, 5, 5, 6, 6, -1, -1};
  std::vector<int> part(4);
  InduceClusteringFromHAC(4, 2, ptree, part);
  EXPECT_EQ(part, (std::vector<int>{0, 0, 1, 1}));
  InduceClusteringFromHAC(4, 3, ptree, part);
  EXPECT_EQ(part, (std::vector<int>{0, 0, 1, 2}));
  InduceClusteringFromHAC(4, 4, ptree, part);
  EXPECT_EQ(part, (std::vector<int>{2, 3, 1, 0}));
}

TEST(Merging, RefusesTheCriteriaThatItCannotServe) {
  const Rows rows(*PreparedOf({{1, 0}}));
  for (const int crfun : {0, 8, 9}) {
    EXPECT_FATAL(Merged(rows, crfun), "Unknown clustering criterion function (CRFun) of " +
                                          std::to_string(crfun) + "\n");
  }
}

TEST(Merging, HasAnEngineForEachGroupOfCriteriaAndNoOther) {
  const Rows rows(*PreparedOf({{1, 0}, {0, 1}}));
  const std::vector<int> weights(2, 1);
  std::vector<float> smat = rows.smat;
  Tree tree(2);
  const Merging merging{2, weights.data(), smat.data(), tree.ptree, tree.tsims, tree.gains};
  EXPECT_FATAL(BuildSimHAC_LocalGains({.crfun = 6}, merging),
               "Internal Error!. Criterion function 6, cannot be handled by this code.\n");
  EXPECT_FATAL(BuildSimHAC_I1I2E1G1G1P({.crfun = 5}, merging),
               "Internal Error!. Criterion function 5, cannot be handled by this code.\n");
}

// Sums of weights stop at the limits of an int; the tree is a tree all the same.
TEST(Merging, TakesWeightsThatAddUpToMoreThanAnInt) {
  const Rows rows(*PreparedOf({{1, 0}, {0, 1}, {0.6F, 0.8F}}));
  for (const int weight : {INT_MAX, INT_MIN}) {
    const std::vector<int> weights(3, weight);
    for (int crfun = 1; crfun <= 7; ++crfun) {
      Tree tree(3);
      std::vector<float> smat = rows.smat;
      const std::string output = OutputOf([&] {
        MOLVA_SA_Cluster(3, weights.data(), smat.data(), crfun, 2, MOLVA_DBG_MERGING, 1,
                         tree.part.data(), tree.ptree.data(), tree.tsims.data(), tree.gains.data());
      });
      EXPECT_NE(output.find(std::to_string(weight) + "], CRval="), std::string::npos);
      EXPECT_EQ(tree.ptree[3], 4);
      EXPECT_EQ(tree.ptree[4], -1);
    }
  }
}

TEST(Merging, RefusesMoreItemsThanItCanNumber) {
  EXPECT_FATAL(
      MOLVA_SA_Cluster(65537, nullptr, nullptr, 2, 1, 0, 1, nullptr, nullptr, nullptr, nullptr),
      "A tree over 65537 items cannot be built, the most is 65536!\n");
}

TEST(Merging, RefusesToCutIntoMoreClustersThanItems) {
  const Rows rows(*PreparedOf({{1, 0}, {0, 1}}));
  EXPECT_FATAL(Merged(rows, 2, 3), "Cannot cut a tree over 2 items into 3 clusters!\n");
  EXPECT_FATAL(Merged(rows, 2, 0), "Cannot cut a tree over 2 items into 0 clusters!\n");
}

}  // namespace
}  // namespace molva
