// SPDX-License-Identifier: MIT
//
// A max-heap of small numbers, each with a single-precision key and found again in constant time.
#pragma once

#include "lib/support/alloc.h"
#include "lib/support/key_value.h"

namespace molva {

struct PQueue {
  int nnodes = 0;        // items in the heap
  int maxnodes = 0;      // items are 0 to maxnodes - 1
  Array<KeyValue> heap;  // maxnodes (key, item) pairs, the largest key at position 0
  Array<int> locator;    // the heap position of each item, -1 when it is not queued
};

// Blocks "PQueueInit: heap" and "PQueueInit: locator".
void PQueueInit(PQueue& queue, int maxnodes);
void PQueueReset(PQueue& queue);
void PQueueFree(PQueue& queue);

// Each returns 0. Inserting an item that is out of range or queued already, and deleting or
// updating one that is not queued, does nothing.
int PQueueInsert(PQueue& queue, int item, float key);
int PQueueDelete(PQueue& queue, int item);
int PQueueUpdate(PQueue& queue, int item, float key);

// Removes and returns the item with the largest key; -1 when empty.
int PQueueGetMax(PQueue& queue);

// The item with the largest key, and that key; the queue must not be empty.
int PQueueSeeMax(const PQueue& queue);
float PQueueSeeMaxKey(const PQueue& queue);

// A hook for consistency checks; always 1.
int PQueueCheck(const PQueue& queue);

}  // namespace molva
