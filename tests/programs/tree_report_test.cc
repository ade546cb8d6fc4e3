// SPDX-License-Identifier: MIT
#include "programs/tree_report.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "programs/io/labels.h"
#include "tests/testing/allocation.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"

namespace {

using mardle::Matrix;
using mardle::RunParams;
using testing_support::OutputOf;
using testing_support::ReadText;
using Part = std::vector<int>;
using Texts = std::vector<std::string>;

// A dense matrix with the columns "east", "north", ...
Matrix DenseMatrix(const std::vector<std::vector<float>>& rows, const Texts& classes = {}) {
  const std::vector<const char*> labels = {"east", "north", "up", "then"};
  const std::size_t columns = rows[0].size();
  Matrix mat;
  mat.nrows = static_cast<int>(rows.size());
  mat.ncols = static_cast<int>(columns);
  mat.rowval = molva::AllocFloats(std::int64_t{mat.nrows} * mat.ncols, "rowval");
  for (std::size_t i = 0; i < rows.size(); ++i) {
    std::copy(rows[i].begin(), rows[i].end(), mat.rowval.begin() + i * columns);
  }
  mat.clabels = molva::Strings(mat.ncols, "clabels");
  for (std::size_t j = 0; j < columns; ++j) mat.clabels.Set(j, labels[j]);
  if (!classes.empty()) mat.rclasses = molva::Strings(mat.nrows, "rclasses");
  for (std::size_t i = 0; i < classes.size(); ++i) mat.rclasses.Set(i, classes[i].c_str());
  mardle::SetUpClasses(mat);
  return mat;
}

// Three directions: clusters 0 (0,1), 1 (1,0) and 2 (0.8,0.6). Clusters 1 and 2 are the most
// similar, 0.8, and are joined first, into node 3; cluster 0 is at 0 to cluster 1 and at 0.6 to
// cluster 2, so that the reordering puts 2 before 1.
const Part kPairs = {1, 0, 2, 1, 0, 2};
Matrix ThreePairs(const Texts& classes = {}) {
  return DenseMatrix({{1, 0}, {0, 1}, {4, 3}, {2, 0}, {0, 2}, {8, 6}}, classes);
}

// Two directions at right angles.
Matrix TwoPairs(const Texts& classes = {}) {
  return DenseMatrix({{1, 0}, {0, 1}, {2, 0}, {0, 2}}, classes);
}
const Part kTwo = {0, 1, 0, 1};

RunParams Params(int nclusters) {
  RunParams params;
  params.colmodel = 1;
  params.nclusters = nclusters;
  params.showtree = 1;
  params.treecrfun = 2;
  return params;
}

void Show(const RunParams& params, const Matrix& mat, const Part& part) {
  mardle::ShowHACTree(params, mat, {params.nclusters, part.data()},
                      {.written = params.writetree, .printed = params.showtree});
}

std::string Report(const RunParams& params, const Matrix& mat, const Part& part) {
  return OutputOf([&] { Show(params, mat, part); });
}

Texts LinesOf(const std::string& text) {
  Texts lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

const std::string kRule = std::string(80, '-') + "\n";

std::string Title(const std::string& criterion) {
  return "\n" + kRule + "Hierarchical Tree that optimizes the " + criterion +
         " criterion function...\n" + kRule;
}

// The drawing is 7 wide, so the rule has 7 + 5 + 5 hyphens.
TEST(TreeReport, DrawsTheTreeUnderABlankHeaderWithoutClasses) {
  const std::string rule = std::string(17, '-') + "\n";
  EXPECT_EQ(Report(Params(2), TwoPairs(), kTwo), Title("I2") + "       \n" + rule +
                                                     "2  \n"
                                                     "|---0  \n"
                                                     "|---1  \n" +
                                                     rule + kRule);
}

TEST(TreeReport, TakesASingleClassForNone) {
  EXPECT_EQ(Report(Params(2), TwoPairs({"x", "x", "x", "x"}), kTwo),
            Report(Params(2), TwoPairs(), kTwo));
}

// 9 + 5 * 2 + 5 hyphens.
TEST(TreeReport, CountsTheClassesOfEachCluster) {
  const std::string rule = std::string(24, '-') + "\n";
  EXPECT_EQ(Report(Params(3), ThreePairs({"x", "y", "x", "x", "y", "y"}), kPairs),
            Title("I2") + "               x    y \n" + rule +
                "4  \n"
                "|-----0        0    2 \n"
                "|-3  \n"
                "  |---2        1    1 \n"
                "  |---1        2    0 \n" +
                rule + kRule);
}

TEST(TreeReport, CutsClassNamesToFourCharactersAndAlignsShorterOnes) {
  const Texts lines = LinesOf(Report(Params(2), TwoPairs({"sports", "a", "ab%d", "news"}), kTwo));
  EXPECT_EQ(lines[4], "          spor    a ab%d news ");
  EXPECT_EQ(lines[5], std::string(7 + 5 * 4 + 5, '-'));
}

TEST(TreeReport, LeavesRowsWithoutClusterOutOfTheCounts) {
  const Texts lines =
      LinesOf(Report(Params(2), DenseMatrix({{1, 0}, {0, 1}, {1, 0}, {1, 1}}, {"x", "y", "x", "y"}),
                     {0, 1, 0, -1}));
  EXPECT_EQ(lines[7], "|---0        2    0 ");
  EXPECT_EQ(lines[8], "|---1        0    1 ");
}

// The children of node 3 stay in the order of their numbers.
TEST(TreeReport, LeavesTheTreeAsItIsOnRequest) {
  RunParams params = Params(3);
  params.noreorder = 1;
  const Texts lines = LinesOf(Report(params, ThreePairs(), kPairs));
  EXPECT_EQ(Texts(lines.begin() + 6, lines.begin() + 11),
            (Texts{"4  ", "|-----0  ", "|-3  ", "  |---1  ", "  |---2  "}));
}

// A tree that is one leaf has a drawing of 3 characters.
TEST(TreeReport, DrawsASingleClusterAsItsNumber) {
  const std::string rule = std::string(13, '-') + "\n";
  EXPECT_EQ(Report(Params(1), TwoPairs(), {0, 0, 0, 0}),
            Title("I2") + "   \n" + rule + "0  \n" + rule + kRule);
}

// Codes 8 and 9 cannot build a tree.
TEST(TreeReport, NamesTheCriterionOfTheTree) {
  RunParams params = Params(2);
  params.crfun = 9;
  const char* names[] = {"I1", "I2", "E1", "G1", "G1'", "H1", "H2"};
  for (int code = 1; code <= 7; ++code) {
    params.treecrfun = code;
    EXPECT_TRUE(Report(params, TwoPairs(), kTwo).starts_with(Title(names[code - 1]))) << code;
  }
}

TEST(TreeReport, EndsTheRunOnACriterionThatBuildsNoTree) {
  RunParams params = Params(2);
  for (const int code : {8, 9, 0, -1}) {
    params.treecrfun = code;
    EXPECT_FATAL(Show(params, TwoPairs(), kTwo),
                 "Unknown clustering criterion function (CRFun) of " + std::to_string(code) + "\n");
  }
}

// The root has the composite (3.6,3.2) of 6 rows: 23.2/36, and 12.96 of 23.2 in the first column.
// Node 3 has (3.6,1.2) of 4: 14.4/16, and 12.96 of 14.4; cluster 2 has (1.6,1.2): 2.56 of 4.
TEST(TreeReport, MeasuresAndDescribesTheNodesOnRequest) {
  RunParams params = Params(3);
  params.labeltree = 1;
  params.nfeatures = 2;
  EXPECT_EQ(Report(params, ThreePairs(), kPairs),
            Title("I2") + "              Size   ISim   XSim\n" +
                "4           [    6, 0.644, 0.000] [east 55.9%, north 44.1%]\n"
                "|-----0     [    2, 1.000, 0.300] [north 100.0%, east  0.0%]\n"
                "|-3         [    4, 0.900, 0.300] [east 90.0%, north 10.0%]\n"
                "  |---2     [    2, 1.000, 0.800] [east 64.0%, north 36.0%]\n"
                "  |---1     [    2, 1.000, 0.800] [east 100.0%, north  0.0%]\n" +
                kRule);
}

TEST(TreeReport, ListsASingleColumnOfEachNode) {
  RunParams params = Params(3);
  params.labeltree = 1;
  params.nfeatures = 1;
  const Texts lines = LinesOf(Report(params, ThreePairs(), kPairs));
  EXPECT_EQ(lines[5], "4           [    6, 0.644, 0.000] [east 55.9%]");
  EXPECT_EQ(lines[6], "|-----0     [    2, 1.000, 0.300] [north 100.0%]");
}

// An empty last slot leaves the bracket open, and an empty line follows. The root has the composite
// (2,1): 4 of 5 in the first column, and 5/9.
TEST(TreeReport, LeavesTheBracketOpenWhenTheLastSlotIsEmpty) {
  RunParams params = Params(2);
  params.labeltree = 1;
  params.nfeatures = 3;
  EXPECT_EQ(Report(params, DenseMatrix({{1, 0}, {0, 1}, {2, 0}}), {0, 1, 0}),
            Title("I2") + "            Size   ISim   XSim\n" +
                "2         [    3, 0.556, 0.000] [east 80.0%, north 20.0%, \n\n"
                "|---0     [    2, 1.000, 0.000] [east 100.0%, north  0.0%, \n\n"
                "|---1     [    1, 1.000, 0.000] [north 100.0%, east  0.0%, \n\n" +
                kRule);
}

TEST(TreeReport, LeavesTheBracketOpenWithoutSlots) {
  RunParams params = Params(2);
  params.labeltree = 1;
  for (const int nfeatures : {0, -2}) {
    params.nfeatures = nfeatures;
    EXPECT_EQ(Report(params, TwoPairs(), kTwo), Title("I2") + "            Size   ISim   XSim\n" +
                                                    "2         [    4, 0.500, 0.000] [\n\n"
                                                    "|---0     [    2, 1.000, 0.000] [\n\n"
                                                    "|---1     [    2, 1.000, 0.000] [\n\n" +
                                                    kRule);
  }
}

TEST(TreeReport, MeasuresASingleCluster) {
  RunParams params = Params(1);
  params.labeltree = 1;
  params.nfeatures = 1;
  EXPECT_EQ(Report(params, DenseMatrix({{1, 0}, {3, 4}}), {0, 0}),
            Title("I2") + "        Size   ISim   XSim\n" +
                "0     [    2, 0.800, 0.000] [east 80.0%]\n" + kRule);
}

// Of 1,001 clusters cluster 1000 has one digit more, and its counts stand one column
// further right.
TEST(TreeReport, ShiftsTheCountsOfClustersOfFourDigits) {
  constexpr int kClusters = 1001;
  std::vector<std::vector<float>> rows;
  Texts classes;
  Part part;
  for (int k = 0; k < kClusters; ++k) {
    rows.push_back({1, static_cast<float>(k) / 1000});
    classes.emplace_back(k % 2 == 0 ? "x" : "y");
    part.push_back(k);
  }
  RunParams params = Params(kClusters);
  params.noreorder = 1;
  std::set<std::size_t> lengths;
  for (const std::string& line : LinesOf(Report(params, DenseMatrix(rows, classes), part))) {
    if (line.ends_with("-1000      1    0 ")) lengths.insert(line.size());
    if (line.ends_with("-999      0    1 ")) lengths.insert(line.size());
  }
  const std::size_t column = 2 * kClusters;
  EXPECT_EQ(lengths, (std::set<std::size_t>{column + 16, column + 17}));
}

TEST(TreeReport, LeavesAnEmptyClusterOut) {
  RunParams params = Params(3);
  const Texts lines = LinesOf(Report(params, TwoPairs({"x", "y", "x", "y"}), {0, 2, 0, 2}));
  EXPECT_EQ(Texts(lines.begin() + 6, lines.begin() + 9),
            (Texts{"3  ", "|-----0        2    0 ", "|-----2        0    2 "}));
}

class TreeFile : public ::testing::Test {
 protected:
  TreeFile() : params_(Params(2)) {
    params_.filename = molva::mystrdup(folder_.Path("docs.mat").c_str());
    params_.writetree = 1;
    params_.showtree = 0;
  }
  testing_support::TempFolder folder_;
  RunParams params_;
};

// A row of one cluster and a row of the other have the product 0.6.
TEST_F(TreeFile, IsWrittenWithoutAReport) {
  const Matrix mat = DenseMatrix({{1, 0}, {1, 0}, {3, 4}});
  EXPECT_EQ(Report(params_, mat, {0, 0, 1}), "");
  EXPECT_EQ(ReadText(folder_.Path("docs.mat.tree.2")), "2 0.000000\n2 0.000000\n-1 0.600000\n");
}

TEST_F(TreeFile, IsWrittenBesideTheReport) {
  params_.showtree = 1;
  EXPECT_TRUE(Report(params_, TwoPairs(), kTwo).starts_with(Title("I2")));
  EXPECT_EQ(ReadText(folder_.Path("docs.mat.tree.2")), "2 0.000000\n2 0.000000\n-1 0.000000\n");
}

TEST_F(TreeFile, IsNotWrittenUnlessAskedFor) {
  params_.writetree = 0;
  params_.showtree = 1;
  Report(params_, TwoPairs(), kTwo);
  EXPECT_FALSE(std::filesystem::exists(folder_.Path("docs.mat.tree.2")));
}

TEST_F(TreeFile, TakesTheNameGiven) {
  params_.treefile = molva::mystrdup(folder_.Path("res.tree").c_str());
  Report(params_, TwoPairs(), kTwo);
  EXPECT_EQ(ReadText(folder_.Path("res.tree")), "2 0.000000\n2 0.000000\n-1 0.000000\n");
  EXPECT_FALSE(std::filesystem::exists(folder_.Path("docs.mat.tree.2")));
}

TEST_F(TreeFile, ThatCannotBeCreatedEndsTheRunBeforeTheReport) {
  params_.showtree = 1;
  const std::string path = folder_.Path("no/such/folder/tree");
  params_.treefile = molva::mystrdup(path.c_str());
  std::string message;
  const std::string report = OutputOf(
      [&] { message = testing_support::FatalMessage([&] { Show(params_, TwoPairs(), kTwo); }); });
  EXPECT_EQ(message, "Problems in creating the tree file: " + path);
  EXPECT_EQ(report, "");
}

// Debug bit 4: one line per merge. sqrt(8) - 4 = -1.171573 is gained, and rows of the two clusters
// are at right angles.
TEST(TreeReport, ReportsMergesOnRequest) {
  RunParams params = Params(2);
  params.dbglvl = 4;
  EXPECT_TRUE(Report(params, TwoPairs(), kTwo)
                  .starts_with("Merging [    0     1 ->     2] [    4], CRval=2.83e+00 -1.171573 "
                               "0.000000\n" +
                               Title("I2")));
}

Texts BlocksOf(const RunParams& params) {
  const Matrix mat = TwoPairs({"x", "y", "x", "y"});
  testing::internal::CaptureStdout();
  const Texts names = testing_support::BlockNames([&] { Show(params, mat, kTwo); });
  testing::internal::GetCapturedStdout();
  Texts own;
  for (const std::string& name : names) {
    if (name.starts_with("ShowHACTree: ")) own.push_back(name.substr(13));
  }
  return own;
}

// The canvas has a table and four lines, the counts a table and two clusters.
TEST(TreeReport, NamesItsBlocks) {
  RunParams params = Params(2);
  EXPECT_EQ(BlocksOf(params),
            (Texts{"ptree", "tsims", "ftree", "xnode", "ynode", "tsize", "canvas", "canvas",
                   "canvas", "canvas", "canvas", "classdist", "classdist", "classdist", "ynode"}));
  params.labeltree = 1;
  const Texts blocks = BlocksOf(params);
  EXPECT_EQ(Texts(blocks.begin(), blocks.begin() + 10),
            (Texts{"ptree", "tsims", "ftree", "pwgts", "cintsim", "cextsim", "internalids",
                   "externalids", "internalwgts", "externalwgts"}));
}

}  // namespace
