// SPDX-License-Identifier: MIT
#include "lib/rough/product_memory.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "lib/partition/refine_frame.h"
#include "lib/rough/lanes.h"
#include "lib/rough/move_screen.h"
#include "lib/rough/row_sizes.h"
#include "tests/testing/allocation.h"
#include "tests/testing/matrices.h"

namespace molva {
namespace {

using testing_support::Prepared;
using testing_support::RandomDocuments;
using testing_support::RandomPart;
using testing_support::SparseMatrix;

Wide ProductOf(const PreparedMatrix& mat, int i, const LaneView& composite) {
  const RowView row = Row(mat, i);
  Wide sum = 0;
  for (std::size_t p = 0; p < row.size(); ++p) {
    sum += static_cast<Wide>(row.values[p]) * composite[static_cast<std::size_t>(row.columns[p])];
  }
  return sum;
}

// Columns that repeat within a row, in any order.
SparseMatrix RepeatingRows(std::uint32_t seed) {
  SparseMatrix matrix = RandomDocuments(seed, 40, 30, 3, 6);
  std::mt19937 random(seed);
  for (int& j : matrix.rowind) j = static_cast<int>(random() % 5);
  return matrix;
}

// Rows move at random between three clusters; what is remembered of every row must hold all along.
void ExpectTrueAfterMoves(PreparedMatrix& mat, std::uint32_t seed) {
  MeasureRows(mat, "Test: sizes");
  constexpr int kClusters = 3;
  std::vector<int> part = RandomPart(seed, mat.nrows, kClusters);
  Lanes lanes(kClusters, mat.ncols, "Test: lanes");
  double drift[kClusters] = {};
  ValueBound bounds[kClusters];
  for (int i = 0; i < mat.nrows; ++i) {
    const int k = part[static_cast<std::size_t>(i)];
    lanes.Add(Row(mat, i), k);
    bounds[k].Join(mat.rowsize[i].largest, mat.rowsize[i].additions);
  }
  ProductMemory memory(mat, kClusters);
  ASSERT_TRUE(static_cast<bool>(memory));
  std::vector<double> products(lanes.stride());
  const std::vector<int> home = part;
  for (int i = 0; i < mat.nrows; ++i) {
    lanes.DotRow(Row(mat, i), products.data());
    memory.Keep(i, mat.rowsize[i], home[static_cast<std::size_t>(i)], products.data(),
                [&](std::size_t k) { return drift[k]; });
  }
  std::mt19937 random(seed);
  for (int move = 0; move < 60; ++move) {
    const int i = static_cast<int>(random() % static_cast<unsigned>(mat.nrows));
    int& place = part[static_cast<std::size_t>(i)];
    const int to = (place + 1) % kClusters;
    lanes.Add(Row(mat, i), to);
    lanes.Subtract(Row(mat, i), place);
    bounds[to].Join(mat.rowsize[i].largest, mat.rowsize[i].additions);
    bounds[place].Leave(mat.rowsize[i].additions);
    for (const int k : {place, to}) {
      drift[k] += mat.rowsize[i].length +
                  static_cast<double>(Row(mat, i).size()) * 0x1p-24 * bounds[k].Value();
    }
    place = to;
    for (int r = 0; r < mat.nrows; ++r) {
      for (int k = 0; k < kClusters; ++k) {
        const Wide product = ProductOf(mat, r, lanes[k]);
        const auto lane = static_cast<std::size_t>(k);
        const bool is_home = k == home[static_cast<std::size_t>(r)];
        const double rounding = 1e-14 * bounds[k].Value() * mat.rowsize[r].absolute;
        if (is_home) {
          ASSERT_LE(memory.Least(r, mat.rowsize[r], lane, drift[k]) - rounding,
                    static_cast<double>(product));
        } else {
          ASSERT_GE(memory.Most(r, mat.rowsize[r], lane, drift[k]) + rounding,
                    static_cast<double>(product));
        }
      }
    }
  }
}

TEST(ProductMemory, BoundsAllProductsWhateverMoves) {
  for (const std::uint32_t seed : {1U, 2U, 3U}) {
    ExpectTrueAfterMoves(*Prepared(RandomDocuments(seed, 60, 50, 4, 7)), seed);
    ExpectTrueAfterMoves(*Prepared(RepeatingRows(seed)), seed);
  }
}

TEST(ProductMemory, IsLeftOutWhereItWouldOutweighTheMatrix) {
  const auto mat = Prepared(RandomDocuments(1, 20, 30, 3, 4));
  EXPECT_TRUE(static_cast<bool>(ProductMemory(*mat, 2)));
  EXPECT_FALSE(static_cast<bool>(ProductMemory(*mat, 30)));
  EXPECT_FALSE(static_cast<bool>(ProductMemory(*mat, 33)));
}

TEST(ProductMemory, IsLeftOutWhereThereIsNoMemory) {
  const auto mat = Prepared(RandomDocuments(1, 20, 30, 3, 4));
  SetAllocateFunction([](std::size_t) -> void* { return nullptr; });
  const ProductMemory memory(*mat, 2);
  SetAllocateFunction(nullptr);
  EXPECT_FALSE(static_cast<bool>(memory));
}

// A row that was weighed and found without an improving move is settled for as long as nothing
// moves, and never while the full arithmetic would move it.
template <typename CriterionType>
void ExpectSettledRowsStay(const CriterionType&, int& settled) {
  using Objective = typename CriterionType::Objective;
  for (std::uint32_t seed = 1; seed <= 10; ++seed) {
    auto mat = Prepared(RandomDocuments(seed, 80, 50, 4, 9));
    MeasureRows(*mat, "Test: sizes");
    constexpr int kClusters = 3;
    const std::vector<int> part = RandomPart(seed, mat->nrows, kClusters);
    Lanes lanes(kClusters + 1, mat->ncols, "Test: lanes");
    MoveScreen<Objective> screen(*mat, lanes, kClusters, "Test: screen");
    std::vector<int> sizes(kClusters);
    std::vector<float> whole(static_cast<std::size_t>(mat->ncols));
    for (int i = 0; i < mat->nrows; ++i) {
      const int k = part[static_cast<std::size_t>(i)];
      ++sizes[static_cast<std::size_t>(k)];
      lanes.Add(Row(*mat, i), k);
      lanes.Add(Row(*mat, i), kClusters);
      AddRow(Row(*mat, i), whole);
      screen.RowCounted(k, mat->rowsize[i]);
    }
    std::vector<float> dnorms(kClusters);
    std::vector<float> csim(kClusters);
    lanes.SquaredLengths(dnorms);
    lanes.DotsWith(whole, csim);
    Objective objective;
    for (std::size_t k = 0; k < kClusters; ++k) {
      objective.AddCluster(Objective::TermsOf({sizes[k], dnorms[k], csim[k]}));
      screen.SetCluster(static_cast<int>(k), sizes[k], dnorms[k], csim[k]);
    }
    objective.Start();
    for (int i = 0; i < mat->nrows; ++i) {
      const int from = part[static_cast<std::size_t>(i)];
      EXPECT_FALSE(screen.IsSettled(objective, i, mat->rowsize[i], from)) << "never weighed";
      screen.Weigh(objective, i, mat->rowsize[i], from);
      bool hopeful = false;
      for (int k = 0; k < kClusters; ++k) hopeful = hopeful || screen.IsHopeful(k);
      const bool is_settled = screen.IsSettled(objective, i, mat->rowsize[i], from);
      EXPECT_FALSE(is_settled && hopeful);
      settled += is_settled ? 1 : 0;
    }
  }
}

TEST(MoveScreen, SettlesRowsThatNothingImproves) {
  int settled = 0;
  ExpectSettledRowsStay(kCriterionI1, settled);
  ExpectSettledRowsStay(kCriterionI2, settled);
  ExpectSettledRowsStay(kCriterionE1, settled);
  ExpectSettledRowsStay(kCriterionG1, settled);
  ExpectSettledRowsStay(kCriterionG1Prime, settled);
  ExpectSettledRowsStay(kCriterionH1, settled);
  ExpectSettledRowsStay(kCriterionH2, settled);
  ExpectSettledRowsStay(kCriterionCode8, settled);
  ExpectSettledRowsStay(kCriterionCode9, settled);
  EXPECT_GT(settled, 200);
}

}  // namespace
}  // namespace molva
