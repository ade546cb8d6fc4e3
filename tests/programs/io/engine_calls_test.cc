// SPDX-License-Identifier: MIT
#include "programs/io/engine_calls.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/testing/plots.h"

namespace {

using mardle::Clusters;
using mardle::EngineInput;
using testing_support::DenseInput;

// Two pairs of equal rows, at right angles.
const testing_support::FloatRows kPairs = {{2, 0}, {1, 0}, {0, 3}, {0, 1}};
const std::vector<int> kPart = {0, 0, 1, 1};

TEST(RunInput, CarriesTheOptionsThatPreparationNeeds) {
  mardle::RunParams params;
  params.simfun = 2;
  params.rowmodel = 3;
  params.colmodel = 1;
  params.prune = 0.5F;
  params.dbglvl = 4;
  const mardle::Matrix mat = DenseInput(kPairs);
  const EngineInput input = mardle::RunInput(params, mat, {2, kPart.data()});
  EXPECT_EQ(input.nrows, 4);
  EXPECT_EQ(input.ncols, 2);
  EXPECT_EQ(input.rowptr, nullptr);
  EXPECT_EQ(input.rowval, mat.rowval.get());
  EXPECT_EQ(input.simfun, 2);
  EXPECT_EQ(input.rowmodel, 3);
  EXPECT_EQ(input.colmodel, 1);
  EXPECT_EQ(input.prune, 0.5F);
  EXPECT_EQ(input.dbglvl, 4);
  EXPECT_EQ(input.clusters.count, 2);
  EXPECT_EQ(input.clusters.part, kPart.data());
}

// As unit rows both clusters have a composite of length 2.
TEST(CriterionValue, TakesRowsAsTheyAreUnlessToldOtherwise) {
  const mardle::Matrix mat = DenseInput(kPairs);
  const EngineInput input{
      .nrows = 4, .ncols = 2, .rowval = mat.rowval.get(), .clusters = {2, kPart.data()}};
  EXPECT_FLOAT_EQ(mardle::CriterionValue(input, MOLVA_CRFUN_I2), 4);
}

TEST(FindClusters, GoesByEitherMethod) {
  const mardle::Matrix mat = DenseInput(kPairs);
  for (const bool rb : {false, true}) {
    mardle::RunParams params;
    params.colmodel = MOLVA_COL_NONE;
    params.rb = rb;
    molva::Array<int> part = molva::AllocIntsSet(4, -1, "part");
    mardle::FindClusters(params, mardle::RunInput(params, mat, {2, nullptr}), part);
    EXPECT_EQ(part[0], part[1]);
    EXPECT_EQ(part[2], part[3]);
    EXPECT_EQ(part[0] + part[2], 1);
  }
}

// A leaf each, joined at the root: node 2.
TEST(BuildTree, JoinsTwoClusters) {
  const mardle::Matrix mat = DenseInput(kPairs);
  const EngineInput input{
      .nrows = 4, .ncols = 2, .rowval = mat.rowval.get(), .clusters = {2, kPart.data()}};
  molva::Array<int> ptree = molva::AllocIntsSet(input.clusters.nodes(), 0, "ptree");
  molva::Array<float> tsims = molva::AllocFloatsSet(input.clusters.nodes(), 0, "tsims");
  mardle::BuildTree(input, MOLVA_TREE_CLUSTERS, MOLVA_CRFUN_I2, ptree, tsims);
  EXPECT_EQ(ptree[0], 2);
  EXPECT_EQ(ptree[1], 2);
  EXPECT_EQ(ptree[2], -1);
}

}  // namespace
