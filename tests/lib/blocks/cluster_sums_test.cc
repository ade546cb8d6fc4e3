// SPDX-License-Identifier: MIT
#include "lib/blocks/cluster_sums.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "lib/blocks/row_hash.h"
#include "lib/blocks/sum_changes.h"
#include "lib/molva.h"
#include "tests/testing/blocks.h"
#include "tests/testing/matrices.h"
#include "tests/testing/oracles.h"

namespace molva {
namespace {

using testing_support::AddChanges;
using testing_support::ClusterArrays;
using testing_support::CriterionValue;
using testing_support::PlainRows;
using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::RandomDocuments;
using testing_support::RandomPart;
using testing_support::RowsOf;
using testing_support::SparseMatrix;

constexpr std::int64_t kOne = std::int64_t{1} << 32;

TEST(SumsOfClusters, AreTheSameForAnyBlocksInAnyOrder) {
  const SparseMatrix rows = PlainRows(*Prepared(RandomDocuments(2, 200, 60, 5, 8)));
  const std::vector<int> part = RandomPart(6, rows.nrows, 5);
  const ClusterArrays whole(rows, part, 5);
  std::vector<std::int64_t> sums(whole.sums.size());
  for (const auto& [first, last] : {std::pair{150, rows.nrows}, {0, 1}, {1, 1}, {1, 150}}) {
    AddChanges(RowsOf(rows, first, last), 5, std::vector<int>(rows.rowptr.size(), -1),
               {part.begin() + first, part.begin() + last}, sums);
  }
  EXPECT_EQ(sums, whole.sums);
}

TEST(SumsOfClusters, GiveEveryCriterionOfTheWholeMatrix) {
  const auto mat = Prepared(RandomDocuments(3, 90, 50, 3, 7));
  const std::vector<int> part = RandomPart(1, mat->nrows, 3);
  const ClusterArrays clusters(PlainRows(*mat), part, 3);
  for (int crfun = 1; crfun <= 9; ++crfun) {
    const auto expected = static_cast<double>(CriterionValue(crfun, *mat, part, 3));
    EXPECT_NEAR(clusters.Value(crfun), expected, 1e-7 * expected) << crfun;
  }
}

TEST(SumsOfClusters, MultiplyAsTheirComposites) {
  // Composites (2, 0) and (0, 0.5).
  const std::vector<std::int64_t> sums = {2 * kOne, 0, 0, kOne / 2};
  std::vector<double> dnorms(2), csim(2);
  MOLVA_B_MeasureSums(2, 2, sums.data(), dnorms.data(), csim.data());
  EXPECT_EQ(dnorms, (std::vector<double>{4, 0.25}));
  EXPECT_EQ(csim, (std::vector<double>{4, 0.25}));
  std::vector<float> smat(4);
  MOLVA_B_MultiplySums(2, 2, sums.data(), smat.data());
  EXPECT_EQ(smat, (std::vector<float>{4, 0, 0, 0.25F}));
  std::vector<float> composites(4), whole(2);
  MOLVA_B_MakeView(2, 2, sums.data(), 3, composites.data(), whole.data());
  EXPECT_EQ(composites, (std::vector<float>{6, 0, 0, 1.5F}));
  EXPECT_EQ(whole, (std::vector<float>{6, 1.5F}));
}

TEST(Changes, TakeARowFromOneListAndAddItToAnother) {
  const SparseMatrix rows = PlainRows(*PreparedOf({{0.5F, 0.25F}, {0.5F, 0}, {1, 1}}));
  std::vector<std::int64_t> lists(6);
  const std::int64_t reach = AddChanges(rows, 3, {0, 2, 1}, {2, -1, 1}, lists);
  EXPECT_EQ(lists, (std::vector<std::int64_t>{-kOne / 2, -kOne / 4, 0, 0, 0, kOne / 4}));
  EXPECT_EQ(reach, kOne / 2 + kOne / 2 + kOne);
}

TEST(Changes, ReachFurtherWhereAColumnStandsTwice) {
  SparseMatrix rows = PlainRows(*PreparedOf({{0.5F, 0.25F}}));
  rows.rowind = {1, 1};
  std::vector<std::int64_t> lists(2);
  EXPECT_EQ(AddChanges(rows, 1, {-1}, {0}, lists), 3 * kOne / 4);
  EXPECT_EQ(lists, (std::vector<std::int64_t>{0, 3 * kOne / 4}));
}

TEST(RowHashes, DependOnTheRowsNumberAndTheSaltAlone) {
  std::vector<std::uint64_t> all(10), rest(7), salted(10);
  MOLVA_B_HashRows(5, 10, 1, all.data());
  MOLVA_B_HashRows(8, 7, 1, rest.data());
  MOLVA_B_HashRows(5, 10, 2, salted.data());
  for (std::size_t i = 0; i < rest.size(); ++i) EXPECT_EQ(rest[i], all[i + 3]);
  for (std::size_t i = 0; i < all.size(); ++i) EXPECT_NE(salted[i], all[i]);
}

TEST(RowHashes, DrawSharesOfTheRows) {
  constexpr int kRows = 100'000;
  std::vector<std::uint64_t> first(kRows), second(kRows);
  MOLVA_B_HashRows(0, kRows, 1, first.data());
  MOLVA_B_HashRows(0, kRows, 2, second.data());
  int halves = 0;
  int quarters = 0;
  constexpr std::uint64_t kHalf = std::uint64_t{1} << 63;
  for (std::size_t i = 0; i < first.size(); ++i) {
    if (first[i] < kHalf) ++halves;
    if (first[i] < kHalf && second[i] < kHalf) ++quarters;
  }
  // Six standard deviations are 950 and 822 rows.
  EXPECT_NEAR(halves, kRows / 2, 950);
  EXPECT_NEAR(quarters, kRows / 4, 822);
  EXPECT_EQ(std::set<std::uint64_t>(first.begin(), first.end()).size(), first.size());
}

}  // namespace
}  // namespace molva
