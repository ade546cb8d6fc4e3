// SPDX-License-Identifier: MIT
#include "tools/import/matrix_market.h"

#include <gtest/gtest.h>

#include "tests/tools/import/imported.h"

namespace {

using testing_support::Imported;

constexpr char kReal[] = "%%MatrixMarket matrix coordinate real general\n";

std::string Imports(const std::string& text) { return Imported("m.mtx", text).Run(); }
std::string Fails(const std::string& text) { return Imported("m.mtx", text).Failure(); }

TEST(MatrixMarket, CoordinatesComeInAnyOrder) {
  EXPECT_EQ(Imports(std::string(kReal) + "% a comment\n\n3 4 3\n3 1 0.1\n1 4 -2e3\n1 2 +5\n"),
            "3 4 3\n2 5 4 -2000\n\n1 0.1\n");
}

TEST(MatrixMarket, EqualCoordinatesAddUpAndZerosAreNoEntries) {
  EXPECT_EQ(Imports(std::string(kReal) + "1 3 5\n1 1 2\n1 1 3\n1 2 0\n1 3 1\n1 3 -1\n"),
            "1 3 1\n1 5\n");
}

TEST(MatrixMarket, PatternsAreOnes) {
  EXPECT_EQ(Imports("%%MatrixMarket matrix coordinate pattern general\n2 2 2\n2 2\n1 1\n"),
            "2 2 2\n1 1\n2 1\n");
}

TEST(MatrixMarket, SymmetricEntriesAreMirroredButForTheDiagonal) {
  EXPECT_EQ(Imports("%%MatrixMarket MATRIX Coordinate Integer Symmetric\n2 2 2\n1 1 3\n2 1 4\n"),
            "2 2 3\n1 3 2 4\n1 4\n");
  EXPECT_EQ(Imports("%%MatrixMarket matrix coordinate real skew-symmetric\n2 2 1\n2 1 4\n"),
            "2 2 2\n2 -4\n1 4\n");
}

TEST(MatrixMarket, ArraysGoColumnByColumnAndBecomeDense) {
  const std::string text = "%%MatrixMarket matrix array real general\n2 3\n1\n2\n3\n0\n5\n6\n";
  EXPECT_EQ(Imports(text), "2 3\n1 3 5\n2 0 6\n");
  Imported sparse("m.mtx", text);
  sparse.options.preparation.sparse = true;
  EXPECT_EQ(sparse.Run(), "2 3 5\n1 1 2 3 3 5\n1 2 3 6\n");
}

TEST(MatrixMarket, SymmetricArraysHoldTheLowerTriangle) {
  EXPECT_EQ(Imports("%%MatrixMarket matrix array real symmetric\n2 2\n1\n2\n3\n"),
            "2 2\n1 2\n2 3\n");
  EXPECT_EQ(Imports("%%MatrixMarket matrix array real skew-symmetric\n2 2\n7\n"),
            "2 2\n0 -7\n7 0\n");
}

TEST(MatrixMarket, RowsThatAreNotThereAreRefusedUnlessEmptyOnesAreLeftOut) {
  EXPECT_EQ(Fails(std::string(kReal) + "100000000 5 0\n"),
            "m.mtx:2: 100000000 rows for 0 entries: hardly a row has one; --drop-empty leaves the "
            "others out");
  EXPECT_EQ(Fails("%%MatrixMarket matrix array real general\n2000000000 0\n"),
            "m.mtx:2: 2000000000 rows for 0 entries: hardly a row has one; --drop-empty leaves the "
            "others out");
  Imported sparse("m.mtx", std::string(kReal) + "2000000000 5 3\n1999999999 2 4\n7 1 3\n8 1 0\n");
  sparse.options.output.drop_empty = true;
  EXPECT_EQ(sparse.Run(), "2 5 2\n1 3\n2 4\n");
  EXPECT_EQ(Import(sparse.Again()).matrix.empty_rows, 1999999998);
}

TEST(MatrixMarket, AMillionRowsMayBeEmpty) {
  const std::string imported = Imports(std::string(kReal) + "1000000 5 1\n1000000 2 4\n");
  EXPECT_EQ(imported, "1000000 5 1\n" + std::string(999999, '\n') + "2 4\n");
}

TEST(MatrixMarket, ErrorsNameFileAndLine) {
  const std::string real = kReal;
  const struct {
    std::string text, message;
  } kCases[] = {
      {"", "m.mtx: the file is empty"},
      {"1 2 3\n", "m.mtx:1: not a line '%%MatrixMarket matrix FORMAT FIELD SYMMETRY'"},
      {"%%MatrixMarket matrix list real general\n", "m.mtx:1: format 'list' is not supported"},
      {"%%MatrixMarket matrix array complex general\n",
       "m.mtx:1: field 'complex' is not supported"},
      {"%%MatrixMarket matrix array pattern general\n",
       "m.mtx:1: field 'pattern' is not supported"},
      {"%%MatrixMarket matrix coordinate real hermitian\n",
       "m.mtx:1: symmetry 'hermitian' is not supported"},
      {real + "% only\n", "m.mtx:2: the file ends before the line with its size"},
      {real + "2 2\n", "m.mtx:2: not a line 'ROWS COLUMNS ENTRIES'"},
      {"%%MatrixMarket matrix array real general\n2\n", "m.mtx:2: not a line 'ROWS COLUMNS'"},
      {real + "2 x 1\n", "m.mtx:2: no number of rows, columns or entries: 'x'"},
      {real + "2147483648 1 1\n", "m.mtx:2: larger than mardle takes: '2147483648'"},
      {"%%MatrixMarket matrix coordinate real symmetric\n2 3 1\n1 1 1\n",
       "m.mtx:2: a symmetric matrix has as many rows as columns"},
      {real + "2 2 1\n3 1 1\n", "m.mtx:3: row '3' is not between 1 and 2"},
      {real + "2 2 1\n1 0 1\n", "m.mtx:3: column '0' is not between 1 and 2"},
      {real + "2 2 1\n1 1\n", "m.mtx:3: not a line 'ROW COLUMN VALUE'"},
      {"%%MatrixMarket matrix coordinate pattern general\n2 2 1\n1 1 1\n",
       "m.mtx:3: not a line 'ROW COLUMN'"},
      {real + "2 2 1\n1 1 x\n", "m.mtx:3: the value is no number: 'x'"},
      {real + "2 2 2\n1 1 1\n", "m.mtx:3: the file ends after 1 of 2 entries"},
      {real + "2 2 1\n1 1 1\n\n1 2 1\n", "m.mtx:5: more entries than the 1 of the size line"},
      {"%%MatrixMarket matrix array real general\n1 2\n1 2\n", "m.mtx:3: not one value a line"},
      {"%%MatrixMarket matrix array real general\n1 2\n1\n",
       "m.mtx:3: the file ends after 1 values, too few for 1 rows and 2 columns"},
  };
  for (const auto& example : kCases) EXPECT_EQ(Fails(example.text), example.message);
}

TEST(MatrixMarket, ARowThatIsTooLongIsNamed) {
  std::string text = std::string(kReal) + "2 30000 30000\n";
  for (int column = 1; column <= 30000; ++column) {
    text += "2 " + std::to_string(column) + " 1\n";
  }
  EXPECT_EQ(Fails(text).substr(0, 36), "m.mtx, row 2: the row would be a lin");
}

TEST(MatrixMarket, LabelsComeFromFilesAndGoWithTheirRows) {
  Imported imported("a.mtx",
                    "%%MatrixMarket matrix coordinate real general\n3 2 2\n1 1 1\n3 2 1\n");
  imported.options.labels.columns = imported.folder.Write("words", "red\nsea\n");
  imported.options.labels.rows = imported.folder.Write("names", "first\nsecond\nthird\n");
  imported.options.output.drop_empty = true;
  EXPECT_EQ(imported.Run(".rlabel"), "first\nthird\n");
  EXPECT_EQ(imported.Read(".clabel"), "red\nsea\n");
  imported.folder.Write("words", "red\n");
  imported.Again();
  EXPECT_EQ(imported.Failure(), "words: 1 labels for 2 columns");
}

}  // namespace
