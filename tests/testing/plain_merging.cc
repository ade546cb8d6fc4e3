// SPDX-License-Identifier: MIT
#include "tests/testing/plain_merging.h"

#include <cmath>
#include <cstdint>
#include <utility>

#include "lib/support/wide.h"

namespace testing_support {
namespace {

using molva::Wide;

std::size_t At(int i) { return static_cast<std::size_t>(i); }

struct Pair {
  float key;
  std::uint16_t first, second;  // first < second
};

// A binary max-heap. An entry moves up past strictly smaller ones and down past strictly larger
// ones; of two children the right one counts only when it is strictly larger.
class PairHeap {
 public:
  explicit PairHeap(int n) : n_(At(n)), positions_(n_ * n_, -1) { entries_.reserve(n_ * n_ / 2); }

  void Insert(int i, int j, float key) {
    if (i > j) std::swap(i, j);
    entries_.push_back({});
    Up(static_cast<int>(entries_.size()) - 1,
       {key, static_cast<std::uint16_t>(i), static_cast<std::uint16_t>(j)});
  }

  void Delete(int i, int j) {
    if (i > j) std::swap(i, j);
    const int hole = std::exchange(positions_[At(i) * n_ + At(j)], -1);
    if (hole < 0) return;
    const float deleted_key = entries_[At(hole)].key;
    const Pair last = TakeLast();
    if (At(hole) == entries_.size()) return;
    if (last.key > deleted_key) {
      Up(hole, last);
    } else {
      Down(hole, last);
    }
  }

  Pair TakeTop() {
    const Pair top = entries_[0];
    positions_[top.first * n_ + top.second] = -1;
    const Pair last = TakeLast();
    if (!entries_.empty()) Down(0, last);
    return top;
  }

 private:
  Pair TakeLast() {
    const Pair last = entries_.back();
    entries_.pop_back();
    return last;
  }

  void Put(int position, const Pair& pair) {
    entries_[At(position)] = pair;
    positions_[pair.first * n_ + pair.second] = position;
  }

  void Up(int position, const Pair& pair) {
    while (position > 0 && pair.key > entries_[At((position - 1) / 2)].key) {
      Put(position, entries_[At((position - 1) / 2)]);
      position = (position - 1) / 2;
    }
    Put(position, pair);
  }

  void Down(int position, const Pair& pair) {
    const int size = static_cast<int>(entries_.size());
    for (int child = 2 * position + 1; child < size; child = 2 * position + 1) {
      if (child + 1 < size && entries_[At(child + 1)].key > entries_[At(child)].key) ++child;
      if (!(pair.key < entries_[At(child)].key)) break;
      Put(position, entries_[At(child)]);
      position = child;
    }
    Put(position, pair);
  }

  std::size_t n_;
  std::vector<Pair> entries_;
  std::vector<int> positions_;  // of pair (i, j) at i n + j, -1 when it is not queued
};

// The items that are left, with everything that the criteria ask of them.
struct Items {
  Items(std::span<const int> weights, std::vector<float> matrix)
      : n(weights.size()), pwgts(weights.begin(), weights.end()), smat(std::move(matrix)) {
    for (std::size_t i = 0; i < n; ++i) {
      Wide sum = 0;
      for (std::size_t k = 0; k < n; ++k) sum += smat[i * n + k];
      tsim.push_back(static_cast<float>(sum));
    }
  }

  float& s(int i, int j) { return smat[At(i) * n + At(j)]; }
  float s(int i, int j) const { return smat[At(i) * n + At(j)]; }
  std::int64_t w(int i) const { return pwgts[At(i)]; }
  Wide t(int i) const { return tsim[At(i)]; }

  float AverageSimilarity(int i, int j) const {
    return static_cast<float>(static_cast<Wide>(s(i, j)) / static_cast<Wide>(w(i) * w(j)));
  }

  template <typename Active>
  void Fold(int i, int j, const Active& active) {
    for (const int k : active) s(i, k) += s(j, k);
    for (const int k : active) s(k, i) += s(k, j);
    tsim[At(i)] += tsim[At(j)];
    pwgts[At(i)] += pwgts[At(j)];
  }

  std::size_t n;
  std::vector<int> pwgts;
  std::vector<float> smat;
  std::vector<float> tsim;
};

// The share of a composite of n rows, squared length s and similarity t to the whole.
Wide Term(int crfun, std::int64_t n, Wide s, Wide t) {
  switch (crfun) {
    case 1:
      return s / static_cast<Wide>(n);
    case 2:
      return molva::Sqrt(s);
    case 3:
      return static_cast<Wide>(n) * t / molva::Sqrt(s);
    case 4:
      return t / s;
    default:
      return static_cast<Wide>(n * n) * t / s;
  }
}

Wide TermOf(int crfun, const Items& items, int i) {
  return Term(crfun, items.w(i), items.s(i, i), items.t(i));
}

Wide TermOfMerged(int crfun, const Items& items, int i, int j) {
  const Wide squared_length =
      static_cast<Wide>(items.s(i, i)) + items.s(j, j) + 2 * static_cast<Wide>(items.s(i, j));
  return Term(crfun, items.w(i) + items.w(j), squared_length, items.t(i) + items.t(j));
}

float Gain(int crfun, const Items& items, int i, int j) {
  const Wide rise =
      TermOfMerged(crfun, items, i, j) - (TermOf(crfun, items, i) + TermOf(crfun, items, j));
  return static_cast<float>(crfun <= 2 ? rise : -rise);
}

void MergeByGains(int crfun, Items& items, PlainTree& tree) {
  const int n = static_cast<int>(items.n);
  PairHeap heap(n);
  for (int i = 0; i < n; ++i) {
    for (int j = i + 1; j < n; ++j) heap.Insert(i, j, Gain(crfun, items, i, j));
  }
  std::vector<int> active, place, node_of;
  for (int i = 0; i < n; ++i) active.push_back(i);
  place = node_of = active;
  for (int node = n; node < 2 * n - 1; ++node) {
    const Pair best = heap.TakeTop();
    const int i = best.first, j = best.second;
    tree.ptree[At(node_of[At(i)])] = tree.ptree[At(node_of[At(j)])] = node;
    tree.gains[At(node)] = best.key;
    tree.tsims[At(node)] = items.AverageSimilarity(i, j);
    items.Fold(i, j, active);
    node_of[At(i)] = node;
    // The last of the list takes the place of the item that is gone.
    active[At(place[At(j)])] = active.back();
    place[At(active.back())] = place[At(j)];
    active.pop_back();
    for (const int k : active) {
      if (k == i) continue;
      heap.Delete(k, i);
      heap.Delete(k, j);
    }
    for (const int k : active) {
      if (k != i) heap.Insert(k, i, Gain(crfun, items, k, i));
    }
  }
}

struct Sums {
  Wide numerator, denominator;
  Wide Ratio() const { return numerator / denominator; }
};

Wide Change(int term, const Items& items, int i, int j) {
  return TermOfMerged(term, items, i, j) - TermOf(term, items, i) - TermOf(term, items, j);
}

// The ratios of I1 and of I2 to E1, for criteria 6 and 7.
void MergeByRatios(int crfun, Items& items, PlainTree& tree) {
  const int above = crfun - 5;
  Sums sums{0, 0};
  std::vector<int> node_of, slots;
  for (int i = 0; i < static_cast<int>(items.n); ++i) {
    sums.numerator += TermOf(above, items, i);
    sums.denominator += TermOf(3, items, i);
    node_of.push_back(i);
  }
  slots = node_of;
  for (int node = static_cast<int>(items.n); slots.size() > 1; ++node) {
    const auto after = [&](int i, int j) -> Sums {
      return {sums.numerator + Change(above, items, i, j),
              sums.denominator + Change(3, items, i, j)};
    };
    std::pair<int, int> best{0, 1};
    for (const int i : slots) {
      for (int j = i + 1; j <= slots.back(); ++j) {
        if (after(i, j).Ratio() > after(best.first, best.second).Ratio()) best = {i, j};
      }
    }
    const auto [i, j] = best;
    const Sums merged = after(i, j);
    tree.gains[At(node)] = static_cast<float>(merged.Ratio() - sums.Ratio());
    tree.tsims[At(node)] = items.AverageSimilarity(i, j);
    tree.ptree[At(node_of[At(i)])] = tree.ptree[At(node_of[At(j)])] = node;
    sums = merged;
    items.Fold(i, j, slots);
    node_of[At(i)] = node;
    const int last = slots.back();
    for (const int k : slots) items.s(j, k) = items.s(last, k);
    for (const int k : slots) items.s(k, j) = items.s(k, last);
    items.tsim[At(j)] = items.tsim[At(last)];
    items.pwgts[At(j)] = items.pwgts[At(last)];
    node_of[At(j)] = node_of[At(last)];
    slots.pop_back();
  }
}

}  // namespace

PlainTree PlainMerging(int crfun, std::span<const int> pwgts, std::vector<float> smat) {
  const std::size_t nodes = 2 * pwgts.size();
  PlainTree tree{std::vector<int>(nodes, -1), std::vector<float>(nodes), std::vector<float>(nodes)};
  Items items(pwgts, std::move(smat));
  if (crfun <= 5) {
    MergeByGains(crfun, items, tree);
  } else {
    MergeByRatios(crfun, items, tree);
  }
  return tree;
}

}  // namespace testing_support
