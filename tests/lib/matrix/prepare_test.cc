// SPDX-License-Identifier: MIT
#include "lib/matrix/prepare.h"

#include <gtest/gtest.h>

#include <vector>

#include "lib/molva.h"
#include "tests/testing/allocation.h"
#include "tests/testing/fatal.h"
#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::SparseMatrix;
using testing_support::SparseOf;

Owned<PreparedMatrix> MatrixOf(const SparseMatrix& matrix, int simfun = MOLVA_SIM_COSINE) {
  Owned<PreparedMatrix> mat = CreateMatrix();
  SetUpMatrix({.simfun = simfun}, *mat, matrix.raw());
  return mat;
}

template <typename T>
std::vector<T> VectorOf(const Array<T>& array) {
  return {array.begin(), array.end()};
}

TEST(MatrixSetUp, CopiesSparseRowsAsTheyAre) {
  const SparseMatrix matrix = SparseOf({{0, 2, 0}, {0, 0, 0}, {3, 0, 4}});
  const auto mat = MatrixOf(matrix);
  EXPECT_EQ(VectorOf(mat->rowptr), matrix.rowptr);
  EXPECT_EQ(VectorOf(mat->rowind), matrix.rowind);
  EXPECT_EQ(VectorOf(mat->rowval), matrix.rowval);
  EXPECT_EQ(mat->sparse, 1);
}

TEST(MatrixSetUp, CountsASparseFileWithEveryEntryStoredAsDense) {
  EXPECT_EQ(MatrixOf(SparseOf({{1, 2}, {3, 4}}))->sparse, 0);
}

TEST(MatrixSetUp, ExpandsSparseRowsForTheCorrelationCoefficient) {
  const auto mat = MatrixOf(SparseOf({{0, 2, 0}, {3, 0, 4}}), MOLVA_SIM_CORRELATION);
  EXPECT_EQ(VectorOf(mat->rowptr), (std::vector<int>{0, 3, 6}));
  EXPECT_EQ(VectorOf(mat->rowind), (std::vector<int>{0, 1, 2, 0, 1, 2}));
  EXPECT_EQ(VectorOf(mat->rowval), (std::vector<float>{0, 2, 0, 3, 0, 4}));
  EXPECT_EQ(mat->sparse, 0);
}

TEST(MatrixSetUp, KeepsTheLastValueOfAColumnStoredTwiceWhenItExpands) {
  SparseMatrix matrix;
  matrix.nrows = 1;
  matrix.ncols = 3;
  matrix.rowptr = {0, 2};
  matrix.rowind = {1, 1};
  matrix.rowval = {5, 7};
  EXPECT_EQ(VectorOf(MatrixOf(matrix, MOLVA_SIM_CORRELATION)->rowval),
            (std::vector<float>{0, 7, 0}));
  EXPECT_EQ(VectorOf(MatrixOf(matrix, MOLVA_SIM_COSINE)->rowval), (std::vector<float>{5, 7}));
}

TEST(MatrixSetUp, BuildsTheFullIndexForDenseInput) {
  const std::vector<float> values = {1, 0, 2, 3, 0, 4};
  const auto mat = CreateMatrix();
  SetUpMatrix({}, *mat, {2, 3, nullptr, nullptr, values.data()});
  EXPECT_EQ(VectorOf(mat->rowptr), (std::vector<int>{0, 3, 6}));
  EXPECT_EQ(VectorOf(mat->rowind), (std::vector<int>{0, 1, 2, 0, 1, 2}));
  EXPECT_EQ(VectorOf(mat->rowval), values);
  EXPECT_EQ(mat->sparse, 0);
}

TEST(MatrixSetUp, EndsTheRunOnAnUnknownSimilarityOfSparseInput) {
  EXPECT_FATAL(MatrixOf(SparseOf({{1, 0}}), 3), "Unknown similarity function: 3\n");
}

TEST(MatrixSetUp, EndsTheRunOnAColumnOutsideTheMatrix) {
  SparseMatrix matrix = SparseOf({{1, 0, 0}, {0, 2, 0}});
  matrix.rowind[1] = -1;
  EXPECT_FATAL(MatrixOf(matrix),
               "Column number is outside the matrix! Ncols=3, ColNum=-1, Row=1\n");
  matrix.rowind[1] = 3;
  EXPECT_FATAL(MatrixOf(matrix), "Column number is outside the matrix! Ncols=3, ColNum=3, Row=1\n");
}

TEST(MatrixSetUp, EndsTheRunOnRowStartsThatDoNotGrowFromZero) {
  SparseMatrix matrix = SparseOf({{1, 0, 0}, {0, 2, 0}});
  matrix.rowptr = {0, 2, 1};
  EXPECT_FATAL(MatrixOf(matrix), "Row starts must not decrease! Row=1, Start=2, Next=1\n");
  matrix.rowptr = {1, 1, 2};
  EXPECT_FATAL(MatrixOf(matrix), "Row starts must begin with 0! Start=1\n");
}

TEST(MatrixSetUp, EndsTheRunBeforeItStoresMoreCellsThanAnIntCanNumber) {
  // 46341 squared is just above 2^31 - 1.
  SparseMatrix matrix;
  matrix.nrows = 46341;
  matrix.ncols = 46341;
  matrix.rowptr.assign(46342, 0);
  EXPECT_FATAL(MatrixOf(matrix, MOLVA_SIM_CORRELATION),
               "A matrix of 46341 rows and 46341 columns has more cells than 2147483647, the most "
               "that can be stored in full!\n");
}

TEST(MatrixSetUp, TakesNegativeCountsAsNone) {
  const auto mat = CreateMatrix();
  SetUpMatrix({}, *mat, {-3, -4, nullptr, nullptr, nullptr});
  EXPECT_EQ(mat->nrows, 0);
  EXPECT_EQ(mat->ncols, 0);
}

TEST(Preparation, ScalesPrunesAndNormalisesAgain) {
  // Column 2 occurs once and is dropped; the second row then is a unit vector again.
  const SparseMatrix matrix = SparseOf({{3, 4, 0}, {3, 0, 4}, {0, 4, 0}});
  const PreparedCopy copy = MakePreparedCopy({}, matrix.raw(), "Test");
  EXPECT_EQ(copy.mat->ncols, 2);
  EXPECT_EQ(std::vector<int>(copy.cperm.begin(), copy.cperm.begin() + 2), (std::vector<int>{0, 1}));
  EXPECT_EQ(Row(*copy.mat, 0).values[0], 0.6F);
  EXPECT_EQ(Row(*copy.mat, 1).values[0], 1.0F);
}

TEST(Preparation, DropsRowsWithoutEntriesAndMapsTheOthersBack) {
  // Row 1 is empty, row 3 becomes so when its column, which occurs once, is dropped.
  const SparseMatrix matrix = SparseOf({{1, 1, 0}, {0, 0, 0}, {1, 1, 0}, {0, 0, 5}, {0, 1, 0}});
  PreparedCopy copy = MakePreparedCopy({}, matrix.raw(), "Test");
  ASSERT_EQ(copy.mat->nrows, 3);
  EXPECT_EQ(std::vector<int>(copy.rperm.begin(), copy.rperm.begin() + 3),
            (std::vector<int>{0, 2, 4}));
  EXPECT_EQ(VectorOf(copy.mat->rowptr)[3], 5);

  const std::vector<int> part = {10, 11, 12, 13, 14};
  MapPartIn(copy, part);
  EXPECT_EQ(std::vector<int>(copy.part().begin(), copy.part().end()),
            (std::vector<int>{10, 12, 14}));
  std::vector<int> back(5);
  MapPartOut(copy, back);
  EXPECT_EQ(back, (std::vector<int>{10, -1, 12, -1, 14}));
}

TEST(Preparation, CountsIdfOverAllRowsBeforeEmptyOnesAreDropped) {
  // Column 0 stands in 2 of 4 rows, column 1 in 2 of 4: equal weights keep 3 : 4.
  const SparseMatrix matrix = SparseOf({{3, 4}, {1, 0}, {0, 1}, {0, 0}});
  const PreparedCopy copy = MakePreparedCopy({.colmodel = MOLVA_COL_IDF}, matrix.raw(), "Test");
  ASSERT_EQ(copy.mat->nrows, 3);
  EXPECT_FLOAT_EQ(Row(*copy.mat, 0).values[0], 0.6F);
}

TEST(Preparation, NeverPrunesADenseMatrix) {
  const std::vector<float> values = {1, 0, 0, 0, 1, 0};
  const PreparedCopy copy = MakePreparedCopy({}, {2, 3, nullptr, nullptr, values.data()}, "Test");
  EXPECT_EQ(copy.mat->ncols, 3);
  EXPECT_EQ(VectorOf(copy.cperm), (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(VectorOf(copy.rperm), (std::vector<int>{0, 1}));
}

TEST(Preparation, NamesItsBlocksAfterTheRoutine) {
  const SparseMatrix matrix = SparseOf({{1, 0}, {1, 1}});
  const std::vector<std::string> names = {"Test: rperm",
                                          "Test: cperm",
                                          "Test: ppart",
                                          "CreateMatrix: mat",
                                          "SetUpMatrix: mat->rowptr",
                                          "SetUpMatrix: mat->rowind",
                                          "SetUpMatrix: mat->rowval",
                                          "ComputeScaleFactors: collen",
                                          "ComputeScaleFactors: vscale",
                                          "SimilarityBasedFeatureSelection: rmvec",
                                          "SimilarityBasedFeatureSelection: center",
                                          "SimilarityBasedFeatureSelection: fcand",
                                          "EliminateColumns: cmap"};
  EXPECT_EQ(testing_support::BlockNames(
                [&] { MakePreparedCopy({.colmodel = MOLVA_COL_IDF}, matrix.raw(), "Test"); }),
            names);
}

// What MOLVA_InternalizeMatrix hands out, copied, and its arrays given back. The maps hold 99 where
// nothing is written.
struct Internal {
  explicit Internal(const SparseMatrix& m, int colmodel = MOLVA_COL_NONE)
      : rperm(static_cast<std::size_t>(m.nrows), 99), cperm(static_cast<std::size_t>(m.ncols), 99) {
    int* starts = nullptr;
    int* columns = nullptr;
    float* entries = nullptr;
    MOLVA_InternalizeMatrix(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                            MOLVA_SIM_COSINE, MOLVA_ROW_NONE, colmodel, 1.0F, &nrows, &ncols,
                            &starts, &columns, &entries, rperm.data(), cperm.data());
    rowptr.assign(starts, starts + nrows + 1);
    rowind.assign(columns, columns + rowptr.back());
    rowval.assign(entries, entries + rowptr.back());
    MOLVA_Free(starts);
    MOLVA_Free(columns);
    MOLVA_Free(entries);
  }

  int nrows = 0, ncols = 0;
  std::vector<int> rowptr, rowind;
  std::vector<float> rowval;
  std::vector<int> rperm, cperm;
};

// Columns 0 and 3 occur once and are dropped, row 1 is left empty.
TEST(InternalizeMatrix, HandsOutThePreparedMatrixAndItsMaps) {
  const Internal m(SparseOf({{0, 3, 4, 0}, {0, 0, 0, 5}, {9, 8, 0, 0}, {0, 0, 2, 0}}));
  EXPECT_EQ(m.nrows, 3);
  EXPECT_EQ(m.ncols, 2);
  EXPECT_EQ(m.rowptr, (std::vector<int>{0, 2, 3, 4}));
  EXPECT_EQ(m.rowind, (std::vector<int>{0, 1, 0, 1}));
  EXPECT_EQ(m.rowval, (std::vector<float>{0.6F, 0.8F, 1, 1}));
  EXPECT_EQ(m.rperm, (std::vector<int>{0, 2, 3, 99}));
  EXPECT_EQ(m.cperm, (std::vector<int>{1, 2, 99, 99}));
}

TEST(InternalizeMatrix, PreparesAsTheOtherEntryPointsDo) {
  const SparseMatrix matrix = testing_support::RandomDocuments(4, 30, 40, 3, 6);
  const Internal m(matrix, MOLVA_COL_IDF);
  const auto mat = testing_support::Prepared(matrix, {.colmodel = MOLVA_COL_IDF});
  EXPECT_EQ(m.rowptr, VectorOf(mat->rowptr));
  EXPECT_EQ(m.rowind,
            std::vector<int>(mat->rowind.begin(), mat->rowind.begin() + EntryCount(*mat)));
  EXPECT_EQ(m.rowval,
            std::vector<float>(mat->rowval.begin(), mat->rowval.begin() + EntryCount(*mat)));
}

TEST(InternalizeMatrix, FillsUpADenseMatrix) {
  const std::vector<float> values = {3, 4, 0, 2};
  int nrows = 0, ncols = 0;
  int* rowptr = nullptr;
  int* rowind = nullptr;
  float* rowval = nullptr;
  std::vector<int> rperm(2), cperm(2);
  MOLVA_InternalizeMatrix(2, 2, nullptr, nullptr, values.data(), MOLVA_SIM_COSINE, MOLVA_ROW_NONE,
                          MOLVA_COL_NONE, 1.0F, &nrows, &ncols, &rowptr, &rowind, &rowval,
                          rperm.data(), cperm.data());
  EXPECT_EQ(std::vector<int>(rowptr, rowptr + 3), (std::vector<int>{0, 2, 4}));
  EXPECT_EQ(std::vector<float>(rowval, rowval + 4), (std::vector<float>{0.6F, 0.8F, 0, 1}));
  EXPECT_EQ(rperm, (std::vector<int>{0, 1}));
  for (void* array :
       {static_cast<void*>(rowptr), static_cast<void*>(rowind), static_cast<void*>(rowval)}) {
    MOLVA_Free(array);
  }
}

TEST(InternalizeMatrix, NamesItsBlocks) {
  const SparseMatrix matrix = SparseOf({{1, 0}, {1, 1}});
  const std::vector<std::string> names =
      testing_support::BlockNames([&] { const Internal m(matrix); });
  EXPECT_EQ(std::vector<std::string>(names.begin(), names.begin() + 3),
            (std::vector<std::string>{"MOLVA_InternalizeMatrix: rperm",
                                      "MOLVA_InternalizeMatrix: cperm", "CreateMatrix: mat"}));
}

TEST(MolvaFree, IgnoresNull) { MOLVA_Free(nullptr); }

}  // namespace
}  // namespace molva
