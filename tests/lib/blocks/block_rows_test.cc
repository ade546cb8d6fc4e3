// SPDX-License-Identifier: MIT
#include "lib/blocks/block_rows.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "lib/molva.h"
#include "tests/testing/blocks.h"
#include "tests/testing/fatal.h"
#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::FatalMessage;
using testing_support::PlainRows;
using testing_support::RandomDocuments;
using testing_support::RowsOf;
using testing_support::SparseMatrix;
using testing_support::SparseOf;

std::size_t Size(int n) { return static_cast<std::size_t>(n); }

// The two arrays of a space, from all blocks.
struct Choice {
  std::vector<float> weights;
  std::vector<signed char> kept;
  int nkept = 0;
};

void CountAll(const std::vector<SparseMatrix>& blocks, std::vector<std::int64_t>& counts) {
  for (const SparseMatrix& block : blocks) {
    MOLVA_B_CountColumns(block.nrows, block.ncols, block.rowptr.data(), block.rowind.data(),
                         counts.data());
  }
}

void SumAll(const std::vector<SparseMatrix>& blocks, const MOLVA_Space& space,
            std::vector<std::int64_t>& sums) {
  for (const SparseMatrix& block : blocks) {
    const PreparedCopy copy = PrepareBlock(space, block.raw());
    SumColumns(*copy.mat, {sums.data(), sums.size()});
  }
}

Choice Choose(const std::vector<SparseMatrix>& blocks, int rowmodel, float prune) {
  std::int64_t nrows = 0;
  for (const SparseMatrix& block : blocks) nrows += block.nrows;
  const int ncols = blocks[0].ncols;
  std::vector<std::int64_t> counts(Size(ncols));
  CountAll(blocks, counts);
  Choice choice{std::vector<float>(Size(ncols)), std::vector<signed char>(Size(ncols)), 0};
  MOLVA_B_WeighColumns(ncols, nrows, counts.data(), choice.weights.data());
  std::vector<std::int64_t> sums(Size(ncols));
  SumAll(blocks, {MOLVA_SIM_COSINE, rowmodel, choice.weights.data(), nullptr}, sums);
  choice.nkept =
      MOLVA_B_ChooseColumns(ncols, prune, counts.data(), sums.data(), choice.kept.data());
  return choice;
}

std::vector<SparseMatrix> Cut(const SparseMatrix& matrix, const std::vector<int>& ends) {
  std::vector<SparseMatrix> blocks;
  int first = 0;
  for (const int end : ends) {
    blocks.push_back(RowsOf(matrix, first, end));
    first = end;
  }
  return blocks;
}

TEST(BlockRows, AreThoseOfTheWholeMatrixBitForBit) {
  const SparseMatrix matrix = RandomDocuments(5, 300, 80, 4, 9);
  for (const int rowmodel : {1, 2, 3, 4}) {
    const Control control{.rowmodel = rowmodel, .colmodel = MOLVA_COL_IDF, .prune = 0.9F};
    const PreparedCopy whole = MakePreparedCopy(control, matrix.raw(), "Test", Clustering::kNone);
    const std::vector<SparseMatrix> blocks = Cut(matrix, {7, 7, 130, 131, 300});
    const Choice choice = Choose(blocks, rowmodel, 0.9F);
    ASSERT_EQ(choice.nkept, whole.mat->ncols);
    SparseMatrix rows;
    for (const SparseMatrix& block : blocks) {
      const PreparedCopy copy = PrepareBlock(
          {MOLVA_SIM_COSINE, rowmodel, choice.weights.data(), choice.kept.data()}, block.raw());
      const SparseMatrix part = PlainRows(*copy.mat);
      const auto entries = static_cast<int>(rows.rowind.size());
      for (int i = 1; i <= part.nrows; ++i) rows.rowptr.push_back(entries + part.rowptr[Size(i)]);
      rows.rowind.insert(rows.rowind.end(), part.rowind.begin(), part.rowind.end());
      rows.rowval.insert(rows.rowval.end(), part.rowval.begin(), part.rowval.end());
    }
    const SparseMatrix expected = PlainRows(*whole.mat);
    EXPECT_EQ(rows.rowptr, expected.rowptr);
    EXPECT_EQ(rows.rowind, expected.rowind);
    EXPECT_EQ(rows.rowval, expected.rowval);
  }
}

TEST(BlockRows, OfTheCorrelationAreCentredOverAllCells) {
  const SparseMatrix full = SparseOf({{3, 1, 2}, {1, 2, 4}});
  const SparseMatrix sparse = SparseOf({{3, 1, 2}, {1, 2, 4}, {5, 0, 0}});
  const MOLVA_Space space{MOLVA_SIM_CORRELATION, MOLVA_ROW_NONE, nullptr, nullptr};
  const PreparedCopy copy = PrepareBlock(space, sparse.raw());
  // (5, 0, 0) less its mean is (10, -5, -5) / 3, of length sqrt(150) / 3.
  const float* last = copy.mat->rowval.data() + 6;
  EXPECT_FLOAT_EQ(last[0], static_cast<float>(10 / std::sqrt(150.0)));
  EXPECT_FLOAT_EQ(last[1], static_cast<float>(-5 / std::sqrt(150.0)));
  // Rows with all cells are the same beside such a row and without one.
  const PreparedCopy alone = PrepareBlock(space, full.raw());
  EXPECT_EQ(PlainRows(*alone.mat).rowval, PlainRows(*PrepareBlock(space, full.raw()).mat).rowval);
  for (int p = 0; p < 6; ++p) EXPECT_EQ(alone.mat->rowval[p], copy.mat->rowval[p]);
}

TEST(BlockRows, WithoutEntriesAreDroppedOnlyWhereColumnsAreChosen) {
  const SparseMatrix matrix = SparseOf({{1, 0}, {0, 0}, {0, 2}});
  const std::vector<signed char> kept = {1, 0};
  const PreparedCopy all = PrepareBlock({1, 1, nullptr, nullptr}, matrix.raw());
  EXPECT_EQ(all.nrows, 3);
  const PreparedCopy some = PrepareBlock({1, 1, nullptr, kept.data()}, matrix.raw());
  EXPECT_EQ(some.nrows, 1);
  EXPECT_EQ(some.rperm[0], 0);
}

TEST(BlockRows, ThatAreNoFiniteNumbersEndTheRun) {
  const SparseMatrix matrix = SparseOf({{1, 0}, {-1, 2}});
  EXPECT_EQ(FatalMessage([&] {
              PrepareBlock({1, MOLVA_ROW_LOG, nullptr, nullptr}, matrix.raw());
            }),
            "A row of a block has values that are no finite numbers! Row=1\n");
}

TEST(ColumnChoice, WithoutSumsKeepsWhatIsStoredTwice) {
  const std::vector<std::int64_t> counts = {0, 1, 2, 5'000'000'000};
  std::vector<signed char> kept(4);
  EXPECT_EQ(MOLVA_B_ChooseColumns(4, 1.0F, counts.data(), nullptr, kept.data()), 2);
  EXPECT_EQ(kept, (std::vector<signed char>{0, 0, 1, 1}));
}

TEST(ColumnChoice, KeepsTheColumnThatCarriesTheSumPastTheSquaredFraction) {
  // Weights 8, 4, 1 and 2, whose squares are 64, 16, 1 and 4 of 85; the last is stored once.
  const std::vector<std::int64_t> counts = {2, 2, 2, 1};
  const std::int64_t one = std::int64_t{1} << 32;
  const std::vector<std::int64_t> sums = {8 * one, 4 * one, one, 2 * one};
  std::vector<signed char> kept(4);
  MOLVA_B_ChooseColumns(4, 0.866F, counts.data(), sums.data(), kept.data());
  EXPECT_EQ(kept, (std::vector<signed char>{1, 0, 0, 0}));
  MOLVA_B_ChooseColumns(4, 0.9F, counts.data(), sums.data(), kept.data());
  EXPECT_EQ(kept, (std::vector<signed char>{1, 1, 0, 0}));
}

TEST(ColumnSums, EndTheRunWhenTheyPass64Bits) {
  const SparseMatrix row = SparseOf({{1}});
  std::vector<std::int64_t> sums = {std::numeric_limits<std::int64_t>::max()};
  EXPECT_EQ(FatalMessage([&] {
              MOLVA_B_SumColumns(1, 1, row.rowptr.data(), row.rowind.data(), row.rowval.data(),
                                 sums.data());
            }),
            "A sum of rows passes 64 bits: there are too many rows for one sum!\n");
}

TEST(ColumnCounts, OfADenseBlockAreItsRows) {
  std::vector<std::int64_t> counts = {1, 0};
  MOLVA_B_CountColumns(3, 2, nullptr, nullptr, counts.data());
  EXPECT_EQ(counts, (std::vector<std::int64_t>{4, 3}));
}

}  // namespace
}  // namespace molva
