// SPDX-License-Identifier: MIT
#include "tools/text/run_files.h"

#include <gtest/gtest.h>

namespace {

using mardle::tools::RecordPathOf;

TEST(RunFiles, TheRecordStandsBesideTheClustering) {
  EXPECT_EQ(RecordPathOf("d/letters.clustering"), "d/letters.run.json");
  EXPECT_EQ(RecordPathOf("texts.mat.clustering.8"), "texts.mat.run.json");
  EXPECT_EQ(RecordPathOf("a.clustering.b.clustering.8"), "a.clustering.b.run.json");
  EXPECT_EQ(RecordPathOf("other"), "other.run.json");
  EXPECT_EQ(RecordPathOf("d.clustering/other"), "d.clustering/other.run.json");
}

}  // namespace
