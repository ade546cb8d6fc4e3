// SPDX-License-Identifier: MIT
#include "tests/testing/both_arithmetics.h"

#include <gtest/gtest.h>

#include "tests/testing/drawn.h"

namespace {

using testing_support::ArithmeticsAgree;
using testing_support::ClusteringRun;
using testing_support::Drawn;
using testing_support::DrawRun;

TEST(BothArithmetics, GiveTheSameBitsOnTablesOfEverySign) {
  for (int seed = 1; seed <= Drawn(6000); ++seed) {
    const ClusteringRun run = DrawRun(static_cast<std::uint32_t>(seed));
    ASSERT_TRUE(ArithmeticsAgree(run)) << "seed " << seed << ": " << run.Options();
  }
}

}  // namespace
