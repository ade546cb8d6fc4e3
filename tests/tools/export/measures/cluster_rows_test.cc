// SPDX-License-Identifier: MIT
#include "tools/export/measures/cluster_rows.h"

#include <gmock/gmock.h>

namespace {

using mardle::exporting::ClusterRows;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(ClusterRows, StandInTheOrderOfTheMatrix) {
  const std::vector<int> part = {2, 0, -1, 2, 0, 2};
  const ClusterRows rows(part, 3);
  EXPECT_THAT(rows[0], ElementsAre(1, 4));
  EXPECT_THAT(rows[1], IsEmpty());
  EXPECT_THAT(rows[2], ElementsAre(0, 3, 5));
  EXPECT_EQ(rows.Size(2), 3);
}

TEST(ClusterRows, LeaveOutRowsWithoutACluster) {
  const std::vector<int> part = {2, 0, -1, 2, 0, 2};
  EXPECT_EQ(ClusterRows(part, 3).Total(), 5);
}

}  // namespace
