// SPDX-License-Identifier: MIT
#include "lib/partition/trials_ahead.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <vector>

#include "lib/partition/initial_clustering.h"
#include "lib/partition/refine.h"
#include "lib/support/alloc.h"
#include "lib/support/progress.h"
#include "lib/support/team.h"
#include "tests/testing/fatal.h"
#include "tests/testing/matrices.h"
#include "tests/testing/oracles.h"

namespace molva {
namespace {

using testing_support::FatalMessage;
using testing_support::Prepared;
using testing_support::RandomDocuments;
using testing_support::SeedBoth;

struct Made {
  std::vector<int> part;
  float quality;
  RandomState end;
  bool operator==(const Made&) const = default;
};

// One by one, each from where the one before has ended.
std::vector<Made> OneByOne(const Control& control, const PreparedMatrix& mat, int nparts) {
  std::vector<Made> trials;
  SeedBoth(control.seed);
  for (int t = 0; t < control.ntrials; ++t) {
    std::vector<int> part(static_cast<std::size_t>(mat.nrows));
    InitialClustering(mat, nparts, part);
    const float quality = RefineClusteringKWay(control, mat, nparts, part);
    trials.push_back({part, quality, CurrentRandomState()});
  }
  return trials;
}

class Threads : public testing::TestWithParam<int> {
 protected:
  Threads() { SetThreadCount(GetParam()); }
  ~Threads() override {
    SetThreadCount(1);
    SetProgressHook(nullptr, nullptr);
  }
};

std::vector<Made> Ahead(const Control& control, const PreparedMatrix& mat, int nparts) {
  const TeamScope team;
  std::vector<Made> trials;
  SeedBoth(control.seed);
  TrialsAhead ahead(control, mat, nparts, "Test: trial");
  for (int left = control.ntrials; left > 0; --left) {
    const TrialsAhead::Outcome outcome = ahead.Next(left);
    trials.push_back({{outcome.part.begin(), outcome.part.end()}, outcome.quality, 0});
  }
  trials.back().end = CurrentRandomState();
  return trials;
}

// So many rows that the first trials are made at once, and so few that they wait for one. From no
// pass on, when all trials end as expected, to so many that none does.
TEST_P(Threads, MakeTheTrialsThatOneByOneMakes) {
  const auto few = Prepared(RandomDocuments(8, 120, 80, 5, 9));
  const auto many = Prepared(RandomDocuments(8, 2500, 80, 5, 9));
  for (const int niter : {0, 1, 2, 3, 5, 100}) {
    for (const int crfun : {2, 6}) {
      const Control control{.crfun = crfun, .ntrials = 11, .niter = niter, .seed = niter};
      for (const PreparedMatrix* mat : {few.get(), many.get()}) {
        std::vector<Made> expected = OneByOne(control, *mat, 9);
        for (int t = 0; t < control.ntrials - 1; ++t) expected[static_cast<std::size_t>(t)].end = 0;
        EXPECT_EQ(Ahead(control, *mat, 9), expected) << niter;
      }
    }
  }
}

TEST_P(Threads, StopWhenTheHookAsksForIt) {
  const auto mat = Prepared(RandomDocuments(8, 6000, 80, 5, 9));
  SetProgressHook(
      [](MOLVA_Event event, int, int, void*) { return event == MOLVA_EVENT_POLL ? 1 : 0; },
      nullptr);
  const Control control{.crfun = 2, .ntrials = 10, .niter = 3, .seed = 1};
  EXPECT_FATAL(Ahead(control, *mat, 4), "The run was interrupted.");
}

// Whichever thread asks for the block that cannot be had, the run ends in this one, with its name.
TEST_P(Threads, EndTheRunWhenMemoryFails) {
  static std::atomic<int> left;
  const auto mat = Prepared(RandomDocuments(8, 2500, 80, 5, 9));
  const Control control{.crfun = 2, .ntrials = 6, .niter = 2, .seed = 1};
  int ended = 0;
  for (int failing = 1;; ++failing) {
    left = failing;
    const AllocateFunction replaced = SetAllocateFunction(
        [](std::size_t size) { return --left == 0 ? nullptr : std::malloc(size); });
    const testing_support::FatalThrows throws;
    std::string message;
    try {
      Ahead(control, *mat, 9);
    } catch (const testing_support::Fatal& error) {
      message = error.what();
    }
    SetAllocateFunction(replaced);
    if (left > 0) break;  // fewer are asked for
    EXPECT_EQ(message.rfind("***Memory allocation failed for ", 0), 0U) << failing << message;
    ++ended;
  }
  EXPECT_GT(ended, 40);
}

INSTANTIATE_TEST_SUITE_P(TrialsAhead, Threads, testing::Values(1, 2, 3, 8, 16));

}  // namespace
}  // namespace molva
