// SPDX-License-Identifier: MIT
#include "tools/import/matrix_writer.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "programs/io/read_matrix.h"
#include "tests/testing/files.h"
#include "tools/import/label_text.h"

namespace {

using namespace mardle::tools;
using testing_support::ReadText;
using testing_support::TempFolder;

const Place kPlace{"in.txt", 3};

mardle::Matrix ReadBack(const std::string& path, bool dense) {
  mardle::RunParams params;
  params.filename = molva::mystrdup(path.c_str());
  params.denseinput = dense ? 1 : 0;
  mardle::Matrix mat;
  ReadMatrix(params, mat);
  return mat;
}

// Entries of 7 characters and a blank each, the last without: columns and values of one digit
// would not reach the length wanted with few entries.
std::vector<Entry> RowOfLength(std::size_t length) {
  std::vector<Entry> entries;
  std::size_t left = length + 1;
  for (int column = 10000; left > 0; ++column) {
    // "10001 1 " takes 8 characters; the first entries take up what is no multiple of it.
    const double value = left % 8 != 0 ? 12 : 1;
    left -= value == 12 ? 9 : 8;
    entries.push_back({column, value});
  }
  return entries;
}

std::string MessageOf(MatrixWriter& writer, const std::vector<Entry>& entries) {
  try {
    writer.AddRow(entries, {}, kPlace);
  } catch (const FileError& error) {
    return error.what();
  }
  return "none";
}

TEST(MatrixWriter, MardleReadsASparseMatrixBackWithItsNames) {
  const TempFolder folder;
  MatrixWriter writer({folder.Path("m")});
  writer.AddRow(std::vector<Entry>{{0, 0.1}, {2, -2.5}}, {"first", "x"}, kPlace);
  writer.AddRow({}, {"second", "y"}, kPlace);
  const std::vector<std::string> labels = {"a", "b\nc", "d"};
  const MatrixSummary summary = writer.Finish(3, labels);
  EXPECT_EQ(summary.rows, 2);
  EXPECT_EQ(summary.entries, 2);
  EXPECT_EQ(summary.empty_rows, 1);

  const mardle::Matrix mat = ReadBack(folder.Path("m"), false);
  ASSERT_EQ(mat.nrows, 2);
  EXPECT_EQ(mat.ncols, 3);
  EXPECT_EQ(mat.rowptr[1], 2);
  EXPECT_EQ(mat.rowptr[2], 2);
  EXPECT_EQ(mat.rowind[1], 2);
  EXPECT_EQ(mat.rowval[0], 0.1F);
  EXPECT_EQ(mat.rowval[1], -2.5F);
  EXPECT_STREQ(mat.clabels[1], "b c");
  EXPECT_STREQ(mat.rlabels[0], "first");
  EXPECT_EQ(mat.nclasses, 2);
}

TEST(MatrixWriter, ADenseMatrixHoldsItsZeros) {
  const TempFolder folder;
  MatrixWriter writer({folder.Path("m")}, 3);
  writer.AddRow(std::vector<Entry>{{1, 4}}, {}, kPlace);
  writer.Finish(3);
  const std::string text = ReadText(folder.Path("m"));
  EXPECT_EQ(text.substr(text.find('\n')), "\n0 4 0\n");
  const mardle::Matrix mat = ReadBack(folder.Path("m"), true);
  EXPECT_EQ(mat.nrows, 1);
  EXPECT_EQ(mat.rowval[1], 4.0F);
}

TEST(MatrixWriter, EmptyRowsAreLeftOutWithTheirNamesOnRequest) {
  const TempFolder folder;
  MatrixWriter writer({.path = folder.Path("m"), .drop_empty = true});
  writer.AddRow({}, {"empty", {}}, kPlace);
  writer.AddRow(std::vector<Entry>{{0, 1}}, {"full", {}}, kPlace);
  EXPECT_EQ(writer.Finish(1).empty_rows, 1);
  EXPECT_EQ(ReadText(folder.Path("m.rlabel")), "full\n");
}

TEST(MatrixWriter, TheLongestRowIsReadBackAndALongerOneRefused) {
  const TempFolder folder;
  MatrixWriter writer({folder.Path("m")});
  const std::vector<Entry> longest = RowOfLength(kLongestLine);
  writer.AddRow(longest, {}, kPlace);
  writer.AddRow(std::vector<Entry>{{0, 1}}, {}, kPlace);
  EXPECT_EQ(MessageOf(writer, RowOfLength(kLongestLine + 1)),
            "in.txt:3: the row would be a line of 131071 characters, and mardle reads no more than "
            "131070: raise --min-count, leave columns out or split the document");
}

TEST(MatrixWriter, ALineOfTheGreatestLengthIsNotSplit) {
  const TempFolder folder;
  MatrixWriter writer({folder.Path("m")});
  const std::vector<Entry> longest = RowOfLength(kLongestLine);
  writer.AddRow(longest, {}, kPlace);
  writer.AddRow(std::vector<Entry>{{0, 1}}, {}, kPlace);
  writer.Finish(longest.back().column + 1);
  const mardle::Matrix mat = ReadBack(folder.Path("m"), false);
  EXPECT_EQ(mat.rowptr[1], static_cast<int>(longest.size()));
  EXPECT_EQ(mat.rowptr[2], static_cast<int>(longest.size()) + 1);
}

TEST(MatrixWriter, ReplacesNothingUnasked) {
  for (const char* suffix : {"", ".rlabel", ".rclass", ".clabel"}) {
    const TempFolder folder;
    const std::string existing = folder.Write(std::string("m") + suffix, "mine");
    EXPECT_THROW(MatrixWriter({folder.Path("m")}), FileError) << suffix;
    EXPECT_EQ(ReadText(existing), "mine");
  }
}

TEST(MatrixWriter, LabelsOfAnEarlierMatrixGo) {
  const TempFolder folder;
  folder.Write("m", "old");
  folder.Write("m.rclass", "old");
  MatrixWriter writer({.path = folder.Path("m"), .replace = true});
  writer.AddRow(std::vector<Entry>{{0, 1}}, {}, kPlace);
  writer.Finish(1);
  EXPECT_FALSE(std::filesystem::exists(folder.Path("m.rclass")));
}

TEST(MatrixWriter, NothingIsLeftOfAnUnfinishedMatrix) {
  const TempFolder folder;
  {
    MatrixWriter writer({folder.Path("m")});
    writer.AddRow(std::vector<Entry>{{0, 1}}, {"a", "b"}, kPlace);
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path("")));
}

TEST(MatrixWriter, AMatrixWithoutRowsIsRefused) {
  const TempFolder folder;
  MatrixWriter writer({folder.Path("m")});
  EXPECT_THROW(writer.Finish(1), FileError);
}

}  // namespace
