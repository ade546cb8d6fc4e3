// SPDX-License-Identifier: MIT
#include "lib/partition/initial_clustering.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <vector>

#include "tests/testing/matrices.h"
#include "tests/testing/oracles.h"

namespace molva {
namespace {

using testing_support::DenseRow;
using testing_support::Dot;
using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::RandomDocuments;
using testing_support::SeedBoth;
using testing_support::WideVector;

std::vector<int> Seeded(const PreparedMatrix& mat, int nparts, int seed) {
  std::vector<int> part(static_cast<std::size_t>(mat.nrows), -1);
  SeedBoth(seed);
  InitialClustering(mat, nparts, part);
  return part;
}

// The order in which rows are taken: five rounds of literal draws.
std::vector<int> TakingOrder(int nrows, int seed) {
  std::vector<int> order(static_cast<std::size_t>(nrows));
  std::iota(order.begin(), order.end(), 0);
  srand48(seed);
  for (int swap = 0; swap < 5 * nrows; ++swap) {
    const auto u = static_cast<std::size_t>(drand48() * nrows);
    const auto v = static_cast<std::size_t>(drand48() * nrows);
    std::swap(order[u], order[v]);
  }
  return order;
}

TEST(InitialClustering, MakesEveryRowASeedWhenThereAreAsManyClustersAsRows) {
  const auto mat = PreparedOf({{1, 0}, {0, 1}, {1, 1}});
  std::vector<int> part = Seeded(*mat, 3, 5);
  const std::vector<int> order = TakingOrder(3, 5);
  for (int k = 0; k < 3; ++k)
    EXPECT_EQ(part[static_cast<std::size_t>(order[static_cast<std::size_t>(k)])], k);
}

TEST(InitialClustering, PutsAZeroRowThatIsNoSeedIntoClusterZero) {
  // Whatever the order, at most two of the six zero rows are seeds.
  const auto mat = PreparedOf({{0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}, {1, 1}, {1, 0}});
  const std::vector<int> part = Seeded(*mat, 2, 1);
  const std::vector<int> order = TakingOrder(8, 1);
  for (std::size_t j = 2; j < order.size(); ++j) {
    if (order[j] < 6) {
      EXPECT_EQ(part[static_cast<std::size_t>(order[j])], 0);
    }
  }
}

TEST(InitialClustering, RepeatsItselfForTheSameSeed) {
  const auto mat = Prepared(RandomDocuments(3, 60, 80, 4, 12));
  EXPECT_EQ(Seeded(*mat, 4, 7), Seeded(*mat, 4, 7));
  EXPECT_NE(Seeded(*mat, 4, 7), Seeded(*mat, 4, 8));
}

// Replays the growth with wide composites from scratch: the chosen cluster grows most, up to what
// single precision can tell.
TEST(InitialClustering, LetsEveryRowJoinTheClusterThatGrowsMost) {
  for (const int seed : {1, 2, 3}) {
    const auto mat = Prepared(RandomDocuments(static_cast<std::uint32_t>(seed), 80, 60, 5, 9));
    const std::vector<int> part = Seeded(*mat, 5, seed);
    std::vector<WideVector> composites(5, WideVector(static_cast<std::size_t>(mat->ncols)));
    int taken = 0;
    for (const int i : TakingOrder(mat->nrows, seed)) {
      const WideVector row = DenseRow(*mat, i);
      const auto chosen = static_cast<std::size_t>(part[static_cast<std::size_t>(i)]);
      std::vector<Wide> gains;
      for (const WideVector& composite : composites) {
        WideVector joined = composite;
        for (std::size_t j = 0; j < row.size(); ++j) joined[j] += row[j];
        gains.push_back(molva::Sqrt(Dot(joined, joined)) - molva::Sqrt(Dot(composite, composite)));
      }
      if (taken < 5) {
        EXPECT_EQ(chosen, static_cast<std::size_t>(taken));
      } else {
        EXPECT_GE(gains[chosen], *std::max_element(gains.begin(), gains.end()) - 1e-5);
      }
      for (std::size_t j = 0; j < row.size(); ++j) composites[chosen][j] += row[j];
      ++taken;
    }
  }
}

std::vector<int> PlainlySeeded(const PreparedMatrix& mat, int nparts, int seed) {
  std::vector<int> part(static_cast<std::size_t>(mat.nrows), -1);
  SeedBoth(seed);
  testing_support::PlainSeeding(mat, nparts, part);
  return part;
}

TEST(InitialClustering, EqualsThePlainOne) {
  for (const int seed : {1, 2, 3, 4, 5}) {
    const auto mat = Prepared(RandomDocuments(static_cast<std::uint32_t>(seed), 150, 90, 6, 8));
    for (const int nparts : {1, 2, 3, 5, 9, 20, 40}) {
      EXPECT_EQ(Seeded(*mat, nparts, seed), PlainlySeeded(*mat, nparts, seed)) << nparts;
    }
  }
}

TEST(InitialClustering, EqualsThePlainOneWithManyTiesAndZeroRows) {
  std::vector<std::vector<float>> rows;
  for (int i = 0; i < 60; ++i) {
    std::vector<float> row(6);
    if (i % 10 != 9) row[static_cast<std::size_t>(i % 6)] = 1;
    rows.push_back(row);
  }
  const auto mat = PreparedOf(rows);
  for (const int nparts : {2, 3, 4, 8, 12}) {
    for (const int seed : {1, 2, 3}) {
      EXPECT_EQ(Seeded(*mat, nparts, seed), PlainlySeeded(*mat, nparts, seed)) << nparts;
    }
  }
}

TEST(InitialClustering, EqualsThePlainOneAmongWildValues) {
  for (const int seed : {1, 2, 3, 4, 5, 6}) {
    auto mat = Prepared(RandomDocuments(static_cast<std::uint32_t>(seed), 40, 30, 3, 6));
    const float wild[] = {0, -1, 1e-30F, 1e18F, -1e18F, 3e-45F, INFINITY, NAN};
    for (std::size_t p = 0; p < mat->rowval.size(); p += 3) {
      mat->rowval[p] = wild[(p / 3) % static_cast<std::size_t>(2 + seed)];
    }
    for (const int nparts : {2, 5}) {
      EXPECT_EQ(Seeded(*mat, nparts, seed), PlainlySeeded(*mat, nparts, seed)) << nparts;
    }
  }
}

}  // namespace
}  // namespace molva
