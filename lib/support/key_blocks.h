// SPDX-License-Identifier: MIT
//
// Records in blocks, with the first and the last key of each block and of pairs of blocks, of pairs
// of those and so on: a scan for a key on the other side of a pivot leaps over blocks without one.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

#include "lib/support/alloc.h"
#include "lib/support/key_value.h"
#include "lib/support/span.h"

namespace molva {

// `Before` orders the keys. One that is not a number stops every scan, so it stands for its block.
template <typename Before>
class KeyBlocks {
 public:
  using Position = std::ptrdiff_t;

  KeyBlocks(Span<KeyValue> x, Before before)
      : x_(x), before_(before), leaves_(LeavesFor(x.size())) {
    nodes_ = Array<Node>::OrNone(static_cast<std::int64_t>(2 * leaves_));
    if (!nodes_) return;
    nodes_.Fill(kStop);
    for (std::size_t p = 0; p < x.size(); p += kBlock) nodes_[LeafOf(p)] = Look(p);
    for (std::size_t node = leaves_ - 1; node > 0; --node) Join(node);
  }

  // False when the memory could not be had; then there is nothing to ask.
  explicit operator bool() const { return static_cast<bool>(nodes_); }

  float Key(Position p) const { return x_[p].key; }

  void Swap(Position p, Position q) {
    std::swap(x_[p], x_[q]);
    Update(static_cast<std::size_t>(p));
    Update(static_cast<std::size_t>(q));
  }

  // The next place whose key does not come before the pivot, `last` if there is none before it.
  Position NextStop(Position i, Position last, float pivot) const {
    while (i < last && before_(Key(i), pivot)) {
      ++i;
      if (i % kBlock == 0) i = FirstOf(NextLeaf(LeafOf(i), pivot));
    }
    return std::min(i, last);
  }

  // The same downwards: a key that does not come behind the pivot.
  Position PreviousStop(Position j, Position first, float pivot) const {
    while (j > first && before_(pivot, Key(j))) {
      --j;
      if (j % kBlock == kBlock - 1) j = FirstOf(PreviousLeaf(LeafOf(j), pivot)) + kBlock - 1;
    }
    return std::max(j, first);
  }

 private:
  static constexpr Position kBlock = 16;

  // The key that comes first in a block and the one that comes last.
  struct Node {
    float first, last;
  };
  static constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
  static constexpr Node kStop = {kNaN, kNaN};

  // One leaf for each block, and one at each end that stops every scan.
  static std::size_t LeavesFor(std::size_t n) { return std::bit_ceil(n / kBlock + 3); }
  std::size_t LeafOf(std::size_t p) const { return leaves_ + 1 + p / kBlock; }
  std::size_t LeafOf(Position p) const { return LeafOf(static_cast<std::size_t>(p)); }
  Position FirstOf(std::size_t leaf) const {
    return (static_cast<Position>(leaf - leaves_) - 1) * kBlock;
  }

  float Earlier(float a, float b) const { return before_(b, a) || std::isnan(b) ? b : a; }
  float Later(float a, float b) const { return before_(a, b) || std::isnan(b) ? b : a; }

  Node Look(std::size_t begin) const {
    const std::size_t end = std::min<std::size_t>(begin + kBlock, x_.size());
    Node node = {x_[begin].key, x_[begin].key};
    for (std::size_t p = begin + 1; p < end; ++p) {
      node = {Earlier(node.first, x_[p].key), Later(node.last, x_[p].key)};
    }
    return node;
  }

  void Join(std::size_t node) {
    const Node& left = nodes_[2 * node];
    const Node& right = nodes_[2 * node + 1];
    nodes_[node] = {Earlier(left.first, right.first), Later(left.last, right.last)};
  }

  void Update(std::size_t p) {
    std::size_t node = LeafOf(p);
    nodes_[node] = Look(p - p % kBlock);
    while ((node /= 2) > 0) Join(node);
  }

  // The leaf from this one on that holds a stop: up and to the right as long as there is none, then
  // down to the first.
  std::size_t NextLeaf(std::size_t node, float pivot) const {
    const auto stops = [this, pivot](std::size_t at) { return !before_(nodes_[at].last, pivot); };
    while (!stops(node)) {
      while (node % 2 == 1) node /= 2;
      ++node;
    }
    while (node < leaves_) node = 2 * node + (stops(2 * node) ? 0 : 1);
    return node;
  }

  std::size_t PreviousLeaf(std::size_t node, float pivot) const {
    const auto stops = [this, pivot](std::size_t at) { return !before_(pivot, nodes_[at].first); };
    while (!stops(node)) {
      while (node % 2 == 0) node /= 2;
      --node;
    }
    while (node < leaves_) node = 2 * node + (stops(2 * node + 1) ? 1 : 0);
    return node;
  }

  Span<KeyValue> x_;
  Before before_;
  std::size_t leaves_;  // a power of two: node v stands over 2v and 2v + 1, leaves from here on
  Array<Node> nodes_;
};

}  // namespace molva
