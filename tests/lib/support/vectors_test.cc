// SPDX-License-Identifier: MIT
#include "lib/support/vectors.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <vector>

namespace {

TEST(SetVectors, FillEveryElementAndReturnTheArray) {
  std::vector<int> ints(3);
  EXPECT_EQ(molva::SetInts(ints, -2).data(), ints.data());
  EXPECT_EQ(ints, (std::vector<int>{-2, -2, -2}));
  std::vector<float> floats(2);
  EXPECT_EQ(molva::SetFloats(floats, 0.5F).data(), floats.data());
  EXPECT_EQ(floats, (std::vector<float>{0.5F, 0.5F}));
  std::vector<double> doubles(2);
  EXPECT_EQ(molva::SetDoubles(doubles, 0.1).data(), doubles.data());
  EXPECT_EQ(doubles, (std::vector<double>{0.1, 0.1}));
}

TEST(SetVectors, TakeAnEmptyArray) {
  EXPECT_TRUE(molva::SetInts({}, 1).empty());
  EXPECT_TRUE(molva::SetFloats({}, 1).empty());
  EXPECT_TRUE(molva::SetDoubles({}, 1).empty());
}

TEST(ArgMax, IsTheFirstOfTheLargest) {
  EXPECT_EQ(molva::ArgMaxInt(std::vector<int>{3, 5, 5, 1}), 1);
  EXPECT_EQ(molva::ArgMaxFloat(std::vector<float>{-3, -1, -1}), 1);
  EXPECT_EQ(molva::ArgMaxDouble(std::vector<double>{0.1, 0.1, 0.3, 0.3}), 2);
}

TEST(ArgMin, IsTheFirstOfTheSmallest) {
  EXPECT_EQ(molva::ArgMinInt(std::vector<int>{3, INT_MIN, 5, INT_MIN}), 1);
  EXPECT_EQ(molva::ArgMinFloat(std::vector<float>{3, 1, 1}), 1);
  EXPECT_EQ(molva::ArgMinDouble(std::vector<double>{0.3, 0.3, -0.1, -0.1}), 2);
}

TEST(ArgMaxAndArgMin, AreZeroForOneElementAndForNone) {
  EXPECT_EQ(molva::ArgMaxInt(std::vector<int>{7}), 0);
  EXPECT_EQ(molva::ArgMinInt(std::vector<int>{7}), 0);
  EXPECT_EQ(molva::ArgMaxInt({}), 0);
  EXPECT_EQ(molva::ArgMinInt({}), 0);
  EXPECT_EQ(molva::ArgMaxFloat({}), 0);
  EXPECT_EQ(molva::ArgMinFloat({}), 0);
  EXPECT_EQ(molva::ArgMaxDouble({}), 0);
  EXPECT_EQ(molva::ArgMinDouble({}), 0);
}

TEST(ArgMaxAndArgMin, NeverPickALaterElementThatIsNotANumber) {
  EXPECT_EQ(molva::ArgMaxFloat(std::vector<float>{1, NAN, 0, 2}), 3);
  EXPECT_EQ(molva::ArgMinFloat(std::vector<float>{1, NAN, 0, 2}), 2);
  EXPECT_EQ(molva::ArgMaxDouble(std::vector<double>{1, NAN}), 0);
  EXPECT_EQ(molva::ArgMinDouble(std::vector<double>{1, NAN}), 0);
}

TEST(ArgMaxAndArgMin, KeepAFirstElementThatIsNotANumber) {
  EXPECT_EQ(molva::ArgMaxFloat(std::vector<float>{NAN, 1}), 0);
  EXPECT_EQ(molva::ArgMinFloat(std::vector<float>{NAN, 1}), 0);
}

TEST(SumInts, AddsEveryElement) {
  EXPECT_EQ(molva::SumInts(std::vector<int>{3, -5, 10}), 8);
  EXPECT_EQ(molva::SumInts({}), 0);
}

TEST(SumBytes, AddsSignedBytesBeyondTheirRange) {
  EXPECT_EQ(molva::SumBytes(std::vector<signed char>{127, 127, -4}), 250);
  EXPECT_EQ(molva::SumBytes(std::vector<signed char>{-128, -128}), -256);
  EXPECT_EQ(molva::SumBytes({}), 0);
}

TEST(SumFloats, TakesEveryStrideThElement) {
  const std::vector<float> x = {1, 10, 100, 1000, 10000};
  EXPECT_EQ(molva::SumFloats(5, x.data(), 1), 11111.0F);
  EXPECT_EQ(molva::SumFloats(3, x.data(), 2), 10101.0F);
  EXPECT_EQ(molva::SumFloats(2, x.data(), 3), 1001.0F);
  EXPECT_EQ(molva::SumFloats(0, x.data(), 1), 0.0F);
}

TEST(SumDoubles, TakesEveryStrideThElement) {
  const std::vector<double> x = {1, 10, 100, 1000, 10000};
  EXPECT_EQ(molva::SumDoubles(3, x.data(), 2), 10101.0);
  EXPECT_EQ(molva::SumDoubles(0, x.data(), 1), 0.0);
}

// 2^24 + 1 is no float and 2^53 + 1 no double, so a sum rounded on the way would lose the 1.
TEST(Sums, AreCarriedWiderThanTheirElements) {
  const std::vector<float> floats = {16777216.0F, 1.0F, -16777216.0F};
  EXPECT_EQ(molva::SumFloats(3, floats.data(), 1), 1.0F);
  const std::vector<double> doubles = {9007199254740992.0, 1.0, -9007199254740992.0};
  EXPECT_EQ(molva::SumDoubles(3, doubles.data(), 1), 1.0);
}

TEST(ScaleFloats, MultipliesInPlace) {
  std::vector<float> x = {1, -2, 0.5F};
  molva::ScaleFloats(-4, x);
  EXPECT_EQ(x, (std::vector<float>{-4, 8, -2}));
}

TEST(NormFloats, IsTheLength) { EXPECT_EQ(molva::NormFloats(std::vector<float>{3, -4}), 5.0F); }

TEST(NormFloats, IsZeroForAnEmptyArray) { EXPECT_EQ(molva::NormFloats({}), 0.0F); }

TEST(NormFloats, HoldsWhereTheSquaresAreBeyondSinglePrecision) {
  for (const float scale : {0x1p100F, 0x1p-100F}) {
    EXPECT_EQ(molva::NormFloats(std::vector<float>{3 * scale, 4 * scale}), 5 * scale);
  }
}

TEST(DotFloats, AddsTheProducts) {
  EXPECT_EQ(molva::DotFloats(std::vector<float>{1, 2, 3}, std::vector<float>{4, -5, 6}), 12.0F);
  EXPECT_EQ(molva::DotFloats({}, {}), 0.0F);
}

// 4097 * 4097 = 2^24 + 2^13 + 1 takes 25 bits.
TEST(DotFloats, RoundsOnceAtTheEnd) {
  EXPECT_EQ(molva::DotFloats(std::vector<float>{4097, -16785408}, std::vector<float>{4097, 1}),
            1.0F);
}

TEST(AxpyFloats, AddsAMultipleElementByElement) {
  const std::vector<float> x = {1, 2};
  std::vector<float> y = {10, 20};
  molva::AxpyFloats(2, 3, x.data(), 1, y.data(), 1);
  EXPECT_EQ(y, (std::vector<float>{13, 26}));
}

TEST(AxpyFloats, StepsThroughBothArrays) {
  const std::vector<float> x = {1, 0, 2, 0};
  std::vector<float> y = {10, 10, 10, 10, 10};
  molva::AxpyFloats(2, 5, x.data(), 2, y.data(), 3);
  EXPECT_EQ(y, (std::vector<float>{15, 10, 10, 20, 10}));
}

TEST(AxpyFloats, RoundsTheSumAndNotTheProduct) {
  const float x = 4097;
  float y = -16785408;
  molva::AxpyFloats(1, 4097, &x, 1, &y, 1);
  EXPECT_EQ(y, 1.0F);
}

TEST(AxpyFloats, DoesNothingForNoElement) {
  const float x = 1;
  float y = 2;
  molva::AxpyFloats(0, 3, &x, 1, &y, 1);
  EXPECT_EQ(y, 2.0F);
}

}  // namespace
