// SPDX-License-Identifier: MIT
#include "lib/partition/trials.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "lib/partition/initial_clustering.h"
#include "lib/partition/refine.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"
#include "tests/testing/matrices.h"
#include "tests/testing/oracles.h"

namespace molva {
namespace {

using testing_support::OutputOf;
using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::RandomDocuments;
using testing_support::SeedBoth;

constexpr TrialTexts kTexts{"Test: bpart", "Testing", ">"};

std::vector<int> Best(const Control& control, const PreparedMatrix& mat, int nparts) {
  std::vector<int> part(static_cast<std::size_t>(mat.nrows));
  SeedBoth(control.seed);
  BestOfTrials(control, mat, nparts, part, kTexts);
  return part;
}

struct Trial {
  std::vector<int> part;
  float quality;
};

// All trials from the same seed, one after the other.
std::vector<Trial> OneByOne(const Control& control, const PreparedMatrix& mat, int nparts) {
  std::vector<Trial> trials;
  std::vector<int> part(static_cast<std::size_t>(mat.nrows));
  SeedBoth(control.seed);
  for (int trial = 0; trial < control.ntrials; ++trial) {
    InitialClustering(mat, nparts, part);
    const float quality = RefineClusteringKWay(control, mat, nparts, part);
    trials.push_back({part, quality});
  }
  return trials;
}

TEST(Trials, KeepTheFirstOfTheBest) {
  const auto mat = Prepared(RandomDocuments(4, 70, 60, 5, 6));
  const Control control{.crfun = 2, .ntrials = 6, .niter = 1, .seed = 3};
  const std::vector<Trial> trials = OneByOne(control, *mat, 5);
  const auto best =
      std::max_element(trials.begin(), trials.end(),
                       [](const Trial& a, const Trial& b) { return a.quality < b.quality; });
  EXPECT_EQ(Best(control, *mat, 5), best->part);
}

TEST(Trials, ATieKeepsTheEarlierTrial) {
  // Every split of orthogonal rows into one and two has the same value, so trial one stays.
  const auto mat = PreparedOf({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
  Control control{.crfun = 2, .ntrials = 20, .niter = 5, .seed = 2};
  const std::vector<Trial> trials = OneByOne(control, *mat, 2);
  const Trial& first = trials.front();
  const auto other = std::find_if(trials.begin(), trials.end(), [&first](const Trial& trial) {
    return trial.part != first.part;
  });
  ASSERT_NE(other, trials.end());
  EXPECT_EQ(other->quality, first.quality);
  // The other one is the last that is made.
  control.ntrials = static_cast<int>(other - trials.begin()) + 1;
  EXPECT_EQ(Best(control, *mat, 2), first.part);
}

TEST(Trials, ReportTheSizesAndTheBestQuality) {
  const auto mat = PreparedOf({{1, 0}, {0, 1}});
  EXPECT_EQ(OutputOf([&] {
              Best({.crfun = 2, .ntrials = 2, .niter = 5, .dbglvl = MOLVA_DBG_CLUSTERING}, *mat, 2);
            }),
            "\n------------------------------------------------------------------------------\n"
            "Testing [nrows:2 ncols:2 nnz:2]>Sim: 1.0000\n"
            "------------------------------------------------------------------------------\n");
}

TEST(Trials, StartRefinementProgressOnALineOfItsOwn) {
  const auto mat = PreparedOf({{1, 0}, {0, 1}});
  EXPECT_EQ(OutputOf([&] {
              Best({.crfun = 2, .ntrials = 1, .niter = 5, .dbglvl = MOLVA_DBG_REFINEMENT}, *mat, 2);
            }),
            "\n\nInit: 1.0000, 0 1.0000, \n");
}

TEST(Trials, EndTheRunWhenNoneIsAskedFor) {
  const auto mat = PreparedOf({{1, 0}, {0, 1}});
  EXPECT_FATAL(Best({.crfun = 2, .ntrials = 0}, *mat, 2),
               "At least one trial is needed to find a clustering! NTrials=0\n");
}

TEST(Trials, EndTheRunWhenThereAreMoreClustersThanRows) {
  const auto mat = PreparedOf({{1, 0}, {0, 1}});
  EXPECT_FATAL(Best({.crfun = 2, .ntrials = 1}, *mat, 3),
               "Cannot make 3 clusters out of 2 rows with entries!\n");
  EXPECT_FATAL(Best({.crfun = 2, .ntrials = 1}, *mat, 0),
               "Cannot make 0 clusters out of 2 rows with entries!\n");
}

}  // namespace
}  // namespace molva
