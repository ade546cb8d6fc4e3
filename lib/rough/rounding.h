// SPDX-License-Identifier: MIT
//
// The constants of every bound on rough arithmetic, under names. docs/exactness.md derives them,
// and tests/exactness checks each derivation in rational numbers.
#pragma once

namespace molva {

// The most that one operation rounds, relative to its result: half the distance from 1 to the next
// number, in single, double and the full arithmetic.
constexpr double kUnitSingle = 0x1p-24;
constexpr double kUnitDouble = 0x1p-53;
constexpr double kUnitWide = 0x1p-64;

// More than what is lost where numbers of single precision vanish: 2^-149 is the least of them.
constexpr double kVanishing = 0x1p-140;

// Lengths beyond this, and rows of more entries, are left to the full arithmetic: nothing overflows
// on the way, and the second order of a sum's rounding stays below an eighth of the first.
constexpr double kLongest = 0x1p60;
constexpr int kMostEntries = 1 << 20;

// Lemma 1: a sum of n products in single precision, in any order, is off by (n + kExtraEntries)
// kProductError of the sum of their magnitudes.
constexpr int kExtraEntries = 8;
constexpr double kProductError = 1.125 * kUnitSingle;

// Lemma 2: the full arithmetic is off by (n + kExtraEntries) kWidePerEntry (|D| + |d|)^2 when it
// adds a row's change to a squared length.
constexpr double kWidePerEntry = 4 * kUnitWide;

// Lemma 3: what single precision rounds of a squared length that is stored, and of a composite that
// a row joins or leaves, relative to each.
constexpr double kStoredSquare = 2 * kUnitSingle;
constexpr double kCompositeRounding = 2 * kUnitSingle;

// Lemma 4: what a handful of operations in double and full arithmetic lose together, relative to
// the sum of the magnitudes that enter: room for 128 roundings in double.
constexpr double kSlack = 128 * kUnitDouble;

// Lemma 5: d.G is kept in single precision, formed in double; the full arithmetic rounds it as
// well, which for many entries is more than kExtraEntries of the roundings in double.
constexpr double kStoredWhole = 2 * kUnitSingle;
constexpr double kWholePerEntry = 2 * kUnitDouble;

// Lemma 8: the sum of a row's squares as it is kept, rounded up.
constexpr double kKeptSquare = 4 * kUnitSingle;

// Lemma 9: a squared length with a row, formed in double: off by (n + kExtraEntries) of this, of
// (|D| + |d|)^2.
constexpr double kDoubleSquare = 4 * kUnitDouble;

// Lemma 10: a sum of n squares in double: off by (n + kExtraEntries) of this, of the sum.
constexpr double kSumOfSquares = 2 * kUnitDouble;

// Lemma 11: what the gain of a merge is off in double, of the magnitudes of its three terms, where
// the summands of the merged squared length are at most so many times their sum.
constexpr double kMergeError = 64 * kUnitDouble;
constexpr double kMostCancellation = 16;

// A sum that is never below the true one, however many terms come: none may be negative.
inline double RoundedUpSum(double sum, double term) { return (sum + term) * (1 + 4 * kUnitDouble); }

// All that a number can be: it lies between the two ends, or the two are not numbers.
struct Interval {
  double least;
  double most;

  static Interval Around(double value, double error) { return {value - error, value + error}; }
};

}  // namespace molva
