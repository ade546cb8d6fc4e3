// SPDX-License-Identifier: MIT
#include "lib/support/key_blocks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <vector>

#include "tests/testing/allocation.h"

namespace {

using molva::KeyBlocks;
using molva::KeyValue;

// Some keys of few values, not-a-number and infinity now and then.
std::vector<KeyValue> RandomRecords(std::mt19937& random, std::size_t n, unsigned distinct) {
  std::vector<KeyValue> records(n);
  for (KeyValue& record : records) {
    record = {static_cast<float>(random() % distinct), 0};
    if (random() % 60 == 0) record.key = NAN;
    if (random() % 90 == 0) record.key = INFINITY;
  }
  return records;
}

// Compares every scan from every place with one that looks at every key.
template <typename Before>
void ExpectScansStopWherePlainOnesDo(std::vector<KeyValue> x, std::mt19937& random, Before before) {
  KeyBlocks blocks(molva::Span<KeyValue>(x), before);
  const auto n = static_cast<std::ptrdiff_t>(x.size());
  for (int step = 0; step < 300; ++step) {
    blocks.Swap(static_cast<int>(random() % x.size()), static_cast<int>(random() % x.size()));
    const float pivot = static_cast<float>(random() % 12) - 1;
    const auto from = static_cast<std::ptrdiff_t>(random() % x.size());
    const auto last = from + static_cast<std::ptrdiff_t>(random()) % (n - from);
    const auto first = from - static_cast<std::ptrdiff_t>(random()) % (from + 1);
    std::ptrdiff_t up = from;
    while (up < last && before(blocks.Key(up), pivot)) ++up;
    std::ptrdiff_t down = from;
    while (down > first && before(pivot, blocks.Key(down))) --down;
    ASSERT_EQ(blocks.NextStop(from, last, pivot), up);
    ASSERT_EQ(blocks.PreviousStop(from, first, pivot), down);
  }
}

TEST(KeyBlocks, StopScansWherePlainOnesStop) {
  std::mt19937 random(1);
  for (const std::size_t n : {1U, 15U, 16U, 17U, 100U, 256U, 1000U}) {
    for (const unsigned distinct : {1U, 3U, 11U}) {
      const std::vector<KeyValue> records = RandomRecords(random, n, distinct);
      ExpectScansStopWherePlainOnesDo(records, random, std::less<float>());
      ExpectScansStopWherePlainOnesDo(records, random, std::greater<float>());
    }
  }
}

TEST(KeyBlocks, LeapToTheEndsWhenNothingStops) {
  std::vector<KeyValue> x(1000, KeyValue{5, 0});
  const KeyBlocks blocks{molva::Span<KeyValue>(x), std::less<float>()};
  EXPECT_EQ(blocks.NextStop(3, 999, 6), 999);
  EXPECT_EQ(blocks.NextStop(3, 500, 6), 500);
  EXPECT_EQ(blocks.NextStop(3, 999, 5), 3);
  EXPECT_EQ(blocks.PreviousStop(999, 0, 4), 0);
  EXPECT_EQ(blocks.PreviousStop(999, 321, 4), 321);
  EXPECT_EQ(blocks.PreviousStop(999, 321, NAN), 999);
}

TEST(KeyBlocks, AreFalseWithoutMemory) {
  std::vector<KeyValue> x(100, KeyValue{5, 0});
  const testing_support::FailingAllocations failing(0);
  EXPECT_FALSE(KeyBlocks(molva::Span<KeyValue>(x), std::less<float>()));
}

}  // namespace
