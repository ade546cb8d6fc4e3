// SPDX-License-Identifier: MIT
#include "lib/support/pqueue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <vector>

namespace molva {
namespace {

PQueue QueueOf(const std::vector<float>& keys) {
  PQueue queue;
  PQueueInit(queue, static_cast<int>(keys.size()));
  for (std::size_t item = 0; item < keys.size(); ++item) {
    PQueueInsert(queue, static_cast<int>(item), keys[item]);
  }
  return queue;
}

std::vector<int> Drained(PQueue& queue) {
  std::vector<int> items;
  for (int item = PQueueGetMax(queue); item >= 0; item = PQueueGetMax(queue)) items.push_back(item);
  return items;
}

TEST(PriorityQueue, HandsOutTheLargestKeyFirstAndThenNothing) {
  PQueue queue = QueueOf({1, 3, 2});
  EXPECT_EQ(PQueueGetMax(queue), 1);
  EXPECT_EQ(PQueueGetMax(queue), 2);
  EXPECT_EQ(PQueueGetMax(queue), 0);
  EXPECT_EQ(PQueueGetMax(queue), -1);
}

TEST(PriorityQueue, ShowsTheLargestKeyWithoutTakingIt) {
  const PQueue queue = QueueOf({1, 3, 2});
  EXPECT_EQ(PQueueSeeMax(queue), 1);
  EXPECT_EQ(PQueueSeeMaxKey(queue), 3);
  EXPECT_EQ(queue.nnodes, 3);
  EXPECT_EQ(PQueueCheck(queue), 1);
}

TEST(PriorityQueue, NeverSwapsEqualKeys) {
  // Each stays where it was placed; the last then fills the root and stops there, equal to both
  // children.
  PQueue queue = QueueOf({5, 5, 5, 5});
  EXPECT_EQ(Drained(queue), (std::vector<int>{0, 3, 2, 1}));
}

TEST(PriorityQueue, OnlyShrinksWhenTheLastItemIsDeleted) {
  PQueue queue = QueueOf({3, 2, 1});
  PQueueDelete(queue, 2);
  EXPECT_EQ(queue.heap[0].value, 0);
  EXPECT_EQ(queue.heap[1].value, 1);
  EXPECT_EQ(queue.locator[2], -1);
  EXPECT_EQ(queue.nnodes, 2);
}

TEST(PriorityQueue, LeavesAnItemInPlaceWhenItsKeyStaysTheSame) {
  PQueue queue = QueueOf({4, 4, 4});
  PQueueUpdate(queue, 1, 4);
  EXPECT_EQ(queue.locator[1], 1);
  PQueueUpdate(queue, 1, 5);
  EXPECT_EQ(queue.locator[1], 0);
}

TEST(PriorityQueue, TakesTheRightChildWhenTheLeftKeyIsNotANumber) {
  PQueue queue = QueueOf({9, std::nanf(""), 5, 1});
  ASSERT_EQ(PQueueGetMax(queue), 0);
  EXPECT_EQ(PQueueGetMax(queue), 2);
}

TEST(PriorityQueue, IgnoresItemsThatAreNotThereOrThereAlready) {
  PQueue queue = QueueOf({1, 2});
  PQueueInsert(queue, 1, 7);
  PQueueInsert(queue, 2, 7);
  PQueueInsert(queue, -1, 7);
  EXPECT_EQ(queue.nnodes, 2);
  EXPECT_EQ(PQueueSeeMaxKey(queue), 2);
  PQueueDelete(queue, 0);
  PQueueDelete(queue, 0);
  PQueueUpdate(queue, 0, 9);
  EXPECT_EQ(Drained(queue), (std::vector<int>{1}));
}

TEST(PriorityQueue, StartsAfreshAfterAReset) {
  PQueue queue = QueueOf({1, 2});
  PQueueReset(queue);
  EXPECT_EQ(PQueueGetMax(queue), -1);
  PQueueInsert(queue, 0, 1);
  EXPECT_EQ(Drained(queue), (std::vector<int>{0}));
  PQueueFree(queue);
  EXPECT_EQ(queue.maxnodes, 0);
}

// A random sequence of operations beside a plain table of keys.
TEST(PriorityQueue, AgreesWithATableOfKeys) {
  std::mt19937 random(7);
  PQueue queue;
  PQueueInit(queue, 40);
  std::map<int, float> table;
  for (int step = 0; step < 20000; ++step) {
    const int item = static_cast<int>(random() % 40);
    const auto key = static_cast<float>(random() % 12);
    switch (random() % 4) {
      case 0:
        PQueueInsert(queue, item, key);
        table.try_emplace(item, key);
        break;
      case 1:
        PQueueDelete(queue, item);
        table.erase(item);
        break;
      case 2:
        PQueueUpdate(queue, item, key);
        if (table.contains(item)) table[item] = key;
        break;
      default:
        if (table.empty()) break;
        const float largest = PQueueSeeMaxKey(queue);
        const int top = PQueueGetMax(queue);
        EXPECT_EQ(table.at(top), largest);
        for (const auto& [other, other_key] : table) EXPECT_LE(other_key, largest);
        table.erase(top);
    }
    ASSERT_EQ(queue.nnodes, static_cast<int>(table.size()));
    for (int position = 0; position < queue.nnodes; ++position) {
      ASSERT_EQ(queue.locator[queue.heap[position].value], position);
      ASSERT_LE(queue.heap[position].key, queue.heap[(position - 1) / 2 * (position > 0)].key);
    }
  }
}

}  // namespace
}  // namespace molva
