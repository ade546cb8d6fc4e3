// SPDX-License-Identifier: MIT
#include "lib/support/sort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <numeric>
#include <random>
#include <span>
#include <utility>
#include <vector>

#include "tests/testing/allocation.h"

namespace {

using molva::KeyValue;
using molva::SortKeyValuesDecreasing;
using molva::SortKeyValuesIncreasing;
using Sort = void (*)(molva::Span<KeyValue>);

// Record i carries the value i.
std::vector<KeyValue> Records(const std::vector<float>& keys) {
  std::vector<KeyValue> records;
  for (const float key : keys) records.push_back({key, static_cast<int>(records.size())});
  return records;
}

std::vector<int> Values(const std::vector<KeyValue>& records) {
  std::vector<int> values;
  for (const KeyValue& record : records) values.push_back(record.value);
  return values;
}

// `n` keys of 1, but of 2 at the given positions.
std::vector<float> OnesAndTwos(std::size_t n, const std::vector<std::size_t>& twos) {
  std::vector<float> keys(n, 1.0F);
  for (const std::size_t i : twos) keys[i] = 2.0F;
  return keys;
}

bool Increases(const std::vector<KeyValue>& x) {
  return std::is_sorted(x.begin(), x.end(),
                        [](const KeyValue& a, const KeyValue& b) { return a.key < b.key; });
}

bool Decreases(const std::vector<KeyValue>& x) {
  return std::is_sorted(x.begin(), x.end(),
                        [](const KeyValue& a, const KeyValue& b) { return a.key > b.key; });
}

std::vector<KeyValue> StableIncreasing(std::vector<KeyValue> records) {
  std::stable_sort(records.begin(), records.end(),
                   [](const KeyValue& a, const KeyValue& b) { return a.key < b.key; });
  return records;
}

// Every value is still there once, with the key it had, compared by bits.
bool KeepsItsRecords(const std::vector<KeyValue>& before, std::vector<KeyValue> after) {
  std::sort(after.begin(), after.end(),
            [](const KeyValue& a, const KeyValue& b) { return a.value < b.value; });
  return before.size() == after.size() &&
         (before.empty() ||
          std::memcmp(before.data(), after.data(), before.size() * sizeof(KeyValue)) == 0);
}

void ExpectSortsBothWays(const std::vector<float>& keys) {
  const std::vector<KeyValue> before = Records(keys);
  std::vector<KeyValue> increasing = before;
  SortKeyValuesIncreasing(increasing);
  EXPECT_TRUE(Increases(increasing));
  EXPECT_TRUE(KeepsItsRecords(before, increasing));
  std::vector<KeyValue> decreasing = before;
  SortKeyValuesDecreasing(decreasing);
  EXPECT_TRUE(Decreases(decreasing));
  EXPECT_TRUE(KeepsItsRecords(before, decreasing));
}

// `distinct` different keys, both signs.
std::vector<float> RandomKeys(std::mt19937& random, std::size_t n, unsigned distinct) {
  std::vector<float> keys(n);
  for (float& key : keys) {
    key = static_cast<float>(static_cast<int>(random() % distinct)) -
          static_cast<float>(distinct / 2);
  }
  return keys;
}

TEST(SortKeyValues, PutsKeysInOrderWithTheirValues) {
  std::vector<KeyValue> records = Records({3, 1, 2});
  SortKeyValuesIncreasing(records);
  EXPECT_EQ(Values(records), (std::vector<int>{1, 2, 0}));
  EXPECT_EQ(records[0].key, 1.0F);
  EXPECT_EQ(records[2].key, 3.0F);
  records = Records({3, 1, 2});
  SortKeyValuesDecreasing(records);
  EXPECT_EQ(Values(records), (std::vector<int>{0, 2, 1}));
  EXPECT_EQ(records[0].key, 3.0F);
  EXPECT_EQ(records[2].key, 1.0F);
}

TEST(SortKeyValues, TakesNoRecordAndOneRecord) {
  ExpectSortsBothWays({});
  ExpectSortsBothWays({5});
}

TEST(SortKeyValues, SortsRandomKeysOfEverySize) {
  std::mt19937 random(1);
  for (std::size_t n = 0; n <= 200; ++n) ExpectSortsBothWays(RandomKeys(random, n, 1000000));
  for (const std::size_t n : {1000U, 1024U, 4097U, 20000U}) {
    ExpectSortsBothWays(RandomKeys(random, n, 1000000));
  }
}

TEST(SortKeyValues, SortsManyEqualKeys) {
  std::mt19937 random(2);
  for (const unsigned distinct : {1U, 2U, 3U, 10U}) {
    for (std::size_t n = 0; n <= 200; ++n) ExpectSortsBothWays(RandomKeys(random, n, distinct));
    ExpectSortsBothWays(RandomKeys(random, 5000, distinct));
  }
}

TEST(SortKeyValues, SortsOrderedReversedAndPipedKeys) {
  for (const std::size_t n : {21U, 100U, 5000U}) {
    std::vector<float> rising(n);
    for (std::size_t i = 0; i < n; ++i) rising[i] = static_cast<float>(i);
    std::vector<float> falling(rising.rbegin(), rising.rend());
    std::vector<float> pipe = rising;
    for (std::size_t i = n / 2; i < n; ++i) pipe[i] = static_cast<float>(n - i);
    ExpectSortsBothWays(rising);
    ExpectSortsBothWays(falling);
    ExpectSortsBothWays(pipe);
  }
}

TEST(SortKeyValues, PutsInfiniteKeysAtTheEnds) {
  std::vector<float> keys(50, 0.0F);
  keys[10] = INFINITY;
  keys[40] = -INFINITY;
  keys[41] = std::numeric_limits<float>::max();
  ExpectSortsBothWays(keys);
  std::vector<KeyValue> records = Records(keys);
  SortKeyValuesDecreasing(records);
  EXPECT_EQ(records.front().value, 10);
  EXPECT_EQ(records[1].value, 41);
  EXPECT_EQ(records.back().value, 40);
}

TEST(SortKeyValues, EndsAndKeepsItsRecordsWithKeysThatAreNotNumbers) {
  std::mt19937 random(3);
  for (std::size_t n = 1; n <= 200; ++n) {
    for (const unsigned every : {1U, 2U, 10U}) {
      std::vector<float> keys = RandomKeys(random, n, 20);
      for (float& key : keys) {
        if (random() % every == 0) key = random() % 4 == 0 ? INFINITY : NAN;
      }
      const std::vector<KeyValue> before = Records(keys);
      for (const Sort sort : {&SortKeyValuesIncreasing, &SortKeyValuesDecreasing}) {
        std::vector<KeyValue> after = before;
        sort(after);
        ASSERT_TRUE(KeepsItsRecords(before, after)) << n << " " << every;
      }
    }
  }
}

// Twenty records or fewer are sorted by insertion, which leaves equal keys in their order.
TEST(SortKeyValuesDecreasing, LeavesTwentyEqualKeysAlone) {
  std::vector<KeyValue> records = Records(std::vector<float>(20, 1.0F));
  const std::vector<int> before = Values(records);
  SortKeyValuesDecreasing(records);
  EXPECT_EQ(Values(records), before);
}

// Neither the median of three nor the insertion moves anything, and both scans of the split stop
// at every record: 1 changes places with 19, 2 with 18, up to 9 with 11.
TEST(SortKeyValuesDecreasing, ReversesTwentyOneEqualKeysBetweenTheEnds) {
  std::vector<KeyValue> records = Records(std::vector<float>(21, 1.0F));
  SortKeyValuesDecreasing(records);
  EXPECT_EQ(Values(records), (std::vector<int>{0, 19, 18, 17, 16, 15, 14, 13, 12, 11, 10,
                                               9, 8,  7,  6,  5,  4,  3,  2,  1,  20}));
}

// The first split reverses 1 to 41 around 21, which stays. Each half has 21 records and is split
// again, which reverses places 1 to 19 and 23 to 41 once more.
TEST(SortKeyValuesDecreasing, SplitsHalvesOfMoreThanTwentyAgain) {
  std::vector<KeyValue> records = Records(std::vector<float>(43, 1.0F));
  SortKeyValuesDecreasing(records);
  EXPECT_EQ(Values(records),
            (std::vector<int>{0,  23, 24, 25, 26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36,
                              37, 38, 39, 40, 41, 22, 21, 20, 1,  2,  3,  4,  5,  6,  7,
                              8,  9,  10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 42}));
}

// The last of 22 records is the largest: the median of three moves it to the middle, place 10, and
// on to the front, the middle record to the end and the first to the middle. Then the split
// reverses the rest.
TEST(SortKeyValuesDecreasing, PutsTheThreeMedianCandidatesInOrderFirst) {
  std::vector<float> keys(22, 1.0F);
  keys[21] = 3.0F;
  std::vector<KeyValue> records = Records(keys);
  SortKeyValuesDecreasing(records);
  EXPECT_EQ(Values(records), (std::vector<int>{21, 20, 19, 18, 17, 16, 15, 14, 13, 12, 11,
                                               0,  9,  8,  7,  6,  5,  4,  3,  2,  1,  10}));
}

// Two descents are not fewer than 0.05 * 21. The pivot is a 1 and both scans stop at every record,
// so 1 to 19 are reversed; the insertion then carries the twos, 7 before 3, to the end.
TEST(SortKeyValuesIncreasing, ReversesEqualKeysBetweenTheEnds) {
  std::vector<KeyValue> records = Records(OnesAndTwos(21, {3, 7}));
  SortKeyValuesIncreasing(records);
  EXPECT_EQ(Values(records), (std::vector<int>{0, 19, 18, 17, 16, 15, 14, 13, 12, 11, 10,
                                               9, 8,  6,  5,  4,  2,  1,  20, 7,  3}));
}

TEST(SortKeyValuesIncreasing, SortsOneDescentAmongTwentyOneByInsertion) {
  std::vector<KeyValue> records = Records(OnesAndTwos(21, {3}));
  SortKeyValuesIncreasing(records);
  EXPECT_EQ(Values(records), (std::vector<int>{0,  1,  2,  4,  5,  6,  7,  8,  9,  10, 11,
                                               12, 13, 14, 15, 16, 17, 18, 19, 20, 3}));
}

// Every two is followed by a one. Insertion keeps equal keys in their order, the quicksort does
// not: its first split exchanges the ones at 1 and 98.
TEST(SortKeyValuesIncreasing, SortsFourDescentsAmongAHundredByInsertion) {
  std::vector<KeyValue> records = Records(OnesAndTwos(100, {10, 20, 30, 40}));
  const std::vector<KeyValue> stable = StableIncreasing(records);
  SortKeyValuesIncreasing(records);
  EXPECT_EQ(Values(records), Values(stable));
}

TEST(SortKeyValuesIncreasing, SortsFiveDescentsAmongAHundredByQuicksort) {
  std::vector<KeyValue> records = Records(OnesAndTwos(100, {10, 20, 30, 40, 60}));
  const std::vector<KeyValue> stable = StableIncreasing(records);
  SortKeyValuesIncreasing(records);
  EXPECT_TRUE(Increases(records));
  EXPECT_NE(Values(records), Values(stable));
}

TEST(SortKeyValues, IsTheSameOnEveryCall) {
  std::mt19937 random(4);
  const std::vector<KeyValue> before = Records(RandomKeys(random, 500, 5));
  for (const Sort sort : {&SortKeyValuesIncreasing, &SortKeyValuesDecreasing}) {
    std::vector<KeyValue> first = before;
    std::vector<KeyValue> second = before;
    sort(first);
    sort(second);
    EXPECT_EQ(Values(first), Values(second));
  }
}

// The increasing quicksort, step by step as it is described, however long it takes.
void PlainQuicksort(std::vector<KeyValue>& x, std::ptrdiff_t low, std::ptrdiff_t high) {
  if (high - low + 1 <= 20) return;
  const auto at = [&x](std::ptrdiff_t p) -> KeyValue& { return x[static_cast<std::size_t>(p)]; };
  const std::ptrdiff_t middle = low + (high - low) / 2;
  if (at(middle).key < at(low).key) std::swap(at(middle), at(low));
  if (at(high).key < at(middle).key) std::swap(at(high), at(middle));
  if (at(middle).key < at(low).key) std::swap(at(middle), at(low));
  const float pivot = at(middle).key;
  std::ptrdiff_t i = low + 1;
  std::ptrdiff_t j = high - 1;
  while (i <= j) {
    while (at(i).key < pivot) ++i;
    while (pivot < at(j).key) --j;
    if (i < j) std::swap(at(i), at(j));
    if (i <= j) ++i, --j;
  }
  PlainQuicksort(x, low, j);
  PlainQuicksort(x, i, high);
}

std::vector<KeyValue> PlainlySorted(std::vector<KeyValue> records) {
  PlainQuicksort(records, 0, static_cast<std::ptrdiff_t>(records.size()) - 1);
  return StableIncreasing(records);
}

// Keys under which `splits` splits of the increasing quicksort take two records off each: the first
// and the middle one, always the smallest of those left. What is left then has the keys `rest`.
std::vector<float> KeysThatSplitBadly(std::vector<float> rest, std::size_t splits) {
  const std::size_t n = rest.size() + 2 * splits;
  std::vector<std::size_t> record_at(n);
  std::iota(record_at.begin(), record_at.end(), 0);
  std::vector<float> keys(n);
  float smallest = -2 * static_cast<float>(n);
  for (std::size_t low = 0; low < 2 * splits; low += 2) {
    const std::size_t middle = low + (n - 1 - low) / 2;
    keys[record_at[low]] = smallest++;
    keys[record_at[middle]] = smallest++;
    std::swap(record_at[low + 1], record_at[middle]);
  }
  for (std::size_t i = 0; i < rest.size(); ++i) keys[record_at[2 * splits + i]] = rest[i];
  return keys;
}

std::vector<float> Opposite(std::vector<float> keys) {
  for (float& key : keys) key = -key;
  return keys;
}

// So many that a cost that grew with their square would be half an hour.
constexpr std::size_t kVeryMany = 2000000;

void ExpectSorts(Sort sort, const std::vector<float>& keys, bool increasing) {
  std::vector<KeyValue> records = Records(keys);
  sort(records);
  EXPECT_TRUE(std::is_sorted(records.begin(), records.end(),
                             [increasing](const KeyValue& a, const KeyValue& b) {
                               return increasing ? a.key < b.key : b.key < a.key;
                             }));
}

TEST(SortKeyValues, CopesWithVeryManyKeysThatSplitBadly) {
  const std::vector<float> keys = KeysThatSplitBadly({}, kVeryMany / 2);
  ExpectSorts(&SortKeyValuesIncreasing, keys, true);
  ExpectSorts(&SortKeyValuesDecreasing, Opposite(keys), false);
}

// The second half belongs before the first: one descent, and every insertion goes far.
TEST(SortKeyValuesIncreasing, CopesWithVeryManyInsertionsThatGoFar) {
  std::vector<float> keys(kVeryMany);
  for (std::size_t i = 0; i < keys.size(); ++i) {
    keys[i] = static_cast<float>((i + kVeryMany / 2) % kVeryMany);
  }
  ExpectSorts(&SortKeyValuesIncreasing, keys, true);
}

// Equal keys tell the orders apart. They are met when the scans leap already.
TEST(SortKeyValues, LeavesEqualKeysWhereThePlainQuicksortDoes) {
  std::mt19937 random(6);
  for (const unsigned distinct : {1U, 2U, 5U, 50U, 1000U}) {
    for (const std::size_t n : {200U, 1000U, 3017U}) {
      const std::vector<float> keys = KeysThatSplitBadly(RandomKeys(random, n, distinct), n / 3);
      std::vector<KeyValue> increasing = Records(keys);
      std::vector<KeyValue> decreasing = Records(Opposite(keys));
      const std::vector<int> expected = Values(PlainlySorted(increasing));
      SortKeyValuesIncreasing(increasing);
      SortKeyValuesDecreasing(decreasing);
      EXPECT_EQ(Values(increasing), expected) << distinct << " " << n;
      EXPECT_EQ(Values(decreasing), expected) << distinct << " " << n;
    }
  }
}

TEST(SortKeyValues, DoesWithoutMemoryForLeaps) {
  std::mt19937 random(7);
  const std::vector<float> keys = KeysThatSplitBadly(RandomKeys(random, 500, 9), 400);
  std::vector<KeyValue> records = Records(keys);
  const std::vector<int> expected = Values(PlainlySorted(records));
  const testing_support::FailingAllocations failing(0);
  SortKeyValuesIncreasing(records);
  EXPECT_EQ(Values(records), expected);
}

// Equal keys keep their order, and nothing passes a key that is not a number.
TEST(SortKeyValuesIncreasing, MergesWhatInsertionWouldPutInPlace) {
  std::vector<float> keys;
  for (int i = 0; i < 3000; ++i) keys.push_back(static_cast<float>((i + 1500) % 3000 / 3));
  keys[1000] = keys[2200] = NAN;
  std::vector<KeyValue> expected = Records(keys);
  const auto by_key = [](const KeyValue& a, const KeyValue& b) { return a.key < b.key; };
  std::stable_sort(expected.begin(), expected.begin() + 1000, by_key);
  std::stable_sort(expected.begin() + 1001, expected.begin() + 2200, by_key);
  std::stable_sort(expected.begin() + 2201, expected.end(), by_key);
  std::vector<KeyValue> records = Records(keys);
  SortKeyValuesIncreasing(records);
  EXPECT_EQ(Values(records), Values(expected));
}

}  // namespace
