// SPDX-License-Identifier: MIT
#include "lib/support/log2.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>

namespace {

// Halves until nothing is left.
int FloorLog2(int n) {
  int halvings = 0;
  while (n >= 2) {
    n /= 2;
    ++halvings;
  }
  return halvings;
}

bool IsADoublingOfOne(int n) {
  long power = 1;
  while (power < n) power *= 2;
  return power == n;
}

TEST(Log2Int, IsTheWholePartOfTheLogarithm) {
  EXPECT_EQ(molva::Log2Int(2), 1);
  EXPECT_EQ(molva::Log2Int(8), 3);
  EXPECT_EQ(molva::Log2Int(9), 3);
  for (int n = 1; n < 5000; ++n) ASSERT_EQ(molva::Log2Int(n), FloorLog2(n)) << n;
}

TEST(Log2Int, IsZeroBelowTwo) {
  for (const int n : {1, 0, -1, -8, INT_MIN}) EXPECT_EQ(molva::Log2Int(n), 0) << n;
}

TEST(Log2Int, HoldsUpToTheLargestInt) {
  EXPECT_EQ(molva::Log2Int(1 << 30), 30);
  EXPECT_EQ(molva::Log2Int((1 << 30) - 1), 29);
  EXPECT_EQ(molva::Log2Int(INT_MAX), 30);
}

TEST(IsPowerOf2, CountsOne) { EXPECT_EQ(molva::IsPowerOf2(1), 1); }

TEST(IsPowerOf2, HoldsForTheDoublingsOfOneOnly) {
  EXPECT_EQ(molva::IsPowerOf2(6), 0);
  for (int n = 1; n < 5000; ++n) {
    ASSERT_EQ(molva::IsPowerOf2(n), IsADoublingOfOne(n) ? 1 : 0) << n;
  }
  EXPECT_EQ(molva::IsPowerOf2(1 << 30), 1);
  EXPECT_EQ(molva::IsPowerOf2(INT_MAX), 0);
}

TEST(IsPowerOf2, RefusesZeroAndNegativeNumbers) {
  for (const int n : {0, -1, -2, -8, INT_MIN}) EXPECT_EQ(molva::IsPowerOf2(n), 0) << n;
}

TEST(Log2Float, IsExactForPowersOfTwo) {
  EXPECT_EQ(molva::Log2Float(1), 0.0F);
  EXPECT_EQ(molva::Log2Float(8), 3.0F);
  EXPECT_EQ(molva::Log2Float(0.25F), -2.0F);
}

TEST(Log2Float, IsTheLogarithmInSinglePrecision) {
  EXPECT_EQ(molva::Log2Float(10), 3.3219280948873623F);
  EXPECT_EQ(molva::Log2Float(3), 1.5849625007211562F);
}

TEST(Log2Float, IsInfiniteForZeroAndNotANumberBelow) {
  EXPECT_EQ(molva::Log2Float(0), -INFINITY);
  EXPECT_TRUE(std::isnan(molva::Log2Float(-1)));
}

}  // namespace
