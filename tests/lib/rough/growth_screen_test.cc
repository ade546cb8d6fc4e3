// SPDX-License-Identifier: MIT
#include "lib/rough/growth_screen.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "lib/support/wide.h"
#include "tests/testing/both_arithmetics.h"
#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::RandomDocuments;

// Grows clusters by the full arithmetic, and asks the screen for each row first.
struct Comparison {
  int rows = 0;
  int decided = 0;
  int certain_squares = 0;

  void Run(const PreparedMatrix& mat, int nparts);
};

Wide Joined(const RowView& row, const LaneView& composite, Wide square) {
  for (std::size_t p = 0; p < row.size(); ++p) {
    const Wide c = composite[static_cast<std::size_t>(row.columns[p])];
    const Wide grown = c + row.values[p];
    square += grown * grown - c * c;
  }
  return square;
}

void Comparison::Run(const PreparedMatrix& mat, int nparts) {
  if (mat.nrows < nparts) return;
  const RowRecords records(mat, "Test: rows");
  Lanes lanes(nparts, mat.ncols, "Test: lanes");
  GrowthScreen screen(lanes, nparts, records.extremes(), "Test: screen");
  std::vector<float> squares(static_cast<std::size_t>(nparts));
  for (int i = 0; i < mat.nrows; ++i) {
    const RowView row = Row(mat, i);
    if (i < nparts) {
      lanes.Set(row, i);
      Wide square = 0;
      for (const Wide v : row.values) square += v * v;
      squares[static_cast<std::size_t>(i)] = static_cast<float>(square);
      screen.Start(i, static_cast<float>(square));
      continue;
    }
    std::size_t best = 0;
    Wide most = 0;
    for (std::size_t k = 0; k < squares.size(); ++k) {
      const Wide square = squares[k];
      const Wide growth =
          molva::Sqrt(Joined(row, lanes[static_cast<int>(k)], square)) - molva::Sqrt(square);
      if (k != 0 && !(growth > most)) continue;
      best = k;
      most = growth;
    }
    const int chosen = screen.Choose(row, records[i]);
    EXPECT_TRUE(chosen == -1 || chosen == static_cast<int>(best)) << "row " << i;
    const auto k = static_cast<int>(best);
    const auto square = static_cast<float>(Joined(row, lanes[k], squares[best]));
    const GrowthScreen::MaybeSquare rough = screen.SquaredLengthWith(row, records[i], k);
    if (rough.is_certain) {
      EXPECT_EQ(rough.value, square) << "row " << i;
    }
    ++rows;
    decided += chosen >= 0 ? 1 : 0;
    certain_squares += rough.is_certain ? 1 : 0;
    squares[best] = square;
    lanes.Add(row, k);
    screen.Change(k, records[i], square);
  }
}

TEST(GrowthScreen, ChoosesWhatTheFullArithmeticWouldAndNearlyAlways) {
  Comparison comparison;
  for (std::uint32_t seed = 1; seed <= 10; ++seed) {
    const auto mat = Prepared(RandomDocuments(seed, 200, 120, 6, 12));
    for (const int nparts : {1, 2, 3, 9, 20}) comparison.Run(*mat, nparts);
  }
  // Rows without a word of any cluster tie among those of equal length.
  EXPECT_GT(comparison.decided, comparison.rows * 9 / 10);
  EXPECT_GT(comparison.certain_squares, comparison.rows * 99 / 100);
}

TEST(GrowthScreen, IsRightOnTablesOfEverySign) {
  Comparison comparison;
  for (std::uint32_t seed = 1; seed <= 2000; ++seed) {
    const testing_support::ClusteringRun run = testing_support::DrawRun(seed);
    comparison.Run(*Prepared(run.matrix, {.simfun = run.simfun}), run.nclusters);
  }
  EXPECT_GT(comparison.decided, comparison.rows / 3);
}

// The second row cancels the first composite, whose growth then is -1, and grows the other by
// sqrt(2) - 1; but a first composite of less than no length would stand although its growth is not
// a number, so where that cannot be excluded nothing is said.
TEST(GrowthScreen, LeavesAFirstCompositeThatMayVanishToTheFullArithmetic) {
  const auto mat = PreparedOf({{1, 0}, {0, 1}, {-1, 0}});
  const RowRecords records(*mat, "Test: rows");
  Lanes lanes(2, 2, "Test: lanes");
  GrowthScreen screen(lanes, 2, records.extremes(), "Test: screen");
  for (const int k : {0, 1}) {
    lanes.Set(Row(*mat, k), k);
    screen.Start(k, 1);
  }
  EXPECT_EQ(screen.Choose(Row(*mat, 2), records[2]), -1);
}

// Equal growth: the lowest number wins, which only the full arithmetic may say.
TEST(GrowthScreen, LeavesTiesToTheFullArithmetic) {
  const auto mat = PreparedOf({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
  const RowRecords records(*mat, "Test: rows");
  Lanes lanes(2, 3, "Test: lanes");
  GrowthScreen screen(lanes, 2, records.extremes(), "Test: screen");
  for (const int k : {0, 1}) {
    lanes.Set(Row(*mat, k), k);
    screen.Start(k, 1);
  }
  EXPECT_EQ(screen.Choose(Row(*mat, 2), records[2]), -1);
}

// The first grows by far more than the others, but products in single precision are not bounded
// beyond 2^60. Two composites are measured in double precision, which reaches as far as their
// lengths.
TEST(GrowthScreen, LeavesCompositesThatAreTooLongToTheFullArithmetic) {
  const auto mat = PreparedOf({{0x1p61F, 0}, {0, 0x1p61F}, {0x1p50F, 0}});
  const RowRecords records(*mat, "Test: rows");
  for (const int nparts : {2, 3}) {
    Lanes lanes(nparts, 2, "Test: lanes");
    GrowthScreen screen(lanes, nparts, records.extremes(), "Test: screen");
    for (int k = 0; k < nparts; ++k) {
      lanes.Set(Row(*mat, k % 2), k);
      screen.Start(k, 0x1p122F);
    }
    EXPECT_EQ(screen.Choose(Row(*mat, 2), records[2]), nparts == 2 ? 0 : -1);
  }
}

// The first composite is the row's first thousand columns, whose products beyond the first are lost
// one by one in single precision: half a unit each, to the even number below. The second is the
// last column, in which the row has just so much that the first grows a little more.
TEST(GrowthScreen, IsRightWhereAllRoundingGoesOneWay) {
  constexpr std::size_t kLost = 1000;
  std::vector<float> row(kLost + 2, 0x1p-12F);
  row.front() = 1;
  for (int step = -64; step <= 64; ++step) {
    row.back() = 0;
    std::vector<float> first = row;
    std::vector<float> second(row.size());
    second.back() = 1;
    // Equal growth at about 1.00004.
    row.back() = 1.00004F + static_cast<float>(step) * 0x1p-19F;
    const auto mat = PreparedOf({first, second, second, second, second, row});
    Comparison comparison;
    comparison.Run(*mat, 5);
    EXPECT_EQ(comparison.rows, 1);
  }
}

// The sum of the row's squares is 1 + 1000 2^-53, of which double arithmetic loses all but the 1,
// and with the composite's square it is 488 2^-53 above the middle between two numbers of single
// precision: in double 512 below it.
TEST(GrowthScreen, LeavesSquaredLengthsNearATieToTheFullArithmetic) {
  const float lost = std::sqrt(0x1p-53F) * (1 - 0x1p-20F);
  std::vector<float> row(1001, lost);
  row.front() = 1;
  row.push_back(0);
  std::vector<float> composite(row.size());
  composite.back() = 0x1p-12F * (1 - 0x1p-21F);
  const auto mat = PreparedOf({composite, row});
  Comparison comparison;
  comparison.Run(*mat, 1);
  EXPECT_EQ(comparison.rows, 1);
  EXPECT_EQ(comparison.certain_squares, 0);
}

}  // namespace
}  // namespace molva
