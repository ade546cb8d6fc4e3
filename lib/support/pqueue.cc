// SPDX-License-Identifier: MIT
#include "lib/support/pqueue.h"

#include <cassert>

#include "lib/support/heap.h"

namespace molva {
namespace {

// The larger child, the left one on ties, if it is larger than the key. A left key that is not a
// number does not hide the right child.
int LargerChild(const KeyValue& left, const KeyValue* right, float key) {
  if (left.key > key) return right != nullptr && right->key > left.key ? 1 : 0;
  return right != nullptr && right->key > key ? 1 : -1;
}

Span<KeyValue> Entries(PQueue& queue) { return {queue.heap.data(), queue.nnodes}; }

auto Tracker(PQueue& queue) {
  return [&queue](std::int64_t position) {
    queue.locator[queue.heap[position].value] = static_cast<int>(position);
  };
}

void Up(PQueue& queue, int position, KeyValue entry) {
  SiftUp(Entries(queue), position, entry, Tracker(queue));
}

void Down(PQueue& queue, int position, KeyValue entry) {
  SiftDown(Entries(queue), position, entry, LargerChild, Tracker(queue));
}

// Puts an entry in the place of one with another key.
void Replace(PQueue& queue, int position, KeyValue entry, float replaced_key) {
  if (entry.key <= replaced_key) {
    Down(queue, position, entry);
  } else {
    Up(queue, position, entry);
  }
}

bool InRange(const PQueue& queue, int item) { return item >= 0 && item < queue.maxnodes; }
bool IsQueued(const PQueue& queue, int item) {
  return InRange(queue, item) && queue.locator[item] >= 0;
}

}  // namespace

void PQueueInit(PQueue& queue, int maxnodes) {
  queue.nnodes = 0;
  queue.maxnodes = maxnodes;
  queue.heap = AllocKeyValues(maxnodes, "PQueueInit: heap");
  queue.locator = AllocIntsSet(maxnodes, -1, "PQueueInit: locator");
}

void PQueueReset(PQueue& queue) {
  queue.nnodes = 0;
  queue.locator.Fill(-1);
}

void PQueueFree(PQueue& queue) {
  FreeAll(queue.heap, queue.locator);
  queue.nnodes = 0;
  queue.maxnodes = 0;
}

int PQueueInsert(PQueue& queue, int item, float key) {
  if (!InRange(queue, item) || IsQueued(queue, item)) return 0;
  ++queue.nnodes;
  Up(queue, queue.nnodes - 1, {key, item});
  return 0;
}

int PQueueDelete(PQueue& queue, int item) {
  if (!IsQueued(queue, item)) return 0;
  const int position = queue.locator[item];
  const float deleted_key = queue.heap[position].key;
  queue.locator[item] = -1;
  --queue.nnodes;
  if (position != queue.nnodes) Replace(queue, position, queue.heap[queue.nnodes], deleted_key);
  return 0;
}

int PQueueUpdate(PQueue& queue, int item, float key) {
  if (!IsQueued(queue, item)) return 0;
  const int position = queue.locator[item];
  Replace(queue, position, {key, item}, queue.heap[position].key);
  return 0;
}

int PQueueGetMax(PQueue& queue) {
  if (queue.nnodes == 0) return -1;
  const int item = queue.heap[0].value;
  queue.locator[item] = -1;
  --queue.nnodes;
  if (queue.nnodes > 0) Down(queue, 0, queue.heap[queue.nnodes]);
  return item;
}

int PQueueSeeMax(const PQueue& queue) {
  assert(queue.nnodes > 0);
  return queue.heap[0].value;
}

float PQueueSeeMaxKey(const PQueue& queue) {
  assert(queue.nnodes > 0);
  return queue.heap[0].key;
}

int PQueueCheck(const PQueue& /*queue*/) { return 1; }

}  // namespace molva
