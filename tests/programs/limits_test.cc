// SPDX-License-Identifier: MIT
//
// The reports and result files of 131,072 clusters, and deep trees in them. Rows are unit vectors
// along eight axes, two to a cluster, 16,384 clusters to an axis, so that every number can be told
// by counting.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "lib/support/tree_arrays.h"
#include "programs/external_quality.h"
#include "programs/feature_report.h"
#include "programs/io/labels.h"
#include "programs/io/write_results.h"
#include "programs/quality_report.h"
#include "programs/tree_canvas.h"
#include "programs/tree_report.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"

namespace {

using testing_support::OutputOf;

constexpr int kClusters = 131072;
constexpr int kAxes = 8;

class ManyClusters : public ::testing::Test {
 protected:
  ManyClusters() {
    mat_.nrows = 2 * kClusters;
    mat_.ncols = kAxes;
    mat_.rowval = molva::AllocFloatsSet(std::int64_t{mat_.nrows} * kAxes, 0, "rowval");
    for (int i = 0; i < mat_.nrows; ++i) {
      part_.push_back(i / 2);
      mat_.rowval[std::int64_t{i} * kAxes + part_.back() % kAxes] = 1;
    }
    mat_.clabels = mardle::Labels(kAxes, "clabels", "col");
    mardle::SetUpClasses(mat_);
    params_.colmodel = 1;
    params_.nclusters = kClusters;
  }

  mardle::Matrix mat_;
  std::vector<int> part_;
  mardle::RunParams params_;
};

// The other 16,383 clusters along the axis, of 131,071: 0.125.
TEST_F(ManyClusters, HaveALineEachInTheTable) {
  const std::string rule = std::string(72, '-') + "\n";
  std::string table = rule + "131072-way clustering solution: [I2=2.62e+05]\n" + rule +
                      "cid  Size  ISim  ISdev   ESim  ESdev  | \n" + rule;
  for (int k = 0; k < kClusters; ++k) {
    std::array<char, 80> line;
    std::snprintf(line.data(), line.size(), "%3d     2 +1.000 +0.000 +0.125 +0.000 | \n", k);
    table += line.data();
  }
  EXPECT_EQ(
      OutputOf([this] {
        mardle::EvaluateClusters(params_, mat_, {params_.nclusters, part_.data()}, {}, 262144);
      }),
      table + rule);
}

TEST_F(ManyClusters, AreWrittenRowByRow) {
  const testing_support::TempFolder folder;
  params_.filename = molva::mystrdup(folder.Path("m").c_str());
  mardle::WriteClustering(params_, mat_, {params_.nclusters, part_.data()});
  std::string lines;
  for (int k = 0; k < kClusters; ++k) {
    lines += std::to_string(k) + "\n" + std::to_string(k) + "\n";
  }
  EXPECT_EQ(testing_support::ReadText(folder.Path("m.clustering.131072")), lines);
}

TEST_F(ManyClusters, HaveABlockEachInTheFeatureReport) {
  params_.nfeatures = 1;
  std::istringstream report(OutputOf([this] {
    mardle::ShowClusterFeatures(params_, mat_, {params_.nclusters, part_.data()});
  }));
  int blocks = 0;
  std::string axis;
  for (std::string line; std::getline(report, line);) {
    if (line.starts_with("Cluster")) axis = "col0000" + std::to_string(blocks++ % kAxes + 1);
    if (line.find("criptive:") != std::string::npos) {
      ASSERT_EQ(line, "      Descriptive:  " + axis + " 100.0%");
    }
    if (line.find("criminating:") != std::string::npos) {
      ASSERT_NE(line.find(axis), std::string::npos) << line;
    }
  }
  EXPECT_EQ(blocks, kClusters);
}

TEST_F(ManyClusters, AreTooManyForATree) {
  params_.showtree = 1;
  params_.treecrfun = 2;
  for (const int labeltree : {0, 1}) {
    params_.labeltree = labeltree;
    EXPECT_EQ(
        testing_support::FatalMessage([this] {
          mardle::ShowHACTree(params_, mat_, {params_.nclusters, part_.data()}, {.printed = true});
        }),
        "A tree over 131072 items cannot be built, the most is 65536!\n");
  }
}

// A chain: the first node joins the leaves 0 and 1, each further one the node below and a leaf.
std::vector<int> Chain(int leaves) {
  std::vector<int> ptree(2 * static_cast<std::size_t>(leaves), -1);
  for (int x = 0; x < leaves; ++x) {
    ptree[static_cast<std::size_t>(x)] = leaves + (x > 0 ? x - 1 : 0);
  }
  for (int x = leaves; x < 2 * leaves - 2; ++x) ptree[static_cast<std::size_t>(x)] = x + 1;
  return ptree;
}

// The first half of the rows is one class, and all below one node. The other class is best found at
// the root, where half of the rows are of it: 2 * 1 * 0.5 / 1.5.
TEST(ChainOfManyLeaves, TellsHowWellClassesAreFound) {
  constexpr int kLeaves = 60000;
  std::vector<int> classes(kLeaves, 0);
  std::fill(classes.begin() + kLeaves / 2, classes.end(), 1);
  const std::vector<int> sizes = {kLeaves / 2, kLeaves / 2};
  std::vector<float> fscores(2);
  mardle::ComputeFScores(2, kLeaves, classes, sizes, Chain(kLeaves), fscores);
  EXPECT_EQ(fscores[0], 1);
  EXPECT_FLOAT_EQ(fscores[1], 2.0F / 3);
}

// The canvas has four columns and two lines for every leaf. From the root down each node has its
// leaf on the next line, and then the node below.
TEST(ChainOfManyLeaves, IsDrawnDownItsDiagonal) {
  constexpr int kLeaves = 1500;
  molva::Array<int> ftree = molva::MakeChildTable(Chain(kLeaves), "ftree");
  const mardle::TreeDrawing drawing = mardle::DrawTree(kLeaves, molva::ChildTable(ftree), false);
  EXPECT_EQ(drawing.lines, 2 * kLeaves);
  for (int node = 2 * kLeaves - 2, line = 1; node > kLeaves; --node, line += 2) {
    ASSERT_EQ(drawing.ynode[node], line);
    ASSERT_EQ(drawing.ynode[node - kLeaves + 1], line + 1);
  }
  EXPECT_EQ(drawing.ynode[kLeaves], 2 * kLeaves - 3);
  EXPECT_EQ(drawing.ynode[0], 2 * kLeaves - 2);
  EXPECT_EQ(drawing.ynode[1], 2 * kLeaves - 1);
}

}  // namespace
