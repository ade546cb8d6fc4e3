// SPDX-License-Identifier: MIT
//
// The screen against the full arithmetic, through the clusters that keep its bounds: it may call a
// move hopeful that is refused, never the other way round.
#include "lib/rough/move_screen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <random>
#include <tuple>
#include <type_traits>
#include <vector>

#include "lib/criteria/table.h"
#include "lib/partition/kway_clusters.h"
#include "lib/partition/row_moves.h"
#include "tests/testing/both_arithmetics.h"
#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::RandomDocuments;
using testing_support::RandomPart;

struct Counts {
  int candidates = 0;
  int hopeful = 0;
  int improving = 0;
  int settled = 0;
  int looks_ahead = 0;
};

// A row's move as the full arithmetic judges it, which changes nothing.
template <typename Objective>
Verdict Weigh(KWayClusters<Objective>& clusters, const RowView& row, int from, int to) {
  const Objective objective = clusters.objective();
  const Verdict verdict = FullMoves<Objective>(clusters, row, from).Judge(to);
  clusters.objective() = objective;
  return verdict;
}

// One visit of every row, compared; rows that improve nothing but are drawn to move do so too.
// Where rows are looked at ahead of their turn, they are here, ten at a time.
template <typename Objective>
void CompareVisits(KWayClusters<Objective>& clusters, RowRecords& rows, unsigned one_in,
                   std::mt19937& random, Counts& counts) {
  constexpr int kAhead = 10;
  std::vector<int> order(static_cast<std::size_t>(rows.count()));
  std::iota(order.begin(), order.end(), 0);
  clusters.StartPass();
  for (int i = 0; i < rows.count(); ++i) {
    if (clusters.LooksAhead() && i % kAhead == 0) {
      clusters.LookAhead({order.data() + i, std::min(kAhead, rows.count() - i)});
      ++counts.looks_ahead;
    }
    RowRecord& row = rows[i];
    const int from = row.place;
    if (clusters.Size(from) <= 2) continue;
    const bool settled = clusters.IsSettled(row);
    const bool hope = !settled && clusters.HasHope(row);
    counts.settled += settled ? 1 : 0;
    for (int k = 0; k < clusters.count(); ++k) {
      if (k == from) continue;
      const bool hopeful = hope && clusters.IsHopeful(k);
      const auto weighed = Weigh(clusters, rows.Entries(row), from, k);
      EXPECT_TRUE(hopeful || !weighed.improves)
          << "row " << i << " from " << from << " to " << k << (settled ? ", settled" : "");
      ++counts.candidates;
      counts.hopeful += hopeful ? 1 : 0;
      counts.improving += weighed.improves ? 1 : 0;
    }
    if (one_in == 0 || random() % one_in != 0) continue;
    const int to = static_cast<int>(random() % static_cast<unsigned>(clusters.count()));
    if (to == from) continue;
    const Verdict verdict = FullMoves<Objective>(clusters, rows.Entries(row), from).Judge(to);
    clusters.Move(row, to, verdict.without, verdict.joined);
  }
}

// Some passes over a matrix, rows moving at random now and then. The totals of an objective need
// not fit moves that it refused, which is no matter: both judge by the same totals.
template <typename Objective>
void CompareOn(const PreparedMatrix& mat, int nparts, std::uint32_t seed, unsigned one_in,
               Counts& counts) {
  if (mat.nrows < nparts) return;
  std::mt19937 random(seed);
  RowRecords rows(mat, "Test: rows");
  const std::vector<int> part = RandomPart(seed, mat.nrows, nparts);
  KWayClusters<Objective> clusters({"Test", "Test"}, rows, nparts, part);
  for (int pass = 0; pass < 3; ++pass) CompareVisits(clusters, rows, one_in, random, counts);
}

template <typename Visit>
void ForEachObjective(const Visit& visit) {
  std::apply(
      [&visit](const auto&... criterion) {
        (visit(typename std::decay_t<decltype(criterion)>::Objective()), ...);
      },
      kCriteria);
}

TEST(MoveScreen, NeverHidesAnImprovementAndHardlyEverSeesOneThatIsNone) {
  ForEachObjective([](auto objective) {
    Counts counts;
    for (std::uint32_t seed = 1; seed <= 3; ++seed) {
      const auto mat = Prepared(RandomDocuments(seed, 800, 150, 4, 7));
      for (const int nparts : {2, 3, 9}) {
        CompareOn<decltype(objective)>(*mat, nparts, seed, 40, counts);
      }
    }
    EXPECT_GT(counts.improving, 100);
    // Tangents are close to what they bound where a row is small beside a cluster.
    EXPECT_LT(counts.hopeful - counts.improving, counts.candidates / 50);
  });
}

// Tables whose rows cancel each other, prepared under either similarity: a squared length may be
// zero or less after a move, and a similarity negative.
TEST(MoveScreen, NeverHidesAnImprovementAmongRowsThatCancel) {
  ForEachObjective([](auto objective) {
    Counts counts;
    for (std::uint32_t seed = 1; seed <= 400; ++seed) {
      const testing_support::ClusteringRun run = testing_support::DrawRun(seed);
      const auto mat = Prepared(run.matrix, {.simfun = run.simfun});
      CompareOn<decltype(objective)>(*mat, run.nclusters, seed, 10, counts);
    }
    EXPECT_GT(counts.improving, 100);
    EXPECT_GT(counts.looks_ahead, 100);
  });
}

// Rows of very different lengths, with zeros, infinities and not-a-numbers among the values.
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
    ForEachObjective([&](auto objective) {
      Counts counts;
      CompareOn<decltype(objective)>(*mat, 4, 1, 20, counts);
    });
  }
}

// Many rows in few clusters, so that a row's margin outlasts some moves of others.
TEST(MoveScreen, PassesOverRowsThatMovesOfOthersCannotMatterTo) {
  ForEachObjective([](auto objective) {
    Counts counts;
    for (std::uint32_t seed = 1; seed <= 3; ++seed) {
      const auto mat = Prepared(RandomDocuments(seed, 600, 60, 3, 8));
      for (const int nparts : {2, 3}) {
        CompareOn<decltype(objective)>(*mat, nparts, seed, 300, counts);
      }
    }
    EXPECT_GT(counts.settled, 300);
  });
}

// What was remembered of a row says nothing once the row itself has moved.
TEST(MoveScreen, ForgetsARowThatMoves) {
  using Objective = SingleSum<I2Term, Larger>;
  const auto mat = Prepared(RandomDocuments(1, 400, 60, 2, 8));
  RowRecords rows(*mat, "Test: rows");
  const std::vector<int> part = RandomPart(1, mat->nrows, 2);
  KWayClusters<Objective> clusters({"Test", "Test"}, rows, 2, part);
  clusters.StartPass();
  int forgotten = 0;
  for (int i = 0; i < 50; ++i) {
    RowRecord& row = rows[i];
    if (clusters.HasHope(row)) continue;
    ASSERT_TRUE(clusters.IsSettled(row));
    const int to = 1 - row.place;
    const auto weighed = Weigh(clusters, rows.Entries(row), row.place, to);
    clusters.Move(row, to, weighed.without, weighed.joined);
    EXPECT_FALSE(clusters.IsSettled(row));
    ++forgotten;
  }
  EXPECT_GT(forgotten, 10);
}

// With one entry too large for single precision nothing is bounded, and everything is weighed.
TEST(MoveScreen, LeavesWhatIsTooLargeToTheFullArithmetic) {
  using Objective = SingleSum<I1Term, Larger>;
  const auto mat = PreparedOf({{0x1p61F, 1}, {1, 1}, {1, 2}, {2, 1}, {1, 3}, {3, 1}});
  RowRecords rows(*mat, "Test: rows");
  KWayClusters<Objective> clusters({"Test", "Test"}, rows, 2, std::vector<int>{0, 0, 0, 1, 1, 1});
  for (int i = 0; i < mat->nrows; ++i) EXPECT_TRUE(clusters.HasHope(rows[i]));
}

// The row is 1 and a thousand times 2^-12. Of its products with the target, twice the row, single
// precision loses all but the first, half a unit each, to the even number below; those with its
// home, a little more than the row itself, it rounds up, each by nearly half a unit. So both rough
// changes are too small by almost what the lemma allows. `more` is by how much the home exceeds the
// row: the less it is, the less the row's going loses.
struct LostProducts {
  static constexpr int kHome = 0, kTarget = 1;

  explicit LostProducts(float more) {
    std::vector<float> row(1002, 0x1p-12F);
    row.front() = 1;
    row.back() = 0;
    std::vector<float> rest = row;
    for (float& v : rest) v *= more;
    const std::vector<float> nothing(row.size());
    std::vector<float> apart(row.size());
    apart.back() = 0.5F;
    Add({row, rest, nothing}, kHome);
    Add({row, row}, kTarget);
    Add({11, nothing}, kTarget);
    // Eight lanes are summed one entry after the other.
    for (int k = 2; k < 5; ++k) Add({apart}, k);
  }
  void Add(const std::vector<std::vector<float>>& more, int k) {
    for (const auto& row : more) {
      rows.push_back(row);
      part.push_back(k);
    }
  }

  // Whether the move of row 0 improves the objective; if so, the screen may not hide it.
  bool Improves() const {
    using Objective = SingleSum<I1Term, Larger>;
    const auto mat = PreparedOf(rows);
    RowRecords records(*mat, "Test: rows");
    KWayClusters<Objective> clusters({"Test", "Test"}, records, 5, part);
    clusters.StartPass();
    const bool improves = Weigh(clusters, Row(*mat, 0), kHome, kTarget).improves;
    EXPECT_TRUE(!improves || (clusters.HasHope(records[0]) && clusters.IsHopeful(kTarget)));
    return improves;
  }

  std::vector<std::vector<float>> rows;
  std::vector<int> part;
};

TEST(MoveScreen, NeverHidesAnImprovementThatRoughProductsLose) {
  float improving = 0.002F;
  float refused = 0.004F;
  ASSERT_TRUE(LostProducts(improving).Improves());
  ASSERT_FALSE(LostProducts(refused).Improves());
  for (int step = 0; step < 20; ++step) {
    const float middle = (improving + refused) / 2;
    (LostProducts(middle).Improves() ? improving : refused) = middle;
  }
}

// Rows of the fourth column come from the long composite of the third to that of the first, and
// draw a row of the second after them: each lets its coming gain as much more as the clock says, or
// hardly less, until it improves the objective.
TEST(MoveScreen, LooksAgainBeforeTheClockHasRunTooLong) {
  using Objective = SingleSum<I2Term, Larger>;
  std::vector<std::vector<float>> table;
  std::vector<int> part;
  const auto add = [&](int count, std::size_t column, int k) {
    std::vector<float> row(4);
    row[column] = 1;
    table.insert(table.end(), static_cast<std::size_t>(count), row);
    part.insert(part.end(), static_cast<std::size_t>(count), k);
  };
  constexpr int kComing = 150;
  add(kComing, 3, 0);
  add(4000, 2, 0);
  add(400, 0, 1);
  add(2, 3, 2);
  add(10, 1, 2);
  // So many rows that the tangent touches at what the row's going makes of 104.
  table.insert(table.end(), 40, std::vector<float>(4));
  part.insert(part.end(), 40, 2);
  const auto mat = PreparedOf(table);
  RowRecords rows(*mat, "Test: rows");
  KWayClusters<Objective> clusters({"Test", "Test"}, rows, 3, part);
  RowRecord& drawn = rows[kComing + 4000 + 400];
  clusters.StartPass();
  ASSERT_FALSE(clusters.HasHope(drawn));
  int settled = 0;
  int improving = 0;
  for (int i = 0; i < kComing; ++i) {
    const auto come = Weigh(clusters, rows.Entries(rows[i]), 0, 1);
    clusters.Move(rows[i], 1, come.without, come.joined);
    const bool improves = Weigh(clusters, rows.Entries(drawn), 2, 1).improves;
    EXPECT_FALSE(improves && clusters.IsSettled(drawn)) << i;
    settled += clusters.IsSettled(drawn) ? 1 : 0;
    improving += improves ? 1 : 0;
  }
  EXPECT_GT(improving, 50);
  EXPECT_GT(settled, (kComing - improving) / 2) << "the clock is close";
}

// A hundred thousand steps of a little more than a hundred thousandth make 1, the lack of the only
// row, even though sums in double precision stay below it.
TEST(MoveScreen, AddsAHundredThousandStepsOfTheClockWithoutLoss) {
  const auto mat = PreparedOf({{1}, {1}});
  RowRecords rows(*mat, "Test: rows");
  const Lanes lanes(2, 1, "Test: lanes");
  MoveScreen screen(lanes, 2, false, false, "Test: screen");
  ClusterBounds bounds;
  bounds.gains.coming = {-1, 0, 0, 0};
  bounds.gains.going = {0, 0, 0, 0};
  for (const int k : {0, 1}) screen.SetBounds(k, bounds);
  screen.RestartClock();
  ASSERT_FALSE(screen.HasHope(rows, rows[0]));
  double without_care = 0;
  for (int step = 0; step < 100000; ++step) {
    screen.RunClock(1e-5);
    without_care += 1e-5;
  }
  EXPECT_LT(without_care, 1 - 1e-12);
  EXPECT_FALSE(screen.IsSettled(rows[0]));
}

// Rows that come and go a hundred thousand times let composites and squares drift apart. The
// other rows are looked at again all along, under a criterion of each form.
template <typename Objective>
void CompareAfterManyMoves() {
  auto matrix = RandomDocuments(7, 40, 12, 2, 5);
  std::mt19937 random(7);
  for (float& v : matrix.rowval) {
    v *= random() % 3 == 0 ? -1.0F : std::ldexp(1.0F, -static_cast<int>(random() % 30));
  }
  const auto mat = Prepared(matrix);
  RowRecords rows(*mat, "Test: rows");
  KWayClusters<Objective> clusters({"Test", "Test"}, rows, 3, RandomPart(7, mat->nrows, 3));
  Counts counts;
  for (int move = 0; move < 100000; ++move) {
    RowRecord& row = rows[static_cast<int>(random() % 8)];
    const int to = static_cast<int>(random() % 3);
    if (to == row.place || clusters.Size(row.place) <= 2) continue;
    const auto weighed = Weigh(clusters, rows.Entries(row), row.place, to);
    clusters.Move(row, to, weighed.without, weighed.joined);
    if (move % 500 == 0) CompareVisits(clusters, rows, 0, random, counts);
  }
  EXPECT_GT(counts.candidates, 5000);
}

TEST(MoveScreen, NeverHidesAnImprovementAfterAHundredThousandMoves) {
  CompareAfterManyMoves<SingleSum<I2Term, Larger>>();
  CompareAfterManyMoves<SingleSum<G1PrimeTerm, Smaller>>();
  CompareAfterManyMoves<TwoSums<I2Term, E1Term, Ratio>>();
}

}  // namespace
}  // namespace molva
