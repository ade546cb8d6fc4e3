// SPDX-License-Identifier: MIT
#include "lib/partition/refine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/testing/allocation.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"
#include "tests/testing/matrices.h"
#include "tests/testing/oracles.h"

namespace molva {
namespace {

using testing_support::CriterionValue;
using testing_support::FatalMessage;
using testing_support::OutputOf;
using testing_support::PlainRefinement;
using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::QualityOf;
using testing_support::RandomDocuments;
using testing_support::RandomPart;
using testing_support::SeedBoth;
using testing_support::SparseMatrix;

struct Shape {
  int nrows, ncols, topics, entries, nparts;
};
constexpr Shape kShapes[] = {{40, 30, 3, 6, 2}, {90, 120, 5, 10, 5}, {60, 40, 4, 5, 12}};

// Runs a check on refined clusterings of every criterion, several shapes and seeds.
template <typename Check>
void ForEachRefinement(Check check) {
  for (int code = 1; code <= 9; ++code) {
    for (const Shape& shape : kShapes) {
      for (const std::uint32_t seed : {1U, 2U, 3U}) {
        SCOPED_TRACE("criterion " + std::to_string(code) + ", clusters " +
                     std::to_string(shape.nparts) + ", seed " + std::to_string(seed));
        const auto mat =
            Prepared(RandomDocuments(seed, shape.nrows, shape.ncols, shape.topics, shape.entries));
        const std::vector<int> start = RandomPart(seed, mat->nrows, shape.nparts);
        std::vector<int> part = start;
        SeedBoth(static_cast<int>(seed));
        const float quality =
            RefineClusteringKWay({.crfun = code, .niter = 10}, *mat, shape.nparts, part);
        check(code, *mat, shape.nparts, start, part, quality);
      }
    }
  }
}

TEST(Refinement, ReturnsTheValueOfTheClusteringItLeaves) {
  ForEachRefinement([](int code, const PreparedMatrix& mat, int nparts, const std::vector<int>&,
                       const std::vector<int>& part, float quality) {
    const Wide recomputed = QualityOf(code, CriterionValue(code, mat, part, nparts), mat.nrows);
    EXPECT_NEAR(static_cast<double>(recomputed), static_cast<double>(quality),
                1e-5 * static_cast<double>(recomputed));
  });
}

TEST(Refinement, NeverWorsensTheCriterion) {
  ForEachRefinement([](int code, const PreparedMatrix& mat, int nparts,
                       const std::vector<int>& start, const std::vector<int>& part, float) {
    const Wide before = QualityOf(code, CriterionValue(code, mat, start, nparts), mat.nrows);
    const Wide after = QualityOf(code, CriterionValue(code, mat, part, nparts), mat.nrows);
    EXPECT_GE(after, before * (1 - 1e-6));
  });
}

// A pair may take rows in and give them up again, but it never falls below two.
TEST(Refinement, NeverShrinksAClusterBelowTwoRows) {
  ForEachRefinement([](int, const PreparedMatrix&, int nparts, const std::vector<int>& start,
                       const std::vector<int>& part, float) {
    for (int k = 0; k < nparts; ++k) {
      const auto before = std::count(start.begin(), start.end(), k);
      EXPECT_GE(std::count(part.begin(), part.end(), k), std::min<std::ptrdiff_t>(before, 2));
    }
  });
}

TEST(Refinement, EqualsThePlainOneBitForBit) {
  ForEachRefinement([](int code, const PreparedMatrix& mat, int nparts,
                       const std::vector<int>& start, const std::vector<int>& part, float quality) {
    // The draws of the run before are not repeatable from here, so both run again.
    std::vector<int> plain = start;
    SeedBoth(17);
    const float plain_quality = PlainRefinement(code, mat, nparts, 10, plain);
    std::vector<int> refined = start;
    SeedBoth(17);
    const float refined_quality =
        RefineClusteringKWay({.crfun = code, .niter = 10}, mat, nparts, refined);
    EXPECT_EQ(refined, plain);
    EXPECT_EQ(refined_quality, plain_quality);
    EXPECT_EQ(part.size(), refined.size());
    EXPECT_GT(quality, 0);
  });
}

TEST(Refinement, ImprovesABadStart) {
  // Two topics, interleaved; the start cuts across them.
  const auto mat = PreparedOf({{1, 0}, {1, 0}, {1, 0}, {0, 1}, {0, 1}, {0, 1}});
  for (int code = 1; code <= 9; ++code) {
    std::vector<int> part = {0, 0, 1, 1, 1, 0};
    SeedBoth(1);
    RefineClusteringKWay({.crfun = code, .niter = 10}, *mat, 2, part);
    EXPECT_EQ(part[0], part[1]) << "criterion " << code;
    EXPECT_EQ(part[0], part[2]) << "criterion " << code;
    EXPECT_EQ(part[3], part[4]) << "criterion " << code;
    EXPECT_NE(part[0], part[3]) << "criterion " << code;
  }
}

TEST(Refinement, MovesNothingBetweenTwoPairs) {
  const auto mat = PreparedOf({{1, 0}, {0, 1}, {1, 0}, {0, 1}});
  for (int code = 1; code <= 9; ++code) {
    std::vector<int> part = {0, 0, 1, 1};
    RefineClusteringKWay({.crfun = code, .niter = 10}, *mat, 2, part);
    EXPECT_EQ(part, (std::vector<int>{0, 0, 1, 1}));
  }
}

TEST(Refinement, LeavesTheClusteringAsItIsWithoutPasses) {
  const auto mat = PreparedOf({{1, 0}, {0, 1}, {1, 0}, {0, 1}, {1, 0}});
  std::vector<int> part = {0, 0, 0, 1, 1};
  const std::vector<int> start = part;
  // Composites (2, 1) and (1, 1): I2 is sqrt 5 + sqrt 2.
  const float quality = RefineClusteringKWay({.crfun = 2, .niter = 0}, *mat, 2, part);
  EXPECT_EQ(part, start);
  EXPECT_FLOAT_EQ(quality, 3.65028154F / 5);
}

TEST(Refinement, NeverMovesARowOnATie) {
  // Five identical rows: |D| sums to 5 however they are divided.
  const auto mat = PreparedOf({{1, 0}, {1, 0}, {1, 0}, {1, 0}, {1, 0}});
  std::vector<int> part = {0, 0, 0, 1, 1};
  const std::vector<int> start = part;
  RefineClusteringKWay({.crfun = 2, .niter = 10}, *mat, 2, part);
  EXPECT_EQ(part, start);
}

TEST(Refinement, NeverMovesAZeroRowWhereSizesDoNotEnter) {
  const auto mat = PreparedOf({{1, 0}, {1, 0}, {0, 0}, {0, 1}, {0, 1}});
  std::vector<int> part = {0, 0, 0, 1, 1};
  const std::vector<int> start = part;
  RefineClusteringKWay({.crfun = 2, .niter = 10}, *mat, 2, part);
  EXPECT_EQ(part, start);
}

// In three clusters a row may first move to a better one and then on to the best in one visit.
TEST(Refinement, GoesOnFromTheNewClusterAfterAMove) {
  // The last row is orthogonal to cluster 0, leans a little to cluster 1 and is one of cluster 2.
  const auto mat = PreparedOf({{1, 0, 0},
                               {1, 0, 0},
                               {1, 0, 0},
                               {0, 0.995F, 0.0998F},
                               {0, 0.995F, 0.0998F},
                               {0, 0, 1},
                               {0, 0, 1},
                               {0, 0, 1}});
  std::vector<int> part = {0, 0, 0, 1, 1, 2, 2, 0};
  SeedBoth(1);
  const std::string progress = OutputOf([&] {
    RefineClusteringKWay({.crfun = 2, .niter = 1, .dbglvl = MOLVA_DBG_REFINEMENT}, *mat, 3, part);
  });
  EXPECT_EQ(part, (std::vector<int>{0, 0, 0, 1, 1, 2, 2, 2}));
  // Both steps of the one visit are counted: I2 is 3 + 2 + 3 rows of unit length, per row 1.
  EXPECT_NE(progress.find(", 2 1.0000, \n"), std::string::npos) << progress;
}

TEST(RefinementProgress, ReportsTheStartAndOnePairPerPass) {
  // I2 of (2, 0) and (0, 2) is 4, per row 1.
  const auto mat = PreparedOf({{1, 0}, {1, 0}, {0, 1}, {0, 1}});
  std::vector<int> part = {0, 0, 1, 1};
  EXPECT_EQ(OutputOf([&] {
              RefineClusteringKWay({.crfun = 2, .niter = 10, .dbglvl = MOLVA_DBG_REFINEMENT}, *mat,
                                   2, part);
            }),
            "\nInit: 1.0000, 0 1.0000, \n");
}

TEST(RefinementProgress, HasNoPairWithoutPasses) {
  const auto mat = PreparedOf({{1, 0}, {1, 0}, {0, 1}, {0, 1}});
  std::vector<int> part = {0, 0, 1, 1};
  EXPECT_EQ(OutputOf([&] {
              RefineClusteringKWay({.crfun = 1, .niter = 0, .dbglvl = MOLVA_DBG_REFINEMENT}, *mat,
                                   2, part);
            }),
            "\nInit: 1.0000, \n");
}

TEST(RefinementProgress, StartsWithAnExtraLineWhereTheWholeCollectionIsLookedAt) {
  const auto mat = PreparedOf({{1, 0}, {1, 0}, {0, 1}, {0, 1}});
  for (int code = 1; code <= 9; ++code) {
    std::vector<int> part = {0, 0, 1, 1};
    const std::string progress = OutputOf([&] {
      RefineClusteringKWay({.crfun = code, .niter = 0, .dbglvl = MOLVA_DBG_REFINEMENT}, *mat, 2,
                           part);
    });
    const bool looks_at_whole = code != 1 && code != 2 && code != 8;
    EXPECT_EQ(progress.substr(0, 7), looks_at_whole ? "\n\nInit:" : "\nInit: ") << code;
  }
}

TEST(RefinementProgress, IsSilentUnlessItsBitIsSet) {
  const auto mat = PreparedOf({{1, 0}, {1, 0}, {0, 1}, {0, 1}});
  std::vector<int> part = {0, 0, 1, 1};
  EXPECT_EQ(OutputOf([&] {
              RefineClusteringKWay({.crfun = 3, .niter = 1, .dbglvl = 1 + 4 + 8}, *mat, 2, part);
            }),
            "");
}

TEST(Refinement, EndsTheRunOnAnUnknownCriterion) {
  const auto mat = PreparedOf({{1, 0}});
  std::vector<int> part = {0};
  EXPECT_FATAL(RefineClusteringKWay({.crfun = 0}, *mat, 1, part),
               "Unknown clustering criterion function (CRFun) of 0\n");
  EXPECT_FATAL(RefineClusteringKWay({.crfun = 10}, *mat, 1, part),
               "Unknown clustering criterion function (CRFun) of 10\n");
}

// The blocks of each routine, in the order in which they are asked for.
std::vector<std::string> BlocksOf(int code) {
  const auto mat = PreparedOf({{1, 0}, {0, 1}});
  return testing_support::BlockNames([&] {
    std::vector<int> part = {0, 1};
    RefineClusteringKWay({.crfun = code, .niter = 1}, *mat, 2, part);
  });
}

// Each name once, in the order of its first block.
std::vector<std::string> Distinct(const std::vector<std::string>& names) {
  std::vector<std::string> distinct;
  for (const std::string& name : names) {
    if (std::find(distinct.begin(), distinct.end(), name) == distinct.end()) {
      distinct.push_back(name);
    }
  }
  return distinct;
}

// Aids of the screen carry the name of the numbers that they stand for.
TEST(Refinement, NamesItsBlocksAfterItself) {
  EXPECT_EQ(Distinct(BlocksOf(2)),
            (std::vector<std::string>{
                "PartitionRefineKWayI2: perm", "RefineClusteringKWayI2: pwgts",
                "RefineClusteringKWayI2: dnorms", "RefineClusteringKWayI2: centers"}));
  EXPECT_EQ(Distinct(BlocksOf(5)).back(), "PartitionRefineKWayG1Prime: gcenter");
  EXPECT_EQ(Distinct(BlocksOf(5))[4], "RefineClusteringKWayG1Prime: csim");
}

TEST(Refinement, CrossesTheNamesOfCodes8And9) {
  EXPECT_EQ(BlocksOf(8)[0], "PartitionRefineKWayH3: perm");
  EXPECT_EQ(Distinct(BlocksOf(8))[1], "RefineClusteringKWayH3: pwgts");
  EXPECT_EQ(BlocksOf(9)[0], "PartitionRefineKWayG3: perm");
  EXPECT_EQ(Distinct(BlocksOf(9))[1], "RefineClusteringKWayG3: pwgts");
}

}  // namespace
}  // namespace molva
