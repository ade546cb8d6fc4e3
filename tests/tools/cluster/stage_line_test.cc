// SPDX-License-Identifier: MIT
#include "tools/cluster/stage_line.h"

#include <gtest/gtest.h>

namespace {

using mardle::tools::StageLine;

TEST(StageLine, TellsWhatIsDoneAndWhatIsLeft) {
  EXPECT_EQ(StageLine::Text("reading", "", 0, 0, 2), "reading, 2 s");
  EXPECT_EQ(StageLine::Text("clustering", "bisection", 0, 7, 1),
            "clustering: bisection 0 of 7, 1 s");
  // Three of seven took six seconds, so four take eight.
  EXPECT_EQ(StageLine::Text("clustering", "bisection", 3, 7, 6),
            "clustering: bisection 3 of 7, 6 s, about 8 s left");
  EXPECT_EQ(StageLine::Text("clustering", "trial", 10, 10, 6), "clustering: trial 10 of 10, 6 s");
}

}  // namespace
