// SPDX-License-Identifier: MIT
#include "tools/sweep/agreement.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

using mardle::tools::AdjustedRandIndex;
using mardle::tools::NormalizedMutualInformation;
using mardle::tools::Purity;
using Labels = std::vector<int>;

TEST(AdjustedRandIndex, IsOneWhereTheSameRowsStandTogether) {
  EXPECT_DOUBLE_EQ(AdjustedRandIndex(Labels{0, 0, 1, 2, 2}, Labels{7, 7, 0, 3, 3}), 1);
  EXPECT_DOUBLE_EQ(AdjustedRandIndex(Labels{0, 0, 0}, Labels{5, 5, 5}), 1);
  EXPECT_DOUBLE_EQ(AdjustedRandIndex(Labels{0, 1, 2}, Labels{2, 0, 1}), 1);
  EXPECT_DOUBLE_EQ(AdjustedRandIndex(Labels{0}, Labels{3}), 1);
}

TEST(AdjustedRandIndex, TakesChanceAway) {
  // Of 6 pairs both keep 2 together, never the same: 2/3 by chance, and (0 - 2/3) / (2 - 2/3).
  EXPECT_DOUBLE_EQ(AdjustedRandIndex(Labels{0, 0, 1, 1}, Labels{0, 1, 0, 1}), -0.5);
  // 2 pairs in common of 6 and 3 among 15: (2 - 1.2) / (4.5 - 1.2).
  EXPECT_DOUBLE_EQ(AdjustedRandIndex(Labels{0, 0, 0, 1, 1, 1}, Labels{0, 0, 1, 1, 2, 2}),
                   0.8 / 3.3);
  // All together tell nothing.
  EXPECT_DOUBLE_EQ(AdjustedRandIndex(Labels{0, 0, 0, 0}, Labels{0, 0, 1, 1}), 0);
}

TEST(AdjustedRandIndex, IsThatOfAllPairs) {
  std::mt19937 dice(1);
  for (int run = 0; run < 20; ++run) {
    Labels one(40);
    Labels other(40);
    for (int& label : one) label = static_cast<int>(dice() % 4);
    for (int& label : other) label = static_cast<int>(dice() % 5);
    double both = 0, in_one = 0, in_other = 0, pairs = 0;
    for (std::size_t i = 0; i < one.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        both += one[i] == one[j] && other[i] == other[j] ? 1 : 0;
        in_one += one[i] == one[j] ? 1 : 0;
        in_other += other[i] == other[j] ? 1 : 0;
        ++pairs;
      }
    }
    const double chance = in_one * in_other / pairs;
    EXPECT_NEAR(AdjustedRandIndex(one, other), (both - chance) / ((in_one + in_other) / 2 - chance),
                1e-12);
  }
}

TEST(Agreement, LeavesOutRowsWithoutALabel) {
  const Labels one{0, 0, -1, 1, 1, 0};
  const Labels other{0, 1, 0, 0, 1, -1};
  EXPECT_DOUBLE_EQ(AdjustedRandIndex(one, other), -0.5);
  EXPECT_DOUBLE_EQ(Purity(one, other), 0.5);
  EXPECT_DOUBLE_EQ(NormalizedMutualInformation(one, other), 0);
}

TEST(Purity, IsTheShareOfTheLargestClasses) {
  // 2 of 3, and 2 of 2.
  EXPECT_DOUBLE_EQ(Purity(Labels{0, 0, 0, 1, 1}, Labels{4, 4, 9, 9, 9}), 0.8);
  EXPECT_DOUBLE_EQ(Purity(Labels{0, 1, 2}, Labels{0, 0, 0}), 1);
}

TEST(NormalizedMutualInformation, IsOneForTheSamePartsAndNoneForIndependentOnes) {
  EXPECT_DOUBLE_EQ(NormalizedMutualInformation(Labels{0, 0, 1, 1}, Labels{1, 1, 0, 0}), 1);
  EXPECT_DOUBLE_EQ(NormalizedMutualInformation(Labels{0, 0, 1, 1}, Labels{0, 1, 0, 1}), 0);
  EXPECT_DOUBLE_EQ(NormalizedMutualInformation(Labels{0, 0, 0, 0}, Labels{0, 0, 1, 1}), 0);
  EXPECT_DOUBLE_EQ(NormalizedMutualInformation(Labels{0, 0}, Labels{0, 0}), 1);
}

TEST(NormalizedMutualInformation, IsOverTheMeanOfTheEntropies) {
  // One bit, of which the classes, 0.8113 bits, tell 0.3113.
  const double classes = -0.75 * std::log2(0.75) - 0.25 * std::log2(0.25);
  const double told = 1 + classes - (-0.5 * std::log2(0.5) - 2 * 0.25 * std::log2(0.25));
  EXPECT_NEAR(NormalizedMutualInformation(Labels{0, 0, 1, 1}, Labels{0, 0, 0, 1}),
              told / ((1 + classes) / 2), 1e-12);
}

}  // namespace
