// SPDX-License-Identifier: MIT
#include "programs/quality_report.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "lib/support/printed.h"
#include "programs/io/labels.h"
#include "tests/testing/allocation.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"

namespace {

using mardle::Matrix;
using mardle::RunParams;
using Texts = std::vector<std::string>;
using Part = std::vector<int>;

// A dense matrix of unit rows: each letter stands for a direction, 'a' for the first column, 'b'
// for the second, and so on. Its rows carry the classes, when there are any.
Matrix UnitRows(const std::string& directions, const Texts& classes = {}) {
  constexpr std::size_t kColumns = 4;
  Matrix mat;
  mat.nrows = static_cast<int>(directions.size());
  mat.ncols = kColumns;
  mat.rowval = molva::AllocFloatsSet(mat.nrows * std::int64_t{kColumns}, 0, "rowval");
  for (std::size_t i = 0; i < directions.size(); ++i) {
    mat.rowval[i * kColumns + static_cast<std::size_t>(directions[i] - 'a')] = 1;
  }
  if (!classes.empty()) mat.rclasses = molva::Strings(mat.nrows, "rclasses");
  for (std::size_t i = 0; i < classes.size(); ++i) mat.rclasses.Set(i, classes[i].c_str());
  mardle::SetUpClasses(mat);
  return mat;
}

RunParams Params(int nclusters) {
  RunParams params;
  params.colmodel = 1;
  params.nclusters = nclusters;
  return params;
}

std::string Report(const RunParams& params, const Matrix& mat, const Part& part, float crvalue = 4,
                   const std::vector<int>& ptree = {}) {
  return testing_support::OutputOf([&] {
    mardle::EvaluateClusters(params, mat, {params.nclusters, part.data()}, ptree, crvalue);
  });
}

Texts LinesOf(const std::string& text) {
  Texts lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

const std::string kRule = std::string(72, '-') + "\n";

// Rows of a cluster have similarity 1 with each other and 0 with those of the other cluster.
TEST(QualityReport, TellsSizesAndSimilarities) {
  EXPECT_EQ(Report(Params(2), UnitRows("aabbb"), {0, 0, 1, 1, 1}, 5),
            kRule + "2-way clustering solution: [I2=5.00e+00]\n" + kRule +
                "cid  Size  ISim  ISdev   ESim  ESdev  | \n" + kRule +
                "  0     2 +1.000 +0.000 +0.000 +0.000 | \n" +
                "  1     3 +1.000 +0.000 +0.000 +0.000 | \n" + kRule);
}

// Of the 3 * 3 pairs of rows of a cluster, and of two clusters, 2 * 2 + 1 are equal: 5/9. The
// averages of the rows are 2/3, 2/3 and 1/3, their deviation sqrt(6/81 / 2).
TEST(QualityReport, TellsDeviations) {
  const Texts lines = LinesOf(Report(Params(2), UnitRows("aabaab"), {0, 0, 0, 1, 1, 1}));
  ASSERT_EQ(lines.size(), 8U);
  EXPECT_EQ(lines[5], "  0     3 +0.556 +0.192 +0.556 +0.192 | ");
  EXPECT_EQ(lines[6], "  1     3 +0.556 +0.192 +0.556 +0.192 | ");
}

// The four rows in three directions lie at similarity 0 and -1, so all signs occur.
TEST(QualityReport, PrintsTheSignOfEverySimilarity) {
  Matrix mat = UnitRows("aabb");
  mat.rowval[2 * 4 + 0] = -1;
  mat.rowval[2 * 4 + 1] = 0;
  mat.rowval[3 * 4 + 0] = -1;
  mat.rowval[3 * 4 + 1] = 0;
  const Texts lines = LinesOf(Report(Params(2), mat, {0, 0, 1, 1}));
  EXPECT_EQ(lines[5], "  0     2 +1.000 +0.000 -1.000 +0.000 | ");
}

// Row 0 has no length and no product with any row. Row 1 has similarity 1 with itself; that it has
// no deviation is a matter of its being alone.
TEST(QualityReport, TellsWhatTheDataBroughtFromWhatNumbersMade) {
  for (const float undefined : {std::nanf(""), -std::nanf("")}) {
    Matrix mat = UnitRows("ab");
    mat.rowval[0] = undefined;
    molva::DataBringNotANumber(true);
    const Texts lines = LinesOf(Report(Params(2), mat, {0, 1}, undefined));
    molva::DataBringNotANumber(false);
    EXPECT_EQ(lines[1], "2-way clustering solution: [I2=nan]");
    EXPECT_EQ(lines[5], "  0     1  +nan  +nan  +nan  +nan | ");
    EXPECT_EQ(lines[6], "  1     1 +1.000  -nan  +nan  +nan | ");
  }
}

TEST(QualityReport, TellsEntropyPurityAndClassCountsOfRowsWithClasses) {
  const Matrix mat = UnitRows("aabb", {"x", "x", "x", "y"});
  EXPECT_EQ(Report(Params(2), mat, {0, 0, 1, 1}),
            kRule + "2-way clustering: [I2=4.00e+00], Entropy: 0.500, Purity: 0.750\n" + kRule +
                "cid  Size  ISim  ISdev   ESim  ESdev  Entpy Purty |    x    y \n" + kRule +
                "  0     2 +1.000 +0.000 +0.000 +0.000 0.000 1.000 |    2    0 \n" +
                "  1     2 +1.000 +0.000 +0.000 +0.000 1.000 0.500 |    1    1 \n" + kRule);
}

TEST(QualityReport, WeighsTheSolutionByClusterSize) {
  const Matrix mat = UnitRows("aabbbb", {"x", "y", "x", "x", "x", "x"});
  const Texts lines = LinesOf(Report(Params(2), mat, {0, 0, 1, 1, 1, 1}));
  EXPECT_EQ(lines[1], "2-way clustering: [I2=4.00e+00], Entropy: 0.333, Purity: 0.833");
}

TEST(QualityReport, CutsClassNamesToFourCharactersAndAlignsShorterOnes) {
  const Matrix mat = UnitRows("aabb", {"sports", "a", "news", "ab%d"});
  const Texts lines = LinesOf(Report(Params(2), mat, {0, 0, 1, 1}));
  EXPECT_EQ(lines[3], "cid  Size  ISim  ISdev   ESim  ESdev  Entpy Purty | spor    a news ab%d ");
}

TEST(QualityReport, DividesTheEntropyByThatOfAllClasses) {
  const Matrix mat = UnitRows("aabb", {"p", "q", "r", "s"});
  const Texts lines = LinesOf(Report(Params(2), mat, {0, 0, 1, 1}));
  EXPECT_EQ(lines[5], "  0     2 +1.000 +0.000 +0.000 +0.000 0.500 0.500 |    1    1    0    0 ");
}

TEST(QualityReport, TakesASingleClassForNone) {
  const Matrix mat = UnitRows("aabb", {"x", "x", "x", "x"});
  EXPECT_EQ(Report(Params(2), mat, {0, 0, 1, 1}),
            Report(Params(2), UnitRows("aabb"), {0, 0, 1, 1}));
}

TEST(QualityReport, DrawsRulesAsWideAsTheClasses) {
  const struct {
    int nclasses;
    std::size_t length;
  } rows[] = {{1, 72}, {2, 72}, {4, 72}, {5, 77}, {10, 102}, {600, 3052}};
  for (const auto& row : rows) {
    Texts classes;
    for (int k = 0; k < row.nclasses; ++k) classes.push_back(std::to_string(k));
    const Matrix mat = UnitRows(std::string(classes.size(), 'a'), classes);
    const Texts lines = LinesOf(Report(Params(1), mat, Part(classes.size(), 0)));
    ASSERT_EQ(lines.size(), 7U);
    for (const std::size_t rule : {0U, 2U, 4U, 6U}) {
      EXPECT_EQ(lines[rule], std::string(row.length, '-')) << row.nclasses;
    }
  }
}

// Without its stored entries row 4 is dropped by the preparation. Its class is counted nowhere: the
// two clusters hold one class each, so the solution is pure.
TEST(QualityReport, LeavesRowsWithoutClusterOut) {
  Matrix mat = UnitRows("aabbb", {"x", "x", "y", "y", "z"});
  mat.rowptr = molva::AllocIntsSet(6, 4, "rowptr");
  mat.rowind = molva::AllocIntsSet(4, 0, "rowind");
  mat.rowval = molva::AllocFloatsSet(4, 1, "rowval");
  for (int i = 0; i < 4; ++i) mat.rowptr[i] = i;
  mat.rowind[2] = mat.rowind[3] = 1;
  const Texts lines = LinesOf(Report(Params(2), mat, {0, 0, 1, 1, -1}));
  EXPECT_EQ(lines[1], "2-way clustering: [I2=4.00e+00], Entropy: 0.000, Purity: 1.000");
  EXPECT_EQ(lines[5], "  0     2 +1.000 +0.000 +0.000 +0.000 0.000 1.000 |    2    0    0 ");
  EXPECT_EQ(lines[6], "  1     2 +1.000 +0.000 +0.000 +0.000 0.000 1.000 |    0    2    0 ");
}

// The complete tree of four rows: 0 and 1 are joined into node 4, 2 and 3 into node 5.
const std::vector<int> kFullTree = {4, 4, 5, 5, 6, 6, -1, -1};

// Class x has three rows, all in the root with one other, R = 1 and P = 3/4: F = 6/7. Class y fills
// a leaf. Overall (3 * 6/7 + 1) / 4.
TEST(QualityReport, TellsFScoresWithTheCompleteTree) {
  const Matrix mat = UnitRows("aabb", {"x", "x", "x", "y"});
  EXPECT_EQ(Report(Params(2), mat, {0, 0, 1, 1}, 4, kFullTree),
            kRule +
                "2-way clustering: [I2=4.00e+00], Entropy: 0.500, Purity: 0.750, FScore: 0.893\n" +
                kRule +
                "         Class Name:     x    y \n"
                "         Class Size:     3    1 \n"
                "  Max F-Score Value:  0.86 1.00 \n" +
                kRule + "cid  Size  ISim  ISdev   ESim  ESdev  Entpy Purty |    x    y \n" + kRule +
                "  0     2 +1.000 +0.000 +0.000 +0.000 0.000 1.000 |    2    0 \n" +
                "  1     2 +1.000 +0.000 +0.000 +0.000 1.000 0.500 |    1    1 \n" + kRule);
}

TEST(QualityReport, CutsClassNamesAboveTheFScoresToo) {
  const Matrix mat = UnitRows("aabb", {"sports", "a", "news", "ab%d"});
  const Texts lines = LinesOf(Report(Params(2), mat, {0, 0, 1, 1}, 4, kFullTree));
  EXPECT_EQ(lines[3], "         Class Name:  spor    a news ab%d ");
}

TEST(QualityReport, TellsNoFScoresWithoutClasses) {
  const Matrix mat = UnitRows("aabb");
  EXPECT_EQ(Report(Params(2), mat, {0, 0, 1, 1}, 4, kFullTree),
            Report(Params(2), mat, {0, 0, 1, 1}));
}

// Row 2 is dropped: the root is node 6, one above the internal nodes of the three others. Its class
// z has no row that counts.
TEST(QualityReport, LeavesRowsWithoutClusterOutOfTheFScores) {
  Matrix mat = UnitRows("aaab", {"x", "x", "z", "y"});
  const Texts lines =
      LinesOf(Report(Params(2), mat, {0, 0, -1, 1}, 4, {5, 5, -1, 6, -1, 6, -1, -1}));
  EXPECT_TRUE(lines[1].ends_with(", FScore: 1.000")) << lines[1];
  EXPECT_EQ(lines[4], "         Class Size:     2    0    1 ");
  EXPECT_EQ(lines[5], "  Max F-Score Value:  1.00 0.00 1.00 ");
}

// Codes 8 and 9 cross, as everywhere in the reports.
TEST(QualityReport, NamesTheCriterion) {
  const Matrix plain = UnitRows("ab");
  const Matrix classed = UnitRows("ab", {"x", "y"});
  RunParams params = Params(1);
  params.crfun = 8;
  EXPECT_EQ(LinesOf(Report(params, plain, {0, 0}, 0.00125F))[1],
            "1-way clustering solution: [H3=1.25e-03]");
  params.crfun = 9;
  EXPECT_TRUE(LinesOf(Report(params, classed, {0, 0}, 12345))[1].starts_with(
      "1-way clustering: [G3=1.23e+04], "));
}

// 0/0 is printed as it comes, sign and all.
TEST(QualityReport, PrintsAnEmptyClusterWithoutASpecialCase) {
  const Matrix mat = UnitRows("aabb", {"x", "x", "y", "y"});
  const Texts lines = LinesOf(Report(Params(3), mat, {0, 0, 1, 1}));
  EXPECT_EQ(lines[5], "  0     2 +1.000 +0.000 +0.000 +0.000 0.000 1.000 |    2    0 ");
  EXPECT_TRUE(lines[7].starts_with("  2     0 ")) << lines[7];
  EXPECT_NE(lines[7].find("nan "), std::string::npos) << lines[7];
  EXPECT_NE(lines[7].find(" 0.000 "), std::string::npos) << lines[7];
  EXPECT_TRUE(lines[7].ends_with("nan |    0    0 ")) << lines[7];
}

// Two clusters, four rows, two classes; some names keep another beginning.
TEST(QualityReport, NamesTheBlockThatCannotBeHad) {
  const Matrix mat = UnitRows("aabb", {"x", "x", "y", "y"});
  const Part part = {0, 0, 1, 1};
  const RunParams params = Params(2);
  const std::vector<int> ptree = {4, 4, 5, 5, 6, 6, -1, -1};
  const auto report_with = [&](int successes) {
    const testing_support::FailingAllocations failing(successes);
    mardle::EvaluateClusters(params, mat, {params.nclusters, part.data()}, ptree, 4);
  };
  const struct {
    const char* name;
    std::size_t nbytes;
  } blocks[] = {
      {"EvaluateClusters: pwgts", 8},     {"EvaluateClusters: cintsim", 8},
      {"EvaluateClusters: cintsdev", 8},  {"EvaluateClusters: izscores", 16},
      {"EvaluateClusters: cextsim", 8},   {"EvaluateClusters: cextsdev", 8},
      {"EvaluateClusters: ezscores", 16}, {"EvaluateClusters: classdist", 2 * sizeof(int*)},
      {"EvaluateClusters: classdist", 8}, {"EvaluateClusters: classdist", 8},
      {"EvaluatePartition: ocldist", 8},  {"EvaluatePartition: entropies", 8},
      {"EvaluatePartition: purities", 8}, {"EvaluatePartition: fscores", 8}};
  int successes = 0;
  for (const auto& block : blocks) {
    EXPECT_FATAL(report_with(successes),
                 std::string("***Memory allocation failed for ") + block.name +
                     ". Requested size: " + std::to_string(block.nbytes) + " bytes");
    ++successes;
  }
}

}  // namespace
