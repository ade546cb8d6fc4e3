// SPDX-License-Identifier: MIT
//
// The library where 32 bits, a stack or a square of memory would not do: clusters of 50,000 rows,
// 131,072 clusters, trees as deep as they have leaves. Rows are unit vectors along the axes, so
// that every number can be told by counting.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <string>
#include <vector>

#include "lib/matrix/control.h"
#include "lib/molva.h"
#include "lib/support/alloc.h"
#include "lib/support/tree_arrays.h"
#include "lib/tree/agglomerate.h"
#include "lib/tree/build_tree.h"
#include "tests/testing/fatal.h"
#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::SparseMatrix;
using Ints = std::vector<int>;
using Floats = std::vector<float>;

std::size_t At(int x) { return static_cast<std::size_t>(x); }

// One row along each axis named.
SparseMatrix Along(const Ints& axes, int ncols) {
  SparseMatrix matrix;
  matrix.nrows = static_cast<int>(axes.size());
  matrix.ncols = ncols;
  matrix.rowptr.resize(axes.size() + 1);
  std::iota(matrix.rowptr.begin(), matrix.rowptr.end(), 0);
  matrix.rowind = axes;
  matrix.rowval.assign(axes.size(), 1);
  return matrix;
}

struct Stats {
  Stats(const SparseMatrix& m, const Ints& part, int nparts)
      : pwgts(At(nparts)),
        isim(At(nparts)),
        isdev(At(nparts)),
        esim(At(nparts)),
        esdev(At(nparts)),
        izscores(At(m.nrows)),
        ezscores(At(m.nrows)) {
    MOLVA_V_GetClusterStats(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                            MOLVA_SIM_COSINE, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, nparts,
                            part.data(), pwgts.data(), isim.data(), isdev.data(), izscores.data(),
                            esim.data(), esdev.data(), ezscores.data());
  }
  Ints pwgts;
  Floats isim, isdev, esim, esdev, izscores, ezscores;
};

float Quality(const SparseMatrix& m, int crfun, const Ints& part, int nparts) {
  return MOLVA_V_GetSolutionQuality(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(),
                                    m.rowval.data(), MOLVA_SIM_COSINE, crfun, MOLVA_ROW_NONE,
                                    MOLVA_COL_NONE, 1.0F, nparts, part.data());
}

struct TreeStats {
  TreeStats(const SparseMatrix& m, const Ints& part, const Ints& ptree)
      : pwgts(ptree.size()), isims(ptree.size()), xsims(ptree.size()) {
    MOLVA_V_GetTreeStats(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                         MOLVA_SIM_COSINE, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F,
                         static_cast<int>(ptree.size() / 2), part.data(), ptree.data(),
                         pwgts.data(), isims.data(), xsims.data());
  }
  Ints pwgts;
  Floats isims, xsims;
};

// Three clusters of 50,000 rows, two along the first axis and one along the second. The square of
// their size, 2.5e9, is beyond 32 bits and exact in single precision.
class LargeClusters : public ::testing::Test {
 protected:
  static constexpr int kSize = 50000;
  static constexpr float kSquare = 2.5e9F;

  LargeClusters() {
    Ints axes;
    for (const int axis : {0, 0, 1}) axes.insert(axes.end(), kSize, axis);
    for (const int k : {0, 1, 2}) part_.insert(part_.end(), kSize, k);
    matrix_ = Along(axes, 2);
  }

  SparseMatrix matrix_;
  Ints part_;
};

// Of the 100,000 rows outside one of the first two clusters, half are along its axis.
TEST_F(LargeClusters, HaveTheSimilaritiesOfSmallOnes) {
  const Stats stats(matrix_, part_, 3);
  EXPECT_EQ(stats.pwgts, (Ints{kSize, kSize, kSize}));
  EXPECT_EQ(stats.isim, (Floats{1, 1, 1}));
  EXPECT_EQ(stats.esim, (Floats{0.5F, 0.5F, 0}));
  EXPECT_EQ(stats.isdev, (Floats{0, 0, 0}));
  EXPECT_EQ(stats.esdev, (Floats{0, 0, 0}));
  EXPECT_TRUE(std::isnan(stats.izscores[0]));
  EXPECT_TRUE(std::isnan(stats.ezscores[149999]));
}

// |D| = 50,000 and D.D = 2.5e9 thrice, D.G = 5e9, 5e9 and 2.5e9.
TEST_F(LargeClusters, HaveTheNineCriteriaOfTheirFormulas) {
  const std::vector<double> expected = {
      150000, 150000, 1.25e10, 5, 1.25e10, 1.2e-5, 1.2e-5, 150000 * std::sqrt(std::sqrt(150000)),
      250000};
  for (int code = 1; code <= 9; ++code) {
    EXPECT_FLOAT_EQ(Quality(matrix_, code, part_, 3), static_cast<float>(expected[At(code - 1)]))
        << code;
  }
}

// Nothing is lost by joining the first two.
TEST_F(LargeClusters, AreJoinedByTheirSimilarity) {
  for (int crfun = 1; crfun <= 7; ++crfun) {
    Ints ptree(6);
    Floats tsims(6);
    MOLVA_V_BuildTree(matrix_.nrows, 2, matrix_.rowptr.data(), matrix_.rowind.data(),
                      matrix_.rowval.data(), MOLVA_SIM_COSINE, crfun, MOLVA_ROW_NONE,
                      MOLVA_COL_NONE, 1.0F, MOLVA_TREE_CLUSTERS, 0, 3, part_.data(), ptree.data(),
                      tsims.data());
    EXPECT_EQ(ptree, (Ints{3, 3, 4, 4, -1, -1})) << crfun;
    EXPECT_EQ(tsims[3], 1) << crfun;
    EXPECT_EQ(tsims[4], 0) << crfun;
  }
}

// Of the 150,000 squared pairs below the root, 100,000 squared and 50,000 squared are alike.
TEST_F(LargeClusters, HaveTreesWithTheirAverages) {
  const TreeStats stats(matrix_, part_, {3, 3, 4, 4, -1, -1});
  EXPECT_EQ(Ints(stats.pwgts.begin(), stats.pwgts.end() - 1),
            (Ints{kSize, kSize, kSize, 2 * kSize, 3 * kSize}));
  EXPECT_EQ(Floats(stats.isims.begin(), stats.isims.end() - 2), (Floats{1, 1, 1, 1}));
  EXPECT_FLOAT_EQ(stats.isims[4], 5.0F / 9);
  EXPECT_EQ(Floats(stats.xsims.begin(), stats.xsims.end() - 1), (Floats{1, 1, 0, 0, 0}));
}

// Leaf 1 is more similar to leaf 2 than leaf 0 is. Divided by a negative product it would be less.
TEST_F(LargeClusters, AreOrderedByTheirAverages) {
  const Ints weights = {kSize, kSize, kSize};
  const Ints ptree = {3, 3, 4, 4, -1, -1};
  Floats smat = {1, 0, 0.2F, 0, 1, 0.5F, 0.2F, 0.5F, 1};
  for (float& product : smat) product *= kSquare;
  Ints ftree = {-1, -1, -1, -1, -1, -1, 0, 1, 2, 3, -1, -1};
  MOLVA_S_TreeReorder(3, weights.data(), smat.data(), 1, 0, ptree.data(), ftree.data());
  EXPECT_EQ(ftree, (Ints{-1, -1, -1, -1, -1, -1, 1, 0, 2, 3, -1, -1}));
}

// Under every criterion the clustering by axes is the best there is.
TEST_F(LargeClusters, AreFoundUnderEveryCriterion) {
  const Ints by_axis = [] {
    Ints part(2 * kSize, 0);
    part.insert(part.end(), kSize, 1);
    return part;
  }();
  for (int crfun = 1; crfun <= 9; ++crfun) {
    Ints part(At(matrix_.nrows));
    MOLVA_VP_ClusterDirect(matrix_.nrows, 2, matrix_.rowptr.data(), matrix_.rowind.data(),
                           matrix_.rowval.data(), MOLVA_SIM_COSINE, crfun, MOLVA_ROW_NONE,
                           MOLVA_COL_NONE, 1.0F, 2, 10, 1, 0, 2, part.data());
    EXPECT_EQ(Stats(matrix_, part, 2).isim, (Floats{1, 1})) << crfun;
    EXPECT_EQ(Quality(matrix_, crfun, part, 2), Quality(matrix_, crfun, by_axis, 2)) << crfun;
  }
}

// 131,072 clusters of two equal rows each, 16,384 clusters along each of eight axes: D.D = 4,
// D.G = 2 * 32,768. All sums are powers of two.
class ManyClusters : public ::testing::Test {
 protected:
  static constexpr int kClusters = 131072;

  ManyClusters() : part_(2 * At(kClusters)) {
    Ints axes(part_.size());
    for (std::size_t i = 0; i < axes.size(); ++i) {
      part_[i] = static_cast<int>(i / 2);
      axes[i] = part_[i] % 8;
    }
    matrix_ = Along(axes, 8);
  }

  SparseMatrix matrix_;
  Ints part_;
};

TEST_F(ManyClusters, HaveTheSimilaritiesOfFewOnes) {
  const Stats stats(matrix_, part_, kClusters);
  const float outside = 65532.0F / 524284;
  for (int k = 0; k < kClusters; ++k) {
    ASSERT_EQ(stats.pwgts[At(k)], 2) << k;
    ASSERT_EQ(stats.isim[At(k)], 1) << k;
    ASSERT_EQ(stats.isdev[At(k)], 0) << k;
    ASSERT_FLOAT_EQ(stats.esim[At(k)], outside) << k;
    ASSERT_NEAR(stats.esdev[At(k)], 0, 1e-6) << k;
  }
}

TEST_F(ManyClusters, HaveTheNineCriteriaOfTheirFormulas) {
  const std::vector<double> exponents = {18, 18, 33, 31, 33, -15, -15, 22.5, 32};
  for (int code = 1; code <= 9; ++code) {
    EXPECT_FLOAT_EQ(Quality(matrix_, code, part_, kClusters),
                    static_cast<float>(std::exp2(exponents[At(code - 1)])))
        << code;
  }
}

TEST_F(ManyClusters, AreDescribedByTheirAxes) {
  Ints descriptive(At(kClusters)), discriminating(At(kClusters));
  Floats weights(At(kClusters)), discriminating_weights(At(kClusters));
  MOLVA_V_GetClusterFeatures(matrix_.nrows, 8, matrix_.rowptr.data(), matrix_.rowind.data(),
                             matrix_.rowval.data(), MOLVA_SIM_COSINE, MOLVA_ROW_NONE,
                             MOLVA_COL_NONE, 1.0F, kClusters, part_.data(), 1, descriptive.data(),
                             weights.data(), discriminating.data(), discriminating_weights.data());
  for (int k = 0; k < kClusters; ++k) {
    ASSERT_EQ(descriptive[At(k)], k % 8) << k;
    ASSERT_EQ(weights[At(k)], 1) << k;
    ASSERT_EQ(discriminating[At(k)], k % 8) << k;
  }
}

// A chain: the first node joins the leaves 0 and 1, each further one the node below and a leaf.
Ints Chain(int leaves) {
  Ints ptree(2 * At(leaves), -1);
  ptree[0] = leaves;
  for (int leaf = 1; leaf < leaves; ++leaf) ptree[At(leaf)] = leaves + leaf - 1;
  for (int x = leaves; x < 2 * leaves - 2; ++x) ptree[At(x)] = x + 1;
  return ptree;
}

constexpr int kChain = 60000;

TEST(ChainOfManyLeaves, IsCutAtItsTop) {
  Ints part(At(kChain));
  InduceClusteringFromHAC(kChain, 3, Chain(kChain), part);
  // The two last leaves are alone; the root's and the next node's inner children hold the rest.
  EXPECT_NE(part[kChain - 1], part[kChain - 2]);
  for (int i = 0; i < kChain - 2; ++i) {
    ASSERT_EQ(part[At(i)], part[0]) << i;
    ASSERT_NE(part[At(i)], part[kChain - 1]);
    ASSERT_NE(part[At(i)], part[kChain - 2]);
  }
}

// A chain has one order, whatever its merges gained.
TEST(ChainOfManyLeaves, KeepsItsNumbersWhenTheBestNodesComeFirst) {
  Ints ptree = Chain(kChain);
  Floats gains(ptree.size());
  for (std::size_t x = 0; x < gains.size(); ++x) gains[x] = static_cast<float>(x % 7);
  BestFirstTreeReorder(kChain, ptree, gains);
  EXPECT_EQ(ptree, Chain(kChain));
}

// One row in each cluster, all equal.
TEST(ChainOfManyLeaves, IsMeasuredAtEveryNode) {
  Ints part(At(kChain));
  std::iota(part.begin(), part.end(), 0);
  const TreeStats stats(Along(Ints(At(kChain), 0), 2), part, Chain(kChain));
  for (int x = 0; x <= 2 * kChain - 2; ++x) {
    ASSERT_EQ(stats.pwgts[At(x)], x < kChain ? 1 : x - kChain + 2) << x;
    ASSERT_FLOAT_EQ(stats.isims[At(x)], 1) << x;
    ASSERT_FLOAT_EQ(stats.xsims[At(x)], x == 2 * kChain - 2 ? 0 : 1) << x;
  }
}

TEST(ChainOfManyLeaves, IsDescribedAtEveryNode) {
  Ints part(At(kChain));
  std::iota(part.begin(), part.end(), 0);
  const SparseMatrix m = Along(Ints(At(kChain), 1), 2);
  const Ints ptree = Chain(kChain);
  Ints descriptive(ptree.size()), discriminating(ptree.size());
  Floats weights(ptree.size()), discriminating_weights(ptree.size());
  MOLVA_V_GetTreeFeatures(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                          MOLVA_SIM_COSINE, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, kChain,
                          part.data(), ptree.data(), 1, descriptive.data(), weights.data(),
                          discriminating.data(), discriminating_weights.data());
  for (int x = 0; x <= 2 * kChain - 2; ++x) {
    ASSERT_EQ(descriptive[At(x)], 1) << x;
    ASSERT_FLOAT_EQ(weights[At(x)], 1) << x;
  }
}

// Reordering squares the nodes. Each leaf is similar to the one before and the one behind alone.
// The root keeps the last leaf on the left, and every leaf then is more like its left neighbour
// than the leaves below it are.
TEST(ChainOfManyLeaves, IsOrderedFromEndToEnd) {
  constexpr int kLeaves = 1000;
  const Ints ptree = Chain(kLeaves);
  const Array<int> slots = MakeChildTable(ptree, "Test: ftree");
  Ints ftree(slots.begin(), slots.end());
  const Ints weights(At(kLeaves), 1);
  Floats smat(At(kLeaves) * At(kLeaves), 0);
  for (int i = 0; i < kLeaves; ++i) {
    for (int j = std::max(i - 1, 0); j <= std::min(i + 1, kLeaves - 1); ++j) {
      smat[At(i) * At(kLeaves) + At(j)] = 1;
    }
  }
  MOLVA_S_TreeReorder(kLeaves, weights.data(), smat.data(), 1, 0, ptree.data(), ftree.data());
  Ints order;
  const ChildTable children(ftree);
  ForEachLeafBelow(2 * kLeaves - 2, ptree, children, [&order](int leaf) { order.push_back(leaf); });
  Ints falling(At(kLeaves));
  std::iota(falling.rbegin(), falling.rend(), 0);
  EXPECT_EQ(order, falling);
}

// While it lives, blocks above a size are not to be had.
class SmallBlocksOnly {
 public:
  SmallBlocksOnly()
      : replaced_(SetAllocateFunction(
            [](std::size_t size) { return size <= kMost ? std::malloc(size) : nullptr; })) {}
  ~SmallBlocksOnly() { SetAllocateFunction(replaced_); }
  SmallBlocksOnly(const SmallBlocksOnly&) = delete;
  SmallBlocksOnly& operator=(const SmallBlocksOnly&) = delete;

 private:
  static constexpr std::size_t kMost = std::size_t{1} << 26;
  AllocateFunction replaced_;
};

constexpr int kTooMany = 65537;

TEST(TooManyItems, AreToldBeforeTheirSquareIsAskedFor) {
  const std::string refusal = "A tree over 65537 items cannot be built, the most is 65536!\n";
  const SparseMatrix m = Along(Ints(At(kTooMany), 0), 2);
  const Ints one_cluster(At(kTooMany), 0);
  Ints own_clusters(At(kTooMany));
  std::iota(own_clusters.begin(), own_clusters.end(), 0);
  Ints part(At(kTooMany)), ptree(2 * At(kTooMany));
  Floats tsims(2 * At(kTooMany)), gains(2 * At(kTooMany));
  const auto build = [&](int treetype, int nparts, const Ints& clusters) {
    const SmallBlocksOnly small;
    MOLVA_V_BuildTree(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                      MOLVA_SIM_COSINE, 2, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, treetype, 0,
                      nparts, clusters.data(), ptree.data(), tsims.data());
  };
  EXPECT_FATAL(build(MOLVA_TREE_ROWS, 1, one_cluster), refusal);
  EXPECT_FATAL(build(MOLVA_TREE_CLUSTERS, kTooMany, own_clusters), refusal);
  const auto merge_rows = [&] {
    const SmallBlocksOnly small;
    MOLVA_VA_Cluster(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                     MOLVA_SIM_COSINE, 2, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 0, 1, part.data(),
                     ptree.data(), tsims.data());
  };
  EXPECT_FATAL(merge_rows(), refusal);
  for (const int handling : {1, 2}) {
    EXPECT_FATAL(MOLVA_SA_Cluster(kTooMany, nullptr, nullptr, 2, handling, 0, 1, part.data(),
                                  ptree.data(), tsims.data(), gains.data()),
                 refusal);
  }
}

// Without their square in memory nothing can be ordered; the size told is that of (2 * 65537)^2
// floats.
TEST(TooManyItems, AreNotOrdered) {
  const SparseMatrix m = Along(Ints(At(kTooMany), 0), 2);
  const Ints ptree = Chain(kTooMany);
  const Array<int> slots = MakeChildTable(ptree, "Test: ftree");
  Ints ftree(slots.begin(), slots.end());
  const auto reorder = [&] {
    const SmallBlocksOnly small;
    MOLVA_V_TreeReorder(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                        MOLVA_SIM_COSINE, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 0, ptree.data(),
                        ftree.data());
  };
  EXPECT_FATAL(reorder(),
               "***Memory allocation failed for MOLVA_V_TreeReorder: smat. Requested size: "
               "68721573904 bytes");
}

}  // namespace
}  // namespace molva
