// SPDX-License-Identifier: MIT
#include "tools/export/page/measured_tree.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/tools/export/measures/matrices.h"
#include "tools/export/measures/cluster_sums.h"

namespace {

using mardle::Matrix;
using mardle::RunParams;
using mardle::exporting::BuildParents;
using mardle::exporting::ClusterProducts;
using mardle::exporting::ClusterRows;
using mardle::exporting::ClusterSums;
using mardle::exporting::MeasuredTree;
using mardle::exporting::MeasureTree;
using mardle::exporting::PageRun;
using mardle::exporting::ProductsOfSums;
using testing_support::SparseMatrixOf;

// Sixty rows of twenty clusters, whose products are all different.
class TreesOfManyClusters : public testing::TestWithParam<int> {
 protected:
  TreesOfManyClusters() {
    std::mt19937 random(7);
    std::vector<std::vector<float>> rows;
    for (int i = 0; i < 60; ++i) {
      std::vector<float>& row = rows.emplace_back(30, 0.0F);
      for (int entry = 0; entry < 8; ++entry) {
        const auto topic = static_cast<unsigned>(i % 20);
        row[(topic + random() % 12) % 30] = static_cast<float>(1 + random() % 9);
      }
      part_.push_back(i % 20);
    }
    mat_ = SparseMatrixOf(rows);
    params_.crfun = GetParam();
    params_.treecrfun = GetParam();
  }
  PageRun Run() const { return {name_, name_, name_, params_, mat_, {}, nullptr}; }
  ClusterProducts Products() const {
    const mardle::EngineInput in = RunInput(params_, mat_, {20, part_.data()});
    return {std::vector<int>(20, 3), ProductsOfSums(ClusterSums(in, ClusterRows(part_, 20)))};
  }

  std::string name_;
  RunParams params_;
  std::vector<int> part_;
  Matrix mat_;
};

TEST_P(TreesOfManyClusters, AreThoseThatTheLibraryBuilds) {
  const PageRun run = Run();
  const MeasuredTree wanted =
      MeasureTree(run, part_.data(), 20, BuildParents(run, part_.data(), 20, {}));
  const MeasuredTree found = MeasureTree(
      run, part_.data(), 20, BuildParents(run, part_.data(), 20, Products()), Products());
  EXPECT_TRUE(std::equal(wanted.ptree.begin(), wanted.ptree.begin() + 39, found.ptree.begin()));
  EXPECT_TRUE(
      std::equal(wanted.children.begin(), wanted.children.begin() + 78, found.children.begin()));
  EXPECT_EQ(wanted.root, found.root);
}

INSTANTIATE_TEST_SUITE_P(Criteria, TreesOfManyClusters, testing::Range(1, 8));

}  // namespace
