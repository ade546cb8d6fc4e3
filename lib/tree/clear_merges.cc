// SPDX-License-Identifier: MIT
#include "lib/tree/clear_merges.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "lib/criteria/table.h"
#include "lib/rough/rough_looks.h"
#include "lib/support/alloc.h"
#include "lib/support/progress.h"
#include "lib/support/span.h"
#include "lib/support/team.h"
#include "lib/support/tree_arrays.h"
#include "lib/support/vectors.h"
#include "lib/tree/rough_gain.h"

namespace molva {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr double kLargest = std::numeric_limits<float>::max();

// The matrix is visited in square tiles, so that the transposed half comes from the cache as well.
template <typename Visit>
void ForEachPairTiled(std::size_t n, Visit visit) {
  constexpr std::size_t kTile = 32;
  for (std::size_t top = 0; top < n; top += kTile) {
    for (std::size_t left = 0; left <= top; left += kTile) {
      for (std::size_t i = top; i < std::min(top + kTile, n); ++i) {
        for (std::size_t j = left; j < std::min(left + kTile, i); ++j) visit(i, j);
      }
    }
  }
}

bool IsSymmetric(std::size_t n, const float* smat) {
  std::uint32_t difference = 0;
  ForEachPairTiled(n, [&](std::size_t i, std::size_t j) {
    difference |= std::bit_cast<std::uint32_t>(smat[i * n + j]) ^
                  std::bit_cast<std::uint32_t>(smat[j * n + i]);
  });
  return difference == 0;
}

// The blocks carry the names of the queue engine's arrays, which they stand in for.
//
// The items in slots, in increasing order. Products are kept in the lower half of the matrix alone:
// row i holds those with the slots before it. The upper half keeps what the matrix was.
struct Slots {
  explicit Slots(const Merging& merging)
      : stride(static_cast<std::size_t>(merging.n)),
        smat(merging.smat),
        pwgts(AllocInts(merging.n, "BuildSimHAC_LocalGains: pwgts")),
        squares(AllocFloats(merging.n, "BuildSimHAC_LocalGains: smat")),
        tsim(AllocFloats(merging.n, "BuildSimHAC_LocalGains: tsim")),
        terms(merging.n, "BuildSimHAC_LocalGains: tsim"),
        rough_terms(AllocDoubles(merging.n, "BuildSimHAC_LocalGains: tsim")),
        nodes(AllocInts(merging.n, "BuildSimHAC_LocalGains: imap")),
        count(merging.n) {}

  float* Row(int i) const { return smat + static_cast<std::size_t>(i) * stride; }

  ClusterMeasure Alone(int i) const { return {pwgts[i], squares[i], tsim[i]}; }
  BasicMeasure<double> RoughAlone(int i) const { return {pwgts[i], squares[i], tsim[i]}; }

  template <typename Term>
  void SetTerm(int i) {
    terms[i] = Term::Of(Alone(i));
    rough_terms[i] = static_cast<double>(terms[i]);
  }

  // Everything but the products.
  void Move(int from, int to) {
    pwgts[to] = pwgts[from];
    squares[to] = squares[from];
    tsim[to] = tsim[from];
    terms[to] = terms[from];
    rough_terms[to] = rough_terms[from];
    nodes[to] = nodes[from];
  }

  std::size_t stride;
  float* smat;
  Array<int> pwgts;
  Array<float> squares;  // s_ii
  Array<float> tsim;
  Array<Wide> terms;
  Array<double> rough_terms;
  Array<int> nodes;  // the node that each slot stands for
  int count;
};

// What is known of the gains of an item with the items before it: none is larger than the bound.
// Where the partner is known it has exactly this gain, and all others have smaller ones; where it
// is tied, several have this gain.
constexpr int kUnknown = -1;
constexpr int kTied = -2;

// Shared out among threads before the first merge.
constexpr int kItemsAtATime = 256;
constexpr int kItemsOfAPiece = 4;

constexpr int kRetired = -1;  // in place of a slot's new number

// Slots are closed up when more than these and an eighth of all are empty.
constexpr int kFewRetired = 8;

// Several maxima side by side, since one alone would wait for each comparison.
float LargestOf(Span<const float> x) {
  std::array<float, 8> largest;
  largest.fill(-kInfinity);
  std::size_t first = 0;
  for (; first + largest.size() <= x.size(); first += largest.size()) {
    for (std::size_t lane = 0; lane < largest.size(); ++lane) {
      largest[lane] = std::max(largest[lane], x[first + lane]);
    }
  }
  for (; first < x.size(); ++first) largest[0] = std::max(largest[0], x[first]);
  return *std::max_element(largest.begin(), largest.end());
}

template <typename Value>
class ClearMerges {
  using Term = typename Value::Term;

 public:
  explicit ClearMerges(const Merging& merging)
      : merging_(merging),
        items_(merging),
        bounds_(AllocFloatsSet(merging.n, -kInfinity, "BuildSimHAC_LocalGains: tsim")),
        partners_(AllocIntsSet(merging.n, kUnknown, "BuildSimHAC_LocalGains: rmap")),
        products_(AllocFloats(merging.n, "BuildSimHAC_LocalGains: smat")),
        most_(AllocFloats(std::int64_t{merging.n} * TeamSize(), "BuildSimHAC_LocalGains: tsim")),
        kept_(AllocInts(merging.n, "BuildSimHAC_LocalGains: rowids")),
        slot_of_(AllocIntsSet(merging.n, 0, "BuildSimHAC_LocalGains: rmap")),
        retired_(AllocInts(merging.n, "BuildSimHAC_LocalGains: rowids")) {
    for (int i = 0; i < merging.n; ++i) {
      const float* row = items_.Row(i);
      items_.pwgts[i] = merging.pwgts[i];
      items_.squares[i] = row[i];
      items_.tsim[i] = SumFloats(merging.n, row, 1);
      items_.nodes[i] = i;
      items_.template SetTerm<Term>(i);
    }
  }

  bool Run() {
    for (int begin = 1; begin < items_.count; begin += kItemsAtATime) {
      Poll();
      ShareOut(std::min(kItemsAtATime, items_.count - begin), kItemsOfAPiece,
               [&](std::int64_t first, std::int64_t last, int member) {
                 for (auto i = begin + static_cast<int>(first); i < begin + last; ++i) {
                   const Span<float> most = Most(i, member);
                   FindMost(i, items_.Row(i), most);
                   bounds_[i] = LargestOf(most);
                 }
               });
    }
    for (int node = merging_.n; node <= 2 * merging_.n - 2; ++node) {
      Poll();
      if (retired_count_ > kFewRetired + items_.count / 8) Compact();
      const int j = FindBest();
      if (j < 0) {
        Restore();
        return false;
      }
      Merge(partners_[j], j, node);
    }
    return true;
  }

 private:
  // j < i
  float Gain(int i, int j) const {
    const ClusterMeasure merged = Merged(items_.Alone(i), items_.Alone(j), items_.Row(i)[j]);
    return static_cast<float>(Value::Gain(Term::Of(merged), items_.terms[i], items_.terms[j]));
  }

  // For the first n items, in the place of a member of the team.
  Span<float> Most(int n, int member = 0) {
    return {most_.data() + std::int64_t{member} * merging_.n, n};
  }

  // most_of[j] = what the gain of items i and j can be at most, for the first items, whose products
  // with i are given. Infinite where the bound does not hold or is no float; minus infinity for
  // retired items alone.
  void FindMost(int i, const float* products, Span<float> most_of) const {
    const BasicMeasure<double> item = items_.RoughAlone(i);
    const double term = items_.rough_terms[i];
    for (std::size_t j = 0; j < most_of.size(); ++j) {
      const RoughGain rough =
          RoughGainOf<Value>(item, term, items_.RoughAlone(static_cast<int>(j)),
                             items_.rough_terms[j], static_cast<double>(products[j]));
      const double most = rough.gain + rough.error;
      const bool holds = rough.holds && std::abs(most) < kLargest;
      most_of[j] = holds ? static_cast<float>(most) : kInfinity;
    }
    for (const int slot : Retired()) {
      if (std::cmp_less(slot, most_of.size())) most_of[slot] = -kInfinity;
    }
  }

  // The item whose partner, before it, makes the one best merge; -1 when that is not clear.
  int FindBest() {
    for (;;) {
      const Span<const float> bounds{bounds_.data(), items_.count};
      const float largest = LargestOf(bounds);
      int best = kUnknown;
      for (int i = 0; i < items_.count; ++i) {
        if (bounds_[i] != largest) continue;
        if (partners_[i] == kUnknown) {
          if (!MakeExact(i)) return -1;
          best = kUnknown;
          break;
        }
        if (best != kUnknown || partners_[i] == kTied) return -1;
        best = i;
      }
      if (best != kUnknown) return best;
    }
  }

  // Finds the best of an item's gains. False when one is not a finite number.
  bool MakeExact(int i) {
    const Span<float> most = Most(i);
    FindMost(i, items_.Row(i), most);
    bounds_[i] = LargestOf(most);
    if (bounds_[i] == -kInfinity) return true;  // no item is left before it
    const int first =
        static_cast<int>(std::find(most.begin(), most.end(), bounds_[i]) - most.begin());
    bounds_[i] = Gain(i, first);
    partners_[i] = first;
    if (!std::isfinite(bounds_[i])) return false;
    for (int j = 0; j < i; ++j) {
      if (most_[j] < bounds_[i] || j == first) continue;
      const float gain = Gain(i, j);
      if (!std::isfinite(gain)) return false;
      if (gain < bounds_[i]) continue;
      partners_[i] = gain == bounds_[i] ? kTied : j;
      bounds_[i] = gain;
    }
    return true;
  }

  Span<const int> Retired() const { return {retired_.data(), retired_count_}; }

  // Item i becomes part of item j, i < j, whose slot stays.
  void Merge(int i, int j, int node) {
    Record(i, j, node);
    Fold(i, j);
    items_.nodes[j] = node;
    retired_[retired_count_++] = i;
    Renew(i, j);
  }

  void Record(int i, int j, int node) const {
    RecordMerge(merging_, items_.nodes[i], items_.nodes[j], node, bounds_[j],
                AverageSimilarity(items_.Row(j)[i], items_.pwgts[i], items_.pwgts[j]));
  }

  // products_ receives the products of the new item.
  void Fold(int i, int j) {
    float* row_i = items_.Row(i);
    float* row_j = items_.Row(j);
    const float between = row_j[i];
    items_.squares[j] = (items_.squares[i] + between) + (between + items_.squares[j]);
    items_.tsim[j] += items_.tsim[i];
    items_.pwgts[j] = AddValues(items_.pwgts[j], items_.pwgts[i]);
    items_.template SetTerm<Term>(j);
    for (int k = 0; k < i; ++k) row_j[k] += row_i[k];
    for (int k = i + 1; k < j; ++k) row_j[k] += items_.Row(k)[i];
    std::copy_n(row_j, j, products_.data());
    products_[j] = 0;
    for (int k = j + 1; k < items_.count; ++k) {
      float* row = items_.Row(k);
      products_[k] = row[j] += row[i];
    }
  }

  // Brings the bounds up to date after item i went into item j.
  void Renew(int i, int j) {
    FindMost(j, products_.data(), Most(items_.count));
    bounds_[i] = -kInfinity;
    partners_[i] = kUnknown;
    bounds_[j] = LargestOf({most_.data(), j});
    partners_[j] = kUnknown;
    for (int k = i + 1; k < items_.count; ++k) {
      if (partners_[k] == i || partners_[k] == j || partners_[k] == kTied) partners_[k] = kUnknown;
      if (k > j && most_[k] >= bounds_[k]) {
        bounds_[k] = most_[k];
        partners_[k] = kUnknown;
      }
    }
  }

  // Closes the gaps that retired items have left. Items keep their order, so every product stays in
  // the row of the later item.
  void Compact() {
    for (const int slot : Retired()) slot_of_[slot] = kRetired;
    int count = 0;
    for (int i = 0; i < items_.count; ++i) {
      if (slot_of_[i] == kRetired) continue;
      kept_[count] = i;
      slot_of_[i] = count++;
    }
    for (int slot = 0; slot < count; ++slot) MoveItem(kept_[slot], slot);
    for (int i = 0; i < items_.count; ++i) slot_of_[i] = 0;
    items_.count = count;
    retired_count_ = 0;
  }

  // Slots before `to` hold the items kept_[0] to kept_[to - 1] by now.
  void MoveItem(int from, int to) {
    const float* row = items_.Row(from);
    float* packed = items_.Row(to);
    for (int k = 0; k < to; ++k) packed[k] = row[kept_[k]];
    items_.Move(from, to);
    bounds_[to] = bounds_[from];
    partners_[to] = partners_[from] < 0 ? partners_[from] : slot_of_[partners_[from]];
  }

  // The upper half is what the matrix was.
  void Restore() const {
    ForEachPairTiled(items_.stride, [this](std::size_t i, std::size_t j) {
      items_.smat[i * items_.stride + j] = items_.smat[j * items_.stride + i];
    });
  }

  const Merging& merging_;
  Slots items_;
  Array<float> bounds_;
  Array<int> partners_;
  Array<float> products_;
  Array<float> most_;
  Array<int> kept_;
  Array<int> slot_of_;  // while slots are renumbered
  Array<int> retired_;  // empty slots
  int retired_count_ = 0;
};

}  // namespace

bool MergeWhileClear(int crfun, const Merging& merging) {
  if (!RoughLooksAreUsed()) return false;
  if (!IsSymmetric(static_cast<std::size_t>(merging.n), merging.smat)) return false;
  return WithCriterion(crfun, [&]<typename Row>(const Row&) {
    if constexpr (Row::Merge::kIsSum) {
      return ClearMerges<typename Row::Merge>(merging).Run();
    } else {
      return false;
    }
  });
}

}  // namespace molva
