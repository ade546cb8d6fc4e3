// SPDX-License-Identifier: MIT
#include "programs/plot_cells.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace {

using mardle::ValueRange;
using Limits = std::numeric_limits<float>;

constexpr float kInfinity = Limits::infinity();
constexpr float kNotANumber = Limits::quiet_NaN();

ValueRange RangeOf(const std::vector<float>& values) {
  ValueRange range;
  range.Include(values);
  return range;
}

// "red,green,blue", or "none".
std::string Color(float value, const ValueRange& range, bool zeroblack) {
  const auto color = mardle::CellColor(value, range, zeroblack);
  if (!color) return "none";
  return std::to_string(color->red) + "," + std::to_string(color->green) + "," +
         std::to_string(color->blue);
}

std::string OnWhite(float value, const ValueRange& range) { return Color(value, range, false); }
std::string OnBlack(float value, const ValueRange& range) { return Color(value, range, true); }

constexpr ValueRange kRange = {.maxpos = 8, .minneg = -4};

TEST(ValueRange, IsTheLargestAboveZeroAndTheSmallestBelow) {
  const ValueRange range = RangeOf({1, -3, 0, 5, -2});
  EXPECT_EQ(range.maxpos, 5);
  EXPECT_EQ(range.minneg, -3);
}

TEST(ValueRange, IsZeroOnTheSideWithoutValues) {
  EXPECT_EQ(RangeOf({1, 2}).minneg, 0);
  EXPECT_EQ(RangeOf({-1, -2}).maxpos, 0);
  EXPECT_EQ(RangeOf({}).maxpos, 0);
}

TEST(ValueRange, GrowsWithEverySpanOfValues) {
  ValueRange range = RangeOf({1, -1});
  range.Include(std::vector<float>{3, -2});
  range.Include(std::vector<float>{2});
  EXPECT_EQ(range.maxpos, 3);
  EXPECT_EQ(range.minneg, -2);
}

TEST(ValueRange, SkipsValuesThatAreNotNumbers) {
  const ValueRange range = RangeOf({kNotANumber, 2, -kNotANumber, -1, kNotANumber});
  EXPECT_EQ(range.maxpos, 2);
  EXPECT_EQ(range.minneg, -1);
}

TEST(CellColor, IsPureAtTheExtremes) {
  EXPECT_EQ(OnWhite(8, kRange), "65535,0,0");
  EXPECT_EQ(OnWhite(-4, kRange), "0,65535,0");
  EXPECT_EQ(OnBlack(8, kRange), "65535,0,0");
  EXPECT_EQ(OnBlack(-4, kRange), "0,65535,0");
}

// 65535 * 3/4 = 49151.25, 65535 * 1/4 = 16383.75.
TEST(CellColor, FadesToWhite) {
  EXPECT_EQ(OnWhite(2, kRange), "65535,49151,49151");
  EXPECT_EQ(OnWhite(6, kRange), "65535,16383,16383");
  EXPECT_EQ(OnWhite(-1, kRange), "49151,65535,49151");
  EXPECT_EQ(OnWhite(-3, kRange), "16383,65535,16383");
}

TEST(CellColor, FadesToBlack) {
  EXPECT_EQ(OnBlack(2, kRange), "16383,0,0");
  EXPECT_EQ(OnBlack(6, kRange), "49151,0,0");
  EXPECT_EQ(OnBlack(-1, kRange), "0,16383,0");
  EXPECT_EQ(OnBlack(-3, kRange), "0,49151,0");
}

// Fractions below full intensity are cut, not rounded: 65535 * 0.5 = 32767.5.
TEST(CellColor, CutsFractions) {
  EXPECT_EQ(OnWhite(4, kRange), "65535,32767,32767");
  EXPECT_EQ(OnBlack(4, kRange), "32767,0,0");
  EXPECT_EQ(OnWhite(-2, kRange), "32767,65535,32767");
}

TEST(CellColor, OfATinyShareIsAlmostWhite) {
  EXPECT_EQ(OnWhite(0.0001F, {.maxpos = 100, .minneg = 0}), "65535,65534,65534");
}

// The floats nearest to 0.00001 lie on both sides of it.
TEST(CellColor, LeavesSmallValuesWhite) {
  const ValueRange range = {.maxpos = 1, .minneg = -1};
  EXPECT_EQ(OnWhite(0.000005F, range), "none");
  EXPECT_EQ(OnWhite(-0.000005F, range), "none");
  EXPECT_EQ(OnWhite(0.0000099F, range), "none");
  EXPECT_EQ(OnWhite(0.0000101F, range), "65535,65534,65534");
  EXPECT_EQ(OnWhite(-0.0000101F, range), "65534,65535,65534");
  EXPECT_EQ(OnWhite(0, range), "none");
  EXPECT_EQ(OnWhite(-0.0F, range), "none");
}

// 65535 * 0.000005 is below 1.
TEST(CellColor, DrawsSmallValuesBlackOnBlack) {
  const ValueRange range = {.maxpos = 1, .minneg = -1};
  EXPECT_EQ(OnBlack(0.000005F, range), "0,0,0");
  EXPECT_EQ(OnBlack(-0.000005F, range), "0,0,0");
  EXPECT_EQ(OnBlack(0, range), "0,0,0");
}

TEST(CellColor, OfNegativeValuesAloneIsGreen) {
  const ValueRange range = RangeOf({-2, -8});
  EXPECT_EQ(OnWhite(-8, range), "0,65535,0");
  EXPECT_EQ(OnWhite(-2, range), "49151,65535,49151");
  EXPECT_EQ(OnBlack(-2, range), "0,16383,0");
}

TEST(CellColor, IsNoneForWhatIsNotANumber) {
  EXPECT_EQ(OnWhite(kNotANumber, kRange), "none");
  EXPECT_EQ(OnBlack(kNotANumber, kRange), "none");
  EXPECT_EQ(OnWhite(-kNotANumber, {}), "none");
}

TEST(CellColor, OfAnInfiniteValueIsPure) {
  const ValueRange range = RangeOf({kInfinity, -kInfinity, 1});
  EXPECT_EQ(OnWhite(kInfinity, range), "65535,0,0");
  EXPECT_EQ(OnBlack(kInfinity, range), "65535,0,0");
  EXPECT_EQ(OnWhite(-kInfinity, range), "0,65535,0");
  EXPECT_EQ(OnBlack(-kInfinity, range), "0,65535,0");
}

TEST(CellColor, BesideAnInfiniteValueVanishes) {
  const ValueRange range = RangeOf({kInfinity, -kInfinity, 1});
  EXPECT_EQ(OnWhite(1, range), "65535,65535,65535");
  EXPECT_EQ(OnBlack(1, range), "0,0,0");
  EXPECT_EQ(OnWhite(-1, range), "65535,65535,65535");
}

TEST(CellColor, IsInRangeBeyondTheExtremes) {
  EXPECT_EQ(OnWhite(80, kRange), "65535,0,0");
  EXPECT_EQ(OnBlack(-80, kRange), "0,65535,0");
  EXPECT_EQ(OnWhite(1, {}), "65535,0,0");
}

TEST(CellColor, OfTheSmallestAndTheLargestFloatsIsPure) {
  const ValueRange denormal = RangeOf({Limits::denorm_min(), -Limits::denorm_min()});
  EXPECT_EQ(OnBlack(Limits::denorm_min(), denormal), "65535,0,0");
  EXPECT_EQ(OnBlack(-Limits::denorm_min(), denormal), "0,65535,0");
  const ValueRange huge = RangeOf({Limits::max(), Limits::lowest()});
  EXPECT_EQ(OnWhite(Limits::max(), huge), "65535,0,0");
  EXPECT_EQ(OnWhite(Limits::lowest() / 4, huge), "49151,65535,49151");
}

}  // namespace
