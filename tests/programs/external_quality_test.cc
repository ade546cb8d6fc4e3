// SPDX-License-Identifier: MIT
#include "programs/external_quality.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "tests/testing/allocation.h"
#include "tests/testing/trees.h"

namespace {

using Counts = std::vector<int>;

int SizeOf(const Counts& dist) { return std::accumulate(dist.begin(), dist.end(), 0); }

// The cluster is all there is.
float Entropy(const Counts& dist) {
  const int nclasses = static_cast<int>(dist.size());
  return mardle::ComputeEntropy(nclasses, SizeOf(dist), dist, SizeOf(dist), dist);
}

float Purity(const Counts& dist) {
  const int nclasses = static_cast<int>(dist.size());
  return mardle::ComputePurity(nclasses, SizeOf(dist), dist, SizeOf(dist), dist);
}

TEST(CountClasses, CountsTheRowsOfEachClassInEachCluster) {
  const Counts classes = {0, 1, 1, 0, 1};
  const int part[] = {1, 0, 1, -1, 2};
  molva::Rows<int> classdist = molva::AllocIntMatrix(2, 2, 0, "counts");
  Counts ocldist(2);
  EXPECT_EQ(mardle::CountClasses(classes, part, classdist, ocldist), 3);
  EXPECT_EQ(Counts(classdist[0].begin(), classdist[0].end()), (Counts{0, 1}));
  EXPECT_EQ(Counts(classdist[1].begin(), classdist[1].end()), (Counts{1, 1}));
  EXPECT_EQ(ocldist, (Counts{1, 2}));
}

TEST(CountClasses, LeavesOutTheSumsOnRequest) {
  const Counts classes = {0, 0};
  const int part[] = {0, 0};
  molva::Rows<int> classdist = molva::AllocIntMatrix(1, 1, 0, "counts");
  EXPECT_EQ(mardle::CountClasses(classes, part, classdist, {}), 2);
  EXPECT_EQ(classdist[0][0], 2);
}

TEST(Entropy, IsZeroForOneClass) {
  EXPECT_EQ(Entropy({7, 0}), 0.0F);
  EXPECT_EQ(Entropy({0, 0, 1}), 0.0F);
}

TEST(Entropy, IsOneForAllClassesInEqualParts) {
  EXPECT_EQ(Entropy({5, 5}), 1.0F);
  EXPECT_EQ(Entropy({1, 1, 1, 1}), 1.0F);
}

TEST(Entropy, IsAHalfForTwoOfFourClassesInEqualParts) { EXPECT_EQ(Entropy({3, 0, 0, 3}), 0.5F); }

// 1/2 log 2 + 1/4 log 4 + 1/4 log 4 = 3/2 bits of the two that four classes can have.
TEST(Entropy, AddsTheSharesOfTheClasses) { EXPECT_EQ(Entropy({2, 1, 1, 0}), 0.75F); }

// 3/4 log(4/3) + 1/4 log 4 = 2 - 3/4 log 3
TEST(Entropy, OfThreeToOneIsBelowOne) {
  EXPECT_NEAR(Entropy({3, 1}), 2 - 0.75 * std::log2(3.0), 1e-7);
}

// One row of the first class, three of each of the others, of seven.
TEST(Entropy, IsSinglePrecisionAfterEveryTerm) {
  const auto term = [](long double share) { return share * std::log2(1 / share); };
  const long double one = term(1 / 7.0L);
  const long double three = term(3 / 7.0L);
  const float two_terms = static_cast<float>(static_cast<float>(one) + three);
  const float rounded = static_cast<float>(two_terms + three);
  const long double most = std::log2(3.0L);
  EXPECT_EQ(Entropy({1, 3, 3}), static_cast<float>(rounded / most));
  EXPECT_NE(Entropy({1, 3, 3}), static_cast<float>((one + three + three) / most));
}

TEST(Entropy, OfAnEmptyClusterIsZero) { EXPECT_EQ(Entropy({0, 0, 0}), 0.0F); }

TEST(Purity, IsTheShareOfTheLargestClass) {
  EXPECT_EQ(Purity({0, 9}), 1.0F);
  EXPECT_EQ(Purity({3, 0, 0, 3}), 0.5F);
  EXPECT_EQ(Purity({1, 5, 2}), 0.625F);
}

TEST(Purity, OfAnEmptyClusterIsNotANumber) { EXPECT_TRUE(std::isnan(Purity({0, 0}))); }

// The size is the cluster's own, also when rows were counted that have no cluster.
TEST(EntropyAndPurity, DivideByTheSizeGivenAndNotByTheTotal) {
  const Counts dist = {2, 2};
  const Counts all = {100, 3};
  EXPECT_EQ(mardle::ComputeEntropy(2, 103, all, 4, dist), 1.0F);
  EXPECT_EQ(mardle::ComputePurity(2, 103, all, 4, dist), 0.5F);
  EXPECT_EQ(mardle::ComputePurity(2, 103, all, 8, dist), 0.25F);
}

TEST(WeightedAverage, WeighsEachValueByItsSize) {
  EXPECT_EQ(mardle::WeightedAverage(Counts{1, 3}, std::vector<float>{1, 0.5F}, 4), 0.625F);
  EXPECT_EQ(mardle::WeightedAverage({}, {}, 4), 0.0F);
}

// 2^24 + 1 is no float: a single row behind the large cluster is lost, two before it are not.
TEST(WeightedAverage, IsSinglePrecisionAfterEveryTerm) {
  const std::vector<float> ones = {1, 1, 1};
  EXPECT_EQ(mardle::WeightedAverage(Counts{16777216, 1, 1}, ones, 1), 16777216.0F);
  EXPECT_EQ(mardle::WeightedAverage(Counts{1, 1, 16777216}, ones, 1), 16777218.0F);
}

// 6710885 x 15 / 3 = 33554425 lies midway between two floats, of which the even one is taken;
// 6710885 / 3, formed first, is rounded, and 15 times as much lies above.
TEST(WeightedAverage, MultipliesBeforeItDivides) {
  EXPECT_EQ(mardle::WeightedAverage(Counts{6710885}, std::vector<float>{15}, 3), 33554424.0F);
}

using Scores = std::vector<float>;

// The rows of each class among those whose parent is not -1 in the tree, which are the rows that
// have a cluster.
Counts ClassSizes(int nclasses, const Counts& classes, const Counts& ptree) {
  Counts sizes(static_cast<std::size_t>(nclasses));
  for (std::size_t i = 0; i < classes.size(); ++i) {
    if (ptree[i] != -1) ++sizes[static_cast<std::size_t>(classes[i])];
  }
  return sizes;
}

Scores FScores(int nclasses, const Counts& classes, const Counts& ptree) {
  Scores fscores(static_cast<std::size_t>(nclasses), 99);
  mardle::ComputeFScores(nclasses, static_cast<int>(classes.size()), classes,
                         ClassSizes(nclasses, classes, ptree), ptree, fscores);
  return fscores;
}

// Rows 0 and 1 are joined into node 4, rows 2 and 3 into node 5.
const Counts kTwoPairs = {4, 4, 5, 5, 6, 6, -1, -1};

TEST(FScores, AreOneForClassesThatFillANode) {
  EXPECT_EQ(FScores(2, {0, 0, 1, 1}, kTwoPairs), (Scores{1, 1}));
}

// Class 0 has three rows: node 6 has all of them in four, R = 1 and P = 3/4, node 4 two in two,
// R = 2/3 and P = 1. The first gives 6/7, the second 4/5. Class 1 fills a leaf.
TEST(FScores, AreThoseOfTheBestNode) {
  const Scores fscores = FScores(2, {0, 0, 0, 1}, kTwoPairs);
  EXPECT_FLOAT_EQ(fscores[0], 6 / 7.0F);
  EXPECT_EQ(fscores[1], 1);
}

// Both classes are halves of every pair: the root has R = 1 and P = 1/2, a leaf R = 1/2 and P = 1.
TEST(FScores, CountTheRootAndTheLeaves) {
  const Scores fscores = FScores(2, {0, 1, 0, 1}, kTwoPairs);
  EXPECT_FLOAT_EQ(fscores[0], 2 / 3.0F);
  EXPECT_FLOAT_EQ(fscores[1], 2 / 3.0F);
}

TEST(FScores, AreZeroForAClassThatNoNodeShares) {
  EXPECT_EQ(FScores(3, {0, 0, 2, 2}, kTwoPairs), (Scores{1, 0, 1}));
}

// Of five rows row 1 is dropped: the root is node 7, and node 8 stands for nothing. The class of
// the dropped row is in no node.
TEST(FScores, LeaveDroppedRowsOut) {
  const Counts ptree = {5, -1, 6, 5, 6, 7, 7, -1, -1, -1};
  EXPECT_EQ(FScores(2, {0, 0, 1, 0, 1}, ptree), (Scores{1, 1}));
  EXPECT_EQ(FScores(3, {0, 2, 1, 0, 1}, ptree), (Scores{1, 1, 0}));
}

// A lone prepared row has no parent but a shifted -1, nrows - 2, which is no leaf's to be merged
// into; it is a node of its own all the same.
TEST(FScores, FindTheClassOfALonePreparedRow) {
  for (const std::size_t row : {0U, 1U, 3U, 4U}) {
    Counts ptree(10, -1);
    ptree[row] = 3;
    Counts classes(5, 1);
    classes[row] = 0;
    EXPECT_EQ(FScores(2, classes, ptree), (Scores{1, 0})) << row;
  }
}

// The parent of a single row is -1, as are those of dropped rows, so it is left out although it has
// a cluster and its class is counted.
TEST(FScores, AreZeroForATreeOfOneRow) {
  Scores fscores = {99, 99};
  mardle::ComputeFScores(2, 1, Counts{1}, Counts{0, 1}, Counts{-1, -1}, fscores);
  EXPECT_EQ(fscores, (Scores{0, 0}));
}

// The best F-score over all nodes, each node's rows found by climbing from every row.
Scores PlainFScores(int nclasses, const Counts& classes, const Counts& ptree) {
  Scores best(static_cast<std::size_t>(nclasses));
  const Counts sizes = ClassSizes(nclasses, classes, ptree);
  const int nrows = static_cast<int>(classes.size());
  for (int x = 0; x <= 2 * nrows - 2; ++x) {
    Counts counts(static_cast<std::size_t>(nclasses));
    for (int i = 0; i < nrows; ++i) {
      if (!testing_support::IsBelow(i, x, ptree)) continue;
      ++counts[static_cast<std::size_t>(classes[static_cast<std::size_t>(i)])];
    }
    for (std::size_t k = 0; k < best.size(); ++k) {
      if (counts[k] == 0) continue;
      const double recall = double{1} * counts[k] / sizes[k];
      const double precision = double{1} * counts[k] / SizeOf(counts);
      best[k] =
          std::max(best[k], static_cast<float>(2 * recall * precision / (recall + precision)));
    }
  }
  return best;
}

TEST(FScores, EqualThoseFoundByClimbingFromEveryRow) {
  for (const std::uint32_t seed : {1U, 2U, 3U, 4U}) {
    std::mt19937 random(seed);
    Counts classes;
    for (int i = 0; i < 40; ++i) classes.push_back(static_cast<int>(random() % 5));
    const Counts ptree = testing_support::RandomTree(seed, 40);
    const Scores fscores = FScores(5, classes, ptree);
    const Scores plain = PlainFScores(5, classes, ptree);
    for (std::size_t k = 0; k < 5; ++k) EXPECT_NEAR(fscores[k], plain[k], 1e-6);
  }
}

// The table of four nodes' counts and the counts.
TEST(FScores, NameTheirBlock) {
  const std::string name = "ComputeFScores: tclassdist";
  EXPECT_EQ(testing_support::BlockNames([] {
              FScores(2, {0, 1}, {2, 2, -1, -1});
            }),
            std::vector<std::string>(5, name));
}

}  // namespace
