// SPDX-License-Identifier: MIT
#include "lib/support/narrowing.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "lib/support/vectors.h"
#include "lib/support/wide.h"

namespace molva {
namespace {

float WideDot(const std::vector<float>& x, const std::vector<float>& y) {
  Wide sum = 0;
  for (std::size_t i = 0; i < x.size(); ++i) sum += static_cast<Wide>(x[i]) * y[i];
  return static_cast<float>(sum);
}

// Some thousand terms of just less than half a unit of 1 in double, which loses each in turn; the
// wide sum keeps them, and they lift it over the middle between two floats.
std::vector<float> LostInDouble() {
  std::vector<float> row(4002, std::sqrt(0x1p-53F) * (1 - 0x1p-20F));
  row[0] = 1;
  row[1] = 0x1p-12F * (1 - 0x1p-21F);
  return row;
}

TEST(Narrowing, OfEverythingBetweenTwoNumbersIsCertainWhereItIsOneNumber) {
  EXPECT_TRUE(Narrowed::From(1, 1 + 0x1p-25).is_certain);
  EXPECT_EQ(Narrowed::From(1 - 0x1p-26, 1 + 0x1p-25).value, 1.0F);
  EXPECT_FALSE(Narrowed::From(1, 1 + 0x1.1p-24).is_certain);
  EXPECT_FALSE(Narrowed::From(NAN, NAN).is_certain);
  EXPECT_FALSE(Narrowed::From(-INFINITY, INFINITY).is_certain);
}

// The sign of what vanishes is that of the wide sum.
TEST(Narrowing, LeavesWhatVanishesToWideSums) {
  EXPECT_FALSE(Narrowed::From(-0x1p-200, 0x1p-200).is_certain);
  EXPECT_FALSE(Narrowed::From(-0x1p-200, -0x1p-210).is_certain);
  EXPECT_TRUE(Narrowed::From(0, 0).is_certain);
}

TEST(Narrowing, SeesSumsThatDoubleRoundsToTheWrongSide) {
  const std::vector<float> row = LostInDouble();
  const RoughSum rough = RoughSquares(row);
  EXPECT_FALSE(NarrowedSum(rough).is_certain);
  EXPECT_EQ(DotFloats(row, row), WideDot(row, row));
  EXPECT_EQ(DotFloats(row, row), 1.0F + 0x1p-23F);
}

// All in the first of the chains in which the sum is formed, one after the other.
TEST(Narrowing, CountsEveryTerm) {
  RoughSum rough{0, 0, 4000};
  rough.Add(1);
  double left = 0;
  for (int i = 0; i < 3999; ++i) {
    rough.Add(0x1p-53 * (1 - 0x1p-20));
    left += 0x1p-53 * (1 - 0x1p-20);
  }
  ASSERT_EQ(rough.sum, 1);
  EXPECT_GE(rough.Error(), left);
}

TEST(Narrowing, ASumsErrorGoesWithTheMagnitudes) {
  // 2^30 and its like cancel; what is left was rounded when they were there.
  const std::vector<float> x = {0x1p15F, 1 + 0x1p-23F, -0x1p15F};
  const std::vector<float> y = {0x1p15F, 0x1p-12F + 0x1p-30F, 0x1p15F};
  EXPECT_EQ(DotFloats(x, y), WideDot(x, y));
  EXPECT_FALSE(NarrowedSum(RoughDot(x, y)).is_certain);
}

TEST(Narrowing, HasNoInverseForARootOfNothing) {
  EXPECT_FALSE(NarrowedInverseRoot({0, 0, 3}).is_certain);
  EXPECT_FALSE(NarrowedInverseRoot({NAN, NAN, 3}).is_certain);
  EXPECT_EQ(NarrowedInverseRoot({4, 4, 3}).value, 0.5F);
  EXPECT_EQ(NarrowedRoot({0, 0, 3}).value, 0.0F);
}

TEST(Narrowing, OfAQuotientByNothingIsLeft) {
  EXPECT_FALSE(NarrowedQuotient({0, 0, 3}, 0).is_certain);
  EXPECT_EQ(NarrowedQuotient({6, 6, 3}, 2).value, 3.0F);
  EXPECT_EQ(NarrowedQuotient({6, 6, 3}, 0).value, INFINITY);
}

// One that a third of the room would let through: three times what is left lies midway.
TEST(Narrowing, LeavesQuotientsNextToTheMiddle) {
  const double midway = 1 + 0x1p-24;
  EXPECT_FALSE(NarrowedQuotient({3 * midway * (1 + 0x1p-52), 0, 0}, 3).is_certain);
  EXPECT_FALSE(NarrowedRoot({midway * midway * (1 + 0x1p-51), 0, 0}).is_certain);
  EXPECT_FALSE(NarrowedInverseRoot({(1 + 0x1p-51) / (midway * midway), 0, 0}).is_certain);
}

// Every dot product, near ties and far from them, is the wide one.
TEST(Narrowing, NeverChangesADotProduct) {
  std::mt19937 engine(3);
  std::uniform_real_distribution<float> entry(-1, 1);
  int settled = 0;
  for (int trial = 0; trial < 20000; ++trial) {
    std::vector<float> x(engine() % 40), y(x.size());
    for (float& v : x) v = std::ldexp(entry(engine), static_cast<int>(engine() % 30) - 15);
    for (float& v : y) v = entry(engine);
    if (x.size() > 2 && trial % 2 == 0) {
      // A product of just half the last place of another.
      x[0] = 1 + static_cast<float>(engine() % 8) * 0x1p-23F;
      y[0] = 1;
      for (std::size_t i = 1; i < x.size(); ++i) x[i] = 0;
      x[1] = 0x1p-12F;
      y[1] = trial % 4 == 0 ? 0x1p-12F : -0x1p-12F;
      x[2] = std::ldexp(1.0F, -30 - static_cast<int>(engine() % 60));
    }
    if (NarrowedSum(RoughDot(x, y)).is_certain) ++settled;
    ASSERT_EQ(DotFloats(x, y), WideDot(x, y)) << trial;
  }
  EXPECT_GT(settled, 9000);
}

// The sum of a float and a product, rounded wide and then to single precision.
float AddedWide(float sum, float a, float b) {
  return static_cast<float>(sum + static_cast<Wide>(a) * b);
}

double AddedInDouble(float sum, float a, float b) {
  return static_cast<double>(sum) + static_cast<double>(a) * static_cast<double>(b);
}

TEST(Narrowing, OfOneSumAgreesUnlessItIsMidway) {
  std::mt19937 engine(4);
  int midway = 0;
  for (int trial = 0; trial < 400000; ++trial) {
    const auto bits = [&engine] { return 1 + static_cast<float>(engine() >> 9) * 0x1p-23F; };
    const float sum = bits();
    float a = std::ldexp(bits(), -1 - static_cast<int>(engine() % 80));
    float b = (engine() & 1) != 0 ? bits() : -bits();
    if (trial % 3 == 0) a = std::ldexp(1.0F, -24 + static_cast<int>(engine() % 3));
    if (trial % 6 == 0) b = 1 + std::ldexp(1.0F, -static_cast<int>(engine() % 24));
    const double rough = AddedInDouble(sum, a, b);
    if (!NarrowsAlike(rough)) {
      ++midway;
      continue;
    }
    ASSERT_EQ(static_cast<float>(rough), AddedWide(sum, a, b)) << trial;
  }
  EXPECT_GT(midway, 1000);
  EXPECT_LT(midway, 200000);
}

// 1 + 2^-24 and a little more or less than what double keeps: it says midway, the wide sum knows.
TEST(Narrowing, SaysWhereDoubleHidesTheSide) {
  const float almost = 0x1p-12F * (1 + 0x1p-23F);
  const double above = AddedInDouble(1, almost, almost);
  EXPECT_TRUE(NarrowsAlike(above));
  const double rounded = AddedInDouble(1 + 0x1p-23F, 0x1p-24F, 1);
  EXPECT_FALSE(NarrowsAlike(rounded));
  EXPECT_FALSE(NarrowsAlike(0x1p-127));
  EXPECT_TRUE(NarrowsAlike(0));
}

}  // namespace
}  // namespace molva
