// SPDX-License-Identifier: MIT
#include "tools/import/svmlight.h"

#include <gtest/gtest.h>

#include "tests/tools/import/imported.h"

namespace {

using mardle::tools::LooksLikeSvmlight;
using testing_support::Imported;

std::string Fails(const std::string& text) { return Imported("a.svm", text).Failure(); }

TEST(Svmlight, PairsBecomeRowsInTheOrderOfTheColumns) {
  Imported imported("a.svm", "# head\n+1 3:0.5 1:2 # note\n\n-1\n1.0 qid:4 2:0 4:1e-3\n");
  EXPECT_EQ(imported.Run(), "3 4 3\n1 2 3 0.5\n\n4 0.001\n");
  EXPECT_EQ(imported.Read(".rclass"), "1\n-1\n1\n");
}

TEST(Svmlight, LabelsThatAreNoNumbersStayAsTheyAre) {
  EXPECT_EQ(Imported("a.svm", "spam 1:1\n2,5 1:1\n-0 1:1\n").Run(".rclass"), "spam\n2,5\n0\n");
}

TEST(Svmlight, ColumnsCountFromZeroOnRequest) {
  Imported imported("a.svm", "1 0:7 1:8\n");
  imported.options.zero_based = true;
  EXPECT_EQ(imported.Run(), "1 2 2\n1 7 2 8\n");
}

TEST(Svmlight, AColumnOfZerosCounts) {
  EXPECT_EQ(Imported("a.svm", "1 1:1 9:0\n").Run(), "1 9 1\n1 1\n");
}

TEST(Svmlight, LabelsComeFromFiles) {
  Imported imported("a.svm", "1 1:2\n2 2:3\n");
  imported.options.labels.columns = imported.folder.Write("words", "red\r\nsea\nwine\n");
  imported.options.labels.rows = imported.folder.Write("names", "first\nsecond\n");
  EXPECT_EQ(imported.Run(), "2 3 2\n1 2\n2 3\n");
  EXPECT_EQ(imported.Read(".clabel"), "red\nsea\nwine\n");
  EXPECT_EQ(imported.Read(".rlabel"), "first\nsecond\n");
}

TEST(Svmlight, LabelsThatAreTooFewAreAnError) {
  Imported imported("a.svm", "1 1:2 2:2\n2 2:3\n");
  imported.options.labels.columns = imported.folder.Write("words", "red\n");
  EXPECT_EQ(imported.Failure(), "words: 1 labels for 2 columns");
  imported.options.labels = {.columns = "", .rows = imported.folder.Write("names", "first\n")};
  EXPECT_EQ(imported.Failure(), "names: 1 labels for 2 rows");
  imported.options.labels.rows = imported.folder.Write("names", "");
  EXPECT_EQ(imported.Failure(), "names: there are no labels");
}

TEST(Svmlight, ErrorsNameFileAndLine) {
  EXPECT_EQ(Fails("1 1:1\n1 x\n"), "a.svm:2: not COLUMN:VALUE: 'x'");
  EXPECT_EQ(Fails("1 a:1\n"), "a.svm:1: no column number: 'a:1'");
  EXPECT_EQ(Fails("1 -1:1\n"), "a.svm:1: no column number: '-1:1'");
  EXPECT_EQ(Fails("1 2147483648:1\n"), "a.svm:1: no column number: '2147483648:1'");
  EXPECT_EQ(Fails("1 0:1\n"), "a.svm:1: columns count from 1; --zero-based counts from 0");
  EXPECT_EQ(Fails("1 2:z\n"), "a.svm:1: the value of column 2 is no number: 'z'");
  EXPECT_EQ(Fails("1 2:1 3:1 2:1\n"), "a.svm:1: column 2 is given twice");
  EXPECT_EQ(Fails("1:1 2:1\n"), "a.svm:1: the label is missing before '1:1'");
}

TEST(Svmlight, IsKnownByItsPairs) {
  EXPECT_TRUE(LooksLikeSvmlight("+1 1:0.5 7:1 # c"));
  EXPECT_TRUE(LooksLikeSvmlight("2 qid:1 1:0.5"));
  EXPECT_FALSE(LooksLikeSvmlight("At 10:30 it rained"));
  EXPECT_FALSE(LooksLikeSvmlight("1"));
  EXPECT_FALSE(LooksLikeSvmlight("1:1 2:1"));
}

}  // namespace
