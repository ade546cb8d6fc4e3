// SPDX-License-Identifier: MIT
#include "lib/tree/hac_pqueue.h"

#include <utility>

#include "lib/support/heap.h"

namespace molva {
namespace {

HACPair PairOf(int i, int j, float key) {
  if (i > j) std::swap(i, j);
  return {key, static_cast<std::uint16_t>(i), static_cast<std::uint16_t>(j)};
}

int& LocationOf(HACPQueue& queue, const HACPair& pair) {
  return queue.locator[pair.first][pair.second];
}

// The right child only when it is strictly larger than the left; the one chosen moves up only when
// the sifted key is smaller.
int LargerChild(const HACPair& left, const HACPair* right, float key) {
  const int chosen = right != nullptr && right->key > left.key ? 1 : 0;
  return key < (chosen == 1 ? right->key : left.key) ? chosen : -1;
}

Span<HACPair> Entries(HACPQueue& queue) { return {queue.heap.data(), queue.nnodes}; }

auto Tracker(HACPQueue& queue) {
  return [&queue](std::int64_t position) {
    LocationOf(queue, queue.heap[position]) = static_cast<int>(position);
  };
}

void Up(HACPQueue& queue, std::int64_t position, const HACPair& entry) {
  SiftUp(Entries(queue), position, entry, Tracker(queue));
}

void Down(HACPQueue& queue, std::int64_t position, const HACPair& entry) {
  SiftDown(Entries(queue), position, entry, LargerChild, Tracker(queue));
}

// Puts an entry in the place of one with another key; only a larger key can have to move up.
void Replace(HACPQueue& queue, std::int64_t position, const HACPair& entry, float replaced_key) {
  if (entry.key > replaced_key) {
    Up(queue, position, entry);
  } else {
    Down(queue, position, entry);
  }
}

}  // namespace

void HACPQueueInit(HACPQueue& queue, int n) {
  queue.nnodes = 0;
  queue.maxnodes = static_cast<std::int64_t>(n) * (std::int64_t{n} + 1) / 2;
  queue.heap = Array<HACPair>(queue.maxnodes, "HACPQueueInit: heap");
  queue.locdata = AllocIntsSet(queue.maxnodes, -1, "HACPQueueInit: locdata");
  queue.locator = Array<int*>(n, "HACPQueueInit: locator");
  int* row = queue.locdata.data();
  for (int i = 0; i < n; ++i) {
    queue.locator[i] = row - i;
    row += n - i;
  }
}

void HACPQueueReset(HACPQueue& queue) {
  queue.nnodes = 0;
  queue.locdata.Fill(-1);
}

void HACPQueueFree(HACPQueue& queue) {
  FreeAll(queue.heap, queue.locdata, queue.locator);
  queue.nnodes = 0;
  queue.maxnodes = 0;
}

std::int64_t HACPQueueLength(const HACPQueue& queue) { return queue.nnodes; }

void HACPQueueInsert(HACPQueue& queue, int i, int j, float key) {
  ++queue.nnodes;
  Up(queue, queue.nnodes - 1, PairOf(i, j, key));
}

void HACPQueueDelete(HACPQueue& queue, int i, int j) {
  int& location = LocationOf(queue, PairOf(i, j, 0));
  const std::int64_t position = std::exchange(location, -1);
  if (position < 0) return;
  --queue.nnodes;
  if (position == queue.nnodes) return;
  const float deleted_key = queue.heap[position].key;
  Replace(queue, position, queue.heap[queue.nnodes], deleted_key);
}

void HACPQueueUpdate(HACPQueue& queue, int i, int j, float key) {
  const HACPair entry = PairOf(i, j, key);
  const std::int64_t position = LocationOf(queue, entry);
  if (position >= 0) Replace(queue, position, entry, queue.heap[position].key);
}

int HACPQueueGetTop(HACPQueue& queue, HACPair& top) {
  if (queue.nnodes == 0) return -1;
  top = queue.heap[0];
  LocationOf(queue, top) = -1;
  --queue.nnodes;
  if (queue.nnodes > 0) Down(queue, 0, queue.heap[queue.nnodes]);
  return 0;
}

bool HACPQueueCheck(const HACPQueue& /*queue*/) { return true; }

}  // namespace molva
