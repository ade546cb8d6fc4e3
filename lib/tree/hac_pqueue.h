// SPDX-License-Identifier: MIT
//
// The queue of merges: a max-heap of pairs of items, each found again in constant time.
#pragma once

#include <cstdint>

#include "lib/support/alloc.h"

namespace molva {

// Items are numbered in 16 bits, which keeps an entry at 8 bytes.
constexpr int kMostItems = 65536;

struct HACPair {
  float key;
  std::uint16_t first;  // the smaller item
  std::uint16_t second;
};
static_assert(sizeof(HACPair) == 8);

struct HACPQueue {
  std::int64_t nnodes = 0;    // pairs in the heap
  std::int64_t maxnodes = 0;  // n (n + 1) / 2, the pairs with first <= second
  Array<HACPair> heap;
  Array<int> locdata;   // the heap position of every pair, -1 when it is not queued
  Array<int*> locator;  // locator[i][j] addresses pair (i, j), i <= j, in locdata
};

// Blocks "HACPQueueInit: heap", "HACPQueueInit: locdata", "HACPQueueInit: locator".
void HACPQueueInit(HACPQueue& queue, int n);
void HACPQueueReset(HACPQueue& queue);
void HACPQueueFree(HACPQueue& queue);
std::int64_t HACPQueueLength(const HACPQueue& queue);

// The two items of a pair come in any order.
void HACPQueueInsert(HACPQueue& queue, int i, int j, float key);
void HACPQueueDelete(HACPQueue& queue, int i, int j);
void HACPQueueUpdate(HACPQueue& queue, int i, int j, float key);

// Removes the pair with the largest key into `top`; returns 0, or -1 when the queue is empty.
int HACPQueueGetTop(HACPQueue& queue, HACPair& top);

// A hook for consistency checks; always true.
bool HACPQueueCheck(const HACPQueue& queue);

}  // namespace molva
