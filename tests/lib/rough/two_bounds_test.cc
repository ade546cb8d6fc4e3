// SPDX-License-Identifier: MIT
#include "lib/rough/two_bounds.h"

#include <gtest/gtest.h>

#include <limits>

namespace molva {
namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();

// By hand, for a row with 10 roundings, a sum of squares of 1 and a d.G of 4, whose products are 3
// with cluster 0 and 2 with cluster 1.
class MeetTwo : public testing::Test {
 protected:
  void SetUp() override {
    first_.gains = {{1, 2, 3, 5}, {2, 1, 1, 1}};
    first_.error = 0.5;
    second_.gains = {{-7, 1, 2, 0.5}, {4, 3, 2, 1}};
    second_.error = 0.25;
  }

  double MostGain(int home, bool uses_whole) const {
    TwoBounds bounds;
    bounds.Set(0, first_);
    bounds.Set(1, second_);
    return bounds.MostGain({10, 1, 4}, Pair{3, 2}, home, uses_whole);
  }

  ClusterBounds first_, second_;
};

// Going from 0: x = 1 - 2*3 + 10*0.5 = 0 gains 2. Coming to 1: x = 2*2 + 1 + 10*0.25 = 7.5 gains
// -7 + 2*7.5 = 8.
TEST_F(MeetTwo, WithoutTheWhole) { EXPECT_EQ(MostGain(0, false), 10); }

// Going from 1: x = 1 - 4 + 2.5 = -0.5 gains 4 + 3*4 + (2 + 4)(-0.5) = 13. Coming to 0: x = 6 + 1 +
// 5 = 12 gains 1 + 2*4 + (3 + 5*4) 12 = 285.
TEST_F(MeetTwo, WithTheWhole) { EXPECT_EQ(MostGain(1, true), 298); }

TEST_F(MeetTwo, HoldsNoRowToBoundsThatAreNotForIt) {
  first_.least_coming = 4.5;
  EXPECT_EQ(MostGain(1, true), kInfinite);
  EXPECT_LT(MostGain(0, true), kInfinite);
  first_.least_coming = 4;
  EXPECT_EQ(MostGain(1, true), 298);
  second_.most_going = 3.5;
  EXPECT_EQ(MostGain(1, true), kInfinite);
  EXPECT_LT(MostGain(0, true), kInfinite);
}

// What bounds nothing is infinite or not a number, so never below any slack.
TEST_F(MeetTwo, BoundsNothingWhereAClusterHasNoBounds) {
  first_.gains = {};
  for (const bool uses_whole : {false, true}) {
    for (const int home : {0, 1}) EXPECT_FALSE(MostGain(home, uses_whole) < 1e300);
  }
}

}  // namespace
}  // namespace molva
