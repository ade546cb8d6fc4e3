// SPDX-License-Identifier: MIT
#include "lib/measure/feature_ranking.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "tests/testing/oracles.h"

namespace molva {
namespace {

using Ids = std::vector<int>;
using Weights = std::vector<float>;

// Lists of one kind whose slots hold 99 and 0.25 until they are written. Prepared column j is the
// caller's column 10 j.
struct Lists {
  Lists(int count, int slots) : nfeatures(slots) {
    const int size = count * std::max(slots, 0);
    ids.assign(static_cast<std::size_t>(size), 99);
    weights.assign(static_cast<std::size_t>(size), 0.25F);
  }
  operator FeatureLists() { return {cperm, nfeatures, ids.data(), weights.data()}; }

  int nfeatures;
  Ids cperm = {0, 10, 20, 30};
  Ids ids;
  Weights weights;
};

void Descriptive(const Weights& composite, float squared_length, int k, Lists& lists) {
  std::vector<KeyValue> fcand(composite.size());
  RankDescriptive(composite, squared_length, fcand, k, lists);
}

void Discriminating(const Weights& a, const Weights& b, int k, Lists& lists) {
  std::vector<KeyValue> fcand(a.size());
  RankDiscriminating(a, b, fcand, k, lists);
}

TEST(DescriptiveColumns, AreRankedByTheirShareOfTheSquaredLength) {
  Lists lists(1, 4);
  Descriptive({1, -3, 2, 0}, 14, 0, lists);
  EXPECT_EQ(lists.ids, (Ids{10, 20, 0, 30}));
  EXPECT_EQ(lists.weights, (Weights{9 / 14.0F, 4 / 14.0F, 1 / 14.0F, 0}));
}

TEST(DescriptiveColumns, FillOnlyAsManySlotsAsThereAre) {
  Lists lists(1, 2);
  Descriptive({1, 2, 3, 0}, 14, 0, lists);
  EXPECT_EQ(lists.ids, (Ids{20, 10}));
}

TEST(DescriptiveColumns, GoIntoTheListOfTheirCluster) {
  Lists lists(3, 1);
  Descriptive({0, 2}, 4, 1, lists);
  EXPECT_EQ(lists.ids, (Ids{99, 10, 99}));
  EXPECT_EQ(lists.weights, (Weights{0.25F, 1, 0.25F}));
}

TEST(DescriptiveColumns, LeaveTheWeightsOfEmptySlotsAsTheyWere) {
  Lists lists(2, 4);
  Descriptive({1, 2}, 5, 0, lists);
  EXPECT_EQ(lists.ids, (Ids{10, 0, -1, -1, 99, 99, 99, 99}));
  EXPECT_EQ(lists.weights, (Weights{0.8F, 0.2F, 0.25F, 0.25F, 0.25F, 0.25F, 0.25F, 0.25F}));
}

TEST(DescriptiveColumns, OfAMatrixWithoutColumnsAreEmptySlots) {
  Lists lists(1, 2);
  Descriptive({}, 0, 0, lists);
  EXPECT_EQ(lists.ids, (Ids{-1, -1}));
}

TEST(DescriptiveColumns, AreNotWrittenWithoutSlots) {
  for (const int slots : {0, -3}) {
    Lists lists(1, slots);
    Descriptive({1, 2}, 5, 0, lists);
    EXPECT_TRUE(lists.ids.empty());
  }
}

TEST(DescriptiveColumns, OfAZeroCompositeHaveWeightsThatAreNotNumbers) {
  Lists lists(1, 3);
  Descriptive({0, 0, 0}, 0, 0, lists);
  for (const float weight : lists.weights) EXPECT_TRUE(std::isnan(weight));
  std::sort(lists.ids.begin(), lists.ids.end());
  EXPECT_EQ(lists.ids, (Ids{0, 10, 20}));
}

// Squared differences 0.16 and 0.64 of 0.8.
TEST(DiscriminatingColumns, AreRankedByTheirShareOfTheSquaredDistance) {
  Lists lists(1, 3);
  Discriminating({1, 0, 0}, {0.6F, 0.8F, 0}, 0, lists);
  EXPECT_EQ(lists.ids, (Ids{10, 0, 20}));
  EXPECT_FLOAT_EQ(lists.weights[0], 0.8F);
  EXPECT_FLOAT_EQ(lists.weights[1], 0.2F);
  EXPECT_EQ(lists.weights[2], 0);
}

TEST(DiscriminatingColumns, AreTheSameFromEitherSide) {
  Lists one(1, 4), other(1, 4);
  Discriminating({1, 0, 3, 0.5F}, {0, 0.25F, 1, 2}, 0, one);
  Discriminating({0, 0.25F, 1, 2}, {1, 0, 3, 0.5F}, 0, other);
  EXPECT_EQ(one.ids, other.ids);
  EXPECT_EQ(one.weights, other.weights);
}

TEST(DiscriminatingColumns, LeaveTheWeightsOfEmptySlotsAsTheyWere) {
  Lists lists(2, 3);
  Discriminating({1, 0}, {0, 3}, 1, lists);
  EXPECT_EQ(lists.ids, (Ids{99, 99, 99, 10, 0, -1}));
  EXPECT_FLOAT_EQ(lists.weights[3], 0.9F);
  EXPECT_FLOAT_EQ(lists.weights[4], 0.1F);
  EXPECT_EQ(lists.weights[5], 0.25F);
}

TEST(DiscriminatingColumns, OfEqualVectorsHaveWeightsThatAreNotNumbers) {
  Lists lists(1, 2);
  Discriminating({0.6F, 0.8F}, {0.6F, 0.8F}, 0, lists);
  EXPECT_TRUE(std::isnan(lists.weights[0]));
  EXPECT_TRUE(std::isnan(lists.weights[1]));
}

TEST(ScalingToUnitLength, DividesByTheLength) {
  Weights vector = {3, 0, -4};
  ScaleToUnitLength(vector);
  EXPECT_EQ(vector, (Weights{0.6F, 0, -0.8F}));
}

// The length is rounded before the division; of these vectors several end otherwise without that.
TEST(ScalingToUnitLength, RoundsTheLengthFirst) {
  bool rounding_shows = false;
  for (int n = 2; n < 40; ++n) {
    Weights vector;
    Wide squared = 0;
    for (int j = 1; j <= n; ++j) {
      vector.push_back(static_cast<float>(j));
      squared += static_cast<Wide>(j) * j;
    }
    Weights scaled = vector;
    ScaleToUnitLength(scaled);
    const Wide factor = 1 / static_cast<Wide>(static_cast<float>(molva::Sqrt(squared)));
    for (std::size_t j = 0; j < vector.size(); ++j) {
      EXPECT_EQ(scaled[j], static_cast<float>(vector[j] * factor)) << n << ", " << j;
      rounding_shows |= scaled[j] != static_cast<float>(vector[j] / molva::Sqrt(squared));
    }
  }
  EXPECT_TRUE(rounding_shows);
}

TEST(ScalingToUnitLength, TurnsAZeroVectorIntoNoNumbers) {
  Weights vector = {0, 0};
  ScaleToUnitLength(vector);
  EXPECT_TRUE(std::isnan(vector[0]));
  EXPECT_TRUE(std::isnan(vector[1]));
}

}  // namespace
}  // namespace molva
