// SPDX-License-Identifier: MIT
#include "lib/move_screen.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "lib/composites.h"
#include "lib/refine_frame.h"
#include "lib/row_sizes.h"
#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::Prepared;
using testing_support::RandomDocuments;
using testing_support::RandomPart;

struct Counts {
  int candidates = 0;
  int hopeful = 0;
  int improving = 0;
};

// Weighs every move of every row of a random clustering both ways: the screen may call a move
// hopeful that the full arithmetic refuses, never the other way round.
template <typename Objective>
void CompareWithFullArithmetic(const PreparedMatrix& mat, int nparts, std::uint32_t seed,
                               Counts& counts) {
  const std::vector<int> part = RandomPart(seed, mat.nrows, nparts);
  Lanes lanes(nparts + 1, mat.ncols, "Test: lanes");
  MoveScreen<Objective> screen(mat, lanes, nparts, "Test: screen");
  std::vector<int> sizes(static_cast<std::size_t>(nparts));
  std::vector<float> whole(static_cast<std::size_t>(mat.ncols));
  for (int i = 0; i < mat.nrows; ++i) {
    const int k = part[static_cast<std::size_t>(i)];
    const RowSize size = SizeOf(Row(mat, i));
    ++sizes[static_cast<std::size_t>(k)];
    lanes.Add(Row(mat, i), k);
    lanes.Add(Row(mat, i), nparts);
    AddRow(Row(mat, i), whole);
    screen.RowCounted(k, size);
  }
  std::vector<float> dnorms(sizes.size());
  std::vector<float> csim(sizes.size());
  lanes.SquaredLengths(dnorms);
  lanes.DotsWith(whole, csim);
  Objective objective;
  std::vector<ClusterMeasure> measures;
  for (std::size_t k = 0; k < sizes.size(); ++k) {
    measures.push_back({sizes[k], dnorms[k], csim[k]});
    objective.AddCluster(Objective::TermsOf(measures[k]));
    screen.SetCluster(static_cast<int>(k), sizes[k], dnorms[k], csim[k]);
  }
  objective.Start();

  for (int i = 0; i < mat.nrows; ++i) {
    const RowView row = Row(mat, i);
    const int from = part[static_cast<std::size_t>(i)];
    const ClusterMeasure& home = measures[static_cast<std::size_t>(from)];
    if (home.size < 2) continue;
    const Wide similarity = DotRow(row, whole);
    const ClusterMeasure left{home.size - 1,
                              SquaredLengthWithout(row, lanes[from], home.squared_length),
                              home.similarity - similarity};
    screen.Weigh(objective, i, SizeOf(row), from);
    for (int k = 0; k < nparts; ++k) {
      if (k == from) continue;
      const ClusterMeasure& target = measures[static_cast<std::size_t>(k)];
      const ClusterMeasure joined{target.size + 1,
                                  SquaredLengthWith(row, lanes[k], target.squared_length),
                                  target.similarity + similarity};
      Objective judge = objective;
      const bool improves = judge.Improve(Objective::TermsOf(home), Objective::TermsOf(target),
                                          Objective::TermsOf(left), Objective::TermsOf(joined));
      EXPECT_TRUE(screen.IsHopeful(k) || !improves) << "row " << i << " to " << k;
      ++counts.candidates;
      counts.hopeful += screen.IsHopeful(k) ? 1 : 0;
      counts.improving += improves ? 1 : 0;
    }
  }
}

template <typename Objective>
Counts OnManyMatrices() {
  Counts counts;
  for (std::uint32_t seed = 1; seed <= 20; ++seed) {
    const auto mat = Prepared(RandomDocuments(seed, 60, 50, 4, 7));
    for (const int nparts : {2, 3, 9, 20}) {
      CompareWithFullArithmetic<Objective>(*mat, nparts, seed, counts);
    }
  }
  return counts;
}

template <typename CriterionType>
void ExpectSafeAndSharp(const CriterionType&) {
  const Counts counts = OnManyMatrices<typename CriterionType::Objective>();
  EXPECT_GT(counts.improving, 100);
  // What is hopeful without improving is a tie within single precision, or very nearly one.
  EXPECT_LT(counts.hopeful - counts.improving, counts.candidates / 100);
}

TEST(MoveScreen, NeverHidesAnImprovementAndHardlyEverSeesOneThatIsNone) {
  ExpectSafeAndSharp(kCriterionI1);
  ExpectSafeAndSharp(kCriterionI2);
  ExpectSafeAndSharp(kCriterionE1);
  ExpectSafeAndSharp(kCriterionG1);
  ExpectSafeAndSharp(kCriterionG1Prime);
  ExpectSafeAndSharp(kCriterionH1);
  ExpectSafeAndSharp(kCriterionH2);
  ExpectSafeAndSharp(kCriterionCode8);
  ExpectSafeAndSharp(kCriterionCode9);
}

// Rows of both signs, of very different lengths, with zeros, infinities and not-a-numbers among the
// values: whatever comes, no improvement is hidden.
TEST(MoveScreen, NeverHidesAnImprovementAmongWildValues) {
  std::mt19937 random(3);
  const float wild[] = {0,
                        1,
                        -1,
                        1e-30F,
                        -1e-30F,
                        1e18F,
                        -1e18F,
                        3e-45F,
                        1.0F + 0x1p-23F,
                        std::numeric_limits<float>::infinity(),
                        std::numeric_limits<float>::quiet_NaN()};
  for (int round = 0; round < 60; ++round) {
    // Every third round stays finite, every second moderate.
    const unsigned kinds = round % 2 == 0 ? 3 : round % 3 == 0 ? 9 : 11;
    auto mat = Prepared(RandomDocuments(static_cast<std::uint32_t>(round), 30, 20, 3, 6));
    for (float& v : mat->rowval) {
      if (random() % 4 == 0) v = wild[random() % kinds];
    }
    Counts counts;
    CompareWithFullArithmetic<SingleSum<I1Term, Larger>>(*mat, 4, 1, counts);
    CompareWithFullArithmetic<SingleSum<I2Term, Larger>>(*mat, 4, 1, counts);
    CompareWithFullArithmetic<SingleSum<E1Term, Smaller>>(*mat, 4, 1, counts);
    CompareWithFullArithmetic<SingleSum<G1PrimeTerm, Smaller>>(*mat, 4, 1, counts);
    CompareWithFullArithmetic<TwoSums<I1Term, E1Term, Ratio>>(*mat, 4, 1, counts);
    CompareWithFullArithmetic<TwoSums<I2Term, E1Term, Ratio>>(*mat, 4, 1, counts);
    CompareWithFullArithmetic<TwoSums<I1Term, I2Term, FourthRootProduct>>(*mat, 4, 1, counts);
  }
}

TEST(ValueBound, CoversTheValuesOfACompositeThatRowsJoinAndLeave) {
  const auto mat = Prepared(RandomDocuments(8, 80, 30, 3, 8));
  Lanes lanes(1, mat->ncols, "Test: lanes");
  ValueBound bound;
  for (int round = 0; round < 50; ++round) {
    for (int i = 0; i < mat->nrows; ++i) {
      lanes.Add(Row(*mat, i), 0);
      bound.Add(SizeOf(Row(*mat, i)).largest);
      for (std::size_t j = 0; j < static_cast<std::size_t>(mat->ncols); ++j) {
        ASSERT_LE(std::fabs(static_cast<double>(lanes[0][j])), bound.Value());
      }
      if (i % 3 != 0) continue;
      lanes.Subtract(Row(*mat, i), 0);
      bound.Add(0);
    }
  }
}

}  // namespace
}  // namespace molva
