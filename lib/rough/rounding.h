// SPDX-License-Identifier: MIT
//
// The constants of every bound on rough arithmetic, under names. docs/exactness.md derives them.
#pragma once

namespace molva {

// The most that one operation rounds, relative to its result: half the distance from 1 to the next
// number, in single, double and the full arithmetic.
constexpr double kUnitSingle = 0x1p-24;
constexpr double kUnitDouble = 0x1p-53;
constexpr double kUnitWide = 0x1p-64;

// What a handful of operations in double and full arithmetic lose together, relative to the sum of
// the magnitudes that enter: room for 128 roundings in double.
constexpr double kSlack = 128 * kUnitDouble;

// Sums over n entries of a row are bounded as if n + kExtraEntries roundings fell together.
constexpr int kExtraEntries = 8;

// A sum of n products in single precision rounds by n kUnitSingle of the sum of their magnitudes,
// up to a second order that stays below an eighth for so many.
constexpr double kSumRoom = 1.125;
constexpr int kMostEntries = 1 << 20;

// The full arithmetic rounds 2c + v, its product with v and the sum: three times an entry, and once
// more for each entry's square when a row is small beside its cluster.
constexpr double kWidePerEntry = 4 * kUnitWide;

// More than what is lost where single precision numbers vanish: 2^-149 is the least of them.
constexpr double kVanishing = 0x1p-140;

// Lengths beyond this are left to the full arithmetic, so that nothing overflows on the way.
constexpr double kLongest = 0x1p60;

// A sum that is never below the true one, however many terms come: none may be negative.
inline double RoundedUpSum(double sum, double term) { return (sum + term) * (1 + 4 * kUnitDouble); }

// All that a number can be: it lies between the two ends, or the two are not numbers.
struct Interval {
  double least;
  double most;

  static Interval Around(double value, double error) { return {value - error, value + error}; }
};

}  // namespace molva
