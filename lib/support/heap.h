// SPDX-License-Identifier: MIT
//
// The sift loops of a binary max-heap, under both queues. Children of position i stand at 2i + 1
// and 2i + 2. An entry moves only past a strictly smaller key, so equal keys never change places.
//
// Entries are records with a float member `key`. `placed(position)` is called whenever an entry
// was written to a position, so that the queue can keep track of it.
#pragma once

#include <cstdint>

#include "lib/support/span.h"

namespace molva {

template <typename Entry, typename Placed>
void SiftUp(Span<Entry> heap, std::int64_t position, const Entry& entry, Placed placed) {
  while (position > 0) {
    const std::int64_t parent = (position - 1) / 2;
    if (!(entry.key > heap[parent].key)) break;
    heap[position] = heap[parent];
    placed(position);
    position = parent;
  }
  heap[position] = entry;
  placed(position);
}

// `choose(left, right, key)` tells which child moves up, 0 the left, 1 the right, -1 none; `right`
// is null when there is no right child. The queues differ here, though only for keys that are not
// numbers.
template <typename Entry, typename Choose, typename Placed>
void SiftDown(Span<Entry> heap, std::int64_t position, const Entry& entry, Choose choose,
              Placed placed) {
  const auto size = static_cast<std::int64_t>(heap.size());
  for (std::int64_t left = 2 * position + 1; left < size; left = 2 * position + 1) {
    const Entry* right = left + 1 < size ? &heap[left + 1] : nullptr;
    const int child = choose(heap[left], right, entry.key);
    if (child < 0) break;
    heap[position] = heap[left + child];
    placed(position);
    position = left + child;
  }
  heap[position] = entry;
  placed(position);
}

}  // namespace molva
