// SPDX-License-Identifier: MIT
#include "programs/code_names.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

using mardle::ColumnModelName;
using mardle::CriterionName;
using mardle::RowModelName;
using mardle::SimilarityName;

TEST(CriterionName, OfTheFirstSevenCodesIsThatOfTheHelp) {
  EXPECT_STREQ(CriterionName(1), "I1");
  EXPECT_STREQ(CriterionName(2), "I2");
  EXPECT_STREQ(CriterionName(3), "E1");
  EXPECT_STREQ(CriterionName(4), "G1");
  EXPECT_STREQ(CriterionName(5), "G1'");
  EXPECT_STREQ(CriterionName(6), "H1");
  EXPECT_STREQ(CriterionName(7), "H2");
}

// The help calls 8 G3 and 9 H3.
TEST(CriterionName, OfCodesEightAndNineCrosses) {
  EXPECT_STREQ(CriterionName(8), "H3");
  EXPECT_STREQ(CriterionName(9), "G3");
}

TEST(RowModelName, IsThatOfTheHelp) {
  EXPECT_STREQ(RowModelName(1), "None");
  EXPECT_STREQ(RowModelName(2), "MAXTF");
  EXPECT_STREQ(RowModelName(3), "SQRT");
  EXPECT_STREQ(RowModelName(4), "LOG");
}

TEST(ColumnModelName, IsThatOfTheHelp) {
  EXPECT_STREQ(ColumnModelName(1), "None");
  EXPECT_STREQ(ColumnModelName(2), "IDF");
}

TEST(CodeNames, AreEmptyOutsideTheirTables) {
  for (const int code : {0, -1, INT_MIN, 10, 12, INT_MAX}) EXPECT_STREQ(CriterionName(code), "");
  for (const int code : {0, -1, INT_MIN, 5, INT_MAX}) EXPECT_STREQ(RowModelName(code), "");
  for (const int code : {0, -1, INT_MIN, 3, INT_MAX}) EXPECT_STREQ(ColumnModelName(code), "");
}

TEST(SimilarityName, IsCorrCoefForEveryCodeButOne) {
  EXPECT_STREQ(SimilarityName(1), "Cosine");
  for (const int code : {2, 0, 3, -1, INT_MAX}) EXPECT_STREQ(SimilarityName(code), "CorrCoef");
}

}  // namespace
