// SPDX-License-Identifier: MIT
#include "programs/external_quality.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <vector>

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

TEST(WeightedByCluster, WeighsEachClusterByItsSize) {
  EXPECT_EQ(mardle::WeightedByCluster(Counts{1, 3}, std::vector<float>{1, 0.5F}, 4), 0.625F);
  EXPECT_EQ(mardle::WeightedByCluster({}, {}, 4), 0.0F);
}

// 2^24 + 1 is no float: a single row behind the large cluster is lost, two before it are not.
TEST(WeightedByCluster, IsSinglePrecisionAfterEveryCluster) {
  const std::vector<float> ones = {1, 1, 1};
  EXPECT_EQ(mardle::WeightedByCluster(Counts{16777216, 1, 1}, ones, 1), 16777216.0F);
  EXPECT_EQ(mardle::WeightedByCluster(Counts{1, 1, 16777216}, ones, 1), 16777218.0F);
}

}  // namespace
