// SPDX-License-Identifier: MIT
#include "lib/measure/solution_quality.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "lib/molva.h"
#include "tests/testing/fatal.h"
#include "tests/testing/matrices.h"
#include "tests/testing/oracles.h"

namespace molva {
namespace {

using testing_support::CriterionValue;
using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::RandomDocuments;
using testing_support::RandomPart;
using testing_support::SparseMatrix;
using testing_support::SparseOf;

float Value(int code, const PreparedMatrix& mat, const std::vector<int>& part, int nparts) {
  return GetCriterionFunctionValue({.crfun = code}, mat, nparts, part);
}

TEST(SolutionQuality, FollowsTheNineFormulasByHand) {
  // D_0 = (2,0), D_1 = (0,1), G = (2,1): D.D 4 and 1, D.G 4 and 1, sizes 2 and 1.
  const auto mat = PreparedOf({{1, 0}, {1, 0}, {0, 1}});
  const std::vector<int> part = {0, 0, 1};
  const float i1 = 2 + 1, i2 = 2 + 1, e1 = 2 * 4 / 2 + 1;
  EXPECT_FLOAT_EQ(Value(1, *mat, part, 2), i1);
  EXPECT_FLOAT_EQ(Value(2, *mat, part, 2), i2);
  EXPECT_FLOAT_EQ(Value(3, *mat, part, 2), e1);
  EXPECT_FLOAT_EQ(Value(4, *mat, part, 2), 1 + 1);
  EXPECT_FLOAT_EQ(Value(5, *mat, part, 2), 4 * 1 + 1);
  EXPECT_FLOAT_EQ(Value(6, *mat, part, 2), i1 / e1);
  EXPECT_FLOAT_EQ(Value(7, *mat, part, 2), i2 / e1);
  EXPECT_FLOAT_EQ(Value(8, *mat, part, 2), i2 * std::sqrt(std::sqrt(i1)));
  EXPECT_FLOAT_EQ(Value(9, *mat, part, 2), 2 * 1 + 1);
}

TEST(SolutionQuality, EqualsTheFormulasOnRandomClusterings) {
  for (int code = 1; code <= 9; ++code) {
    for (const std::uint32_t seed : {1U, 2U, 3U}) {
      const auto mat = Prepared(RandomDocuments(seed, 70, 60, 5, 9));
      const std::vector<int> part = RandomPart(seed, mat->nrows, 5);
      const auto expected = static_cast<float>(CriterionValue(code, *mat, part, 5));
      EXPECT_NEAR(Value(code, *mat, part, 5), expected, 2e-6F * expected) << code;
    }
  }
}

TEST(SolutionQuality, OfNoClusterIsZeroOverZeroOrZero) {
  const auto mat = PreparedOf({{1, 0}});
  const std::vector<int> part = {-1};
  EXPECT_TRUE(std::isnan(Value(6, *mat, part, 0)));
  EXPECT_TRUE(std::isnan(Value(7, *mat, part, 0)));
  EXPECT_EQ(Value(8, *mat, part, 0), 0);
  EXPECT_EQ(Value(1, *mat, part, 0), 0);
}

TEST(SolutionQuality, EndsTheRunOnAnUnknownCriterion) {
  const auto mat = PreparedOf({{1, 0}});
  EXPECT_FATAL(Value(12, *mat, {0}, 1), "Unknown clustering criterion function (CRFun) of 12\n");
  EXPECT_FATAL(Value(-1, *mat, {0}, 1), "Unknown clustering criterion function (CRFun) of -1\n");
}

TEST(SolutionQualityEntryPoint, MeasuresInThePreparedSpace) {
  // Raw lengths do not matter under the cosine: |D| of each pair is 2.
  const SparseMatrix m = SparseOf({{3, 0}, {7, 0}, {0, 1}, {0, 9}});
  const std::vector<int> part = {0, 0, 1, 1};
  EXPECT_FLOAT_EQ(MOLVA_V_GetSolutionQuality(m.nrows, m.ncols, m.rowptr.data(), m.rowind.data(),
                                             m.rowval.data(), MOLVA_SIM_COSINE, 2, MOLVA_ROW_NONE,
                                             MOLVA_COL_NONE, 1.0F, 2, part.data()),
                  4);
}

}  // namespace
}  // namespace molva
