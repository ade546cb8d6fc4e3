// SPDX-License-Identifier: MIT
#include "lib/support/random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <thread>
#include <utility>
#include <vector>

namespace {

using molva::DrawUnit;
using molva::FastRandomPermute;
using molva::RandomPermute;
using molva::SeedGenerator;
using molva::Start;

std::vector<int> Identity(int n) {
  std::vector<int> p(static_cast<std::size_t>(n));
  std::iota(p.begin(), p.end(), 0);
  return p;
}

std::size_t Draw(int n) { return static_cast<std::size_t>(drand48() * n); }

// n rounds: u, then v, then the swap.
void SlowPermute(std::vector<int>& p) {
  const int n = static_cast<int>(p.size());
  for (int round = 0; round < n; ++round) {
    const std::size_t u = Draw(n);
    const std::size_t v = Draw(n);
    std::swap(p[u], p[v]);
  }
}

// n/16 rounds: u, then v, then four swaps one after the other.
void SlowFastPermute(std::vector<int>& p) {
  const int n = static_cast<int>(p.size());
  for (int round = 0; round < n / 16; ++round) {
    const std::size_t u = Draw(n - 8);
    const std::size_t v = Draw(n - 8);
    std::swap(p[u], p[v]);
    std::swap(p[u + 1], p[v + 1]);
    std::swap(p[u + 2], p[v + 2]);
    std::swap(p[u + 3], p[v + 3]);
  }
}

TEST(SeedGenerator, StartsThePlatformsSequence) {
  for (const int seed : {0, 1, 42, 4321, 2147483647, -1, -3, -2147483647 - 1}) {
    srand48(seed);
    SeedGenerator(seed);
    for (int draw = 0; draw < 1000; ++draw) ASSERT_EQ(DrawUnit(), drand48()) << seed;
  }
}

TEST(SeedGenerator, LeavesTheHostsSequencesAlone) {
  srand48(7);
  std::srand(7);
  const double first = drand48();
  const int classic = std::rand();
  srand48(7);
  std::srand(7);
  SeedGenerator(42);
  std::vector<int> p(100);
  RandomPermute(p, Start::kIdentity);
  EXPECT_EQ(drand48(), first);
  EXPECT_EQ(std::rand(), classic);
}

TEST(SeedGenerator, GivesEveryThreadASequenceOfItsOwn) {
  SeedGenerator(5);
  const double first = DrawUnit();
  SeedGenerator(5);
  std::thread other([] {
    SeedGenerator(6);
    DrawUnit();
  });
  other.join();
  EXPECT_EQ(DrawUnit(), first);
}

TEST(RandomPermute, DrawsBothEndsOfEverySwapInOrder) {
  for (const int n : {2, 3, 10, 257}) {
    srand48(n);
    std::vector<int> expected = Identity(n);
    SlowPermute(expected);
    SeedGenerator(n);
    std::vector<int> p(static_cast<std::size_t>(n), -1);
    RandomPermute(p, Start::kIdentity);
    EXPECT_EQ(p, expected) << n;
  }
}

TEST(RandomPermute, PermutesWhatIsThereWhenAskedTo) {
  const std::vector<int> start = {30, 10, 10, 20, -5};
  srand48(9);
  std::vector<int> expected = start;
  SlowPermute(expected);
  SeedGenerator(9);
  std::vector<int> p = start;
  RandomPermute(p, Start::kAsGiven);
  EXPECT_EQ(p, expected);
}

TEST(RandomPermute, KeepsEveryElement) {
  SeedGenerator(5);
  std::vector<int> p(1000);
  RandomPermute(p, Start::kIdentity);
  EXPECT_NE(p, Identity(1000));
  std::sort(p.begin(), p.end());
  EXPECT_EQ(p, Identity(1000));
}

TEST(RandomPermute, IsTheSameForTheSameSeed) {
  std::vector<int> first(100);
  std::vector<int> second(100);
  std::vector<int> other(100);
  SeedGenerator(7);
  RandomPermute(first, Start::kIdentity);
  SeedGenerator(7);
  RandomPermute(second, Start::kIdentity);
  SeedGenerator(8);
  RandomPermute(other, Start::kIdentity);
  EXPECT_EQ(first, second);
  EXPECT_NE(first, other);
}

TEST(RandomPermute, DrawsTwiceForOneElement) {
  srand48(1);
  drand48();
  drand48();
  const double third = drand48();
  SeedGenerator(1);
  std::vector<int> p = {17};
  RandomPermute(p, Start::kAsGiven);
  EXPECT_EQ(p[0], 17);
  EXPECT_EQ(DrawUnit(), third);
}

TEST(RandomPermute, DrawsNothingForNoElement) {
  srand48(1);
  const double first = drand48();
  SeedGenerator(1);
  RandomPermute({}, Start::kIdentity);
  EXPECT_EQ(DrawUnit(), first);
}

TEST(FastRandomPermute, SwapsFourElementsARound) {
  for (const int n : {16, 31, 32, 40, 1000}) {
    srand48(n);
    std::vector<int> expected = Identity(n);
    SlowFastPermute(expected);
    SeedGenerator(n);
    std::vector<int> p(static_cast<std::size_t>(n), -1);
    FastRandomPermute(p, Start::kIdentity);
    EXPECT_EQ(p, expected) << n;
  }
}

TEST(FastRandomPermute, DrawsNothingBelowSixteenElements) {
  for (const int n : {0, 1, 7, 8, 15}) {
    srand48(3);
    const double first = drand48();
    SeedGenerator(3);
    std::vector<int> p = Identity(n);
    std::reverse(p.begin(), p.end());
    const std::vector<int> start = p;
    FastRandomPermute(p, Start::kAsGiven);
    EXPECT_EQ(p, start) << n;
    FastRandomPermute(p, Start::kIdentity);
    EXPECT_EQ(p, Identity(n)) << n;
    EXPECT_EQ(DrawUnit(), first) << n;
  }
}

TEST(AfterPermutations, IsWhereDrawingThemEnds) {
  for (const int n : {0, 1, 2, 37, 1000}) {
    for (const int count : {0, 1, 2, 5, 15}) {
      SeedGenerator(n + count);
      const molva::RandomState start = molva::CurrentRandomState();
      std::vector<int> p = Identity(n);
      for (int i = 0; i < count; ++i) RandomPermute(p, Start::kAsGiven);
      EXPECT_EQ(molva::AfterPermutations(start, n, count), molva::CurrentRandomState());
    }
  }
}

// The period is 2^48 draws, 2 n of them in each permutation.
TEST(AfterPermutations, GoRoundTheWholePeriod) {
  SeedGenerator(7);
  const molva::RandomState start = molva::CurrentRandomState();
  EXPECT_EQ(molva::AfterPermutations(start, 1 << 20, std::int64_t{1} << 27), start);
  EXPECT_NE(molva::AfterPermutations(start, 1 << 20, std::int64_t{1} << 26), start);
}

TEST(RandomState, IsPutBack) {
  SeedGenerator(11);
  DrawUnit();
  const molva::RandomState state = molva::CurrentRandomState();
  const double next = DrawUnit();
  molva::SetRandomState(state);
  EXPECT_EQ(DrawUnit(), next);
}

}  // namespace
