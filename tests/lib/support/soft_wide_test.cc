// SPDX-License-Identifier: MIT
#include "lib/support/soft_wide.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "lib/support/wide.h"
#include "tests/testing/wide_operands.h"

namespace {

using molva::DifferenceOf;
using molva::SoftWide;
using molva::SumOf;

constexpr std::uint64_t kTop = std::uint64_t{1} << 63;
// The distance from 1 to the next number.
constexpr SoftWide kUnit = SoftWide::Of(false, SoftWide::kBias - 63, kTop);
constexpr SoftWide kLeast = SoftWide::Of(false, 0, 1);
constexpr SoftWide kLeastNormal = SoftWide::Of(false, 1, kTop);
constexpr SoftWide kMost = SoftWide::Of(false, SoftWide::kEndless - 1, ~std::uint64_t{0});

bool AreSame(SoftWide a, SoftWide b) {
  return a.significand() == b.significand() && a.exponent() == b.exponent() &&
         a.negative() == b.negative();
}

TEST(SoftWide, ComputesWithWholeNumbers) {
  static_assert(SoftWide{7} + 5 == 12);
  static_assert(SoftWide{7} - 12 == -5);
  static_assert(SoftWide{-7} * 6 == -42);
  static_assert(SoftWide{42} / -7 == -6);
  EXPECT_EQ(static_cast<int>(SoftWide{-2.75}), -2);
  EXPECT_EQ(Sqrt(SoftWide{144}), 12);
  EXPECT_EQ(FourthRoot(SoftWide{81}), 3);
}

TEST(SoftWide, RoundsTiesToEven) {
  const SoftWide half = kUnit / 2;
  EXPECT_EQ(SoftWide{1} + half, 1);
  EXPECT_EQ((1 + kUnit) + half, 1 + 2 * kUnit);
  EXPECT_EQ(1 + (half + half * kUnit), 1 + kUnit);
  EXPECT_EQ(1 - half / 2, 1);
  EXPECT_EQ(1 - 3 * half / 4, 1 - half);
  // (1 + u)^2 = 1 + 2 u + u^2
  EXPECT_EQ((1 + kUnit) * (1 + kUnit), 1 + 2 * kUnit);
  // (2^32 + 1)(2^32 - 1) = 2^64 - 1 has 64 bits, and one more is a tie.
  EXPECT_EQ(SoftWide{0x100000001} * SoftWide{0xffffffff}, SoftWide{~std::uint64_t{0}});
  EXPECT_EQ(SoftWide{~std::uint64_t{0}} + SoftWide{0.5}, SoftWide{0x1p64});
}

// 1 + 2^-53 is no double, nor is 1 + 2^-60; either operand may be the one that is lost.
TEST(SoftWide, AddsDoublesThatTheirTypeCannot) {
  for (const double small : {0x1p-52, 0x1p-53, 0x1.8p-53, 0x1p-60, 0x1p-63, 1.0, 0.0}) {
    for (const double sign : {1.0, -1.0}) {
      const SoftWide sum = SoftWide{1} + sign * small;
      EXPECT_TRUE(AreSame(SumOf<SoftWide>(1, sign * small), sum)) << small;
      EXPECT_TRUE(AreSame(SumOf<SoftWide>(sign * small, 1), sum)) << small;
      EXPECT_TRUE(AreSame(DifferenceOf<SoftWide>(1, -sign * small), sum)) << small;
      EXPECT_TRUE(AreSame(DifferenceOf<SoftWide>(sign * small, -1), sum)) << small;
    }
  }
  constexpr double kMostDouble = std::numeric_limits<double>::max();
  EXPECT_EQ(SumOf<SoftWide>(kMostDouble, kMostDouble), 2 * SoftWide{kMostDouble});
  EXPECT_EQ(SumOf<SoftWide>(INFINITY, 1), SoftWide::Infinity(false));
  EXPECT_TRUE(IsNan(DifferenceOf<SoftWide>(INFINITY, INFINITY)));
  EXPECT_TRUE(SumOf<SoftWide>(-0.0, -0.0).negative());
  EXPECT_FALSE(DifferenceOf<SoftWide>(1, 1).negative());
}

// 1/3 = 0.010101... in binary; the bits behind the 64th begin with 1.
TEST(SoftWide, RoundsQuotients) {
  EXPECT_TRUE(
      AreSame(SoftWide{1} / 3, SoftWide::Of(false, SoftWide::kBias - 2, 0xaaaaaaaaaaaaaaabU)));
  EXPECT_TRUE(
      AreSame(SoftWide{2} / 3, SoftWide::Of(false, SoftWide::kBias - 1, 0xaaaaaaaaaaaaaaabU)));
  EXPECT_TRUE(AreSame(SoftWide{5} / 3, SoftWide::Of(false, SoftWide::kBias, 0xd555555555555555U)));
}

// sqrt(2) = 1.6a09e667f3bcc908b2fb1366ea957d3e... in base 16.
TEST(SoftWide, RoundsRoots) {
  EXPECT_TRUE(
      AreSame(Sqrt(SoftWide{2}), SoftWide::Of(false, SoftWide::kBias, 0xb504f333f9de6484U)));
  EXPECT_TRUE(
      AreSame(FourthRoot(SoftWide{4}), SoftWide::Of(false, SoftWide::kBias, 0xb504f333f9de6484U)));
  // The root of 2^64 - 1 is 2^32 (1 - 2^-65 - 2^-131 - ...), just below the middle of two numbers.
  EXPECT_EQ(Sqrt(SoftWide{~std::uint64_t{0}}), SoftWide{0x1p32} - SoftWide{0x1p-32});
  EXPECT_EQ(FourthRoot(SoftWide{0xffff} * 0xffff * 0xffff * 0xffff), 0xffff);
}

// 2^(1/4) = 1.306fe0a31b7152de8d5a46305c85edec... in base 16.
TEST(SoftWide, RoundsFourthRoots) {
  EXPECT_TRUE(
      AreSame(FourthRoot(SoftWide{2}), SoftWide::Of(false, SoftWide::kBias, 0x9837f0518db8a96fU)));
  EXPECT_TRUE(AreSame(FourthRoot(SoftWide{0x1p-7}),
                      SoftWide::Of(false, SoftWide::kBias - 2, 0x9837f0518db8a96fU)));
  EXPECT_EQ(FourthRoot(SoftWide{0x1p-1072}), 0x1p-268);
  const SoftWide power = kLeastNormal * 4 * 4;  // 2^-16378
  EXPECT_EQ(Sqrt(Sqrt(power * 4)), FourthRoot(power * 4));
}

TEST(SoftWide, LosesBitsBelowTheLeastNormalNumber) {
  EXPECT_TRUE(AreSame(kLeastNormal / 2, SoftWide::Of(false, 0, kTop / 2)));
  EXPECT_TRUE(AreSame(kLeastNormal - kLeast, SoftWide::Of(false, 0, kTop - 1)));
  EXPECT_TRUE(AreSame(SoftWide::Of(false, 0, kTop - 1) + kLeast, kLeastNormal));
  EXPECT_EQ(kLeast / 2, 0);
  EXPECT_TRUE(AreSame(3 * kLeast / 2, 2 * kLeast));
  EXPECT_TRUE(AreSame(-kLeast / 4, SoftWide::Of(true, 0, 0)));
  EXPECT_EQ(static_cast<double>(kLeastNormal), 0);
}

TEST(SoftWide, OverflowsToInfinity) {
  const SoftWide infinity = SoftWide::Infinity(false);
  EXPECT_EQ(kMost + kMost, infinity);
  EXPECT_EQ(kMost * -2, -infinity);
  EXPECT_EQ(kMost / kLeast, infinity);
  EXPECT_LT(kMost, infinity);
  EXPECT_EQ(static_cast<float>(SoftWide{0x1p128}), INFINITY);
  // Midway to the power of two behind the largest float, and just below.
  EXPECT_EQ(static_cast<float>(SoftWide{0x1.ffffffp127}), INFINITY);
  EXPECT_EQ(static_cast<float>(SoftWide{0x1.fffffefffffffp127}), 0x1.fffffep127F);
}

TEST(SoftWide, HasNoNumberForWhatHasNoResult) {
  const SoftWide infinity = SoftWide::Infinity(false);
  for (const SoftWide x : {infinity - infinity, SoftWide{0} / 0, infinity * 0, infinity / infinity,
                           Sqrt(SoftWide{-1}), Log(SoftWide{-1}), FourthRoot(SoftWide{-16})}) {
    EXPECT_TRUE(IsNan(x));
    EXPECT_FALSE(x == x);
    EXPECT_FALSE(x < 1 || x >= 1);
    EXPECT_TRUE(std::isnan(static_cast<float>(x)));
  }
  EXPECT_EQ(SoftWide{-3} / 0, -infinity);
  EXPECT_EQ(Log(SoftWide{0}), -infinity);
  EXPECT_EQ(Log2(infinity), infinity);
}

TEST(SoftWide, KnowsOneZeroOfTwoSigns) {
  const SoftWide minus = -SoftWide{0};
  EXPECT_EQ(minus, 0);
  EXPECT_TRUE(minus.negative());
  EXPECT_FALSE((minus + 0).negative());
  EXPECT_TRUE((minus + minus).negative());
  EXPECT_TRUE((SoftWide{-1} * 0).negative());
  EXPECT_FALSE((SoftWide{1} - 1).negative());
  EXPECT_TRUE(Sqrt(minus).negative());
  EXPECT_TRUE(std::signbit(static_cast<float>(minus)));
}

TEST(SoftWide, KeepsIntegers) {
  for (const std::int64_t n : {std::int64_t{0}, std::int64_t{-1}, INT64_MAX, INT64_MIN}) {
    EXPECT_EQ(static_cast<std::int64_t>(SoftWide{n}), n);
  }
  EXPECT_EQ(static_cast<std::uint64_t>(SoftWide{UINT64_MAX}), UINT64_MAX);
  EXPECT_EQ(static_cast<int>(SoftWide{INT_MIN}), INT_MIN);
  EXPECT_EQ(static_cast<int>(SoftWide{-0.99}), 0);
}

TEST(SoftWide, KeepsFloatsAndDoubles) {
  for (const float x : {0x1p-149F, 0x1.8p-140F, 0x1.fffffep127F, -1.0F / 3, INFINITY, -0.0F}) {
    EXPECT_EQ(static_cast<float>(SoftWide{x}), x);
  }
  for (const double x : {0x1p-1074, 0x1.8p-1060, 0x1.fffffffffffffp1023, -1.0 / 3}) {
    EXPECT_EQ(static_cast<double>(SoftWide{x}), x);
  }
  // Between subnormal numbers, too, ties go to even.
  EXPECT_EQ(static_cast<float>(SoftWide{0x3p-150}), 0x1p-148F);
  EXPECT_EQ(static_cast<float>(SoftWide{0x1p-150}), 0.0F);
  EXPECT_EQ(static_cast<float>(SoftWide{0x1.00001p-150}), 0x1p-149F);
}

TEST(SoftWide, TakesLogarithms) {
  EXPECT_TRUE(AreSame(Log(SoftWide{1}), 0));
  for (int power = -1000; power <= 1000; ++power) {
    ASSERT_EQ(Log2(SoftWide{std::ldexp(1.0, power)}), power);
  }
  // ln 2 = 0.b17217f7d1cf79abc9e3b398... in base 16; ln(1 + x) = x - x^2/2 + ...
  EXPECT_TRUE(
      AreSame(Log(SoftWide{2}), SoftWide::Of(false, SoftWide::kBias - 1, 0xb17217f7d1cf79acU)));
  EXPECT_TRUE(AreSame(Log(SoftWide{1 + 0x1p-50}),
                      SoftWide{0x1p-50} - SoftWide{0x1p-101} + SoftWide{0x1p-150} / 3));
  EXPECT_EQ(Log(1 + kUnit), kUnit - kUnit * kUnit / 2);
}

// Against what the platform has, by which single precision cannot tell them apart.
TEST(SoftWide, LogarithmsAreThoseOfThePlatform) {
  testing_support::WidePairs pairs(11);
  for (int i = 0; i < 100000; ++i) {
    const auto x = static_cast<float>(
        SoftWide::Of(false, SoftWide::kBias - 40 + i % 80, pairs.Next().a.significand() | kTop));
    ASSERT_EQ(static_cast<float>(Log(SoftWide{x})),
              static_cast<float>(std::log(static_cast<long double>(x))));
    ASSERT_EQ(static_cast<float>(Log2(SoftWide{x})),
              static_cast<float>(std::log2(static_cast<long double>(x))));
  }
}

#if LDBL_MANT_DIG == 64

TEST(SoftWide, LeavesTheBitsOfExtendedPrecision) {
  testing_support::WidePairs pairs(1);
  for (int i = 0; i < 200000; ++i) {
    ASSERT_EQ(testing_support::DifferenceFromExtended(pairs.Next()), "") << i;
  }
}

// Its power is off by less than a unit.
TEST(SoftWide, FourthRootsAreThoseOfExtendedPrecision) {
  testing_support::WidePairs pairs(2);
  for (int i = 0; i < 20000; ++i) {
    const SoftWide x = Fabs(pairs.Next().a);
    if (IsNan(x) || !x.IsFinite()) continue;
    const long double root = molva::ExtendedOf(FourthRoot(x));
    const long double power = std::pow(molva::ExtendedOf(x), 0.25L);
    ASSERT_LE(std::fabs(root - power), root * 0x1p-63L) << i;
  }
}

#endif

}  // namespace
