// SPDX-License-Identifier: MIT
#include "lib/rough/row_records.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::RandomDocuments;

constexpr double kClose = 1e-6;  // relative: rounded up in single precision

void ExpectJustAbove(float rounded, double exact) {
  EXPECT_GE(static_cast<double>(rounded), exact);
  EXPECT_LE(static_cast<double>(rounded), exact * (1 + kClose));
}

TEST(RowRecords, HoldTheSizesOfARow) {
  const auto mat = PreparedOf({{3, 0, -4}, {0, 1, 0}});
  const RowRecords rows(*mat, "Test: rows");
  EXPECT_EQ(rows[0].begin, 0);
  EXPECT_EQ(rows[0].size, 2U);
  EXPECT_EQ(rows[0].repeats, 0U);
  ExpectJustAbove(rows[0].square, 25);
  ExpectJustAbove(rows[0].length, 5);
  EXPECT_EQ(rows[1].begin, 2);
  ExpectJustAbove(static_cast<float>(rows.extremes().longest), 5);
  EXPECT_EQ(rows.extremes().most_entries, 2);
}

// Twice column 0: as a vector the row is (3, 4) or (7), never longer than 7.
TEST(RowRecords, TakeTheSumOfMagnitudesForTheLengthWhereAColumnRepeats) {
  auto mat = PreparedOf({{3, 4}, {3, 4}, {3, 4}});
  mat->rowind[1] = 0;                         // 0 0
  std::swap(mat->rowind[2], mat->rowind[3]);  // 1 0
  const RowRecords rows(*mat, "Test: rows");
  EXPECT_EQ(rows[0].repeats, 1U);
  ExpectJustAbove(rows[0].length, 7);
  ExpectJustAbove(rows[0].square, 25);
  EXPECT_EQ(rows[1].repeats, 0U) << "columns in any order do not repeat";
  ExpectJustAbove(rows[1].length, 5);
  EXPECT_EQ(rows[2].repeats, 0U);
}

// G = (2, 1, -1): the rows give 3*2 - 4*(-1) = 10 and 1.
TEST(RowRecords, AreMeasuredAgainstTheWholeOnce) {
  const auto mat = PreparedOf({{3, 0, -4}, {0, 1, 0}});
  RowRecords rows(*mat, "Test: rows");
  rows.MeasureAgainst(std::vector<float>{2, 1, -1});
  EXPECT_EQ(rows[0].whole, 10);
  EXPECT_EQ(rows[1].whole, 1);
  EXPECT_LE(rows.extremes().least_whole, 1);
  EXPECT_GE(rows.extremes().most_whole, 10);
  EXPECT_NEAR(rows.extremes().least_whole, 1, kClose * 20);
  rows.MeasureAgainst(std::vector<float>{0, 0, 0});
  EXPECT_EQ(rows[0].whole, 10) << "the whole is the same in every trial";
}

TEST(RowRecords, KnowHowFarTheirProductWithTheWholeCanBeOff) {
  const auto mat = Prepared(RandomDocuments(5, 80, 60, 4, 9));
  std::vector<float> whole(static_cast<std::size_t>(mat->ncols));
  for (std::size_t j = 0; j < whole.size(); ++j) whole[j] = 1.0F / static_cast<float>(j + 3);
  RowRecords rows(*mat, "Test: rows");
  rows.MeasureAgainst(whole);
  for (int i = 0; i < mat->nrows; ++i) {
    long double product = 0;
    const RowView row = Row(*mat, i);
    for (std::size_t p = 0; p < row.size(); ++p) {
      product +=
          static_cast<long double>(row.values[p]) * whole[static_cast<std::size_t>(row.columns[p])];
    }
    EXPECT_NEAR(rows[i].whole, static_cast<double>(product), rows.extremes().whole_error);
  }
}

// Whatever comes after it.
TEST(RowRecords, SayThatNothingIsKnownWhereAValueIsNotANumber) {
  auto mat = PreparedOf({{1, 2}, {3, 4}, {5, 6}});
  mat->rowval[2] = std::numeric_limits<float>::quiet_NaN();
  RowRecords rows(*mat, "Test: rows");
  EXPECT_TRUE(std::isnan(rows[1].length));
  EXPECT_TRUE(std::isnan(rows.extremes().longest));
  rows.MeasureAgainst(std::vector<float>{1, 1});
  EXPECT_TRUE(std::isnan(rows.extremes().whole_error));
}

// Sums of squares in 80 bits, whose rounding is far below what single precision rounds.
TEST(RowRecords, HoldNoSizeBelowTheTrueOne) {
  std::mt19937 random(6);
  for (int round = 0; round < 2000; ++round) {
    std::vector<float> values(1 + random() % 4);
    for (float& v : values) {
      v = std::ldexp(static_cast<float>(1 + random() % 0xffffff), -static_cast<int>(random() % 90));
    }
    const auto mat = PreparedOf({values});
    const RowRecords rows(*mat, "Test: rows");
    long double square = 0;
    for (const float v : values) square += static_cast<long double>(v) * v;
    ASSERT_GE(rows[0].square, square);
    ASSERT_GE(rows[0].length, std::sqrt(square));
    ASSERT_LE(rows[0].square, square * (1 + 4 * 0x1p-24L) + 0x1p-139L);
  }
}

// 1 + 2^-24 (1 - 2^-20), which is stored as 1: half a unit is lost, where nothing else is.
TEST(RowRecords, KnowHowFarTheirStoredProductWithTheWholeIsOff) {
  const auto mat = PreparedOf({{1, 0x1p-12F}});
  RowRecords rows(*mat, "Test: rows");
  rows.MeasureAgainst(std::vector<float>{1, 0x1p-12F * (1 - 0x1p-20F)});
  EXPECT_EQ(rows[0].whole, 1);
  EXPECT_GE(rows.extremes().whole_error, 0x1p-24 * (1 - 0x1p-20));
}

// Two large products cancel, so that nothing is stored, and a thousand that double arithmetic loses
// beside the first are all that is left.
TEST(RowRecords, KnowHowFarTheirSumWithTheWholeIsOff) {
  const float lost = std::sqrt(0x1p-53F) * (1 - 0x1p-20F);
  std::vector<float> row(1002, lost);
  std::vector<float> whole(1002, lost);
  row.front() = row.back() = 1;
  whole.front() = 1;
  whole.back() = -1;
  const auto mat = PreparedOf({row});
  RowRecords rows(*mat, "Test: rows");
  rows.MeasureAgainst(whole);
  EXPECT_EQ(rows[0].whole, 0);
  EXPECT_GE(rows.extremes().whole_error, 1000 * 0x1p-53 * 0.999);
}

}  // namespace
}  // namespace molva
