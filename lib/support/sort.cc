// SPDX-License-Identifier: MIT
//
// A median-of-three quicksort that leaves short ranges alone, finished by one insertion pass.
// Which equal keys change places is fixed by the scans below, so they are not to be rearranged.
//
// Some orders of keys make either take time for the square of n. When that shows, the same steps
// are gone on with by other means: the scans leap over blocks in which they would not stop, and
// what is left to insert is merged. The records end in the same places, after n log n log n steps
// at most.
#include "lib/support/sort.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <functional>
#include <utility>

#include "lib/support/key_blocks.h"

namespace molva {
namespace {

using Position = std::ptrdiff_t;

// Ranges of this many records or fewer wait for the insertion pass.
constexpr Position kShortRange = 20;

// What orders without design take is a third of this or less, so for them all stays as simple.
constexpr double kPatience = 4;

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

double PatienceFor(Span<const KeyValue> x) {
  const auto n = static_cast<double>(x.size());
  return kPatience * n * std::log2(n + 2);
}

// The records as the splits see them: scans go from one to the next.
template <typename Before>
class PlainRecords {
 public:
  PlainRecords(Span<KeyValue> x, Before before) : x_(x), before_(before) {}

  float Key(Position p) const { return At(p).key; }
  void Swap(Position p, Position q) { std::swap(At(p), At(q)); }

  // The next place whose key does not come before the pivot, `last` if there is none before it.
  Position NextStop(Position i, Position last, float pivot) const {
    while (i < last && before_(Key(i), pivot)) ++i;
    return i;
  }
  // The same downwards: a key that does not come behind the pivot.
  Position PreviousStop(Position j, Position first, float pivot) const {
    while (j > first && before_(pivot, Key(j))) --j;
    return j;
  }

 private:
  KeyValue& At(Position p) const { return x_[p]; }

  Span<KeyValue> x_;
  Before before_;
};

// Puts the first, middle and last record in order and returns the middle key.
template <typename Records, typename Before>
float MedianOfThree(Records& x, Range range, Before before) {
  const Position middle = range.low + (range.high - range.low) / 2;
  if (before(x.Key(middle), x.Key(range.low))) x.Swap(middle, range.low);
  if (before(x.Key(range.high), x.Key(middle))) {
    x.Swap(range.high, middle);
    if (before(x.Key(middle), x.Key(range.low))) x.Swap(middle, range.low);
  }
  return x.Key(middle);
}

// Splits a range around its pivot and returns the two halves. The scans are bounded, so that no
// order of keys, not-a-number ones included, can carry them out of the range. Every exchange gives
// both halves a record, so there are no more than the shorter half has.
template <typename Records, typename Before>
std::pair<Range, Range> Partition(Records& x, Range range, Before before) {
  const float pivot = MedianOfThree(x, range, before);
  Position i = range.low + 1;
  Position j = range.high - 1;
  while (i <= j) {
    i = x.NextStop(i, range.high, pivot);
    j = x.PreviousStop(j, range.low, pivot);
    if (i < j) x.Swap(i, j);
    if (i <= j) {
      ++i;
      --j;
    }
  }
  return {{range.low, j}, {i, range.high}};
}

// Splits ranges until all are short, or until the splits have met `patience` records.
template <typename Records, typename Before>
void SplitRanges(PendingRanges& pending, Records& x, Before before, double patience) {
  while (!pending.Empty() && patience > 0) {
    const Range range = pending.Pop();
    patience -= static_cast<double>(range.high - range.low);
    auto [shorter, longer] = Partition(x, range, before);
    if (longer.high - longer.low < shorter.high - shorter.low) std::swap(shorter, longer);
    if (IsLong(longer)) pending.Push(longer);
    if (IsLong(shorter)) pending.Push(shorter);
  }
}

// What insertion does: no record passes a key that is not a number, nor does such a one move, and
// between them equal keys keep their order.
template <typename Before>
void MergeBetweenNaNs(Span<KeyValue> x, Before before) {
  const auto is_nan = [](const KeyValue& record) { return std::isnan(record.key); };
  const auto by_key = [before](const KeyValue& a, const KeyValue& b) {
    return before(a.key, b.key);
  };
  for (auto first = x.begin(); first != x.end();) {
    const auto last = std::find_if(first, x.end(), is_nan);
    std::stable_sort(first, last, by_key);
    first = std::find_if_not(last, x.end(), is_nan);
  }
}

template <typename Before>
void Insertion(Span<KeyValue> x, Before before) {
  const double most = PatienceFor(x);
  double moves = 0;
  for (std::size_t i = 1; i < x.size(); ++i) {
    if (moves > most) return MergeBetweenNaNs(x, before);
    const KeyValue record = x[i];
    std::size_t hole = i;
    for (; hole > 0 && before(record.key, x[hole - 1].key); --hole) x[hole] = x[hole - 1];
    x[hole] = record;
    moves += static_cast<double>(i - hole);
  }
}

template <typename Before>
void Quicksort(Span<KeyValue> x, Before before) {
  PendingRanges pending;
  const Range whole{0, static_cast<Position>(x.size()) - 1};
  if (IsLong(whole)) pending.Push(whole);
  PlainRecords plain(x, before);
  SplitRanges(pending, plain, before, PatienceFor(x));
  if (!pending.Empty()) {
    KeyBlocks blocks(x, before);
    // Without memory for the blocks the splits take as long as they take.
    if (blocks) SplitRanges(pending, blocks, before, HUGE_VAL);
    SplitRanges(pending, plain, before, HUGE_VAL);
  }
  Insertion(x, before);
}

std::size_t CountDescents(Span<const KeyValue> x) {
  std::size_t descents = 0;
  for (std::size_t i = 1; i < x.size(); ++i) descents += x[i].key < x[i - 1].key ? 1 : 0;
  return descents;
}

}  // namespace

void SortKeyValuesIncreasing(Span<KeyValue> pairs) {
  const double few = 0.05 * static_cast<double>(pairs.size());
  if (static_cast<double>(CountDescents(pairs)) < few) {
    Insertion(pairs, std::less<float>());
  } else {
    Quicksort(pairs, std::less<float>());
  }
}

void SortKeyValuesDecreasing(Span<KeyValue> pairs) { Quicksort(pairs, std::greater<float>()); }

}  // namespace molva
