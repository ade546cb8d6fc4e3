// SPDX-License-Identifier: MIT
#include "lib/tree/hac_pqueue.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <utility>

#include "tests/testing/fatal.h"

namespace molva {
namespace {

std::string Taken(HACPQueue& queue) {
  HACPair top{};
  if (HACPQueueGetTop(queue, top) == -1) return "none";
  return std::to_string(top.first) + "-" + std::to_string(top.second);
}

TEST(MergeQueue, HandsOutTheLargestGainFirst) {
  HACPQueue queue;
  HACPQueueInit(queue, 3);
  EXPECT_EQ(queue.maxnodes, 6);
  HACPQueueInsert(queue, 0, 1, 1);
  HACPQueueInsert(queue, 2, 0, 3);
  HACPQueueInsert(queue, 1, 2, 2);
  EXPECT_EQ(HACPQueueLength(queue), 3);
  EXPECT_EQ(Taken(queue), "0-2");
  EXPECT_EQ(Taken(queue), "1-2");
  EXPECT_EQ(Taken(queue), "0-1");
  EXPECT_EQ(Taken(queue), "none");
  EXPECT_TRUE(HACPQueueCheck(queue));
}

TEST(MergeQueue, ANewPairStopsBelowAnEqualOne) {
  HACPQueue queue;
  HACPQueueInit(queue, 3);
  HACPQueueInsert(queue, 0, 1, 1);
  HACPQueueInsert(queue, 0, 2, 1);
  HACPQueueInsert(queue, 1, 2, 1);
  // The last pair fills the root, equal to its only child.
  EXPECT_EQ(Taken(queue), "0-1");
  EXPECT_EQ(Taken(queue), "1-2");
  EXPECT_EQ(Taken(queue), "0-2");
}

TEST(MergeQueue, DeletesAndUpdatesAPairInAnyOrderOfItsItems) {
  HACPQueue queue;
  HACPQueueInit(queue, 4);
  HACPQueueInsert(queue, 0, 1, 4);
  HACPQueueInsert(queue, 0, 2, 3);
  HACPQueueInsert(queue, 0, 3, 2);
  HACPQueueDelete(queue, 1, 0);
  HACPQueueUpdate(queue, 3, 0, 5);
  EXPECT_EQ(Taken(queue), "0-3");
  EXPECT_EQ(Taken(queue), "0-2");
}

TEST(MergeQueue, DoesNothingForAPairThatIsNotQueued) {
  HACPQueue queue;
  HACPQueueInit(queue, 3);
  HACPQueueInsert(queue, 0, 1, 1);
  HACPQueueDelete(queue, 1, 2);
  HACPQueueUpdate(queue, 1, 2, 9);
  EXPECT_EQ(Taken(queue), "0-1");
}

TEST(MergeQueue, StartsAfreshAfterAReset) {
  HACPQueue queue;
  HACPQueueInit(queue, 3);
  HACPQueueInsert(queue, 0, 1, 1);
  HACPQueueReset(queue);
  EXPECT_EQ(Taken(queue), "none");
  HACPQueueInsert(queue, 0, 1, 1);
  EXPECT_EQ(Taken(queue), "0-1");
  HACPQueueFree(queue);
  EXPECT_EQ(queue.maxnodes, 0);
}

// A random sequence of operations beside a plain table of keys.
TEST(MergeQueue, AgreesWithATableOfKeys) {
  std::mt19937 random(5);
  constexpr int kItems = 9;
  HACPQueue queue;
  HACPQueueInit(queue, kItems);
  std::map<std::pair<int, int>, float> table;
  for (int step = 0; step < 20000; ++step) {
    const int i = static_cast<int>(random() % (kItems - 1));
    const int j = i + 1 + static_cast<int>(random() % static_cast<unsigned>(kItems - 1 - i));
    const auto key = static_cast<float>(random() % 10);
    const bool queued = table.contains({i, j});
    switch (random() % 4) {
      case 0:
        if (!queued) HACPQueueInsert(queue, i, j, key);
        table.try_emplace({i, j}, key);
        break;
      case 1:
        HACPQueueDelete(queue, j, i);
        table.erase({i, j});
        break;
      case 2:
        HACPQueueUpdate(queue, i, j, key);
        if (queued) table[{i, j}] = key;
        break;
      default:
        HACPair top{};
        if (HACPQueueGetTop(queue, top) == -1) break;
        EXPECT_EQ(table.at({top.first, top.second}), top.key);
        for (const auto& [pair, other] : table) EXPECT_LE(other, top.key);
        table.erase({top.first, top.second});
    }
    ASSERT_EQ(HACPQueueLength(queue), static_cast<std::int64_t>(table.size()));
    for (int position = 0; position < queue.nnodes; ++position) {
      const HACPair& entry = queue.heap[position];
      ASSERT_EQ(queue.locator[entry.first][entry.second], position);
    }
  }
}

TEST(MergeQueue, NamesItsBlocks) {
  HACPQueue queue;
  const AllocateFunction replaced =
      SetAllocateFunction([](std::size_t) -> void* { return nullptr; });
  const std::string message = testing_support::FatalMessage([&] { HACPQueueInit(queue, 3); });
  SetAllocateFunction(replaced);
  EXPECT_EQ(message,
            "***Memory allocation failed for HACPQueueInit: heap. Requested size: 48 bytes");
}

}  // namespace
}  // namespace molva
