// SPDX-License-Identifier: MIT
#include "tests/testing/both_arithmetics.h"

#include <gtest/gtest.h>

namespace {

using testing_support::ArithmeticsAgree;
using testing_support::ClusteringRun;
using testing_support::DrawRun;

TEST(BothArithmetics, GiveTheSameBitsOnTablesOfEverySign) {
  for (std::uint32_t seed = 1; seed <= 6000; ++seed) {
    const ClusteringRun run = DrawRun(seed);
    ASSERT_TRUE(ArithmeticsAgree(run)) << "seed " << seed << ": " << run.Options();
  }
}

}  // namespace
