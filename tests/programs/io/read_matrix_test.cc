// SPDX-License-Identifier: MIT
#include "programs/io/read_matrix.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "lib/support/files.h"
#include "tests/testing/allocation.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"

namespace {

using mardle::Matrix;
using mardle::MatrixHeader;
using testing_support::FatalMessage;
using Ints = std::vector<int>;
using Floats = std::vector<float>;

constexpr std::size_t kLongestLine = 131071;

std::string Padded(const std::string& text, std::size_t length) {
  return text + std::string(length - text.size(), ' ');
}

class MatrixReaderTest : public ::testing::Test {
 protected:
  Matrix Read(const std::string& text, int denseinput) const {
    mardle::RunParams params;
    params.filename = molva::mystrdup(folder_.Write("m", text).c_str());
    params.denseinput = denseinput;
    Matrix mat;
    mardle::ReadMatrix(params, mat);
    return mat;
  }

  MatrixHeader Header(const std::string& text) const {
    const molva::File file = molva::OpenFile(folder_.Write("m", text).c_str(), "r");
    mardle::LineReader reader(file.get());
    return mardle::ReadHeader(reader);
  }

  testing_support::TempFolder folder_;
};

class HeaderReader : public MatrixReaderTest {
 protected:
  Ints Numbers(const std::string& text) const {
    const MatrixHeader header = Header(text);
    return {header.nrows, header.ncols, header.nnz};
  }

  std::string Refusal(const std::string& text) const {
    return FatalMessage([&] { Header(text); });
  }
};

class SparseReader : public MatrixReaderTest {
 protected:
  Matrix Read(const std::string& text) const { return MatrixReaderTest::Read(text, 0); }

  // The value of the one entry of a 1 x 1 matrix.
  float Value(const std::string& text) const { return Read("1 1 1\n1 " + text + "\n").rowval[0]; }
};

class DenseReader : public MatrixReaderTest {
 protected:
  Matrix Read(const std::string& text) const { return MatrixReaderTest::Read(text, 1); }
};

Ints Of(const molva::Array<int>& array) { return {array.begin(), array.end()}; }
Floats Of(const molva::Array<float>& array) { return {array.begin(), array.end()}; }

std::string WrongNonZeros(const std::string& nnz, const std::string& found) {
  return "ReadMat: Something wrong with the number of nonzeros in the input file. NNZ=" + nnz +
         ", ActualNNZ=" + found + "\n";
}

std::string WrongRows(const std::string& nrows, const std::string& found) {
  return "ReadMat: Something wrong with the number of rows in the input file. Nrows=" + nrows +
         ", ActualNrows=" + found + "\n";
}

std::string OutOfRange(const std::string& number) {
  return "ReadMat: The number " + number + " in the header of the input file is out of range!\n";
}

std::string AllocationFailed(const std::string& name, const std::string& nbytes) {
  return "***Memory allocation failed for " + name + ". Requested size: " + nbytes + " bytes";
}

TEST_F(HeaderReader, TakesThreeNumbers) {
  EXPECT_EQ(Numbers("3 4 5\n"), (Ints{3, 4, 5}));
  EXPECT_EQ(Numbers(" \t3\t 4  5 \n"), (Ints{3, 4, 5}));
  EXPECT_EQ(Numbers("3 4 5 6 x\n"), (Ints{3, 4, 5}));
  EXPECT_EQ(Numbers("3 4 5\r\n"), (Ints{3, 4, 5}));
  EXPECT_EQ(Numbers("+3 -4 005"), (Ints{3, -4, 5}));
}

TEST_F(HeaderReader, LeavesAbsentNumbersZero) {
  EXPECT_EQ(Numbers("3 4\n5\n"), (Ints{3, 4, 0}));
  EXPECT_EQ(Numbers("3\n"), (Ints{3, 0, 0}));
  EXPECT_EQ(Numbers("\n"), (Ints{0, 0, 0}));
  EXPECT_EQ(Numbers(""), (Ints{0, 0, 0}));
}

TEST_F(HeaderReader, StopsAtTextThatIsNoNumber) {
  EXPECT_EQ(Numbers("rows columns entries\n"), (Ints{0, 0, 0}));
  EXPECT_EQ(Numbers("3 x 5\n"), (Ints{3, 0, 0}));
  EXPECT_EQ(Numbers("3,4,5\n"), (Ints{3, 0, 0}));
  EXPECT_EQ(Numbers("3 4.5 6\n"), (Ints{3, 4, 0}));
}

TEST_F(HeaderReader, TakesTheWholeRangeOfAnInt) {
  EXPECT_EQ(Numbers("2147483647 -2147483648 0\n"), (Ints{INT_MAX, INT_MIN, 0}));
}

TEST_F(HeaderReader, RefusesANumberThatNoIntHolds) {
  EXPECT_EQ(Refusal("2147483648 1 1\n"), OutOfRange("2147483648"));
  EXPECT_EQ(Refusal("-2147483649 1 1\n"), OutOfRange("-2147483649"));
  EXPECT_EQ(Refusal("99999999999999999999 1 1\n"), OutOfRange("99999999999999999999"));
}

TEST_F(HeaderReader, NamesTheNumberThatIsOutOfRange) {
  EXPECT_NE(Refusal("3 4294967297 1\n").find("4294967297"), std::string::npos);
  EXPECT_NE(Refusal("3 4 -99999999999\n").find("-99999999999"), std::string::npos);
}

TEST_F(HeaderReader, CutsANumberOfManyDigitsInItsMessage) {
  EXPECT_EQ(Refusal(std::string(5000, '7') + "\n"), OutOfRange(std::string(80, '7')));
}

TEST_F(HeaderReader, EndsTheRunWithStatusZero) {
  EXPECT_FATAL(Header("99999999999 2 1\n"), OutOfRange("99999999999"));
}

TEST_F(SparseReader, StoresThePairsOfEveryRow) {
  const Matrix mat = Read("3 4 5\n1 1.0 4 2.0\n\n2 0.5 3 1 1 7\n");
  EXPECT_EQ(mat.nrows, 3);
  EXPECT_EQ(mat.ncols, 4);
  EXPECT_EQ(Of(mat.rowptr), (Ints{0, 2, 2, 5}));
  EXPECT_EQ(Of(mat.rowind), (Ints{0, 3, 1, 2, 0}));
  EXPECT_EQ(Of(mat.rowval), (Floats{1.0F, 2.0F, 0.5F, 1.0F, 7.0F}));
}

TEST_F(SparseReader, ReadsLabelsAndClassesAfterTheRows) {
  folder_.Write("m.clabel", "left\nright\n");
  folder_.Write("m.rclass", "b\na\n");
  const Matrix mat = Read("2 2 2\n1 1\n2 1\n");
  EXPECT_STREQ(mat.clabels[1], "right");
  EXPECT_STREQ(mat.rlabels[1], "row00002");
  EXPECT_EQ(mat.nclasses, 2);
  EXPECT_STREQ(mat.classnames[0], "b");
}

TEST_F(SparseReader, TakesBlanksAndTabsBetweenAndAroundTheFields) {
  const Matrix mat = Read("2 3 3\n \t1\t5  3 \t6 \t\n2\t7");
  EXPECT_EQ(Of(mat.rowptr), (Ints{0, 2, 3}));
  EXPECT_EQ(Of(mat.rowind), (Ints{0, 2, 1}));
  EXPECT_EQ(Of(mat.rowval), (Floats{5, 6, 7}));
}

TEST_F(SparseReader, KeepsRepeatedColumnsAsEntriesOfTheirOwn) {
  const Matrix mat = Read("1 2 3\n2 5 2 6 1 7\n");
  EXPECT_EQ(Of(mat.rowind), (Ints{1, 1, 0}));
  EXPECT_EQ(Of(mat.rowval), (Floats{5, 6, 7}));
}

TEST_F(SparseReader, LeavesTheLinesBehindTheLastRowUnread) {
  EXPECT_EQ(Of(Read("1 1 1\n1 5\n9 9 9\nnonsense\n").rowptr), (Ints{0, 1}));
}

TEST_F(SparseReader, RefusesAMissingFile) {
  mardle::RunParams params;
  params.filename = molva::mystrdup(folder_.Path("missing").c_str());
  Matrix mat;
  EXPECT_FATAL(mardle::ReadMatrix(params, mat),
               "Matrix file to be clusterd (" + folder_.Path("missing") + ") does not exist!\n");
}

// A 0-based file is a common mistake; it is told when the matrix is prepared, not here.
TEST_F(SparseReader, StoresColumnNumbersOfZeroAndLessAsNegativeColumns) {
  EXPECT_EQ(Of(Read("1 2 4\n0 1 -3 1 abc 1 2 1\n").rowind), (Ints{-1, -4, -1, 1}));
}

TEST_F(SparseReader, KeepsAColumnNumberBelowTheRangeOfAnIntNegative) {
  EXPECT_EQ(Of(Read("1 2 1\n-99999999999 1\n").rowind), Ints{INT_MIN});
}

// Columns and rows are told 0-based.
TEST_F(SparseReader, RefusesAColumnAboveTheLast) {
  EXPECT_FATAL(Read("2 4 2\n1 1\n5 1\n"),
               "Column number is greater than ncols. Ncols=4, ColNum=4, Row=1\n");
}

TEST_F(SparseReader, RefusesAColumnAboveTheRangeOfAnInt) {
  EXPECT_FATAL(Read("1 4 1\n99999999999 1\n"),
               "Column number is greater than ncols. Ncols=4, ColNum=99999999998, Row=0\n");
}

TEST_F(SparseReader, RefusesAColumnBeforeItMissesTheValue) {
  EXPECT_FATAL(Read("1 4 1\n5\n"),
               "Column number is greater than ncols. Ncols=4, ColNum=4, Row=0\n");
}

TEST_F(SparseReader, RefusesEveryColumnOfAMatrixWithoutColumns) {
  EXPECT_FATAL(Read("1 0 1\n1 1\n"),
               "Column number is greater than ncols. Ncols=0, ColNum=0, Row=0\n");
  EXPECT_FATAL(Read("1 -4 1\n1 1\n"),
               "Column number is greater than ncols. Ncols=-4, ColNum=0, Row=0\n");
}

TEST_F(SparseReader, RefusesAColumnWithoutValue) {
  EXPECT_FATAL(Read("2 4 4\n1 1 2 1\n3 1 4\n"),
               "Value could not be found for column! Row:1, NNZ:3\n");
}

TEST_F(SparseReader, RefusesFewerEntriesThanTheHeaderTells) {
  EXPECT_FATAL(Read("2 4 5\n1 1\n2 1 3 1\n"), WrongNonZeros("5", "3"));
}

TEST_F(SparseReader, ReadsTheWholeFileBeforeItMissesEntries) {
  EXPECT_FATAL(Read("2 4 5\n1 1\n9 1\n"),
               "Column number is greater than ncols. Ncols=4, ColNum=8, Row=1\n");
}

TEST_F(SparseReader, CountsEntriesBeyondTheNumberInTheHeader) {
  EXPECT_FATAL(Read("2 4 1\n1 1 2 1\n2 1 3 1 4 1\n"), WrongNonZeros("1", "5"));
  EXPECT_FATAL(Read("1 4 0\n1 1 2 1\n"), WrongNonZeros("0", "2"));
}

TEST_F(SparseReader, RefusesABadColumnAmongEntriesBeyondTheNumberInTheHeader) {
  EXPECT_FATAL(Read("2 4 1\n1 1 2 1\n5 1\n"),
               "Column number is greater than ncols. Ncols=4, ColNum=4, Row=1\n");
  EXPECT_FATAL(Read("2 4 1\n1 1 2 1\n4\n"), "Value could not be found for column! Row:1, NNZ:2\n");
}

TEST_F(SparseReader, RefusesAFileThatEndsEarly) {
  EXPECT_FATAL(Read("5 4 2\n1 1\n2 1\n"), WrongRows("5", "2"));
}

TEST_F(SparseReader, MissesRowsBeforeEntries) {
  EXPECT_FATAL(Read("5 4 9\n1 1\n"), WrongRows("5", "1"));
  EXPECT_FATAL(Read("3 4 9"), WrongRows("3", "0"));
}

TEST_F(SparseReader, TakesANegativeNumberOfRowsAsNoRows) {
  EXPECT_FATAL(Read("-3 4 0\n1 1\n"), WrongRows("-3", "0"));
  EXPECT_FATAL(Read("-1 4 0\n"), WrongRows("-1", "0"));
  EXPECT_FATAL(Read("-2147483648 4 0\n"), WrongRows("-2147483648", "0"));
  EXPECT_FATAL(Read("-3 4 2\n1 1\n"), WrongNonZeros("2", "0"));
}

TEST_F(SparseReader, StoresNothingForANegativeNumberOfEntries) {
  EXPECT_FATAL(Read("2 4 -2\n1 1\n2 1 3 1\n"), WrongNonZeros("-2", "3"));
  EXPECT_FATAL(Read("1 4 -2147483648\n1 1\n"), WrongNonZeros("-2147483648", "1"));
}

TEST_F(SparseReader, ReadsAnEmptyFileAsAMatrixOfNothing) {
  const Matrix mat = Read("");
  EXPECT_EQ(mat.nrows, 0);
  EXPECT_EQ(mat.ncols, 0);
  EXPECT_EQ(Of(mat.rowptr), Ints{0});
  EXPECT_FALSE(mat.rowind);
  EXPECT_FALSE(mat.rowval);
}

TEST_F(SparseReader, ReadsAFolderAsAMatrixOfNothing) {
  mardle::RunParams params;
  params.filename = molva::mystrdup(folder_.Path("").c_str());
  Matrix mat;
  mardle::ReadMatrix(params, mat);
  EXPECT_EQ(mat.nrows, 0);
  EXPECT_EQ(mat.ncols, 0);
}

TEST_F(SparseReader, ForgetsWhatTheRecordHeldBefore) {
  mardle::RunParams params;
  params.filename = molva::mystrdup(folder_.Write("m", "1 2 1\n1 5\n").c_str());
  Matrix mat;
  mardle::ReadMatrix(params, mat);
  params.denseinput = 1;
  mardle::ReadMatrix(params, mat);
  EXPECT_FALSE(mat.rowptr);
  EXPECT_FALSE(mat.rowind);
}

TEST_F(SparseReader, EndsTheTextOfARowAtANulByte) {
  const Matrix mat = Read(std::string("2 2 2\n1 5") + '\0' + " 2 6\n2 7\n");
  EXPECT_EQ(Of(mat.rowptr), (Ints{0, 1, 2}));
  EXPECT_EQ(Of(mat.rowval), (Floats{5, 7}));
}

TEST_F(SparseReader, ReadsAFileWithCarriageReturnsWhoseRowsHaveEntries) {
  const Matrix mat = Read("2 2 2\r\n1 5\r\n2 7\r\n");
  EXPECT_EQ(Of(mat.rowind), (Ints{0, 1}));
  EXPECT_EQ(Of(mat.rowval), (Floats{5, 7}));
}

TEST_F(SparseReader, TakesACarriageReturnAloneForAColumnWithoutValue) {
  EXPECT_FATAL(Read("2 2 1\r\n1 5\r\n\r\n"), "Value could not be found for column! Row:1, NNZ:1\n");
  EXPECT_FATAL(Read("1 2 1\r\n1 5 \r\n"), "Value could not be found for column! Row:0, NNZ:1\n");
}

TEST_F(SparseReader, KeepsALineOf131070CharactersWhole) {
  const Matrix mat = Read("2 2 2\n" + Padded("1 5", kLongestLine - 1) + "\n2 7\n");
  EXPECT_EQ(Of(mat.rowptr), (Ints{0, 1, 2}));
}

// What does not fit into the buffer, the newline at least, is the next row.
TEST_F(SparseReader, TakesTheRestOfAnOverlongLineForARow) {
  for (const std::size_t length : {kLongestLine, kLongestLine + 1, kLongestLine + 2}) {
    const Matrix mat = Read("3 2 2\n" + Padded("1 5", length) + "\n2 7\n");
    EXPECT_EQ(Of(mat.rowptr), (Ints{0, 1, 1, 2})) << length;
  }
}

TEST_F(SparseReader, ReadsALineOf200000CharactersAsTwoRows) {
  const std::string line = Padded("1 5", kLongestLine) + "2 7 1 6";
  const Matrix mat = Read("2 2 3\n" + Padded(line, 200000) + "\n");
  EXPECT_EQ(Of(mat.rowptr), (Ints{0, 1, 3}));
  EXPECT_EQ(Of(mat.rowind), (Ints{0, 1, 0}));
  EXPECT_EQ(Of(mat.rowval), (Floats{5, 7, 6}));
}

// The column 12 loses its second digit, and with it its value, to the next row.
TEST_F(SparseReader, CutsANumberInTwoWithItsLine) {
  const std::string line = Padded("1 5", kLongestLine - 1) + "12 3";
  EXPECT_FATAL(Read("2 99 2\n" + line + "\n"),
               "Value could not be found for column! Row:0, NNZ:1\n");
}

TEST_F(SparseReader, TakesValuesAsTheStandardConversionDoes) {
  EXPECT_EQ(Value("0x1.8p1"), 3.0F);
  EXPECT_EQ(Value("+.5e1"), 5.0F);
  EXPECT_EQ(Value("1,5"), 1.0F);
  EXPECT_EQ(Value("2abc"), 2.0F);
  EXPECT_EQ(Value("--1"), 0.0F);
  EXPECT_EQ(Value("abc"), 0.0F);
  EXPECT_EQ(Value("-0.25"), -0.25F);
}

TEST_F(SparseReader, TakesValuesThatAreInfiniteOrNoNumbers) {
  EXPECT_EQ(Value("inf"), INFINITY);
  EXPECT_EQ(Value("-Infinity"), -INFINITY);
  EXPECT_TRUE(std::isnan(Value("nan")));
  EXPECT_TRUE(std::isnan(Value("nan(7)")));
}

TEST_F(SparseReader, BringsValuesOutOfRangeToInfinityAndZero) {
  EXPECT_EQ(Value("1e400"), INFINITY);
  EXPECT_EQ(Value("-1e39"), -INFINITY);
  EXPECT_EQ(Value("1e-400"), 0.0F);
  EXPECT_EQ(Value("1e-60"), 0.0F);
}

// A little above the middle of 1 and the next float. Rounded to double first it is the middle
// itself and then goes down to the even 1; straight to float it would go up.
TEST_F(SparseReader, RoundsAValueToDoubleBeforeFloat) {
  const std::string above_the_middle = "1.00000005960464477539062500000001";
  ASSERT_EQ(std::strtof(above_the_middle.c_str(), nullptr), std::nextafter(1.0F, 2.0F));
  EXPECT_EQ(Value(above_the_middle), 1.0F);
}

// The line buffer comes first, then the three arrays in turn.
TEST_F(SparseReader, NamesTheArrayThatCannotBeHad) {
  const std::string text = "3 4 5\n1 1\n";
  mardle::RunParams params;
  params.filename = molva::mystrdup(folder_.Write("m", text).c_str());
  Matrix mat;
  const auto read_with = [&](int successes) {
    const testing_support::FailingAllocations failing(successes);
    mardle::ReadMatrix(params, mat);
  };
  EXPECT_FATAL(read_with(1), AllocationFailed("ReadMat: rowptr", "16"));
  EXPECT_FATAL(read_with(2), AllocationFailed("ReadMat: rowind", "20"));
  EXPECT_FATAL(read_with(3), AllocationFailed("ReadMat: rowval", "20"));
}

TEST_F(SparseReader, TellsTheTrueSizeOfAnArrayThatIsTooLarge) {
  const auto read_with = [this](int successes, const std::string& text) {
    mardle::RunParams params;
    params.filename = molva::mystrdup(folder_.Write("m", text).c_str());
    Matrix mat;
    const testing_support::FailingAllocations failing(successes);
    mardle::ReadMatrix(params, mat);
  };
  EXPECT_FATAL(read_with(1, "2147483647 1 0\n"), AllocationFailed("ReadMat: rowptr", "8589934592"));
  EXPECT_FATAL(read_with(2, "1 1 2147483647\n"), AllocationFailed("ReadMat: rowind", "8589934588"));
}

TEST_F(DenseReader, StoresTheRowsOneAfterTheOther) {
  const Matrix mat = Read("2 3\n1 0 2.5\n -1\t4  0.5 \n");
  EXPECT_EQ(mat.nrows, 2);
  EXPECT_EQ(mat.ncols, 3);
  EXPECT_EQ(Of(mat.rowval), (Floats{1, 0, 2.5F, -1, 4, 0.5F}));
}

TEST_F(DenseReader, LeavesTheSparseArraysNull) {
  const Matrix mat = Read("1 1\n1\n");
  EXPECT_FALSE(mat.rowptr);
  EXPECT_FALSE(mat.rowind);
}

TEST_F(DenseReader, IgnoresTheThirdHeaderNumber) {
  EXPECT_EQ(Of(Read("1 2 999\n1 2\n").rowval), (Floats{1, 2}));
  EXPECT_EQ(Of(Read("1 2 -1\n1 2\n").rowval), (Floats{1, 2}));
}

TEST_F(DenseReader, TakesValuesAsTheSparseReaderDoes) {
  const Matrix mat = Read("1 4\ninf 1,5 1e400 0x10\n");
  EXPECT_EQ(Of(mat.rowval), (Floats{INFINITY, 1, INFINITY, 16}));
}

TEST_F(DenseReader, RefusesARowWithAValueMissing) {
  EXPECT_FATAL(Read("2 3\n1 2 3\n1 2\n"),
               "Input Error: Row 1 of the input file has 2 entries instead of 3!\n");
  EXPECT_FATAL(Read("2 3\n\n1 2 3\n"),
               "Input Error: Row 0 of the input file has 0 entries instead of 3!\n");
}

TEST_F(DenseReader, CountsTheValuesOfARowThatIsTooLong) {
  EXPECT_FATAL(Read("1 3\n1 2 3 4 5 6 7\n"),
               "Input Error: Row 0 of the input file has 7 entries instead of 3!\n");
}

TEST_F(DenseReader, RefusesAFileThatEndsEarly) {
  EXPECT_FATAL(Read("4 2\n1 2\n"), WrongRows("4", "1"));
}

TEST_F(DenseReader, TakesNegativeCountsAsNoRowsAndNoColumns) {
  EXPECT_FATAL(Read("-2 2\n1 2\n"), WrongRows("-2", "0"));
  EXPECT_FATAL(Read("-2 -2\n1 2\n"), WrongRows("-2", "0"));
  EXPECT_FATAL(Read("1 -2\n1 2\n"),
               "Input Error: Row 0 of the input file has 2 entries instead of -2!\n");
}

TEST_F(DenseReader, ReadsRowsWithoutColumns) {
  const Matrix mat = Read("2 0\n\n \n");
  EXPECT_EQ(mat.nrows, 2);
  EXPECT_FALSE(mat.rowval);
}

TEST_F(DenseReader, TakesTheRestOfAnOverlongLineForARow) {
  const Matrix mat = Read("2 2\n" + Padded("1 2", kLongestLine) + "3 4\n");
  EXPECT_EQ(Of(mat.rowval), (Floats{1, 2, 3, 4}));
}

TEST_F(DenseReader, TakesACarriageReturnAfterABlankForAValue) {
  EXPECT_EQ(Of(Read("1 2\r\n1 2\r\n").rowval), (Floats{1, 2}));
  EXPECT_FATAL(Read("1 2\r\n1 2 \r\n"),
               "Input Error: Row 0 of the input file has 3 entries instead of 2!\n");
}

TEST_F(DenseReader, TellsTheTrueSizeOfValuesThatAreTooMany) {
  const std::string path = folder_.Write("m", "2147483647 2147483647\n");
  mardle::RunParams params;
  params.filename = molva::mystrdup(path.c_str());
  params.denseinput = 1;
  Matrix mat;
  EXPECT_FATAL(
      {
        const testing_support::FailingAllocations failing(1);
        mardle::ReadMatrix(params, mat);
      },
      AllocationFailed("ReadMat: rowval", "18446744056529682436"));
}

}  // namespace
