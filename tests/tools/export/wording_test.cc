// SPDX-License-Identifier: MIT
#include "tools/export/wording.h"

#include <gtest/gtest.h>

#include "tests/tools/export/measures/matrices.h"

namespace {

using mardle::exporting::Contents;
using mardle::exporting::WordingOf;
using testing_support::DenseMatrixOf;
using testing_support::SparseMatrixOf;

TEST(Wording, CountsAndWeightsOfWordsAreText) {
  EXPECT_EQ(WordingOf(Contents::kUnknown, SparseMatrixOf({{1, 2}}, {"sea", "caf\xc3\xa9"})).rows,
            "documents");
  EXPECT_EQ(WordingOf(Contents::kUnknown, SparseMatrixOf({{1, 2.5F}}, {"sea", "land"})).rows,
            "documents");
}

TEST(Wording, OtherValuesAndOtherNamesAreNoText) {
  EXPECT_EQ(WordingOf(Contents::kUnknown, SparseMatrixOf({{1, -2}}, {"sea", "land"})).rows, "rows");
  EXPECT_EQ(WordingOf(Contents::kUnknown, SparseMatrixOf({{1, 2}}, {"sea", "x1"})).rows, "rows");
  EXPECT_EQ(WordingOf(Contents::kUnknown, SparseMatrixOf({{1, 2}})).column, "column");
  EXPECT_EQ(WordingOf(Contents::kUnknown, DenseMatrixOf({{1, 2}})).columns, "columns");
}

TEST(Wording, FollowsWhatIsSaid) {
  EXPECT_EQ(WordingOf(Contents::kText, DenseMatrixOf({{1, 2}})).columns, "words");
  EXPECT_EQ(WordingOf(Contents::kTable, SparseMatrixOf({{1, 2}}, {"sea", "land"})).row, "row");
}

}  // namespace
