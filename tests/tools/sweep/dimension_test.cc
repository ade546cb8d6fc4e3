// SPDX-License-Identifier: MIT
#include "tools/sweep/dimension.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using mardle::EngineInput;
using mardle::tools::DimensionOf;

// Rows of three columns, each along one axis.
struct AxisRows {
  explicit AxisRows(const std::vector<int>& axes) : values(3 * axes.size()) {
    for (std::size_t i = 0; i < axes.size(); ++i) {
      values[3 * i + static_cast<std::size_t>(axes[i])] = static_cast<float>(i % 5 + 1);
    }
  }
  EngineInput input() const {
    return {.nrows = static_cast<int>(values.size() / 3), .ncols = 3, .rowval = values.data()};
  }
  std::vector<float> values;
};

TEST(Dimension, IsHalfTheParticipationRatio) {
  // Corners of a triangle have two equal variances, two points have one.
  EXPECT_NEAR(DimensionOf(AxisRows({0, 1, 2}).input()), 1, 1e-9);
  EXPECT_NEAR(DimensionOf(AxisRows({0, 1, 2, 2, 1, 0}).input()), 1, 1e-9);
  EXPECT_NEAR(DimensionOf(AxisRows({0, 0, 1, 1}).input()), 0.5, 1e-9);
}

TEST(Dimension, CountsAnUnevenOneForLess) {
  // The variances of 6 unit rows about (4, 1, 1)/6 sum to 6 - 6 * 18/36 = 3. Along (0, 1, -1) it is
  // 2 * 1/2 = 1, so that of the other direction is 2.
  EXPECT_NEAR(DimensionOf(AxisRows({0, 0, 0, 0, 1, 2}).input()), 3.0 * 3 / (1 + 2 * 2) / 2, 1e-9);
}

TEST(Dimension, OfEqualRowsIsThatOfALine) {
  EXPECT_DOUBLE_EQ(DimensionOf(AxisRows({0, 0, 0}).input()), 0.5);
}

TEST(Dimension, IsMeasuredOnRowsAtEvenDistances) {
  // Of 3000 rows every third is looked at, and these are equal; of 999 all are.
  std::vector<int> axes(3000);
  for (std::size_t i = 0; i < axes.size(); ++i) axes[i] = static_cast<int>(i % 3);
  EXPECT_DOUBLE_EQ(DimensionOf(AxisRows(axes).input()), 0.5);
  axes.resize(999);
  EXPECT_NEAR(DimensionOf(AxisRows(axes).input()), 1, 1e-9);
}

}  // namespace
