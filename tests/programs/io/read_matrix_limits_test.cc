// SPDX-License-Identifier: MIT
//
// The matrix reader at the edges of its numbers: header counts from below nothing to beyond an int,
// each in each of the three places, and lines as long as the buffer, give or take one character.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "programs/io/read_matrix.h"
#include "tests/testing/allocation.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"

namespace {

using mardle::Matrix;
using Ints = std::vector<int>;
using Floats = std::vector<float>;

// While it lives, blocks above 64 MiB are not to be had, as on a small machine.
class SmallMachine {
 public:
  SmallMachine()
      : replaced_(molva::SetAllocateFunction(
            [](std::size_t size) { return size <= kMost ? std::malloc(size) : nullptr; })) {}
  ~SmallMachine() { molva::SetAllocateFunction(replaced_); }
  SmallMachine(const SmallMachine&) = delete;
  SmallMachine& operator=(const SmallMachine&) = delete;

 private:
  static constexpr std::size_t kMost = std::size_t{1} << 26;
  molva::AllocateFunction replaced_;
};

Matrix Read(const std::string& text, int denseinput) {
  const testing_support::TempFolder folder;
  mardle::RunParams params;
  params.filename = molva::mystrdup(folder.Write("m", text).c_str());
  params.denseinput = denseinput;
  const SmallMachine machine;
  Matrix mat;
  mardle::ReadMatrix(params, mat);
  return mat;
}

// What reading ends with, "" when it succeeds.
std::string Outcome(const std::string& text, int denseinput) {
  const testing_support::FatalThrows throws;
  try {
    Read(text, denseinput);
  } catch (const testing_support::Fatal& error) {
    return error.what();
  }
  return "";
}

// A header count and what a file with it ends with.
struct Count {
  const char* number;
  std::string outcome;
};

std::string WrongRows(const std::string& nrows, const std::string& found) {
  return "ReadMat: Something wrong with the number of rows in the input file. Nrows=" + nrows +
         ", ActualNrows=" + found + "\n";
}

std::string WrongNonZeros(const std::string& nnz, const std::string& found) {
  return "ReadMat: Something wrong with the number of nonzeros in the input file. NNZ=" + nnz +
         ", ActualNNZ=" + found + "\n";
}

std::string WrongColumn(const std::string& ncols, const std::string& column) {
  return "Column number is greater than ncols. Ncols=" + ncols + ", ColNum=" + column + ", Row=0\n";
}

std::string WrongValues(const std::string& ncols) {
  return "Input Error: Row 0 of the input file has 2 entries instead of " + ncols + "!\n";
}

std::string NotToBeHad(const std::string& name, const std::string& bytes) {
  return "***Memory allocation failed for " + name + ". Requested size: " + bytes + " bytes";
}

std::string OutOfRange(const std::string& number) {
  return "ReadMat: The number " + number + " in the header of the input file is out of range!\n";
}

const std::string kBeyond = "2147483648";
const std::string kFarBeyond = "100000000000";

// Two rows of two entries.
const std::string kSparseRows = "1 5 2 6\n1 7 2 8\n";

// With no rows to read, all entries are missing.
TEST(SparseCounts, OfRows) {
  const std::vector<Count> counts = {{"-1", WrongNonZeros("4", "0")},
                                     {"0", WrongNonZeros("4", "0")},
                                     {"1", WrongNonZeros("4", "2")},
                                     {"2", ""},
                                     {"46341", WrongRows("46341", "2")},
                                     {"65536", WrongRows("65536", "2")},
                                     {"65537", WrongRows("65537", "2")},
                                     {"2147483647", NotToBeHad("ReadMat: rowptr", "8589934592")},
                                     {kBeyond.c_str(), OutOfRange(kBeyond)},
                                     {kFarBeyond.c_str(), OutOfRange(kFarBeyond)}};
  for (const auto& [number, outcome] : counts) {
    EXPECT_EQ(Outcome(std::string(number) + " 2 4\n" + kSparseRows, 0), outcome) << number;
  }
}

// Every column has a label: a table of pointers.
TEST(SparseCounts, OfColumns) {
  const std::vector<Count> counts = {{"-1", WrongColumn("-1", "0")},
                                     {"0", WrongColumn("0", "0")},
                                     {"1", WrongColumn("1", "1")},
                                     {"2", ""},
                                     {"46341", ""},
                                     {"65536", ""},
                                     {"65537", ""},
                                     {"2147483647", NotToBeHad("ReadMat: clabel", "17179869176")},
                                     {kBeyond.c_str(), OutOfRange(kBeyond)},
                                     {kFarBeyond.c_str(), OutOfRange(kFarBeyond)}};
  for (const auto& [number, outcome] : counts) {
    EXPECT_EQ(Outcome("2 " + std::string(number) + " 4\n" + kSparseRows, 0), outcome) << number;
  }
}

TEST(SparseCounts, OfEntries) {
  const std::vector<Count> counts = {{"-1", WrongNonZeros("-1", "4")},
                                     {"0", WrongNonZeros("0", "4")},
                                     {"1", WrongNonZeros("1", "4")},
                                     {"4", ""},
                                     {"46341", WrongNonZeros("46341", "4")},
                                     {"65536", WrongNonZeros("65536", "4")},
                                     {"65537", WrongNonZeros("65537", "4")},
                                     {"2147483647", NotToBeHad("ReadMat: rowind", "8589934588")},
                                     {kBeyond.c_str(), OutOfRange(kBeyond)},
                                     {kFarBeyond.c_str(), OutOfRange(kFarBeyond)}};
  for (const auto& [number, outcome] : counts) {
    EXPECT_EQ(Outcome("2 2 " + std::string(number) + "\n" + kSparseRows, 0), outcome) << number;
  }
}

const std::string kDenseRows = "5 6\n7 8\n";

// Rows behind the last are not read.
TEST(DenseCounts, OfRows) {
  const std::vector<Count> counts = {{"-1", WrongRows("-1", "0")},
                                     {"0", ""},
                                     {"1", ""},
                                     {"2", ""},
                                     {"46341", WrongRows("46341", "2")},
                                     {"65536", WrongRows("65536", "2")},
                                     {"65537", WrongRows("65537", "2")},
                                     {"2147483647", NotToBeHad("ReadMat: rowval", "17179869176")},
                                     {kBeyond.c_str(), OutOfRange(kBeyond)},
                                     {kFarBeyond.c_str(), OutOfRange(kFarBeyond)}};
  for (const auto& [number, outcome] : counts) {
    EXPECT_EQ(Outcome(std::string(number) + " 2\n" + kDenseRows, 1), outcome) << number;
  }
}

TEST(DenseCounts, OfColumns) {
  const std::vector<Count> counts = {{"-1", WrongValues("-1")},
                                     {"0", WrongValues("0")},
                                     {"1", WrongValues("1")},
                                     {"2", ""},
                                     {"46341", WrongValues("46341")},
                                     {"65536", WrongValues("65536")},
                                     {"65537", WrongValues("65537")},
                                     {"2147483647", NotToBeHad("ReadMat: rowval", "17179869176")},
                                     {kBeyond.c_str(), OutOfRange(kBeyond)},
                                     {kFarBeyond.c_str(), OutOfRange(kFarBeyond)}};
  for (const auto& [number, outcome] : counts) {
    EXPECT_EQ(Outcome("2 " + std::string(number) + "\n" + kDenseRows, 1), outcome) << number;
  }
}

// The square of 46341 cells is the first that no int can count, that of 65536 the first that wraps
// to nothing in 32 bits, that of 65537 to little.
TEST(DenseCounts, OfRowsAndColumnsAlike) {
  const std::vector<Count> counts = {{"46341", NotToBeHad("ReadMat: rowval", "8589953124")},
                                     {"65536", NotToBeHad("ReadMat: rowval", "17179869184")},
                                     {"65537", NotToBeHad("ReadMat: rowval", "17180393476")}};
  for (const auto& [number, outcome] : counts) {
    EXPECT_EQ(Outcome(std::string(number) + " " + number + "\n" + kDenseRows, 1), outcome)
        << number;
  }
}

// A third number tells a dense file nothing, as long as it is one.
TEST(DenseCounts, OfEntries) {
  for (const char* number : {"-1", "0", "1", "46341", "65536", "65537", "2147483647"}) {
    EXPECT_EQ(Outcome("2 2 " + std::string(number) + "\n" + kDenseRows, 1), "") << number;
  }
  for (const std::string& number : {kBeyond, kFarBeyond}) {
    EXPECT_EQ(Outcome("2 2 " + number + "\n" + kDenseRows, 1), OutOfRange(number));
  }
}

TEST(HeaderCounts, ReachTheMatrix) {
  const Matrix mat = Read("2 65537 4\n" + kSparseRows, 0);
  EXPECT_EQ(mat.ncols, 65537);
  EXPECT_EQ(mat.clabels.size(), 65537U);
  EXPECT_STREQ(mat.clabels[65536], "col65537");
  EXPECT_EQ(Ints(mat.rowind.begin(), mat.rowind.end()), (Ints{0, 1, 0, 1}));
}

// A line that ends with "12 34": blanks before it make it so long.
std::string Line(std::size_t length) { return std::string(length - 5, ' ') + "12 34"; }

// The buffer holds 131,071 characters. One more than 131,070 is the newline, which then has no room
// and is an empty line of its own; then the 4 has none, then the 34.
constexpr std::size_t kFits = 131070;

TEST(LongRows, FitWithTheirNewline) {
  const Matrix mat = Read("2 20 2\n" + Line(kFits) + "\n7 8\n", 0);
  EXPECT_EQ(Ints(mat.rowptr.begin(), mat.rowptr.end()), (Ints{0, 1, 2}));
  EXPECT_EQ(Ints(mat.rowind.begin(), mat.rowind.end()), (Ints{11, 6}));
  EXPECT_EQ(Floats(mat.rowval.begin(), mat.rowval.end()), (Floats{34, 8}));
}

TEST(LongRows, ThatFillTheBufferLeaveAnEmptyRowBehind) {
  const Matrix mat = Read("3 20 2\n" + Line(kFits + 1) + "\n7 8\n", 0);
  EXPECT_EQ(Ints(mat.rowptr.begin(), mat.rowptr.end()), (Ints{0, 1, 1, 2}));
  EXPECT_EQ(Floats(mat.rowval.begin(), mat.rowval.end()), (Floats{34, 8}));
  // At the end of the file there is no newline to be left.
  EXPECT_EQ(Outcome("1 20 1\n" + Line(kFits + 1), 0), "");
}

TEST(LongRows, AreSplitWithinAValue) {
  EXPECT_EQ(Outcome("3 20 2\n" + Line(kFits + 2) + "\n7 8\n", 0),
            "Value could not be found for column! Row:1, NNZ:1\n");
}

TEST(LongRows, AreSplitBeforeAValue) {
  EXPECT_EQ(Outcome("3 20 2\n" + Line(kFits + 3) + "\n7 8\n", 0),
            "Value could not be found for column! Row:0, NNZ:0\n");
}

TEST(LongDenseRows, AreSplitLikeSparseOnes) {
  const auto wrong = [](const std::string& row, const std::string& found) {
    return "Input Error: Row " + row + " of the input file has " + found +
           " entries instead of 2!\n";
  };
  EXPECT_EQ(Outcome("2 2\n" + Line(kFits) + "\n7 8\n", 1), "");
  EXPECT_EQ(Outcome("2 2\n" + Line(kFits + 1) + "\n7 8\n", 1), wrong("1", "0"));
  EXPECT_EQ(Outcome("2 2\n" + Line(kFits + 2) + "\n7 8\n", 1), wrong("1", "1"));
  EXPECT_EQ(Outcome("2 2\n" + Line(kFits + 3) + "\n7 8\n", 1), wrong("0", "1"));
}

TEST(LongHeaders, AreSplitLikeRows) {
  const auto header = [](std::size_t length) { return std::string(length - 5, ' ') + "1 2 1"; };
  EXPECT_EQ(Outcome(header(kFits) + "\n1 5\n", 0), "");
  // The newline is the first row.
  EXPECT_EQ(Outcome(header(kFits + 1) + "\n1 5\n", 0), WrongNonZeros("1", "0"));
  // The header "1 2" of no entries, and the row "1".
  EXPECT_EQ(Outcome(header(kFits + 2) + "\n1 5\n", 0),
            "Value could not be found for column! Row:0, NNZ:0\n");
  EXPECT_EQ(Outcome(header(kFits + 3) + "\n1 5\n", 0),
            "Value could not be found for column! Row:0, NNZ:0\n");
}

}  // namespace
