// SPDX-License-Identifier: MIT
#include "tools/export/page/similarity_axis.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

using mardle::exporting::SimilarityAxis;
using testing::DoubleEq;
using testing::ElementsAre;

SimilarityAxis AxisOf(const std::vector<double>& values) {
  SimilarityAxis axis;
  for (const double value : values) axis.Include(value);
  return axis;
}

TEST(SimilarityAxis, GoesWithTheSquareRoot) {
  const SimilarityAxis axis = AxisOf({0.01, 1});
  EXPECT_DOUBLE_EQ(axis.At(0), 0);
  EXPECT_DOUBLE_EQ(axis.At(0.01), 0.1);
  EXPECT_DOUBLE_EQ(axis.At(0.25), 0.5);
  EXPECT_DOUBLE_EQ(axis.At(1), 1);
}

TEST(SimilarityAxis, HasRoomForNegativeValues) {
  const SimilarityAxis axis = AxisOf({-0.25, 0.25});
  EXPECT_DOUBLE_EQ(axis.At(-0.25), 0);
  EXPECT_DOUBLE_EQ(axis.At(0), 0.5);
  EXPECT_DOUBLE_EQ(axis.At(0.0625), 0.75);
}

TEST(SimilarityAxis, KeepsWhatLiesBeyondAtItsEnds) {
  const SimilarityAxis axis = AxisOf({0.5});
  EXPECT_DOUBLE_EQ(axis.At(-1), 0);
  EXPECT_DOUBLE_EQ(axis.At(2), 1);
}

TEST(SimilarityAxis, IsAPointWithoutNumbers) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(AxisOf({nan}).At(0.5), 0);
  EXPECT_EQ(AxisOf({1}).At(nan), 0);
}

TEST(SimilarityAxis, HasRoundTicksThatStandApart) {
  // At 0, 0.32, 0.71 and 1; 0.2 (0.45) and 0.05 (0.22) are too close to one of them.
  EXPECT_THAT(AxisOf({1}).Ticks(0.25),
              ElementsAre(DoubleEq(0), DoubleEq(0.1), DoubleEq(0.5), DoubleEq(1)));
}

TEST(SimilarityAxis, HasTicksOnBothSidesOfZero) {
  EXPECT_THAT(AxisOf({-0.5, 0.5}).Ticks(0.3), ElementsAre(-0.5, 0, 0.5));
}

}  // namespace
