// SPDX-License-Identifier: MIT
#include "lib/matrix/vector_model.h"

#include <gtest/gtest.h>

#include <cmath>

#include "lib/matrix/prepare.h"
#include "lib/support/wide.h"
#include "tests/testing/fatal.h"
#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::PreparedOf;
using testing_support::SparseMatrix;

// One row with every value stored, zeros included.
Owned<PreparedMatrix> OneRow(const std::vector<float>& values) {
  SparseMatrix matrix;
  matrix.nrows = 1;
  matrix.ncols = static_cast<int>(values.size());
  for (int j = 0; j < matrix.ncols; ++j) matrix.rowind.push_back(j);
  matrix.rowval = values;
  matrix.rowptr.push_back(matrix.ncols);
  Owned<PreparedMatrix> mat = CreateMatrix();
  SetUpMatrix({}, *mat, matrix.raw());
  return mat;
}

std::vector<float> Values(const PreparedMatrix& mat) {
  return {mat.rowval.begin(), mat.rowval.end()};
}

std::vector<float> Scaled(const std::vector<float>& values, int rowmodel) {
  const Owned<PreparedMatrix> mat = OneRow(values);
  ApplyRowModel({.rowmodel = rowmodel}, *mat);
  return Values(*mat);
}

TEST(RowModel, NoneLeavesTheRowAsItIs) {
  EXPECT_EQ(Scaled({2, -4, 0}, MOLVA_ROW_NONE), (std::vector<float>{2, -4, 0}));
}

TEST(RowModel, MaxTfDividesByTheLargestMagnitude) {
  EXPECT_EQ(Scaled({2, 4, 1}, MOLVA_ROW_MAXTF), (std::vector<float>{0.75F, 1, 0.625F}));
}

TEST(RowModel, MaxTfTurnsTheLargestNegativeEntryIntoZeroAndAStoredZeroIntoAHalf) {
  EXPECT_EQ(Scaled({2, -4, 0}, MOLVA_ROW_MAXTF), (std::vector<float>{0.75F, 0, 0.5F}));
}

TEST(RowModel, MaxTfOfStoredZerosIsNotANumber) {
  for (const float v : Scaled({0, 0}, MOLVA_ROW_MAXTF)) EXPECT_TRUE(std::isnan(v));
}

TEST(RowModel, SqrtKeepsTheSignAndSkipsZeros) {
  EXPECT_EQ(Scaled({4, -9, 0}, MOLVA_ROW_SQRT), (std::vector<float>{3, -2, 0}));
}

TEST(RowModel, LogIsBaseTwoAndSkipsZeros) {
  EXPECT_EQ(Scaled({8, 1, 0.25F, 0}, MOLVA_ROW_LOG), (std::vector<float>{4, 1, -1, 0}));
}

TEST(RowModel, LogOfANegativeEntryIsNotANumber) {
  EXPECT_TRUE(std::isnan(Scaled({-2, 1}, MOLVA_ROW_LOG)[0]));
}

TEST(RowModel, EndsTheRunOnAnUnknownCode) {
  EXPECT_FATAL(Scaled({1}, 0), "Unknown RowModel value of 0\n");
  EXPECT_FATAL(Scaled({1}, 5), "Unknown RowModel value of 5\n");
}

TEST(ColumnModel, IdfMultipliesByTheLogarithmOfTheInverseShareOfRows) {
  // Column 0 is stored in 2 of 4 rows, column 1 in 1 of 4.
  const auto mat = PreparedOf({{3, 0}, {1, 0}, {0, 5}, {0, 0}});
  ComputeScaleFactors({.colmodel = MOLVA_COL_IDF}, *mat);
  const auto ln2 = static_cast<float>(Log(Wide{2}));
  const auto ln4 = static_cast<float>(Log(Wide{4}));
  EXPECT_EQ(Values(*mat), (std::vector<float>{3 * ln2, ln2, 5 * ln4}));
}

TEST(ColumnModel, IdfGivesAColumnOfEveryRowTheWeightMinusZero) {
  const auto mat = PreparedOf({{3, 0}, {1, 2}});
  ComputeScaleFactors({.colmodel = MOLVA_COL_IDF}, *mat);
  EXPECT_EQ(mat->rowval[0], 0);
  EXPECT_TRUE(std::signbit(mat->rowval[0]));
}

TEST(ColumnModel, IdfCountsAStoredZero) {
  SparseMatrix matrix;
  matrix.nrows = 2;
  matrix.ncols = 2;
  matrix.rowptr = {0, 1, 2};
  matrix.rowind = {0, 0};
  matrix.rowval = {0, 7};
  const auto mat = CreateMatrix();
  SetUpMatrix({}, *mat, matrix.raw());
  ComputeScaleFactors({.colmodel = MOLVA_COL_IDF}, *mat);
  EXPECT_EQ(mat->rowval[1], 0);
}

TEST(ColumnModel, IdfEndsTheRunWhenEveryEntryIsStored) {
  const auto mat = PreparedOf({{1, 2}, {3, 4}});
  EXPECT_FATAL(ComputeScaleFactors({.colmodel = MOLVA_COL_IDF}, *mat),
               "IDF column model only applies to sparse matrices and non-correlation-coefficient "
               "similarities!\n");
}

TEST(ColumnModel, EndsTheRunOnAnUnknownCode) {
  const auto mat = PreparedOf({{1, 0}});
  EXPECT_FATAL(ComputeScaleFactors({.colmodel = 3}, *mat), "Unknown ColModel value of 3\n");
}

TEST(Normalisation, CosineMakesUnitRows) {
  const auto mat = PreparedOf({{3, 4}, {0, 2}});
  NormalizeRows({.simfun = MOLVA_SIM_COSINE}, *mat);
  EXPECT_EQ(Values(*mat), (std::vector<float>{0.6F, 0.8F, 1}));
}

TEST(Normalisation, ScalesByTheInverseLengthRoundedToSinglePrecision) {
  const auto mat = PreparedOf({{1, 1, 1}});
  NormalizeRows({.simfun = MOLVA_SIM_COSINE}, *mat);
  EXPECT_EQ(mat->rowval[0], static_cast<float>(1 / Sqrt(Wide{3})));
}

// 3 times the rounded scale is another float than 3 / sqrt(10).
TEST(Normalisation, RoundsTheScaleBeforeItIsUsed) {
  const auto mat = PreparedOf({{3, 1}});
  NormalizeRows({.simfun = MOLVA_SIM_COSINE}, *mat);
  const auto scale = static_cast<float>(1 / std::sqrt(10.0L));
  EXPECT_EQ(Values(*mat), (std::vector<float>{3 * scale, scale}));
  EXPECT_NE(3 * scale, static_cast<float>(3 / std::sqrt(10.0L)));
}

TEST(Normalisation, LeavesAZeroRowAsItIs) {
  const auto mat = OneRow({0, 0});
  NormalizeRows({.simfun = MOLVA_SIM_COSINE}, *mat);
  EXPECT_EQ(Values(*mat), (std::vector<float>{0, 0}));
}

TEST(Normalisation, CorrelationSubtractsTheMeanOverAllColumnsFirst) {
  const auto mat = OneRow({1, 2, 3});
  NormalizeRows({.simfun = MOLVA_SIM_CORRELATION}, *mat);
  const auto root_half = static_cast<float>(1 / Sqrt(Wide{2}));
  EXPECT_EQ(Values(*mat), (std::vector<float>{-root_half, 0, root_half}));
}

TEST(Normalisation, CorrelationDividesTheMeanByTheColumnsNotByTheStoredEntries) {
  // Stored 4 and 8 of four columns: mean 3, so 1 and 5 are scaled to unit length.
  const auto mat = PreparedOf({{4, 8, 0, 0}});
  NormalizeRows({.simfun = MOLVA_SIM_CORRELATION}, *mat);
  const auto scale = static_cast<float>(1 / Sqrt(Wide{26}));
  EXPECT_EQ(Values(*mat), (std::vector<float>{scale, 5 * scale}));
}

TEST(Normalisation, EndsTheRunOnAnUnknownCode) {
  const auto mat = PreparedOf({{1, 0}});
  EXPECT_FATAL(NormalizeRows({.simfun = 3}, *mat), "Unknown similarity function: 3\n");
}

}  // namespace
}  // namespace molva
