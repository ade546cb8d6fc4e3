// SPDX-License-Identifier: MIT
//
// A median-of-three quicksort that leaves short ranges alone, finished by one insertion pass.
// Which equal keys change places is fixed by the scans below, so they are not to be rearranged.
#include "lib/support/sort.h"

#include <array>
#include <cstddef>
#include <utility>

namespace molva {
namespace {

using Position = std::ptrdiff_t;

// Ranges of this many records or fewer wait for the insertion pass.
constexpr Position kShortRange = 20;

struct Range {
  Position low, high;  // both inclusive
};

// The longer half waits and the shorter is split next, so 64 ranges hold any array.
class PendingRanges {
 public:
  void Push(Range range) { ranges_[count_++] = range; }
  Range Pop() { return ranges_[--count_]; }
  bool Empty() const { return count_ == 0; }

 private:
  std::array<Range, 64> ranges_;
  std::size_t count_ = 0;
};

bool IsLong(Range range) { return range.high - range.low + 1 > kShortRange; }

// Puts the first, middle and last record in order and returns the middle one, by value.
template <typename Before>
KeyValue MedianOfThree(Span<KeyValue> x, Range range, Before before) {
  KeyValue& low = x[range.low];
  KeyValue& middle = x[range.low + (range.high - range.low) / 2];
  KeyValue& high = x[range.high];
  if (before(middle, low)) std::swap(middle, low);
  if (before(high, middle)) {
    std::swap(high, middle);
    if (before(middle, low)) std::swap(middle, low);
  }
  return middle;
}

// Splits a range around its pivot and returns the two halves. The scans are bounded, so that no
// order of keys, not-a-number ones included, can carry them out of the range.
template <typename Before>
std::pair<Range, Range> Partition(Span<KeyValue> x, Range range, Before before) {
  const KeyValue pivot = MedianOfThree(x, range, before);
  const auto at = [x](Position p) -> KeyValue& { return x[p]; };
  Position i = range.low + 1;
  Position j = range.high - 1;
  while (i <= j) {
    while (i < range.high && before(at(i), pivot)) ++i;
    while (j > range.low && before(pivot, at(j))) --j;
    if (i < j) std::swap(at(i), at(j));
    if (i <= j) {
      ++i;
      --j;
    }
  }
  return {{range.low, j}, {i, range.high}};
}

template <typename Before>
void Insertion(Span<KeyValue> x, Before before) {
  for (std::size_t i = 1; i < x.size(); ++i) {
    const KeyValue record = x[i];
    std::size_t hole = i;
    for (; hole > 0 && before(record, x[hole - 1]); --hole) x[hole] = x[hole - 1];
    x[hole] = record;
  }
}

template <typename Before>
void Quicksort(Span<KeyValue> x, Before before) {
  PendingRanges pending;
  const Range whole{0, static_cast<Position>(x.size()) - 1};
  if (IsLong(whole)) pending.Push(whole);
  while (!pending.Empty()) {
    auto [shorter, longer] = Partition(x, pending.Pop(), before);
    if (longer.high - longer.low < shorter.high - shorter.low) std::swap(shorter, longer);
    if (IsLong(longer)) pending.Push(longer);
    if (IsLong(shorter)) pending.Push(shorter);
  }
  Insertion(x, before);
}

bool KeyIsLess(const KeyValue& a, const KeyValue& b) { return a.key < b.key; }
bool KeyIsGreater(const KeyValue& a, const KeyValue& b) { return a.key > b.key; }

std::size_t CountDescents(Span<const KeyValue> x) {
  std::size_t descents = 0;
  for (std::size_t i = 1; i < x.size(); ++i) descents += KeyIsLess(x[i], x[i - 1]) ? 1 : 0;
  return descents;
}

}  // namespace

void SortKeyValuesIncreasing(Span<KeyValue> pairs) {
  const double few = 0.05 * static_cast<double>(pairs.size());
  if (static_cast<double>(CountDescents(pairs)) < few) {
    Insertion(pairs, KeyIsLess);
  } else {
    Quicksort(pairs, KeyIsLess);
  }
}

void SortKeyValuesDecreasing(Span<KeyValue> pairs) { Quicksort(pairs, KeyIsGreater); }

}  // namespace molva
