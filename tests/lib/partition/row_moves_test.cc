// SPDX-License-Identifier: MIT
#include "lib/partition/row_moves.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <random>
#include <tuple>
#include <vector>

#include "lib/criteria/table.h"
#include "tests/testing/both_arithmetics.h"
#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::DrawRun;
using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::RandomPart;

constexpr RoutineNames kNames{"Test", "Test"};

auto BitsOf(const StoredMeasure& m) {
  return std::tuple(m.size, std::bit_cast<std::uint32_t>(m.squared_length),
                    std::bit_cast<std::uint32_t>(m.similarity));
}

// Judges moves by both arithmetics, each on clusters of its own.
template <typename Objective>
class BothMoves {
 public:
  BothMoves(const PreparedMatrix& mat, int nparts, const std::vector<int>& part)
      : rows_(mat, "Test: rows"),
        rough_(kNames, rows_, nparts, part),
        full_rows_(rows_),
        full_(kNames, full_rows_, nparts, part) {}

  // Lets each row try all clusters, as a visit does.
  void Visit() {
    for (int i = 0; i < rows_.count(); ++i) {
      RoughMoves<Objective> rough_moves(rough_, rows_.Entries(rows_[i]), rows_[i].place);
      for (int k = 0; k < full_.count(); ++k) {
        if (k == rows_[i].place || rough_.Size(rows_[i].place) <= 2) continue;
        const auto rough = rough_moves.Judge(k);
        const Verdict full =
            FullMoves<Objective>(full_, rows_.Entries(rows_[i]), rows_[i].place).Judge(k);
        ++judged;
        told += rough.has_value() ? 1 : 0;
        // What is left to the full arithmetic is taken along by hand.
        if (!rough && full.improves) rough_.objective() = full_.objective();
        if (rough) {
          ASSERT_EQ(rough->improves, full.improves) << "row " << i << " to " << k;
        }
        if (!full.improves) continue;
        if (rough) {
          EXPECT_EQ(BitsOf(rough->without), BitsOf(full.without)) << "row " << i << " to " << k;
          EXPECT_EQ(BitsOf(rough->joined), BitsOf(full.joined)) << "row " << i << " to " << k;
        }
        EXPECT_EQ(std::bit_cast<std::uint32_t>(rough_.objective().Quality(rows_.count())),
                  std::bit_cast<std::uint32_t>(full_.objective().Quality(rows_.count())));
        ++moves;
        rough_.Move(rows_[i], k, full.without, full.joined);
        full_.Move(full_rows_[i], k, full.without, full.joined);
        rough_moves.MovedTo(k);
      }
    }
  }

  int judged = 0, told = 0, moves = 0;

 private:
  RowRecords rows_;
  KWayClusters<Objective> rough_;
  RowRecords full_rows_;
  KWayClusters<Objective> full_;
};

// Visits under each criterion whose sums are of one kind of terms.
template <std::size_t kRow = 0, typename Visit>
void ForEachSum(const Visit& visit) {
  if constexpr (kRow < std::tuple_size_v<decltype(kCriteria)>) {
    using Objective = typename std::tuple_element_t<kRow, decltype(kCriteria)>::Objective;
    if constexpr (!Objective::kCouplesClusters) visit.template operator()<Objective>(kRow + 1);
    ForEachSum<kRow + 1>(visit);
  }
}

TEST(RowMoves, InDoubleAreThoseOfTheFullArithmetic) {
  int judged = 0, told = 0, moves = 0;
  ForEachSum([&]<typename Objective>(std::size_t code) {
    for (std::uint32_t seed = 0; seed < 150; ++seed) {
      SCOPED_TRACE(testing::Message() << "criterion " << code << ", seed " << seed);
      const auto run = DrawRun(seed);
      if (run.matrix.nrows < 2 * run.nclusters) continue;
      const auto mat = Prepared(run.matrix, {.rowmodel = run.rowmodel, .colmodel = run.colmodel});
      const std::vector<int> part = RandomPart(seed, mat->nrows, run.nclusters);
      BothMoves<Objective> both(*mat, run.nclusters, part);
      both.Visit();
      judged += both.judged;
      told += both.told;
      moves += both.moves;
    }
  });
  EXPECT_GT(moves, 1000);
  EXPECT_GT(told, judged / 4 * 3);
}

// Some thousand entries that double loses in turn, next to where single precision turns: it is told
// that they are not known, or else what the full arithmetic finds.
TEST(RowMoves, WhatDoubleLosesIsLeftToTheFullArithmetic) {
  constexpr std::size_t kColumns = 4004;
  std::vector<float> lost(kColumns, std::sqrt(0x1p-53F) * (1 - 0x1p-20F));
  lost[0] = lost[1] = lost[2] = 0;
  lost[3] = 0x1p-12F * (1 - 0x1p-21F);
  std::vector<std::vector<float>> rows(7, std::vector<float>(kColumns, 0.0F));
  for (std::size_t i = 0; i < 6; ++i) rows[i][i < 4 ? 0 : 1] = i < 4 ? 1.0F : 0.5F;
  rows[6] = lost;
  const auto mat = PreparedOf(rows);
  int left = 0;
  ForEachSum([&]<typename Objective>(std::size_t code) {
    SCOPED_TRACE(code);
    BothMoves<Objective> both(*mat, 2, {0, 0, 0, 0, 1, 1, 0});
    both.Visit();
    left += both.judged - both.told;
  });
  EXPECT_GE(left, 3);
}

TEST(RowMoves, TellNothingOfTermsWithoutALength) {
  const auto mat = PreparedOf({{1, 0}, {-1, 0}, {1, 0}, {-1, 0}, {0, 1}, {0, 1}, {1, 1}});
  BothMoves<SingleSum<E1Term, Smaller>> both(*mat, 2, {0, 0, 0, 0, 1, 1, 1});
  both.Visit();
  EXPECT_GT(both.judged, both.told);
}

// A visited row may come back to where it stood, to a cluster that is another by a little.
TEST(RowMoves, KnowNothingOfAHomeThatTheRowHasLeft) {
  using Objective = SingleSum<E1Term, Smaller>;
  const auto mat = PreparedOf({{3, 1}, {1, 0}, {2, 1}, {5, 2}, {0, 1}, {1, 3}, {0, 4}});
  RowRecords rows(*mat, "Test: rows");
  KWayClusters<Objective> clusters(kNames, rows, 2, std::vector<int>{0, 0, 0, 0, 1, 1, 1});
  const auto judge_anew = [&](int i, int k) {
    const Objective objective = clusters.objective();
    const Verdict verdict =
        FullMoves<Objective>(clusters, rows.Entries(rows[i]), rows[i].place).Judge(k);
    clusters.objective() = objective;
    return verdict;
  };
  FullMoves<Objective> moves(clusters, rows.Entries(rows[0]), 0);
  moves.Judge(1);
  const Verdict other = judge_anew(3, 1);
  clusters.Move(rows[3], 1, other.without, other.joined);
  moves.MovedTo(0);
  const Verdict anew = judge_anew(0, 1);
  const Verdict verdict = moves.Judge(1);
  EXPECT_EQ(BitsOf(verdict.without), BitsOf(anew.without));
  EXPECT_EQ(BitsOf(verdict.joined), BitsOf(anew.joined));
}

TEST(RoughTerms, HoldAllThatTheTermCanBe) {
  const RoughMeasure known{4, {8, 1}, {2, 0.5}};
  const Estimate g1 = TermOf<G1Term>(known);
  EXPECT_LE(g1.value - g1.error, 1.5 / 9);
  EXPECT_GE(g1.value + g1.error, 2.5 / 7);
  const Estimate i2 = TermOf<I2Term>(known);
  EXPECT_LE(i2.value - i2.error, std::sqrt(7.0));
  EXPECT_GE(i2.value + i2.error, 3);
  EXPECT_TRUE(std::isnan(TermOf<I1Term>({4, {8, 3}, {0, 0}}).value));
  EXPECT_TRUE(std::isnan(TermOf<I1Term>({4, {0, 0}, {0, 0}}).value));
}

}  // namespace
}  // namespace molva
