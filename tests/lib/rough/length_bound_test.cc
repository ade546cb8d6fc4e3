// SPDX-License-Identifier: MIT
#include "lib/rough/length_bound.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "lib/rough/lanes.h"
#include "lib/support/wide.h"
#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::RandomDocuments;
using testing_support::SparseMatrix;

double LengthOf(const LaneView& composite, int ncols) {
  Wide square = 0;
  for (std::size_t j = 0; j < static_cast<std::size_t>(ncols); ++j) {
    square += static_cast<Wide>(composite[j]) * composite[j];
  }
  return static_cast<double>(molva::Sqrt(square));
}

// q + sum of v (v + 2 sign c), as refinement carries it along.
float Changed(const RowView& row, const LaneView& composite, float q, int sign) {
  Wide square = q;
  for (std::size_t p = 0; p < row.size(); ++p) {
    const Wide v = row.values[p];
    square +=
        v * (v + 2 * sign * static_cast<Wide>(composite[static_cast<std::size_t>(row.columns[p])]));
  }
  return static_cast<float>(square);
}

// Rows come and go at random; the composite is never longer than the bound. Returns the bound over
// the length at the end.
double ExpectBounded(const PreparedMatrix& mat, int moves, std::uint32_t seed) {
  const RowRecords rows(mat, "Test: rows");
  Lanes lanes(1, mat.ncols, "Test: lanes");
  std::vector<bool> inside(static_cast<std::size_t>(mat.nrows));
  float q = 0;
  LengthBound bound;
  bound.Start(0);
  std::mt19937 random(seed);
  for (int move = 0; move < moves; ++move) {
    const int i = static_cast<int>(random() % static_cast<unsigned>(mat.nrows));
    const bool comes = !inside[static_cast<std::size_t>(i)];
    const RowView row = rows.Entries(rows[i]);
    q = Changed(row, lanes[0], q, comes ? 1 : -1);
    if (comes) {
      lanes.Add(row, 0);
    } else {
      lanes.Subtract(row, 0);
    }
    inside[static_cast<std::size_t>(i)] = comes;
    bound.Change(rows[i], static_cast<double>(q));
    EXPECT_LE(LengthOf(lanes[0], mat.ncols), bound.Length()) << "after move " << move;
  }
  return bound.Length() / LengthOf(lanes[0], mat.ncols);
}

TEST(LengthBound, HoldsAndStaysCloseOverManyMoves) {
  const auto mat = Prepared(RandomDocuments(1, 200, 80, 4, 7));
  EXPECT_LT(ExpectBounded(*mat, 20000, 1), 1.01);
}

TEST(LengthBound, HoldsWhereColumnsRepeatInARow) {
  SparseMatrix matrix = RandomDocuments(2, 60, 40, 3, 6);
  std::mt19937 random(2);
  for (int& j : matrix.rowind) j = static_cast<int>(random() % 4);
  ExpectBounded(*Prepared(matrix), 2000, 2);
}

TEST(LengthBound, HoldsWhereRowsCancel) {
  SparseMatrix matrix = RandomDocuments(3, 60, 8, 2, 6);
  std::mt19937 random(3);
  for (float& v : matrix.rowval) v = random() % 2 == 0 ? v : -v;
  ExpectBounded(*Prepared(matrix), 3000, 3);
}

// Values spread over thirty orders of magnitude.
TEST(LengthBound, HoldsForValuesOfAllSizes) {
  SparseMatrix matrix = RandomDocuments(4, 60, 20, 2, 6);
  std::mt19937 random(4);
  for (float& v : matrix.rowval) v *= std::ldexp(1.0F, -static_cast<int>(random() % 100));
  ExpectBounded(*testing_support::Prepared(matrix), 3000, 4);
}

TEST(LengthBound, IsNotWornOutByAHundredThousandMoves) {
  SparseMatrix matrix = RandomDocuments(5, 40, 12, 2, 5);
  std::mt19937 random(5);
  for (float& v : matrix.rowval) v = random() % 3 == 0 ? -v : v;
  ExpectBounded(*Prepared(matrix), 100000, 5);
}

// Just below the middle between two numbers of single precision, the square is stored as the lower
// one: half a unit is lost, beside a square that is just above a power of two.
TEST(LengthBound, HoldsWhereASquareIsStoredLower) {
  const auto mat = PreparedOf({{1, 0x1p-12F * (1 - 0x1p-20F)}});
  Lanes lanes(1, mat->ncols, "Test: lanes");
  lanes.Add(Row(*mat, 0), 0);
  float q[1];
  lanes.SquaredLengths(q);
  ASSERT_EQ(q[0], 1);
  LengthBound bound;
  bound.Start(1);
  EXPECT_LE(LengthOf(lanes[0], mat->ncols), bound.Length());
}

// Every value of the composite is just above 1, and each row lifts it by a little more than half a
// unit: all of it is rounded up to a whole one. Of the square, 47 and rising, each row adds 1.47
// units, of which one is stored. So the composite drifts away from the square by nearly as much as
// it can.
TEST(LengthBound, HoldsForACompositeThatDrifts) {
  constexpr std::size_t kColumns = 47;
  const std::vector<float> ones(kColumns, 1);
  const std::vector<float> lifts(kColumns, 0x1p-24F * (1 + 0x1p-20F));
  const auto mat = PreparedOf({ones, lifts});
  const RowRecords rows(*mat, "Test: rows");
  Lanes lanes(1, mat->ncols, "Test: lanes");
  lanes.Add(Row(*mat, 0), 0);
  float q = kColumns;
  LengthBound bound;
  bound.Start(kColumns);
  for (int move = 0; move < 1000; ++move) {
    q = Changed(Row(*mat, 1), lanes[0], q, 1);
    lanes.Add(Row(*mat, 1), 0);
    bound.Change(rows[1], static_cast<double>(q));
    ASSERT_LE(LengthOf(lanes[0], mat->ncols), bound.Length()) << "after move " << move;
  }
  EXPECT_EQ(lanes[0][0], 1 + 1000 * 0x1p-23F);
  EXPECT_EQ(q, kColumns + 1000 * 0x1p-18F);
}

// A row that stores one column 64 times rounds it as often, each time up by nearly half a unit.
TEST(LengthBound, HoldsWhereOneColumnIsRoundedManyTimes) {
  constexpr std::size_t kTimes = 64;
  std::vector<float> one(kTimes);
  one.front() = 1;
  const auto mat = PreparedOf({one, std::vector<float>(kTimes, 0x1p-24F * (1 + 0x1p-20F))});
  for (std::size_t p = 0; p < kTimes; ++p) mat->rowind[1 + p] = 0;
  const RowRecords rows(*mat, "Test: rows");
  ASSERT_EQ(rows[1].repeats, 1U);
  Lanes lanes(1, mat->ncols, "Test: lanes");
  lanes.Add(Row(*mat, 0), 0);
  float q = 1;
  LengthBound bound;
  bound.Start(1);
  for (int move = 0; move < 100; ++move) {
    q = Changed(Row(*mat, 1), lanes[0], q, 1);
    lanes.Add(Row(*mat, 1), 0);
    bound.Change(rows[1], static_cast<double>(q));
    ASSERT_LE(LengthOf(lanes[0], mat->ncols), bound.Length()) << "after move " << move;
  }
  EXPECT_EQ(lanes[0][0], 1 + 6400 * 0x1p-23F);
}

// Sums of 80 bits hold these without rounding.
TEST(RoundedUpSums, AreNeverBelowTheTrueOnes) {
  double sum = 0;
  std::mt19937 random(6);
  for (int i = 0; i < 100000; ++i) {
    const double term = std::ldexp(static_cast<double>(random()), -static_cast<int>(random() % 60));
    const long double exact = static_cast<long double>(sum) + term;
    sum = RoundedUpSum(sum, term);
    ASSERT_GE(sum, exact);
    if (i % 1000 == 0) sum = 0;
  }
}

}  // namespace
}  // namespace molva
