// SPDX-License-Identifier: MIT
#include "programs/io/matrix.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/testing/allocation.h"
#include "tests/testing/fatal.h"

namespace {

using mardle::Matrix;

void ExpectEmpty(const Matrix& mat) {
  EXPECT_EQ(mat.nrows, -1);
  EXPECT_EQ(mat.ncols, -1);
  EXPECT_EQ(mat.nclasses, -1);
  EXPECT_FALSE(mat.rowptr);
  EXPECT_FALSE(mat.rowind);
  EXPECT_FALSE(mat.rowval);
  EXPECT_FALSE(mat.rclasses);
  EXPECT_FALSE(mat.clabels);
  EXPECT_FALSE(mat.rlabels);
  EXPECT_FALSE(mat.classes);
  EXPECT_FALSE(mat.classnames);
}

// Every field in use.
Matrix FilledMatrix() {
  Matrix mat;
  mat.nrows = 2;
  mat.ncols = 3;
  mat.nclasses = 1;
  mat.rowptr = molva::AllocIntsSet(3, 0, "rowptr");
  mat.rowptr[2] = 5;
  mat.rowind = molva::AllocIntsSet(5, 0, "rowind");
  mat.rowval = molva::AllocFloatsSet(5, 1, "rowval");
  mat.rclasses = molva::Strings(2, "rclasses");
  mat.clabels = molva::Strings(3, "clabels");
  mat.rlabels = molva::Strings(2, "rlabels");
  mat.rlabels.Set(0, "first");
  mat.classes = molva::AllocIntsSet(2, 0, "classes");
  mat.classnames = molva::Strings(1, "classnames");
  return mat;
}

TEST(Matrix, IsEmptyWhenCreated) { ExpectEmpty(*mardle::CreateMatrix()); }

TEST(Matrix, NamesItsBlockWhenItCannotBeHad) {
  EXPECT_FATAL(
      {
        const testing_support::FailingAllocations failing(0);
        mardle::CreateMatrix();
      },
      "***Memory allocation failed for CreateMatrix: mat. Requested size: " +
          std::to_string(sizeof(Matrix)) + " bytes");
}

TEST(InitMatrix, MakesARecordInUseEmptyAgain) {
  Matrix mat = FilledMatrix();
  mardle::InitMatrix(mat);
  ExpectEmpty(mat);
}

TEST(FreeMatrix, ReleasesTheArraysAndKeepsLabelsAndClasses) {
  Matrix mat = FilledMatrix();
  mardle::FreeMatrix(mat);
  EXPECT_FALSE(mat.rowptr);
  EXPECT_FALSE(mat.rowind);
  EXPECT_FALSE(mat.rowval);
  EXPECT_EQ(mat.nrows, 2);
  EXPECT_TRUE(mat.rclasses);
  EXPECT_TRUE(mat.clabels);
  EXPECT_STREQ(mat.rlabels[0], "first");
  EXPECT_TRUE(mat.classes);
  EXPECT_TRUE(mat.classnames);
}

TEST(NonZeroCount, IsTheNumberOfStoredEntriesOfASparseMatrix) {
  EXPECT_EQ(mardle::NonZeroCount(FilledMatrix()), 5);
}

TEST(NonZeroCount, IsTheNumberOfCellsOfADenseMatrix) {
  Matrix mat;
  mat.nrows = 2;
  mat.ncols = 3;
  EXPECT_EQ(mardle::NonZeroCount(mat), 6);
}

TEST(NonZeroCount, HoldsMoreCellsThanAnInt) {
  Matrix mat;
  mat.nrows = 100000;
  mat.ncols = 100000;
  EXPECT_EQ(mardle::NonZeroCount(mat), 10000000000);
}

}  // namespace
