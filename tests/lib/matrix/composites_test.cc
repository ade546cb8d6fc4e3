// SPDX-License-Identifier: MIT
#include "lib/matrix/composites.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::PreparedOf;

std::vector<float> VectorOf(std::span<const float> values) {
  return {values.begin(), values.end()};
}

TEST(Composites, SumTheRowsOfEachClusterAndOfAll) {
  const auto mat = PreparedOf({{1, 0}, {2, 3}, {4, 0}});
  const std::vector<int> part = {1, 0, 1};
  std::vector<int> pwgts(2);
  Rows<float> centers = AllocFloatMatrix(2, 2, 0, "Test: centers");
  std::vector<float> gcenter(2);
  AccumulateComposites(*mat, part, pwgts, centers, gcenter);
  EXPECT_EQ(pwgts, (std::vector<int>{1, 2}));
  EXPECT_EQ(VectorOf(centers[0]), (std::vector<float>{2, 3}));
  EXPECT_EQ(VectorOf(centers[1]), (std::vector<float>{5, 0}));
  EXPECT_EQ(gcenter, (std::vector<float>{7, 3}));
}

TEST(Composites, SkipRowsWithoutAClusterOfTheirOwn) {
  const auto mat = PreparedOf({{1, 0}, {2, 3}, {4, 0}});
  const std::vector<int> part = {-1, 0, 7};
  std::vector<int> pwgts(1);
  Rows<float> centers = AllocFloatMatrix(1, 2, 0, "Test: centers");
  std::vector<float> gcenter(2);
  AccumulateComposites(*mat, part, pwgts, centers, gcenter);
  EXPECT_EQ(pwgts[0], 1);
  EXPECT_EQ(gcenter, (std::vector<float>{2, 3}));
}

TEST(Composites, AddAndSubtractARow) {
  const auto mat = PreparedOf({{1, 0, 2}});
  std::vector<float> vector = {10, 10, 10};
  AddRow(Row(*mat, 0), vector);
  EXPECT_EQ(vector, (std::vector<float>{11, 10, 12}));
  SubtractRow(Row(*mat, 0), vector);
  EXPECT_EQ(vector, (std::vector<float>{10, 10, 10}));
}

TEST(CountProducts, AreFormedIn64Bits) { EXPECT_EQ(CountProduct(50000, 50000), 2500000000); }

}  // namespace
}  // namespace molva
