// SPDX-License-Identifier: MIT
#include "lib/criteria/terms.h"

#include <gtest/gtest.h>

#include "lib/criteria/objectives.h"

namespace molva {
namespace {

// Three rows, D.D = 4, D.G = 6.
constexpr ClusterMeasure kCluster{3, 4, 6};

TEST(CriterionTerms, FollowTheirFormulas) {
  EXPECT_EQ(I1Term::Of(kCluster), Wide{4} / 3);
  EXPECT_EQ(I2Term::Of(kCluster), 2);
  EXPECT_EQ(E1Term::Of(kCluster), 9);
  EXPECT_EQ(G1Term::Of(kCluster), 1.5);
  EXPECT_EQ(G1PrimeTerm::Of(kCluster), 13.5);
  EXPECT_EQ(SizedG1Term::Of(kCluster), 4.5);
}

// 15 x 25 / 3 is whole; 25 / 3, formed first, is not, nor is 15 times what it is rounded to.
TEST(CriterionTerms, MultiplyBySizesBeforeTheyDivide) {
  EXPECT_EQ(E1Term::Of(ClusterMeasure{15, 9, 25}), 125);
  EXPECT_EQ(SizedG1Term::Of(ClusterMeasure{15, 3, 25}), 125);
}

TEST(CriterionTerms, SquareTheSizeIn64Bits) {
  EXPECT_EQ(G1PrimeTerm::Of(ClusterMeasure{50000, 1, 1}), 2.5e9);
}

TEST(Objectives, AMaximisedSumRefusesATie) {
  SingleSum<I2Term, Larger> objective;
  EXPECT_FALSE(objective.Improve(1, 2, 2, 1));
  EXPECT_TRUE(objective.Improve(1, 2, 2, 1.5));
  EXPECT_EQ(objective.Progress(1), 0.5);
}

TEST(Objectives, AMinimisedSumTakesSmallerValuesAndInvertsItsQuality) {
  SingleSum<E1Term, Smaller> objective;
  objective.AddCluster(9);
  EXPECT_FALSE(objective.Improve(4, 5, 5, 4));
  EXPECT_TRUE(objective.Improve(4, 5, 3, 5));
  EXPECT_EQ(objective.Progress(4), 2);
  EXPECT_EQ(objective.Quality(4), 0.5F);
}

TEST(Objectives, ASingleSumSeesNoImprovementBelowSinglePrecision) {
  SingleSum<I2Term, Larger> objective;
  EXPECT_FALSE(objective.Improve(1, 1, 1, 1 + Wide{1e-9}));
}

TEST(Objectives, ARatioSeesEveryImprovement) {
  TwoSums<I1Term, E1Term, Ratio> objective;
  objective.AddCluster({2, 4});
  objective.Start();
  EXPECT_TRUE(objective.Improve({1, 2}, {1, 2}, {1, 2}, {1 + Wide{1e-12}, 2}));
  EXPECT_EQ(objective.Quality(100), 0.5F);
}

TEST(Objectives, AProductOfSumsIsToldPerRow) {
  TwoSums<I1Term, I2Term, FourthRootProduct> objective;
  objective.AddCluster({16, 5});
  objective.Start();
  EXPECT_FLOAT_EQ(objective.Quality(4), 2.5F);
}

}  // namespace
}  // namespace molva
