// SPDX-License-Identifier: MIT
#include "lib/partition/cluster_rb.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "lib/molva.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"
#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::OutputOf;
using testing_support::RandomDocuments;
using testing_support::SparseMatrix;
using testing_support::SparseOf;

struct Options {
  int crfun = 2;
  int colmodel = MOLVA_COL_NONE;
  int ntrials = 10;
  int refine = 0;
  int dbglvl = 0;
  int seed = 1;
};

std::vector<int> Bisected(const SparseMatrix& m, int nparts, const Options& options = {}) {
  std::vector<int> part(static_cast<std::size_t>(m.nrows), -7);
  MOLVA_VP_ClusterRB(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(), m.rowval.data(),
                     MOLVA_SIM_COSINE, options.crfun, MOLVA_ROW_NONE, options.colmodel, 1.0F,
                     options.ntrials, 10, options.seed, options.refine, options.dbglvl, nparts,
                     part.data());
  return part;
}

// Three groups of identical rows, of 5, 4 and 3, and every column in two rows or more.
SparseMatrix ThreeGroups() {
  return SparseOf({{1, 1, 0, 0, 0, 0},
                   {0, 0, 1, 1, 0, 0},
                   {1, 1, 0, 0, 0, 0},
                   {0, 0, 0, 0, 1, 1},
                   {1, 1, 0, 0, 0, 0},
                   {0, 0, 1, 1, 0, 0},
                   {0, 0, 0, 0, 1, 1},
                   {1, 1, 0, 0, 0, 0},
                   {0, 0, 1, 1, 0, 0},
                   {0, 0, 0, 0, 1, 1},
                   {1, 1, 0, 0, 0, 0},
                   {0, 0, 1, 1, 0, 0}});
}

TEST(SelectACluster, TakesTheLargestAndTheLowestNumberOnTies) {
  EXPECT_EQ(SelectACluster(3, std::vector<int>{0, 1, 1, 2, 2}), 1);
  EXPECT_EQ(SelectACluster(3, std::vector<int>{0, 1, 1, 2, 2, 2}), 2);
}

TEST(RepeatedBisection, FindsThePlantedGroupsUnderEveryCriterion) {
  for (int code = 1; code <= 9; ++code) {
    const std::vector<int> part = Bisected(ThreeGroups(), 3, {.crfun = code});
    for (const int i : {2, 4, 7, 10}) EXPECT_EQ(part[0], part[static_cast<std::size_t>(i)]) << code;
    for (const int i : {5, 8, 11}) EXPECT_EQ(part[1], part[static_cast<std::size_t>(i)]) << code;
    for (const int i : {6, 9}) EXPECT_EQ(part[3], part[static_cast<std::size_t>(i)]) << code;
    EXPECT_EQ(*std::max_element(part.begin(), part.end()), 2) << code;
  }
}

TEST(RepeatedBisection, PutsEveryRowIntoClusterZeroWhenOneIsWanted) {
  const std::string progress = OutputOf(
      [] { EXPECT_EQ(Bisected(ThreeGroups(), 1, {.dbglvl = 3}), std::vector<int>(12, 0)); });
  EXPECT_EQ(progress, "");
}

TEST(RepeatedBisection, NeedsNoTrialForOneCluster) {
  EXPECT_EQ(Bisected(ThreeGroups(), 1, {.ntrials = 0}), std::vector<int>(12, 0));
}

TEST(RepeatedBisection, LeavesRowsThatPreparationDropsWithoutACluster) {
  const SparseMatrix matrix = SparseOf(
      {{1, 1, 0, 0}, {0, 0, 0, 0}, {1, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 1, 0}, {0, 0, 0, 9}});
  const std::vector<int> part = Bisected(matrix, 2);
  EXPECT_EQ(part[1], -1);
  EXPECT_EQ(part[5], -1);
  EXPECT_EQ(part[0], part[2]);
  EXPECT_EQ(part[3], part[4]);
  EXPECT_NE(part[0], part[3]);
}

TEST(RepeatedBisection, MakesEveryRowAClusterWhenAsManyAreWanted) {
  std::vector<int> part = Bisected(ThreeGroups(), 12);
  std::sort(part.begin(), part.end());
  for (int k = 0; k < 12; ++k) EXPECT_EQ(part[static_cast<std::size_t>(k)], k);
}

TEST(RepeatedBisection, RepeatsItselfForTheSameSeed) {
  const SparseMatrix matrix = RandomDocuments(5, 120, 90, 6, 9);
  EXPECT_EQ(Bisected(matrix, 6, {.seed = 4}), Bisected(matrix, 6, {.seed = 4}));
  EXPECT_NE(Bisected(matrix, 6, {.seed = 4}), Bisected(matrix, 6, {.seed = 5}));
}

TEST(RepeatedBisection, AGlobalRefinementDoesNotWorsenTheCriterion) {
  const SparseMatrix m = RandomDocuments(6, 120, 90, 7, 7);
  const auto quality = [&m](const std::vector<int>& part) {
    return MOLVA_V_GetSolutionQuality(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(),
                                      m.rowval.data(), MOLVA_SIM_COSINE, 2, MOLVA_ROW_NONE,
                                      MOLVA_COL_NONE, 1.0F, 7, part.data());
  };
  EXPECT_GT(quality(Bisected(m, 7, {.refine = 1})), quality(Bisected(m, 7)));
}

TEST(RepeatedBisection, ReportsEachBisectionWithABlankBeforeItsValue) {
  // One bisection of four rows into two orthogonal pairs; |D| sums to 4, per row 1.
  const SparseMatrix matrix = SparseOf({{1, 0}, {1, 0}, {0, 1}, {0, 1}});
  EXPECT_EQ(OutputOf([&] { Bisected(matrix, 2, {.dbglvl = 1}); }),
            "\n------------------------------------------------------------------------------\n"
            "Bisecting a cluster of size [nrows:4 ncols:2 nnz:4] Sim: 1.0000\n"
            "------------------------------------------------------------------------------\n");
}

TEST(RepeatedBisection, EndsTheRunWhenThereAreMoreClustersThanRowsWithEntries) {
  const SparseMatrix matrix = SparseOf({{1, 1, 0}, {1, 1, 0}, {0, 0, 4}});
  EXPECT_FATAL(Bisected(matrix, 3), "Cannot make 3 clusters out of 2 rows with entries!\n");
}

TEST(RepeatedBisection, EndsTheRunWhenNoClusterIsWanted) {
  EXPECT_FATAL(Bisected(ThreeGroups(), 0), "Cannot make 0 clusters out of 12 rows with entries!\n");
  EXPECT_FATAL(Bisected(ThreeGroups(), -3),
               "Cannot make -3 clusters out of 12 rows with entries!\n");
}

TEST(RepeatedBisection, EndsTheRunWhenATrialIsNeededAndNoneIsAllowed) {
  EXPECT_FATAL(Bisected(ThreeGroups(), 2, {.ntrials = 0}),
               "At least one trial is needed to find a clustering! NTrials=0\n");
}

}  // namespace
}  // namespace molva
