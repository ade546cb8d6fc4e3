// SPDX-License-Identifier: MIT
//
// The four rows that docs/criteria.md works out by hand.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "lib/matrix/control.h"
#include "lib/molva.h"
#include "tests/testing/matrices.h"

namespace {

const testing_support::SparseMatrix kFour = testing_support::SparseOf(
    {{9, 3, 3, 1, 0, 0, 0}, {18, 6, 6, 2, 0, 0, 0}, {0, 0, 0, 1, 1, 7, 7}, {0, 0, 0, 7, 7, 1, 1}});
const std::vector<int> kPart = {0, 0, 1, 1};

TEST(WorkedExample, IsClusteredAsItIsUnderEveryCriterionByBothMethods) {
  for (int code = 1; code <= 9; ++code) {
    std::vector<int> bisected(4, -1);
    std::vector<int> direct(4, -1);
    MOLVA_VP_ClusterRB(4, 7, kFour.rowptr.data(), kFour.rowind.data(), kFour.rowval.data(),
                       MOLVA_SIM_COSINE, code, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 10, 10, 1, 0,
                       0, 2, bisected.data());
    MOLVA_VP_ClusterDirect(4, 7, kFour.rowptr.data(), kFour.rowind.data(), kFour.rowval.data(),
                           MOLVA_SIM_COSINE, code, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 10, 10, 1,
                           0, 2, direct.data());
    EXPECT_EQ(bisected, kPart) << code;
    EXPECT_EQ(direct, kPart) << code;
  }
}

TEST(WorkedExample, HasTheNineValues) {
  const double values[] = {
      3.28, 3.6, 7.56, 2.1025, 8.41, 82.0 / 189, 10.0 / 21, 3.6 * std::pow(3.28, 0.25), 4.205};
  for (int code = 1; code <= 9; ++code) {
    const double value = MOLVA_V_GetSolutionQuality(
        4, 7, kFour.rowptr.data(), kFour.rowind.data(), kFour.rowval.data(), MOLVA_SIM_COSINE, code,
        MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 2, kPart.data());
    EXPECT_NEAR(value, values[code - 1], 1e-6 * values[code - 1]) << code;
  }
}

TEST(WorkedExample, HasTheMeasuresOfItsClusters) {
  int pwgts[2];
  float isim[2], isdev[2], esim[2], esdev[2], izscores[4], ezscores[4];
  MOLVA_V_GetClusterStats(4, 7, kFour.rowptr.data(), kFour.rowind.data(), kFour.rowval.data(),
                          MOLVA_SIM_COSINE, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 2, kPart.data(),
                          pwgts, isim, isdev, izscores, esim, esdev, ezscores);
  EXPECT_EQ(pwgts[0], 2);
  EXPECT_EQ(pwgts[1], 2);
  EXPECT_NEAR(isim[0], 1, 1e-6);
  EXPECT_NEAR(isim[1], 0.64, 1e-6);
  EXPECT_NEAR(esim[0], 0.04, 1e-6);
  EXPECT_NEAR(esim[1], 0.04, 1e-6);
  EXPECT_NEAR(isdev[1], 0, 1e-6);
  EXPECT_NEAR(esdev[1], 0.03 * std::sqrt(2.0), 1e-6);
  EXPECT_NEAR(ezscores[2], -1 / std::sqrt(2.0), 1e-4);
  EXPECT_NEAR(ezscores[3], 1 / std::sqrt(2.0), 1e-4);
}

TEST(WorkedExample, HasTheFeaturesOfItsClusters) {
  int internalids[14], externalids[14];
  float internalwgts[14], externalwgts[14];
  MOLVA_V_GetClusterFeatures(4, 7, kFour.rowptr.data(), kFour.rowind.data(), kFour.rowval.data(),
                             MOLVA_SIM_COSINE, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 2,
                             kPart.data(), 7, internalids, internalwgts, externalids, externalwgts);
  const double internal[] = {0.81, 0.09, 0.09, 0.01, 0, 0, 0, 0.25, 0.25, 0.25, 0.25, 0, 0, 0};
  const double external[] = {0.81, 0.25, 0.25, 0.25, 0.16, 0.09, 0.09};
  EXPECT_EQ(internalids[0], 0);
  EXPECT_EQ(internalids[3], 3);
  EXPECT_EQ(externalids[7], 0);
  for (int slot = 0; slot < 14; ++slot) {
    EXPECT_NEAR(internalwgts[slot], internal[slot], 1e-6) << slot;
    EXPECT_NEAR(externalwgts[slot], external[slot % 7] / 1.9, 1e-6) << slot;
  }
}

// The products of the composites are 4, 2.56 and 0.16.
TEST(WorkedExample, HasTheGainsOfMergingItsClusters) {
  const double gains[] = {-1.56, -0.977025, -2.931902, 1.1025, -7.59, -0.269926, -0.226190};
  const int pwgts[] = {2, 2};
  for (int code = 1; code <= 7; ++code) {
    float smat[] = {4, 0.16F, 0.16F, 2.56F};
    int part[2], ptree[4];
    float tsims[4], gain[4];
    MOLVA_SA_Cluster(2, pwgts, smat, code, 2, 0, 1, part, ptree, tsims, gain);
    EXPECT_NEAR(gain[2], gains[code - 1], 2e-6) << code;
    EXPECT_NEAR(tsims[2], 0.04, 1e-7) << code;
  }
}

TEST(WorkedExample, HasACompleteTree) {
  std::vector<int> ptree(8);
  std::vector<float> tsims(8);
  MOLVA_V_BuildTree(4, 7, kFour.rowptr.data(), kFour.rowind.data(), kFour.rowval.data(),
                    MOLVA_SIM_COSINE, 2, MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 2, 0, 2,
                    kPart.data(), ptree.data(), tsims.data());
  EXPECT_EQ(ptree, (std::vector<int>{4, 4, 5, 5, 6, 6, -1, -1}));
  EXPECT_NEAR(tsims[4], 1, 1e-6);
  EXPECT_NEAR(tsims[5], 0.28, 1e-6);
  EXPECT_NEAR(tsims[6], 0.04, 1e-6);
}

}  // namespace
