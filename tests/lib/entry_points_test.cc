// SPDX-License-Identifier: MIT
//
// What callers may get wrong, at every entry point: columns outside the matrix, rows that belong to
// no cluster, counts of nothing.
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <string>
#include <vector>

#include "lib/matrix/control.h"
#include "lib/molva.h"
#include "lib/tree/build_tree.h"
#include "tests/testing/fatal.h"
#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::FatalMessage;
using testing_support::SparseMatrix;
using testing_support::SparseOf;
using Ints = std::vector<int>;
using Floats = std::vector<float>;

// The results of every entry point on one matrix, in arrays of ample size.
struct Results {
  Ints part, pwgts, ptree, ftree, internalids, externalids;
  Floats isim, isdev, izscores, esim, esdev, ezscores, tsims, xsims, internalwgts, externalwgts;
  float quality = 0;
};

Results Blank() {
  constexpr std::size_t kAmple = 64;
  Results r;
  for (Ints* ints : {&r.part, &r.pwgts, &r.ptree, &r.ftree, &r.internalids, &r.externalids}) {
    ints->assign(kAmple, -7);
  }
  for (Floats* floats : {&r.isim, &r.isdev, &r.izscores, &r.esim, &r.esdev, &r.ezscores, &r.tsims,
                         &r.xsims, &r.internalwgts, &r.externalwgts}) {
    floats->assign(kAmple, -7);
  }
  return r;
}

// A clustering and the tree over its clusters.
struct Given {
  SparseMatrix matrix;
  Ints part;
  int nparts;
  Ints ptree;
  Ints ftree;
};

struct EntryPoint {
  const char* name;
  std::function<void(const Given&, Results&)> call;
};

// Everything is under the cosine, without models.
#define MATRIX                                                                    \
  g.matrix.nrows, g.matrix.ncols, g.matrix.rowptr.data(), g.matrix.rowind.data(), \
      g.matrix.rowval.data(), MOLVA_SIM_COSINE
#define MODEL MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F

const std::vector<EntryPoint> kEntryPoints = {
    {"ClusterRB",
     [](const Given& g, Results& r) {
       MOLVA_VP_ClusterRB(MATRIX, 2, MODEL, 2, 2, 1, 0, 0, g.nparts, r.part.data());
     }},
    {"ClusterDirect",
     [](const Given& g, Results& r) {
       MOLVA_VP_ClusterDirect(MATRIX, 2, MODEL, 2, 2, 1, 0, g.nparts, r.part.data());
     }},
    {"GetClusterStats",
     [](const Given& g, Results& r) {
       MOLVA_V_GetClusterStats(MATRIX, MODEL, g.nparts, g.part.data(), r.pwgts.data(),
                               r.isim.data(), r.isdev.data(), r.izscores.data(), r.esim.data(),
                               r.esdev.data(), r.ezscores.data());
     }},
    {"GetSolutionQuality",
     [](const Given& g, Results& r) {
       r.quality = MOLVA_V_GetSolutionQuality(MATRIX, 2, MODEL, g.nparts, g.part.data());
     }},
    {"GetClusterFeatures",
     [](const Given& g, Results& r) {
       MOLVA_V_GetClusterFeatures(MATRIX, MODEL, g.nparts, g.part.data(), 1, r.internalids.data(),
                                  r.internalwgts.data(), r.externalids.data(),
                                  r.externalwgts.data());
     }},
    {"BuildTree",
     [](const Given& g, Results& r) {
       MOLVA_V_BuildTree(MATRIX, 2, MODEL, MOLVA_TREE_CLUSTERS, 0, g.nparts, g.part.data(),
                         r.ptree.data(), r.tsims.data());
     }},
    {"BuildTree of the rows",
     [](const Given& g, Results& r) {
       MOLVA_V_BuildTree(MATRIX, 2, MODEL, MOLVA_TREE_ROWS, 0, g.nparts, g.part.data(),
                         r.ptree.data(), r.tsims.data());
     }},
    {"ClusterRows",
     [](const Given& g, Results& r) {
       MOLVA_VA_Cluster(MATRIX, 2, MODEL, 0, g.nparts, r.part.data(), r.ptree.data(),
                        r.tsims.data());
     }},
    {"GetTreeStats",
     [](const Given& g, Results& r) {
       MOLVA_V_GetTreeStats(MATRIX, MODEL, g.nparts, g.part.data(), g.ptree.data(), r.pwgts.data(),
                            r.isim.data(), r.xsims.data());
     }},
    {"GetTreeFeatures",
     [](const Given& g, Results& r) {
       MOLVA_V_GetTreeFeatures(MATRIX, MODEL, g.nparts, g.part.data(), g.ptree.data(), 1,
                               r.internalids.data(), r.internalwgts.data(), r.externalids.data(),
                               r.externalwgts.data());
     }},
    {"TreeReorder",
     [](const Given& g, Results& r) {
       r.ftree = g.ftree;
       MOLVA_V_TreeReorder(MATRIX, MODEL, 0, g.ptree.data(), r.ftree.data());
     }},
    {"ClusterTreeReorder",
     [](const Given& g, Results& r) {
       r.ftree = g.ftree;
       MOLVA_V_ClusterTreeReorder(MATRIX, MODEL, 0, g.nparts, g.part.data(), g.ptree.data(),
                                  r.ftree.data());
     }},
    {"InternalizeMatrix",
     [](const Given& g, Results& r) {
       int nrows = 0, ncols = 0;
       int *rowptr = nullptr, *rowind = nullptr;
       float* rowval = nullptr;
       MOLVA_InternalizeMatrix(MATRIX, MODEL, &nrows, &ncols, &rowptr, &rowind, &rowval,
                               r.part.data(), r.pwgts.data());
       MOLVA_Free(rowptr);
       MOLVA_Free(rowind);
       MOLVA_Free(rowval);
     }},
};
#undef MATRIX
#undef MODEL

Results ResultsOf(const std::string& name, const Given& given) {
  Results results = Blank();
  for (const EntryPoint& entry : kEntryPoints) {
    if (entry.name == name) entry.call(given, results);
  }
  return results;
}

template <typename T>
std::vector<T> Front(const std::vector<T>& values, std::size_t n) {
  return {values.begin(), values.begin() + static_cast<std::ptrdiff_t>(n)};
}

// Two clusters of two equal rows, and a fifth row that is like the first two.
Given TwoPairsAnd(int fifth) {
  return {SparseOf({{1, 0}, {1, 0}, {0, 1}, {0, 1}, {1, 0}}),
          {0, 0, 1, 1, fifth},
          2,
          {2, 2, -1, -1},
          {-1, -1, -1, -1, 0, 1, -1, -1}};
}

TEST(EveryEntryPoint, EndsTheRunOnAColumnOutsideTheMatrix) {
  for (const EntryPoint& entry : kEntryPoints) {
    for (const int column : {-1, 2, INT_MIN, INT_MAX}) {
      Given given = TwoPairsAnd(1);
      given.matrix.rowind[3] = column;
      Results results = Blank();
      EXPECT_EQ(FatalMessage([&] { entry.call(given, results); }),
                "Column number is outside the matrix! Ncols=2, ColNum=" + std::to_string(column) +
                    ", Row=3\n")
          << entry.name;
    }
  }
}

TEST(EveryEntryPoint, EndsTheRunOnRowStartsThatDecrease) {
  for (const EntryPoint& entry : kEntryPoints) {
    Given given = TwoPairsAnd(1);
    given.matrix.rowptr[3] = -1;
    Results results = Blank();
    EXPECT_EQ(FatalMessage([&] { entry.call(given, results); }),
              "Row starts must not decrease! Row=2, Start=2, Next=-1\n")
        << entry.name;
  }
}

class RowsOfNoCluster : public ::testing::TestWithParam<int> {
 protected:
  Results Of(const std::string& name) const { return ResultsOf(name, TwoPairsAnd(GetParam())); }
};

INSTANTIATE_TEST_SUITE_P(Numbers, RowsOfNoCluster, ::testing::Values(-1, 2, INT_MIN, INT_MAX));

// D_0 = (2, 0), D_1 = (0, 2), and G their sum: the row that both clusters lack is not in it.
TEST_P(RowsOfNoCluster, AreNotMeasured) {
  const Results r = Of("GetClusterStats");
  EXPECT_EQ(Front(r.pwgts, 3), (Ints{2, 2, -7}));
  EXPECT_EQ(Front(r.isim, 3), (Floats{1, 1, -7}));
  EXPECT_EQ(Front(r.esim, 3), (Floats{0, 0, -7}));
  EXPECT_EQ(r.izscores[4], -100);
  EXPECT_EQ(r.ezscores[4], -100);
  EXPECT_EQ(Of("GetSolutionQuality").quality, 4);
}

TEST_P(RowsOfNoCluster, DescribeNothing) {
  const Results r = Of("GetClusterFeatures");
  EXPECT_EQ(Front(r.internalids, 3), (Ints{0, 1, -7}));
  EXPECT_EQ(Front(r.internalwgts, 3), (Floats{1, 1, -7}));
  // Each of the two columns has half of the squared distance between (1, 0) and (0, 1).
  EXPECT_EQ(Front(r.externalwgts, 3), (Floats{0.5F, 0.5F, -7}));
}

TEST_P(RowsOfNoCluster, AreNotBelowATreeOfClusters) {
  const Results built = Of("BuildTree");
  EXPECT_EQ(Front(built.ptree, 5), (Ints{2, 2, -1, -1, -7}));
  EXPECT_EQ(built.tsims[2], 0);
  const Results measured = Of("GetTreeStats");
  EXPECT_EQ(Front(measured.pwgts, 3), (Ints{2, 2, 4}));
  // Of the sixteen pairs below the root, eight are of equal rows.
  EXPECT_EQ(Front(measured.isim, 3), (Floats{1, 1, 0.5F}));
  EXPECT_EQ(Front(measured.xsims, 3), (Floats{0, 0, 0}));
  const Results described = Of("GetTreeFeatures");
  EXPECT_EQ(Front(described.internalids, 3), (Ints{0, 1, 0}));
  EXPECT_EQ(Front(described.internalwgts, 3), (Floats{1, 1, 0.5F}));
  EXPECT_EQ(Of("ClusterTreeReorder").ftree, TwoPairsAnd(0).ftree);
}

TEST_P(RowsOfNoCluster, EndTheRunInACompleteTree) {
  EXPECT_EQ(FatalMessage([this] { Of("BuildTree of the rows"); }),
            "A complete tree needs a cluster for every row! Row=4, Cluster=" +
                std::to_string(GetParam()) + "\n");
}

class ParentsOutsideTheTree : public ::testing::TestWithParam<int> {
 protected:
  Results Of(const std::string& name) const {
    Given given = TwoPairsAnd(1);
    given.ptree = {2, GetParam(), -1, -1};
    return ResultsOf(name, given);
  }
};

INSTANTIATE_TEST_SUITE_P(Numbers, ParentsOutsideTheTree,
                         ::testing::Values(0, 1, 3, 4, INT_MIN, INT_MAX));

// Node 2 is left with the cluster 0 alone.
TEST_P(ParentsOutsideTheTree, AreTakenForNone) {
  const Results measured = Of("GetTreeStats");
  EXPECT_EQ(Front(measured.pwgts, 3), (Ints{2, 3, 2}));
  EXPECT_EQ(measured.isim[2], 1);
  EXPECT_EQ(Front(measured.xsims, 3), (Floats{0, 0, 0}));
  EXPECT_EQ(Front(Of("GetTreeFeatures").internalids, 3), (Ints{0, 1, 0}));
  // The pairs are the caller's own, and these two have no neighbours.
  EXPECT_EQ(Of("ClusterTreeReorder").ftree, TwoPairsAnd(1).ftree);
}

// A matrix of no rows, or of fewer, has results of no length.
TEST(EveryEntryPoint, TakesCountsOfNothing) {
  for (const EntryPoint& entry : kEntryPoints) {
    for (const int count : {0, -1, INT_MIN}) {
      Given given{{}, {}, 0, {}, {}};
      given.matrix.nrows = count;
      given.matrix.ncols = count;
      given.nparts = count;
      const testing_support::FatalThrows throws;
      Results results = Blank();
      try {
        entry.call(given, results);
      } catch (const testing_support::Fatal& error) {
        EXPECT_TRUE(std::string(error.what()).find("Cannot") == 0) << entry.name << error.what();
      }
      EXPECT_EQ(results.part, Blank().part) << entry.name;
      EXPECT_EQ(results.isim, Blank().isim) << entry.name;
      EXPECT_EQ(results.internalids, Blank().internalids) << entry.name;
    }
  }
}

}  // namespace
}  // namespace molva
