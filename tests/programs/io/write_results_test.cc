// SPDX-License-Identifier: MIT
#include "programs/io/write_results.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "lib/molva.h"
#include "tests/testing/allocation.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"

namespace {

using mardle::Matrix;
using mardle::RunParams;
using testing_support::ReadText;

// A dense matrix.
Matrix DenseMatrix(const std::vector<std::array<float, 2>>& rows) {
  Matrix mat;
  mat.nrows = static_cast<int>(rows.size());
  mat.ncols = 2;
  mat.rowval = molva::AllocFloats(2 * mat.nrows, "rowval");
  for (std::size_t i = 0; i < rows.size(); ++i) {
    mat.rowval[2 * i] = rows[i][0];
    mat.rowval[2 * i + 1] = rows[i][1];
  }
  return mat;
}

// Two clusters of the same shape: two rows in one direction, a third across.
const std::vector<std::array<float, 2>> kTwoTriples = {{1, 0}, {1, 0}, {0, 1},
                                                       {1, 0}, {1, 0}, {0, 1}};
const std::vector<int> kTriples = {0, 0, 0, 1, 1, 1};

struct ScoredRow {
  int cluster;
  double internal, external;
};

std::vector<ScoredRow> ScoredRows(const std::string& text) {
  std::vector<ScoredRow> rows;
  std::istringstream lines(text);
  ScoredRow row{};
  while (lines >> row.cluster >> row.internal >> row.external) rows.push_back(row);
  return rows;
}

// The lines made from the library's own scores.
std::string ExpectedScores(const RunParams& params, const Matrix& mat,
                           const std::vector<int>& part) {
  const auto n = static_cast<std::size_t>(params.nclusters);
  std::vector<int> sizes(n);
  std::vector<float> isim(n);
  std::vector<float> isdev(n);
  std::vector<float> esim(n);
  std::vector<float> esdev(n);
  std::vector<float> iz(part.size());
  std::vector<float> ez(part.size());
  MOLVA_V_GetClusterStats(mat.nrows, mat.ncols, mat.rowptr.get(), mat.rowind.get(),
                          mat.rowval.get(), params.simfun, params.rowmodel, params.colmodel,
                          params.prune, params.nclusters, part.data(), sizes.data(), isim.data(),
                          isdev.data(), iz.data(), esim.data(), esdev.data(), ez.data());
  std::string text;
  for (std::size_t i = 0; i < part.size(); ++i) {
    std::array<char, 100> line;
    std::snprintf(line.data(), line.size(), "%d %f %f\n", part[i], static_cast<double>(iz[i]),
                  static_cast<double>(ez[i]));
    text += line.data();
  }
  return text;
}

class ClusteringFile : public ::testing::Test {
 protected:
  ClusteringFile() {
    params_.filename = molva::mystrdup(folder_.Path("docs.mat").c_str());
    params_.colmodel = 1;
    params_.nclusters = 2;
  }

  void NameOutput(const std::string& path) { params_.outputfile = molva::mystrdup(path.c_str()); }

  // The text of the file written for one row per cluster number.
  std::string Written(const std::vector<int>& part) {
    NameOutput(folder_.Path("res.txt"));
    Matrix mat;
    mat.nrows = static_cast<int>(part.size());
    mardle::WriteClustering(params_, mat, {params_.nclusters, part.data()});
    return ReadText(folder_.Path("res.txt"));
  }

  testing_support::TempFolder folder_;
  RunParams params_;
};

TEST_F(ClusteringFile, HoldsTheClusterOfEachRowOnALine) {
  EXPECT_EQ(Written({2, 0, 10, 1}), "2\n0\n10\n1\n");
}

TEST_F(ClusteringFile, HoldsMinusOneForARowWithoutCluster) {
  EXPECT_EQ(Written({0, -1}), "0\n-1\n");
}

TEST_F(ClusteringFile, IsEmptyForAMatrixWithoutRows) { EXPECT_EQ(Written({}), ""); }

TEST_F(ClusteringFile, IsNamedAfterTheMatrixAndTheNumberOfClusters) {
  Matrix mat;
  mat.nrows = 1;
  const int part = 4;
  params_.nclusters = 5;
  mardle::WriteClustering(params_, mat, {params_.nclusters, &part});
  EXPECT_EQ(ReadText(folder_.Path("docs.mat.clustering.5")), "4\n");
}

TEST_F(ClusteringFile, TakesTheNameGivenInPlaceOfItsOwn) {
  EXPECT_EQ(Written({0}), "0\n");
  EXPECT_FALSE(std::filesystem::exists(folder_.Path("docs.mat.clustering.2")));
}

TEST_F(ClusteringFile, ReplacesAnEarlierOne) {
  folder_.Write("res.txt", "an earlier and longer text\n");
  EXPECT_EQ(Written({1}), "1\n");
}

TEST_F(ClusteringFile, ThatCannotBeOpenedEndsTheRun) {
  const std::string path = folder_.Path("no/such/folder/res.txt");
  NameOutput(path);
  Matrix mat;
  EXPECT_FATAL(mardle::WriteClustering(params_, mat, {params_.nclusters, nullptr}),
               "Problems in opening the clustering file: " + path);
}

// The row model is unknown, which the scores would tell.
TEST_F(ClusteringFile, IsOpenedBeforeTheScoresAreComputed) {
  const std::string path = folder_.Path("no/such/folder/res.txt");
  NameOutput(path);
  params_.zscores = 1;
  params_.rowmodel = 99;
  const Matrix mat = DenseMatrix(kTwoTriples);
  EXPECT_FATAL(mardle::WriteClustering(params_, mat, {params_.nclusters, kTriples.data()}),
               "Problems in opening the clustering file: " + path);
}

TEST_F(ClusteringFile, OnAFullDiskIsToldInOneLineAndTheRunGoesOn) {
  NameOutput("/dev/full");
  Matrix mat;
  mat.nrows = 1;
  const int part = 0;
  testing::internal::CaptureStderr();
  mardle::WriteClustering(params_, mat, {params_.nclusters, &part});
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            std::string("Writing /dev/full failed: ") + std::strerror(ENOSPC) + "\n");
}

// In each triple the three averages are 2/3, 2/3 and 1/3, their mean 5/9 and their deviation
// sqrt(1/27), to the own cluster as to the other one: scores 1/sqrt(3) and -2/sqrt(3).
TEST_F(ClusteringFile, HoldsTheScoresOfEachRowOnRequest) {
  NameOutput(folder_.Path("res.txt"));
  params_.zscores = 1;
  mardle::WriteClustering(params_, DenseMatrix(kTwoTriples), {params_.nclusters, kTriples.data()});
  const std::vector<ScoredRow> rows = ScoredRows(ReadText(folder_.Path("res.txt")));
  ASSERT_EQ(rows.size(), 6U);
  for (std::size_t i = 0; i < 6; ++i) {
    const double expected = (i % 3 == 2 ? -2 : 1) / std::sqrt(3.0);
    EXPECT_EQ(rows[i].cluster, kTriples[i]);
    EXPECT_NEAR(rows[i].internal, expected, 2e-6);
    EXPECT_NEAR(rows[i].external, expected, 2e-6);
  }
}

TEST_F(ClusteringFile, HoldsScoresWithSixDecimals) {
  NameOutput(folder_.Path("res.txt"));
  params_.zscores = 1;
  params_.nclusters = 3;
  const Matrix mat = DenseMatrix({{1, 2}, {2, 1}, {-1, 3}, {4, 4}, {0, 1}, {1, -1}});
  const std::vector<int> part = {0, 1, 0, 1, 0, 2};
  mardle::WriteClustering(params_, mat, {params_.nclusters, part.data()});
  EXPECT_EQ(ReadText(folder_.Path("res.txt")), ExpectedScores(params_, mat, part));
}

// Row 2 has no entries, so the scores leave it out.
TEST_F(ClusteringFile, HoldsScoresOfZeroForARowThatPreparationDrops) {
  NameOutput(folder_.Path("res.txt"));
  params_.zscores = 1;
  params_.nclusters = 1;
  Matrix mat;
  mat.nrows = 3;
  mat.ncols = 2;
  mat.rowptr = molva::AllocIntsSet(4, 2, "rowptr");
  mat.rowptr[0] = 0;
  mat.rowptr[1] = 1;
  mat.rowind = molva::AllocIntsSet(2, 0, "rowind");
  mat.rowval = molva::AllocFloatsSet(2, 1, "rowval");
  const std::vector<int> part = {0, 0, -1};
  mardle::WriteClustering(params_, mat, {params_.nclusters, part.data()});
  const std::string text = ReadText(folder_.Path("res.txt"));
  EXPECT_TRUE(text.ends_with("\n-1 0.000000 0.000000\n")) << text;
}

// The score blocks carry the names of the quality report.
TEST_F(ClusteringFile, NamesTheScoreBlockThatCannotBeHad) {
  NameOutput(folder_.Path("res.txt"));
  params_.zscores = 1;
  const Matrix mat = DenseMatrix(kTwoTriples);
  const auto write_with = [&](int successes) {
    const testing_support::FailingAllocations failing(successes);
    mardle::WriteClustering(params_, mat, {params_.nclusters, kTriples.data()});
  };
  const std::array<const char*, 7> names = {"pwgts",   "cintsim",  "cintsdev", "izscores",
                                            "cextsim", "cextsdev", "ezscores"};
  for (int block = 0; block < 7; ++block) {
    const std::string name = names[static_cast<std::size_t>(block)];
    const std::string nbytes = name.ends_with("zscores") ? "24" : "8";
    EXPECT_FATAL(write_with(block), "***Memory allocation failed for EvaluateClusters: " + name +
                                        ". Requested size: " + nbytes + " bytes");
  }
}

class TreeFile : public ::testing::Test {
 protected:
  // Three leaves: 0 and 2 are joined first.
  void Write(const char* treefile) const {
    const std::array<int, 6> ptree = {3, 4, 3, 4, -1, 99};
    const std::array<float, 6> tsims = {0, 0, 0, 0.75F, -0.125F, 99};
    mardle::WriteTree(molva::mystrdup(folder_.Path("docs.mat").c_str()),
                      treefile == nullptr ? molva::String() : molva::mystrdup(treefile), 3,
                      ptree.data(), tsims.data());
  }
  std::string Written(const char* name) const { return ReadText(folder_.Path(name)); }

  testing_support::TempFolder folder_;
};

// The last element of the arrays stands for no node.
constexpr char kThreeLeaves[] = "3 0.000000\n4 0.000000\n3 0.000000\n4 0.750000\n-1 -0.125000\n";

TEST_F(TreeFile, HoldsTheParentAndTheSimilarityOfEachNodeOnALine) {
  Write(folder_.Path("res.tree").c_str());
  EXPECT_EQ(Written("res.tree"), kThreeLeaves);
}

TEST_F(TreeFile, IsNamedAfterTheMatrixAndTheNumberOfLeaves) {
  Write(nullptr);
  EXPECT_EQ(Written("docs.mat.tree.3"), kThreeLeaves);
}

TEST_F(TreeFile, TakesTheNameGivenInPlaceOfItsOwn) {
  Write(folder_.Path("res.tree").c_str());
  EXPECT_FALSE(std::filesystem::exists(folder_.Path("docs.mat.tree.3")));
}

TEST_F(TreeFile, HasOneLineLessThanTwiceTheLeaves) {
  const std::vector<int> ptree(200, -1);
  const std::vector<float> tsims(200);
  mardle::WriteTree(molva::mystrdup(folder_.Path("docs.mat").c_str()), {}, 100, ptree.data(),
                    tsims.data());
  const std::string text = Written("docs.mat.tree.100");
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 199);
}

TEST_F(TreeFile, OfOneLeafHasOneLine) {
  const int ptree = -1;
  const float tsims = 0;
  mardle::WriteTree(molva::mystrdup(folder_.Path("docs.mat").c_str()), {}, 1, &ptree, &tsims);
  EXPECT_EQ(Written("docs.mat.tree.1"), "-1 0.000000\n");
}

TEST_F(TreeFile, OfNoLeavesIsEmpty) {
  mardle::WriteTree(molva::mystrdup(folder_.Path("docs.mat").c_str()), {}, 0, nullptr, nullptr);
  EXPECT_TRUE(std::filesystem::exists(folder_.Path("docs.mat.tree.0")));
  EXPECT_EQ(Written("docs.mat.tree.0"), "");
}

TEST_F(TreeFile, ReplacesAnEarlierOne) {
  folder_.Write("res.tree", std::string(1000, 'x'));
  Write(folder_.Path("res.tree").c_str());
  EXPECT_EQ(Written("res.tree"), kThreeLeaves);
}

TEST_F(TreeFile, ThatCannotBeCreatedEndsTheRun) {
  const std::string path = folder_.Path("no/such/folder/tree");
  EXPECT_FATAL(Write(path.c_str()), "Problems in creating the tree file: " + path);
}

TEST_F(TreeFile, OnAFullDiskIsToldInOneLineAndTheRunGoesOn) {
  testing::internal::CaptureStderr();
  Write("/dev/full");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            std::string("Writing /dev/full failed: ") + std::strerror(ENOSPC) + "\n");
}

}  // namespace
