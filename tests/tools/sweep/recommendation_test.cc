// SPDX-License-Identifier: MIT
#include "tools/sweep/recommendation.h"

#include <gtest/gtest.h>

namespace {

using mardle::tools::Knee;
using mardle::tools::Recommend;
using mardle::tools::Recommendation;
using mardle::tools::RecommendationText;
using mardle::tools::SweepRow;

std::vector<SweepRow> Rows(const std::vector<double>& stabilities) {
  std::vector<SweepRow> rows;
  for (const double stability : stabilities) {
    SweepRow& row = rows.emplace_back();
    row.nclusters = static_cast<int>(rows.size()) + 1;
    row.stability = stability;
  }
  return rows;
}

TEST(Recommendation, IsTheKneeThatComesBack) {
  const Recommendation found = Recommend(Rows({0.5, 0.9, 1, 0.2}), Knee{3, 10, 1.25}, 2);
  EXPECT_EQ(found.nclusters, 3);
  EXPECT_EQ(RecommendationText(found),
            "Recommended: 3 clusters.\n"
            "I2 has a knee at 3: a further cluster adds 10 before it and 1.25 behind it.\n"
            "Clusters that come back with other seeds (stability 0.9): 3 and 4.\n");
}

TEST(Recommendation, IsNoneWhereTheSeedsDisagree) {
  const Recommendation found = Recommend(Rows({1, 0.875, 1, 1}), Knee{3, 10, 1}, 1);
  EXPECT_FALSE(found.nclusters);
  EXPECT_EQ(RecommendationText(found),
            "No recommendation.\n"
            "I1 has a knee at 3: a further cluster adds 10 before it and 1 behind it.\n"
            "Clusters that come back with other seeds (stability 0.9): 2, 4 and 5.\n"
            "At the knee the seeds agree by 0.88 only, which is too little.\n");
}

TEST(Recommendation, IsNoneWithoutAKnee) {
  EXPECT_EQ(RecommendationText(Recommend(Rows({0.5, 0.6}), std::nullopt, 5)),
            "No recommendation.\n"
            "G1' has no clear knee: what a further cluster adds changes smoothly.\n"
            "No number has clusters that come back with other seeds (stability 0.9): they may be "
            "made by the method, not found in the data.\n");
  const Recommendation all = Recommend(Rows({0.95, 1}), std::nullopt, 8);
  EXPECT_FALSE(all.nclusters);
  EXPECT_EQ(all.reasons[1],
            "Every number has clusters that come back, so the seeds tell none from the others.");
}

TEST(Recommendation, TellsTheCriterionsOwnSign) {
  // E1 falls by 10 before the knee.
  EXPECT_EQ(Recommend(Rows({1, 1, 1}), Knee{3, 10, 1}, 3).reasons[0],
            "E1 has a knee at 3: a further cluster adds -10 before it and -1 behind it.");
}

}  // namespace
