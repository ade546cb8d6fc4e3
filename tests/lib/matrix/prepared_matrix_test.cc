// SPDX-License-Identifier: MIT
#include "lib/matrix/prepared_matrix.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lib/matrix/prepare.h"
#include "tests/testing/allocation.h"
#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::BlockNames;
using testing_support::PreparedOf;
using testing_support::RandomDocuments;
using testing_support::SparseMatrix;
using Floats = std::vector<float>;
using Ints = std::vector<int>;

template <typename T>
std::vector<T> VectorOf(const Array<T>& array) {
  return {array.begin(), array.end()};
}

TEST(FreshMatrix, HasNoCountsAndNoArrays) {
  const auto mat = CreateMatrix();
  EXPECT_EQ(mat->sparse, 0);
  EXPECT_EQ(mat->nrows, -1);
  EXPECT_EQ(mat->ncols, -1);
  EXPECT_FALSE(mat->rowptr || mat->rowind || mat->rowval);
  EXPECT_FALSE(mat->colptr || mat->colind || mat->colval);
}

TEST(FreshMatrix, NamesItsBlock) {
  EXPECT_EQ(BlockNames([] { CreateMatrix(); }), (std::vector<std::string>{"CreateMatrix: mat"}));
}

TEST(FreeingAMatrix, LeavesNoRecord) {
  auto mat = PreparedOf({{1, 0}, {1, 1}});
  CreateColMat(*mat);
  FreeMatrix(mat);
  EXPECT_EQ(mat, nullptr);
}

TEST(RowOfAMatrix, ShowsItsEntriesInStoredOrder) {
  SparseMatrix backwards;
  backwards.nrows = 2;
  backwards.ncols = 4;
  backwards.rowptr = {0, 1, 3};
  backwards.rowind = {1, 3, 0};
  backwards.rowval = {5, 6, 7};
  const auto mat = CreateMatrix();
  SetUpMatrix({}, *mat, backwards.raw());
  const RowView row = Row(*mat, 1);
  ASSERT_EQ(row.size(), 2U);
  EXPECT_EQ(Ints(row.columns.begin(), row.columns.end()), (Ints{3, 0}));
  EXPECT_EQ(Floats(row.values.begin(), row.values.end()), (Floats{6, 7}));
}

TEST(RowOfAMatrix, MayBeEmpty) {
  const auto mat = PreparedOf({{1, 0}, {0, 0}, {0, 1}});
  EXPECT_EQ(Row(*mat, 1).size(), 0U);
  EXPECT_EQ(RowValues(*mat, 1).size(), 0U);
}

TEST(RowValues, AreThoseOfTheMatrix) {
  const auto mat = PreparedOf({{1, 0}, {2, 3}, {0, 4}});
  RowValues(*mat, 1)[1] = 8;
  EXPECT_EQ(VectorOf(mat->rowval), (Floats{1, 2, 8, 4}));
}

TEST(EntriesOfAMatrix, AreCountedAsStored) {
  EXPECT_EQ(EntryCount(*PreparedOf({{1, 0}, {0, 0}, {2, 3}})), 3);
}

TEST(ColumnCopy, ListsTheRowsOfEachColumnInIncreasingOrder) {
  const auto mat = PreparedOf({{1, 0, 2, 0}, {0, 0, 0, 0}, {3, 4, 0, 0}, {0, 5, 6, 0}});
  CreateColMat(*mat);
  EXPECT_EQ(VectorOf(mat->colptr), (Ints{0, 2, 4, 6, 6}));
  EXPECT_EQ(VectorOf(mat->colind), (Ints{0, 2, 2, 3, 0, 3}));
  EXPECT_EQ(VectorOf(mat->colval), (Floats{1, 3, 4, 5, 2, 6}));
}

TEST(ColumnCopy, LeavesTheRowsAsTheyAre) {
  const auto mat = PreparedOf({{1, 0, 2}, {0, 3, 0}});
  CreateColMat(*mat);
  EXPECT_EQ(VectorOf(mat->rowptr), (Ints{0, 2, 3}));
  EXPECT_EQ(VectorOf(mat->rowind), (Ints{0, 2, 1}));
  EXPECT_EQ(VectorOf(mat->rowval), (Floats{1, 2, 3}));
}

TEST(ColumnCopy, KeepsTheOrderOfAColumnStoredTwiceInARow) {
  SparseMatrix twice;
  twice.nrows = 1;
  twice.ncols = 3;
  twice.rowptr = {0, 3};
  twice.rowind = {1, 0, 1};
  twice.rowval = {7, 8, 9};
  const auto mat = CreateMatrix();
  SetUpMatrix({}, *mat, twice.raw());
  CreateColMat(*mat);
  EXPECT_EQ(VectorOf(mat->colptr), (Ints{0, 1, 3, 3}));
  EXPECT_EQ(VectorOf(mat->colind), (Ints{0, 0, 0}));
  EXPECT_EQ(VectorOf(mat->colval), (Floats{8, 7, 9}));
}

TEST(ColumnCopy, FollowsTheRowsWhenItIsBuiltAgain) {
  const auto mat = PreparedOf({{1, 0}, {2, 3}});
  CreateColMat(*mat);
  RowValues(*mat, 1)[0] = 9;
  CreateColMat(*mat);
  EXPECT_EQ(VectorOf(mat->colptr), (Ints{0, 2, 3}));
  EXPECT_EQ(VectorOf(mat->colval), (Floats{1, 9, 3}));
}

TEST(ColumnCopy, OfAMatrixWithoutRowsHasEmptyColumns) {
  const auto mat = CreateMatrix();
  const Ints rowptr = {0};
  SetUpMatrix({}, *mat, {0, 2, rowptr.data(), nullptr, nullptr});
  CreateColMat(*mat);
  EXPECT_EQ(VectorOf(mat->colptr), (Ints{0, 0, 0}));
}

TEST(ColumnCopy, HoldsTheEntriesFoundByScanningForEachColumn) {
  const SparseMatrix matrix = RandomDocuments(3, 50, 30, 3, 8);
  const auto mat = CreateMatrix();
  SetUpMatrix({}, *mat, matrix.raw());
  CreateColMat(*mat);
  Ints colptr = {0}, colind;
  Floats colval;
  for (int j = 0; j < matrix.ncols; ++j) {
    for (int i = 0; i < matrix.nrows; ++i) {
      const RowView row = Row(*mat, i);
      for (std::size_t p = 0; p < row.size(); ++p) {
        if (row.columns[p] != j) continue;
        colind.push_back(i);
        colval.push_back(row.values[p]);
      }
    }
    colptr.push_back(static_cast<int>(colind.size()));
  }
  EXPECT_EQ(VectorOf(mat->colptr), colptr);
  EXPECT_EQ(VectorOf(mat->colind), colind);
  EXPECT_EQ(VectorOf(mat->colval), colval);
}

TEST(ColumnCopy, NamesItsBlocks) {
  const auto mat = PreparedOf({{1, 0}, {1, 1}});
  EXPECT_EQ(BlockNames([&] { CreateColMat(*mat); }),
            (std::vector<std::string>{"CreateColMat: colptr", "CreateColMat: colind",
                                      "CreateColMat: colval"}));
}

}  // namespace
}  // namespace molva
