// SPDX-License-Identifier: MIT
#include "lib/support/progress.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "lib/molva.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"
#include "tests/testing/matrices.h"

namespace {

using testing_support::FatalMessage;
using testing_support::OutputOf;
using testing_support::RandomDocuments;
using testing_support::SparseMatrix;

struct Events {
  std::vector<std::pair<int, int>> bisections, trials;
  int polls = 0;
  int stop_after = -1;  // trials
  int stop_at_poll = -1;
};

int Note(MOLVA_Event event, int done, int total, void* data) {
  Events& events = *static_cast<Events*>(data);
  if (event == MOLVA_EVENT_BISECTION) events.bisections.emplace_back(done, total);
  if (event == MOLVA_EVENT_TRIAL) events.trials.emplace_back(done, total);
  if (event == MOLVA_EVENT_POLL && ++events.polls == events.stop_at_poll) return 1;
  return events.stop_after >= 0 && static_cast<int>(events.trials.size()) >= events.stop_after;
}

class ProgressHook : public testing::Test {
 protected:
  ProgressHook() : matrix_(RandomDocuments(1, 60, 40, 3, 8)) {
    MOLVA_SetProgressHook(Note, &events_);
  }
  ~ProgressHook() override { MOLVA_SetProgressHook(nullptr, nullptr); }

  std::vector<int> Cluster(int nparts) {
    std::vector<int> part(static_cast<std::size_t>(matrix_.nrows));
    MOLVA_VP_ClusterRB(matrix_.nrows, matrix_.ncols, matrix_.rowptr.data(), matrix_.rowind.data(),
                       matrix_.rowval.data(), MOLVA_SIM_COSINE, MOLVA_CRFUN_I2, MOLVA_ROW_NONE,
                       MOLVA_COL_NONE, 1.0F, 2, 10, 1, 0, 0, nparts, part.data());
    return part;
  }

  SparseMatrix matrix_;
  Events events_;
};

TEST_F(ProgressHook, TellsOfEveryTrialAndEveryBisection) {
  Cluster(3);
  using Pairs = std::vector<std::pair<int, int>>;
  EXPECT_EQ(events_.trials, (Pairs{{1, 2}, {2, 2}, {1, 2}, {2, 2}}));
  EXPECT_EQ(events_.bisections, (Pairs{{1, 2}, {2, 2}}));
  EXPECT_GT(events_.polls, 0);
}

TEST_F(ProgressHook, StopsARun) {
  events_.stop_after = 3;
  EXPECT_EQ(FatalMessage([&] { Cluster(3); }), "The run was interrupted.");
  EXPECT_EQ(events_.trials.size(), 3U);
}

TEST_F(ProgressHook, ChangesNoResult) {
  const std::vector<int> watched = Cluster(4);
  MOLVA_SetProgressHook(nullptr, nullptr);
  EXPECT_EQ(Cluster(4), watched);
}

TEST_F(ProgressHook, BelongsToTheThreadThatSetIt) {
  std::thread other([&] { Cluster(3); });
  other.join();
  EXPECT_TRUE(events_.trials.empty());
  EXPECT_EQ(events_.polls, 0);
}

TEST_F(ProgressHook, StopsMerging) {
  events_.stop_after = 0;
  const int pwgts[] = {1, 1, 1};
  float smat[] = {1, 0.5F, 0.25F, 0.5F, 1, 0.125F, 0.25F, 0.125F, 1};
  int part[3], ptree[6];
  float tsims[6], gains[6];
  for (const int crfun : {MOLVA_CRFUN_I2, MOLVA_CRFUN_H2}) {
    EXPECT_EQ(FatalMessage([&] {
                MOLVA_SA_Cluster(3, pwgts, smat, crfun, 1, 0, 1, part, ptree, tsims, gains);
              }),
              "The run was interrupted.");
  }
}

int CountOf(const std::string& part, const std::string& text) {
  int count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

// A run that reports its merges has a queue. Stopped at each of its polls in turn, it has made none
// of its three merges, or one, or two.
TEST_F(ProgressHook, StopsMergingBetweenAnyTwoMerges) {
  const int pwgts[] = {1, 1, 1, 1};
  int part[4], ptree[8];
  float tsims[8], gains[8];
  for (const int crfun : {MOLVA_CRFUN_I2, MOLVA_CRFUN_H2}) {
    const auto merge = [&] {
      float smat[] = {1, 0.5F, 0.25F, 0, 0.5F, 1, 0.125F, 0, 0.25F, 0.125F, 1, 0, 0, 0, 0, 1};
      MOLVA_SA_Cluster(4, pwgts, smat, crfun, 1, MOLVA_DBG_MERGING, 1, part, ptree, tsims, gains);
    };
    events_ = {};
    OutputOf(merge);
    const int polls = events_.polls;
    std::set<int> merges;
    for (int poll = 1; poll <= polls; ++poll) {
      events_ = {};
      events_.stop_at_poll = poll;
      merges.insert(CountOf("Merging [", OutputOf([&] {
                              EXPECT_EQ(FatalMessage(merge), "The run was interrupted.");
                            })));
    }
    EXPECT_EQ(merges, (std::set<int>{0, 1, 2})) << crfun;
  }
}

TEST_F(ProgressHook, StopsTheComparisonOfClustersAndTheOrderingOfTrees) {
  const std::vector<int> part = Cluster(4);
  const int ptree[] = {4, 4, 5, 5, 6, 6, -1, -1};
  int ftree[] = {-1, -1, -1, -1, -1, -1, -1, -1, 0, 1, 2, 3, 4, 5, -1, -1};
  events_.stop_after = 0;
  EXPECT_EQ(FatalMessage([&] {
              MOLVA_V_ClusterTreeReorder(matrix_.nrows, matrix_.ncols, matrix_.rowptr.data(),
                                         matrix_.rowind.data(), matrix_.rowval.data(),
                                         MOLVA_SIM_COSINE, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 0,
                                         4, part.data(), ptree, ftree);
            }),
            "The run was interrupted.");
  const int wgts[] = {1, 1, 1, 1};
  std::vector<float> smat(16, 0.5F);
  EXPECT_EQ(FatalMessage([&] { MOLVA_S_TreeReorder(4, wgts, smat.data(), 1, 0, ptree, ftree); }),
            "The run was interrupted.");
}

}  // namespace
