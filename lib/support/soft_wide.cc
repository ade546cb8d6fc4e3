// SPDX-License-Identifier: MIT
//
// Roots. An estimate is brought to the nearest number by looking at squares or fourth powers, which
// are formed exactly.
#include "lib/support/soft_wide.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace molva {
namespace {

// floor(sqrt(square)) of a number of 127 or 128 bits.
std::uint64_t FloorOfRoot(Uint128 square) {
  const auto high = static_cast<double>(static_cast<std::uint64_t>(square >> 64));
  // Of 53 bits at least 51 are right, and one step of Newton's doubles them.
  const double estimate = std::min(std::sqrt(high) * 0x1p32, 0x1.fffffffffffffp63);
  auto root = static_cast<std::uint64_t>(estimate);
  // What is left has at most 80 bits and any sign; those below the 17th do not matter here.
  const auto rest = static_cast<std::int64_t>((square - Uint128{root} * root) >> 17);
  const auto step =
      static_cast<std::int64_t>(std::floor(static_cast<double>(rest) * 0x1p16 / estimate));
  const std::uint64_t most = ~std::uint64_t{0};
  root = step > 0 && root > most - static_cast<std::uint64_t>(step)
             ? most
             : root + static_cast<std::uint64_t>(step);
  while (Uint128{root} * root > square) --root;
  while (square - Uint128{root} * root > 2 * Uint128{root}) ++root;
  return root;
}

// Whole numbers below 2^288, the lowest 32 bits first.
using Limbs = std::array<std::uint32_t, 9>;

Limbs LimbsOf(Uint128 number, int shift) {
  Limbs limbs{};
  for (int bit = 0; bit < 128; ++bit) {
    const auto at = static_cast<std::size_t>(bit + shift);
    if ((number >> bit & 1) != 0) limbs[at / 32] |= std::uint32_t{1} << at % 32;
  }
  return limbs;
}

Limbs SquareOf(const Limbs& a) {
  Limbs square{};
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::uint64_t carry = 0;
    for (std::size_t j = 0; i + j < a.size(); ++j) {
      carry += std::uint64_t{a[i]} * a[j] + square[i + j];
      square[i + j] = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
  }
  return square;
}

bool IsLess(const Limbs& a, const Limbs& b) {
  return std::lexicographical_compare(a.rbegin(), a.rend(), b.rbegin(), b.rend());
}

Limbs FourthPower(Uint128 number) { return SquareOf(SquareOf(LimbsOf(number, 0))); }

}  // namespace

SoftWide Sqrt(SoftWide x) {
  if (x.IsNan() || x.significand() == 0) return x + x;
  if (x.negative()) return SoftWide::Indefinite();
  if (!x.IsFinite()) return x;
  x = x.Normal();
  const int power = x.exponent() - SoftWide::kBias;
  const bool odd = power % 2 != 0;
  const Uint128 square = Uint128{x.significand()} << (odd ? 64 : 63);
  const std::uint64_t root = FloorOfRoot(square);
  // Nothing lies midway: (root + 1/2)^2 is no whole number.
  const Uint128 rest = square - Uint128{root} * root;
  const Uint128 below = rest > root ? ~std::uint64_t{0} : std::uint64_t{rest != 0};
  return SoftWide::Rounded(false, SoftWide::kBias + (power - (odd ? 1 : 0)) / 2,
                           Uint128{root} << 64 | below);
}

// With x brought to 252 to 256 bits, the root has 64, or is 2^64. Two successive square roots are
// off by less than two of its units; the nearest number is the one whose neighbours' midpoints,
// halves of odd numbers, lie on either side. None is hit: its fourth power is no whole number.
SoftWide FourthRoot(SoftWide x) {
  if (x.IsNan()) return x + x;
  if (x.significand() == 0 || !x.IsFinite()) return Fabs(x);
  if (x.negative()) return SoftWide::Indefinite();
  const SoftWide estimate = Sqrt(Sqrt(x));
  x = x.Normal();
  const int power = x.exponent() - SoftWide::kBias;
  const int whole = power >= 0 ? power / 4 : -((3 - power) / 4);
  const Limbs sixteen_times = LimbsOf(x.significand(), 189 + 4 + power - 4 * whole);
  Uint128 root = estimate.significand();
  root <<= estimate.exponent() - SoftWide::kBias - whole;
  while (IsLess(sixteen_times, FourthPower(2 * root - 1))) --root;
  while (IsLess(FourthPower(2 * root + 1), sixteen_times)) ++root;
  return SoftWide::Rounded(false, SoftWide::kBias + whole + 1, root << 63);
}

}  // namespace molva
