// SPDX-License-Identifier: MIT
#include "tools/export/measures/typical_rows.h"

#include <gmock/gmock.h>

#include <cmath>

namespace {

using mardle::exporting::ClusterRows;
using mardle::exporting::TypicalRows;
using testing::ElementsAre;

TEST(TypicalRows, HaveTheLargestScoresOfTheirCluster) {
  const std::vector<int> part = {0, 1, 0, 0, 0};
  const std::vector<float> scores = {0.5F, 9, -2, 1.5F, 0.5F};
  EXPECT_THAT(TypicalRows(ClusterRows(part, 2), scores, 0, 3), ElementsAre(3, 0, 4));
}

TEST(TypicalRows, AreAllRowsOfASmallCluster) {
  const std::vector<int> part = {0, 1, 0};
  const std::vector<float> scores = {1, 2, 3};
  EXPECT_THAT(TypicalRows(ClusterRows(part, 2), scores, 1, 3), ElementsAre(1));
}

TEST(TypicalRows, WithoutScoresStandInTheOrderOfTheMatrix) {
  const std::vector<int> part = {0, 0, 0};
  const std::vector<float> scores = {std::nanf(""), -std::nanf(""), -1};
  EXPECT_THAT(TypicalRows(ClusterRows(part, 1), scores, 0, 3), ElementsAre(2, 0, 1));
}

}  // namespace
