// SPDX-License-Identifier: MIT
#include "tools/sweep/knee.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

using mardle::tools::CurvePoint;
using mardle::tools::FindKnee;
using mardle::tools::Knee;
using mardle::tools::SmoothCurve;

std::vector<CurvePoint> Curve(const std::vector<double>& values, std::vector<int> numbers = {}) {
  std::vector<CurvePoint> curve;
  for (std::size_t i = 0; i < values.size(); ++i) {
    curve.push_back({numbers.empty() ? static_cast<int>(i) + 1 : numbers[i], values[i]});
  }
  return curve;
}

void ExpectKnee(const std::vector<CurvePoint>& curve, const Knee& wanted,
                const SmoothCurve& smooth = {}) {
  const auto knee = FindKnee(curve, smooth);
  ASSERT_TRUE(knee);
  EXPECT_EQ(knee->nclusters, wanted.nclusters);
  EXPECT_DOUBLE_EQ(knee->before, wanted.before);
  EXPECT_DOUBLE_EQ(knee->behind, wanted.behind);
}

TEST(Knee, IsWhereACurveStopsToRise) {
  // The chord stands at 9.2 over 3, the curve at 20.
  ExpectKnee(Curve({0, 10, 20, 21, 22, 23}), {3, 10, 1});
}

TEST(Knee, IsWhereACurveBeginsToFall) {
  ExpectKnee(Curve({0, -1, -2, -12, -22, -32}), {3, -1, -10});
  ExpectKnee(Curve({0, 1, 2, 1, 0}), {3, 1, -1});
  ExpectKnee(Curve({0, 4, 4, 4}), {2, 4, 0});
}

TEST(Knee, CountsStepsByTheClustersThatTheyAdd) {
  // 10 for each cluster up to 5, 1 for each behind it.
  ExpectKnee(Curve({0, 20, 40, 42, 50}, {1, 3, 5, 7, 15}), {5, 10, 1});
}

TEST(Knee, IsNoneOnSmoothCurves) {
  std::vector<double> root, logarithm, hyperbola, line, flat;
  for (int k = 1; k <= 20; ++k) {
    root.push_back(std::sqrt(k));
    logarithm.push_back(std::log(k));
    hyperbola.push_back(-1.0 / k / k);
    line.push_back(k);
    flat.push_back(3);
  }
  for (const auto& values : {root, logarithm, hyperbola, line, flat}) {
    EXPECT_FALSE(FindKnee(Curve(values), {}));
  }
}

TEST(Knee, BendsMoreSharplyThanRowsWithoutGroups) {
  // At 3 the curve -1/k^2 bends by 16/4 * 5/7 = 20/7, and 1.3 times that is 3.71.
  EXPECT_FALSE(FindKnee(Curve({0, 3.7, 7.4, 8.4, 9.4, 10.4}), {}));
  ExpectKnee(Curve({0, 3.75, 7.5, 8.5, 9.5, 10.5}), {3, 3.75, 1});
  // In two dimensions -1/k bends by 4/2 at 3, and 1.3 times that is 2.6.
  EXPECT_FALSE(FindKnee(Curve({0, 2.5, 5, 6, 7, 8}), {.dimension = 2}));
  ExpectKnee(Curve({0, 2.75, 5.5, 6.5, 7.5, 8.5}), {3, 2.75, 1}, {.dimension = 2});
}

TEST(Knee, HasToBeSharperWhereHalvingMakesOne) {
  // In two dimensions a part that is halved adds 4 times what its halves add: 5.2 is wanted at 4.
  const auto sharp = Curve({0, 5, 10, 15, 16, 17, 18});
  const auto sharper = Curve({0, 6, 12, 18, 19, 20, 21});
  ExpectKnee(sharp, {4, 5, 1}, {.dimension = 2});
  EXPECT_FALSE(FindKnee(sharp, {.dimension = 2, .halving = true}));
  ExpectKnee(sharper, {4, 6, 1}, {.dimension = 2, .halving = true});
  // Three is no power of two.
  ExpectKnee(Curve({0, 5, 10, 11, 12, 13}), {3, 5, 1}, {.dimension = 2, .halving = true});
}

TEST(Knee, IsNotMadeByOneOddValue) {
  // At 3 the step before is 10, but that before it 1, as are those behind.
  EXPECT_FALSE(FindKnee(Curve({0, 1, 11, 12, 13, 14, 15}), {}));
}

TEST(Knee, IsNoneOfTooFewOrUndefinedValues) {
  EXPECT_FALSE(FindKnee(Curve({0, 5}), {}));
  EXPECT_FALSE(FindKnee(Curve({}), {}));
  EXPECT_FALSE(FindKnee(Curve({0, 10, NAN, 21, 22}), {}));
  EXPECT_FALSE(FindKnee(Curve({0, 10, 20, 21, std::numeric_limits<double>::infinity()}), {}));
}

}  // namespace
