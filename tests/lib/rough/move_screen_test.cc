// SPDX-License-Identifier: MIT
#include "lib/rough/move_screen.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "lib/matrix/composites.h"
#include "lib/partition/refine_frame.h"
#include "lib/rough/row_sizes.h"
#include "tests/testing/both_arithmetics.h"
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

// Tables whose rows cancel each other, prepared under either similarity: a squared length may be
// zero or less after a move, and a similarity negative.
template <typename CriterionType>
void ExpectSafeOnSignedTables(const CriterionType&) {
  Counts counts;
  for (std::uint32_t seed = 1; seed <= 400; ++seed) {
    const testing_support::ClusteringRun run = testing_support::DrawRun(seed);
    const auto mat = Prepared(run.matrix, {.simfun = run.simfun});
    if (mat->nrows < run.nclusters) continue;
    CompareWithFullArithmetic<typename CriterionType::Objective>(*mat, run.nclusters, seed, counts);
  }
  EXPECT_GT(counts.improving, 100);
}

TEST(MoveScreen, NeverHidesAnImprovementAmongRowsThatCancel) {
  ExpectSafeOnSignedTables(kCriterionI1);
  ExpectSafeOnSignedTables(kCriterionI2);
  ExpectSafeOnSignedTables(kCriterionE1);
  ExpectSafeOnSignedTables(kCriterionG1);
  ExpectSafeOnSignedTables(kCriterionG1Prime);
  ExpectSafeOnSignedTables(kCriterionH1);
  ExpectSafeOnSignedTables(kCriterionH2);
  ExpectSafeOnSignedTables(kCriterionCode8);
  ExpectSafeOnSignedTables(kCriterionCode9);
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

void ExpectValuesWithinTheBound(const PreparedMatrix& mat) {
  Lanes lanes(1, mat.ncols, "Test: lanes");
  ValueBound bound;
  for (int round = 0; round < 50; ++round) {
    for (int i = 0; i < mat.nrows; ++i) {
      const RowSize size = SizeOf(Row(mat, i));
      lanes.Add(Row(mat, i), 0);
      bound.Join(size.largest, size.additions);
      for (std::size_t j = 0; j < static_cast<std::size_t>(mat.ncols); ++j) {
        ASSERT_LE(std::fabs(static_cast<double>(lanes[0][j])), bound.Value());
      }
      if (i % 3 != 0) continue;
      lanes.Subtract(Row(mat, i), 0);
      bound.Leave(size.additions);
    }
  }
}

TEST(ValueBound, CoversTheValuesOfACompositeThatRowsJoinAndLeave) {
  ExpectValuesWithinTheBound(*Prepared(RandomDocuments(8, 80, 30, 3, 8)));
}

// Each of these rows stores its one column three times, so that a value grows by the sum of three.
TEST(ValueBound, CoversAColumnThatRepeatsInARow) {
  testing_support::SparseMatrix matrix{3, 2, {0, 3, 6, 9}, {0, 0, 0, 1, 1, 1, 0, 0, 0}, {}};
  matrix.rowval = {1, 1, 1, 2, 2, 2, 1, 1, 1};
  ExpectValuesWithinTheBound(*Prepared(matrix));
}

// The terms with a similarity fall with the squared length and grow with the similarity as long as
// the one is positive and the other is not negative, over all that they can be.
template <typename Term>
void ExpectMonotoneOrUndecided() {
  const Interval length{2, 8}, similarity{1, 3};
  const BasicMeasure<double> best{5, 8, 1};
  EXPECT_EQ(BestValue<Term>({5, length, similarity}), Term::Of(best));
  EXPECT_TRUE(std::isnan(BestValue<Term>({5, {0, 8}, similarity})));
  EXPECT_TRUE(std::isnan(BestValue<Term>({5, {-0x1p-60, 8}, similarity})));
  EXPECT_TRUE(std::isnan(BestValue<Term>({5, length, {-0x1p-60, 3}})));
  EXPECT_TRUE(std::isnan(BestValue<Term>({5, {std::nan(""), 8}, similarity})));
}

TEST(BestValue, IsDecidedOverWholeIntervalsOnly) {
  ExpectMonotoneOrUndecided<E1Term>();
  ExpectMonotoneOrUndecided<G1Term>();
  ExpectMonotoneOrUndecided<G1PrimeTerm>();
  ExpectMonotoneOrUndecided<SizedG1Term>();
}

// Without a similarity a squared length may be anything: less of it is never better.
TEST(BestValue, NeedsTheUpperEndAloneWithoutASimilarity) {
  EXPECT_EQ(BestValue<I1Term>({4, {-9, 8}, {0, 0}}), 2);
  EXPECT_EQ(BestValue<I2Term>({4, {-9, 16}, {0, 0}}), 4);
}

// Two clusters at right angles, D.D = 18 and D.G = 18 for both, |d|^2 = 2, d.G = 6: the row's move
// makes 12/8 + 24/20 of 1 + 1, so it is settled. Once the other cluster has cancelled down to the
// length of the row, D.D = D.G = 2, the move makes 12/8 + 8/4 of 1 + 1 if the two still are at
// right angles; but the row may as well cancel it, and what is remembered does not say that it does
// not.
TEST(MoveScreen, SettlesNothingThatMayCancelByNow) {
  const auto mat = testing_support::PreparedOf({{1, 1}, {1, 1}, {1, 1}, {1, -1}, {1, -1}, {1, -1}});
  MeasureRows(*mat, "Test: sizes");
  constexpr int kClusters = 2;
  Lanes lanes(kClusters + 1, mat->ncols, "Test: lanes");
  using Objective = SingleSum<G1Term, Smaller>;
  MoveScreen<Objective> screen(*mat, lanes, kClusters, "Test: screen");
  for (int i = 0; i < mat->nrows; ++i) {
    lanes.Add(Row(*mat, i), i / 3);
    lanes.Add(Row(*mat, i), kClusters);
    screen.RowCounted(i / 3, mat->rowsize[i]);
  }
  Objective objective;
  for (const int k : {0, 1}) {
    objective.AddCluster(Objective::TermsOf({3, 18, 18}));
    screen.SetCluster(k, 3, 18, 18);
  }
  screen.Weigh(objective, 0, mat->rowsize[0], 0);
  EXPECT_TRUE(screen.IsSettled(objective, 0, mat->rowsize[0], 0));
  screen.SetCluster(1, 3, 2, 2);
  EXPECT_FALSE(screen.IsSettled(objective, 0, mat->rowsize[0], 0));
}

}  // namespace
}  // namespace molva
