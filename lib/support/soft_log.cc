// SPDX-License-Identifier: MIT
//
// Logarithms of soft wide numbers. A number is 2^k m, m between 0.7 and 1.42, and m lies near a
// multiple c of 1/64, so that
//
//   ln x = k ln 2 + ln c + 2 atanh z,   z = (m - c) / (m + c),   |z| < 2^-7,
//
// all of it in integers of 128 bits that stand for fractions, of which more than 100 are right.
#include <array>
#include <cstddef>

#include "lib/support/soft_wide.h"

namespace molva {
namespace {

__extension__ using Int128 = __int128;

constexpr int kScale = 112;  // fixed numbers count in 2^-kScale
constexpr int kSteps = 64;   // multiples of 1/kSteps
constexpr int kFirst = 45;
constexpr int kLast = 91;

// 2 atanh(p / q) for |p| < q, q below 256.
constexpr Int128 TwiceAtanh(int p, int q) {
  constexpr int kGuard = 4;
  const Int128 square = Int128{q} * q;
  Int128 power = (Int128{p} << (kScale + kGuard + 1)) / q;
  Int128 sum = 0;
  for (int n = 1; power != 0; n += 2) {
    sum += power / n;
    power = power / square * (p * p) + power % square * (p * p) / square;
  }
  return sum / (1 << kGuard);
}

constexpr Int128 kLn2 = TwiceAtanh(1, 3);

constexpr auto kLogs = [] {
  std::array<Int128, kLast - kFirst + 1> logs{};
  for (int i = kFirst; i <= kLast; ++i) {
    logs[static_cast<std::size_t>(i - kFirst)] = TwiceAtanh(i - kSteps, i + kSteps);
  }
  return logs;
}();

// The high half of a product.
constexpr Uint128 HighProduct(Uint128 a, Uint128 b) {
  const std::uint64_t low_a = static_cast<std::uint64_t>(a);
  const std::uint64_t low_b = static_cast<std::uint64_t>(b);
  const Uint128 high_a = a >> 64;
  const Uint128 high_b = b >> 64;
  const Uint128 middle = high_a * low_b + (Uint128{low_a} * low_b >> 64);
  const Uint128 other = low_a * high_b + static_cast<std::uint64_t>(middle);
  return high_a * high_b + (middle >> 64) + (other >> 64);
}

// 2^128 / (2 i + 3), what atanh z / z - 1 is made of.
constexpr auto kOddParts = [] {
  std::array<Uint128, 9> parts{};
  for (std::size_t i = 0; i < parts.size(); ++i) parts[i] = ~Uint128{0} / (2 * i + 3);
  return parts;
}();

// 2^127 / ln 2.
constexpr Uint128 kHalfPerLn2 = [] {
  Uint128 quotient = 0;
  Int128 rest = Int128{1} << kScale;
  for (int bit = 127; bit >= 0; --bit) {
    if (rest >= kLn2) {
      quotient |= Uint128{1} << bit;
      rest -= kLn2;
    }
    rest *= 2;
  }
  return quotient;
}();

// A number between 0 and 1, value 2^-shift, and its sign.
struct Fraction {
  bool negative;
  Uint128 value;
  int shift;
};

struct Parts {
  int power;       // k
  int step;        // 64 c
  Fraction atanh;  // of z
};

Fraction Atanh(Int128 dividend, Uint128 divisor) {
  const bool negative = dividend < 0;
  auto rest = static_cast<Uint128>(negative ? -dividend : dividend);
  if (rest == 0) return {false, 0, 128};
  // The divisor has 65 or 66 bits, so that the quotient comes in two pieces of about 61.
  int shift = 0;
  for (; rest >> 127 == 0; ++shift) rest <<= 1;
  Uint128 z = rest / divisor << 61;
  z |= (rest % divisor << 61) / divisor;
  shift += 61;
  const int to_fixed = shift - 128;  // 2^-128
  const Uint128 fixed = to_fixed > 127 ? 0 : z >> to_fixed;
  const Uint128 square = HighProduct(fixed, fixed);
  Uint128 sum = 0;
  for (std::size_t i = kOddParts.size(); i-- > 0;) sum = HighProduct(square, kOddParts[i] + sum);
  return {negative, z + HighProduct(z, sum), shift};
}

Parts PartsOf(SoftWide x) {
  x = x.Normal();
  Parts parts{};
  parts.power = x.exponent() - SoftWide::kBias;
  Uint128 m = Uint128{x.significand()} << 1;  // counts in 2^-64
  if (x.significand() > 0xb500000000000000U) {
    m >>= 1;
    ++parts.power;
  }
  parts.step = static_cast<int>((m + (Uint128{1} << 57)) >> 58);
  const Uint128 c = static_cast<Uint128>(parts.step) << 58;
  parts.atanh = Atanh(static_cast<Int128>(m) - static_cast<Int128>(c), m + c);
  return parts;
}

// ln c + 2 atanh z
Int128 FixedLog(const Parts& parts) {
  const int shift = parts.atanh.shift - 1 - kScale;
  const auto twice = static_cast<Int128>(shift > 127 ? 0 : parts.atanh.value >> shift);
  return kLogs[static_cast<std::size_t>(parts.step - kFirst)] +
         (parts.atanh.negative ? -twice : twice);
}

SoftWide FromFixed(Int128 value, int scale) {
  if (value == 0) return 0;
  return SoftWide::Rounded(value < 0, SoftWide::kBias + 127 - scale,
                           static_cast<Uint128>(value < 0 ? -value : value));
}

// Near 1 the logarithm is as small as the arctangent, which is known relative to itself.
bool IsNearOne(const Parts& parts) { return parts.power == 0 && parts.step == kSteps; }

SoftWide FromFraction(const Fraction& fraction) {
  if (fraction.value == 0) return 0;
  return SoftWide::Rounded(fraction.negative, SoftWide::kBias + 127 - fraction.shift,
                           fraction.value);
}

// The logarithms of what is no positive number.
bool HasLog(SoftWide x) { return x.IsFinite() && !x.negative() && x.significand() != 0; }
SoftWide LogOfOther(SoftWide x) {
  if (x.IsNan()) return x + x;
  if (x.significand() == 0) return SoftWide::Infinity(true);
  return x.negative() ? SoftWide::Indefinite() : x;
}

}  // namespace

SoftWide Log(SoftWide x) {
  if (!HasLog(x)) return LogOfOther(x);
  const Parts parts = PartsOf(x);
  if (IsNearOne(parts)) {
    return FromFraction({parts.atanh.negative, parts.atanh.value, parts.atanh.shift - 1});
  }
  return FromFixed(parts.power * kLn2 + FixedLog(parts), kScale);
}

SoftWide Log2(SoftWide x) {
  if (!HasLog(x)) return LogOfOther(x);
  const Parts parts = PartsOf(x);
  if (IsNearOne(parts)) {
    // 2 atanh z / ln 2
    return FromFraction(
        {parts.atanh.negative, HighProduct(parts.atanh.value, kHalfPerLn2), parts.atanh.shift - 2});
  }
  const Int128 log = FixedLog(parts);
  const auto magnitude = static_cast<Uint128>(log < 0 ? -log : log);
  const auto binary = static_cast<Int128>(2 * HighProduct(magnitude, kHalfPerLn2));
  return FromFixed((Int128{parts.power} << kScale) + (log < 0 ? -binary : binary), kScale);
}

}  // namespace molva
