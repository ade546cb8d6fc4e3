// SPDX-License-Identifier: MIT
#include "lib/tree/agglomerate.h"

#include <algorithm>
#include <cstdio>
#include <type_traits>

#include "lib/criteria/table.h"
#include "lib/rough/rough_looks.h"
#include "lib/support/alloc.h"
#include "lib/support/fatal.h"
#include "lib/support/narrowing.h"
#include "lib/support/printed.h"
#include "lib/support/progress.h"
#include "lib/support/team.h"
#include "lib/support/tree_arrays.h"
#include "lib/support/vectors.h"
#include "lib/support/wide.h"
#include "lib/tree/clear_merges.h"
#include "lib/tree/hac_pqueue.h"
#include "lib/tree/rough_gain.h"

namespace molva {
namespace {

// What the pairs of one item with others take is shared out among threads.
constexpr int kItemsOfAPiece = 512;

// The items as both engines see them: a table of rows of smat, weights and row sums.
struct Items {
  Array<int> pwgts;    // rows in each item
  Array<float> tsim;   // D_i.D, D the composite of all items
  Array<float*> smat;  // row i of the matrix

  ClusterMeasure Alone(int i) const { return {pwgts[i], smat[i][i], tsim[i]}; }
  BasicMeasure<double> RoughAlone(int i) const { return {pwgts[i], smat[i][i], tsim[i]}; }
  ClusterMeasure Joined(int i, int j) const { return Merged(Alone(i), Alone(j), smat[i][j]); }
  Wide Similarity(int i, int j) const { return AverageSimilarity(smat[i][j], pwgts[i], pwgts[j]); }

  // Adds item j to item i: the rows first, then the columns, so that s_ii ends as
  // s_ii + 2 s_ij + s_jj.
  template <typename Active>
  void Fold(int i, int j, const Active& active) {
    for (const int k : active) smat[i][k] += smat[j][k];
    ShareOut(static_cast<std::int64_t>(active.size()), kItemsOfAPiece,
             [&](std::int64_t first, std::int64_t last, int) {
               for (std::int64_t a = first; a < last; ++a) {
                 const int k = active[a];
                 smat[k][i] += smat[k][j];
               }
             });
    tsim[i] += tsim[j];
    pwgts[i] = AddValues(pwgts[i], pwgts[j]);
  }
};

void FillItems(const Merging& merging, Items& items) {
  const auto n = static_cast<std::size_t>(merging.n);
  for (std::size_t i = 0; i < n; ++i) {
    items.pwgts[i] = merging.pwgts[i];
    items.smat[i] = merging.smat + i * n;
    items.tsim[i] = SumFloats(merging.n, items.smat[i], 1);
  }
}

// Single precision tells about 10^8 gains of one magnitude apart. The best merges of some thousand
// items lie so close that two of them are equal somewhere in most runs, and trying is time lost.
constexpr int kMostClearItems = 4096;

// A merge as the queue engine carries it out.
struct Merge {
  int i, j;
  float gain;
};

void ReportMerge(const Control& control, const Items& items, const Array<int>& imap,
                 const Merge& merge, int node, Wide crvalue) {
  if (!HasDebugBit(control, MOLVA_DBG_MERGING)) return;
  std::printf("Merging [%5d %5d -> %5d] [%5d], CRval=%.2e %f %f\n", imap[merge.i], imap[merge.j],
              node, AddValues(items.pwgts[merge.i], items.pwgts[merge.j]), Printed(crvalue),
              Printed(merge.gain), Printed(items.Similarity(merge.i, merge.j)));
}

// The items that are still to be merged: the first `count` of rowids. rmap is its inverse.
struct ActiveList {
  Array<int> rowids;
  Array<int> rmap;
  int count = 0;

  Span<const int> items() const { return {rowids.data(), count}; }

  // The last one takes the place of the one that leaves.
  void Remove(int item) {
    const int last = rowids[--count];
    rowids[rmap[item]] = last;
    rmap[last] = rmap[item];
  }
};

// The queue engine for one term.
template <typename Value>
class LocalGains {
  using Term = typename Value::Term;

 public:
  LocalGains(const Control& control, const Merging& merging)
      : control_(control), merging_(merging) {
    const int n = merging.n;
    items_.pwgts = AllocInts(n, "BuildSimHAC_LocalGains: pwgts");
    imap_ = AllocInts(n, "BuildSimHAC_LocalGains: imap");
    active_.rmap = AllocInts(n, "BuildSimHAC_LocalGains: rmap");
    items_.tsim = AllocFloats(n, "BuildSimHAC_LocalGains: tsim");
    active_.rowids = AllocInts(n, "BuildSimHAC_LocalGains: rowids");
    items_.smat = Array<float*>(n, "BuildSimHAC_LocalGains: smat");
    terms_ = Array<Wide>(n, "BuildSimHAC_LocalGains: tsim");
    rough_terms_ = AllocDoubles(n, "BuildSimHAC_LocalGains: tsim");
    gains_ = AllocFloats(n, "BuildSimHAC_LocalGains: tsim");
    FillItems(merging, items_);
    for (int i = 0; i < n; ++i) {
      SetTerm(i);
      imap_[i] = active_.rmap[i] = active_.rowids[i] = i;
    }
    active_.count = n;
  }

  void Run() {
    FillQueue();
    for (int i = 0; i < merging_.n; ++i) crvalue_ += Value::Signed(terms_[i]);
    for (int node = merging_.n; active_.count >= 2; ++node) {
      Poll();
      MergeBest(node);
    }
  }

 private:
  void SetTerm(int i) {
    terms_[i] = Term::Of(items_.Alone(i));
    rough_terms_[i] = static_cast<double>(terms_[i]);
  }

  // In double where that tells it.
  float Gain(int i, int j) const {
    if (looks_) {
      const RoughGain rough =
          RoughGainOf<Value>(items_.RoughAlone(i), rough_terms_[i], items_.RoughAlone(j),
                             rough_terms_[j], static_cast<double>(items_.smat[i][j]));
      const Narrowed narrowed = NarrowedOf({rough.gain, rough.error});
      if (rough.holds && narrowed.is_certain) return narrowed.value;
    }
    return static_cast<float>(Value::Gain(Term::Of(items_.Joined(i, j)), terms_[i], terms_[j]));
  }

  // gains_[k] = gain_of(k), for each of some items.
  template <typename GainOf>
  void MeasureGains(Span<const int> items, const GainOf& gain_of) {
    ShareOut(static_cast<std::int64_t>(items.size()), kItemsOfAPiece,
             [&](std::int64_t first, std::int64_t last, int) {
               for (std::int64_t a = first; a < last; ++a) gains_[items[a]] = gain_of(items[a]);
             });
  }

  void FillQueue() {
    HACPQueueInit(queue_, merging_.n);
    if (HasDebugBit(control_, MOLVA_DBG_CLUSTERING)) {
      std::printf("Populating the priority queue...");
      std::fflush(stdout);
    }
    for (int i = 0; i < merging_.n; ++i) {
      Poll();
      const Span<const int> after{active_.rowids.data() + i + 1, merging_.n - i - 1};
      MeasureGains(after, [this, i](int j) { return Gain(i, j); });
      for (const int j : after) HACPQueueInsert(queue_, i, j, gains_[j]);
    }
    if (HasDebugBit(control_, MOLVA_DBG_CLUSTERING)) std::printf(" Done!\n");
  }

  Merge TakeBest() {
    HACPair top{};
    if (HACPQueueGetTop(queue_, top) == -1) {
      FatalError("Internal Error. HACPqueue should not be empty!\n");
    }
    return {top.first, top.second, top.key};
  }

  void MergeBest(int node) {
    const Merge merge = TakeBest();
    crvalue_ += merge.gain;
    ReportMerge(control_, items_, imap_, merge, node, crvalue_);
    Record(merge, node);
    items_.Fold(merge.i, merge.j, active_.items());
    SetTerm(merge.i);
    imap_[merge.i] = node;
    active_.Remove(merge.j);
    Requeue(merge);
  }

  void Record(const Merge& merge, int node) const {
    RecordMerge(merging_, imap_[merge.i], imap_[merge.j], node, merge.gain,
                items_.Similarity(merge.i, merge.j));
  }

  // First every pair of the two merged items leaves the queue, then the pairs of the new item
  // enter, in the same order: the heap's positions decide ties.
  void Requeue(const Merge& merge) {
    for (const int k : active_.items()) {
      if (k == merge.i) continue;
      HACPQueueDelete(queue_, k, merge.i);
      HACPQueueDelete(queue_, k, merge.j);
    }
    MeasureGains(active_.items(), [&](int k) { return k != merge.i ? Gain(k, merge.i) : 0; });
    for (const int k : active_.items()) {
      if (k != merge.i) HACPQueueInsert(queue_, k, merge.i, gains_[k]);
    }
  }

  const Control& control_;
  const Merging& merging_;
  Items items_;
  bool looks_ = RoughLooksAreUsed();
  Array<Wide> terms_;
  Array<double> rough_terms_;
  Array<float> gains_;
  Array<int> imap_;  // the node that each item stands for
  ActiveList active_;
  HACPQueue queue_;
  Wide crvalue_ = 0;
};

// The slots 0 to n-1, to loop over.
struct FirstSlots {
  struct Iterator {
    int slot;
    int operator*() const { return slot; }
    void operator++() { ++slot; }
    bool operator==(const Iterator&) const = default;
  };
  int n;
  int size() const { return n; }
  int operator[](std::int64_t slot) const { return static_cast<int>(slot); }
  Iterator begin() const { return {0}; }
  Iterator end() const { return {n}; }
};

// The exhaustive engine: the ratio of two sums of terms.
template <typename RatioMerge>
class RatioGains {
 public:
  RatioGains(const Control& control, const Merging& merging)
      : control_(control), merging_(merging), active_(merging.n) {
    const int n = merging.n;
    items_.pwgts = AllocInts(n, "BuildSimHAC_I1I2E1G1G1P: pwgts");
    items_.tsim = AllocFloats(n, "BuildSimHAC_I1I2E1G1G1P: tsim");
    rowids_ = AllocInts(n, "BuildSimHAC_I1I2E1G1G1P: rowids");
    items_.smat = Array<float*>(n, "BuildSimHAC_I1I2E1G1G1P: smat");
    FillItems(merging, items_);
    terms_ = Array<Sums>(n, "BuildSimHAC_I1I2E1G1G1P: tsim");
    best_of_ = Array<Partner>(n, "BuildSimHAC_I1I2E1G1G1P: tsim");
    for (int i = 0; i < n; ++i) {
      rowids_[i] = i;
      terms_[i] = TermsOf(items_.Alone(i));
      sums_.numerator += terms_[i].numerator;
      sums_.denominator += terms_[i].denominator;
    }
  }

  void Run() {
    for (int node = merging_.n; active_ > 1; ++node) {
      Poll();
      MergeBest(node);
    }
  }

 private:
  struct Sums {
    Wide numerator;
    Wide denominator;
    Wide Ratio() const { return numerator / denominator; }
  };
  struct Partner {
    int j;
    Wide ratio;
  };

  static Sums TermsOf(const ClusterMeasure& item) {
    return {RatioMerge::Numerator::Of(item), RatioMerge::Denominator::Of(item)};
  }

  Sums After(int i, int j) const {
    const Sums merged = TermsOf(items_.Joined(i, j));
    return {
        sums_.numerator + (merged.numerator - terms_[i].numerator - terms_[j].numerator),
        sums_.denominator + (merged.denominator - terms_[i].denominator - terms_[j].denominator)};
  }

  // The first later slot of the largest ratio above the given one; that one where there is none.
  Partner BestAfter(int i, Wide ratio) const {
    Partner best{-1, ratio};
    for (int j = i + 1; j < active_; ++j) {
      const Wide r = After(i, j).Ratio();
      if (r > best.ratio) best = {j, r};
    }
    return best;
  }

  // The first pair of the largest ratio.
  void MergeBest(int node) {
    int best_i = 0;
    const Wide first_ratio = After(0, 1).Ratio();
    ShareOutOne(active_,
                [&](std::int64_t i) { best_of_[i] = BestAfter(static_cast<int>(i), first_ratio); });
    Partner best{1, first_ratio};
    for (int i = 0; i < active_; ++i) {
      if (!(best_of_[i].ratio > best.ratio)) continue;
      best_i = i;
      best = best_of_[i];
    }
    Record(best_i, best.j, node, best.ratio, best.ratio - sums_.Ratio());
    sums_ = After(best_i, best.j);
    Join(best_i, best.j, node);
  }

  void Record(int i, int j, int node, Wide ratio, Wide gain) const {
    if (HasDebugBit(control_, MOLVA_DBG_MERGING)) {
      std::printf("Merging [%5d %5d -> %5d] [%5d], CRval=%.2e %f\n", rowids_[i], rowids_[j], node,
                  AddValues(items_.pwgts[i], items_.pwgts[j]), Printed(ratio), Printed(gain));
    }
    RecordMerge(merging_, rowids_[i], rowids_[j], node, static_cast<float>(gain),
                items_.Similarity(i, j));
  }

  // Slot j is folded into slot i and the last slot moves into its place: row, column, the rest.
  void Join(int i, int j, int node) {
    items_.Fold(i, j, FirstSlots{active_});
    terms_[i] = TermsOf(items_.Alone(i));
    rowids_[i] = node;

    const int last = --active_;
    for (int k = 0; k <= last; ++k) items_.smat[j][k] = items_.smat[last][k];
    for (int k = 0; k <= last; ++k) items_.smat[k][j] = items_.smat[k][last];
    items_.tsim[j] = items_.tsim[last];
    items_.pwgts[j] = items_.pwgts[last];
    terms_[j] = terms_[last];
    rowids_[j] = rowids_[last];
  }

  const Control& control_;
  const Merging& merging_;
  int active_;
  Items items_;
  Array<int> rowids_;  // the node that each active slot stands for
  Array<Sums> terms_;
  Array<Partner> best_of_;  // of each slot with those after it
  Sums sums_{0, 0};
};

[[noreturn]] void RefuseCode(int crfun) {
  FatalError("Internal Error!. Criterion function %d, cannot be handled by this code.\n", crfun);
}

}  // namespace

void BuildSimHAC(const Control& control, const Merging& merging) {
  SetFloats(merging.tsims, 0);
  WithCriterion(control.crfun, [&]<typename Row>(const Row&) {
    if constexpr (std::is_same_v<typename Row::Merge, NoMerging>) {
      RefuseCriterion(control.crfun);
    } else if constexpr (Row::Merge::kIsSum) {
      BuildSimHAC_LocalGains(control, merging);
    } else {
      BuildSimHAC_I1I2E1G1G1P(control, merging);
    }
  });
}

void BuildSimHAC_LocalGains(const Control& control, const Merging& merging) {
  // A run that reports on its queue has one.
  const bool reports =
      HasDebugBit(control, MOLVA_DBG_CLUSTERING) || HasDebugBit(control, MOLVA_DBG_MERGING);
  if (!reports && merging.n <= kMostClearItems && MergeWhileClear(control.crfun, merging)) return;
  WithCriterion(control.crfun, [&]<typename Row>(const Row&) {
    if constexpr (Row::Merge::kIsSum) {
      LocalGains<typename Row::Merge>(control, merging).Run();
    } else {
      RefuseCode(control.crfun);
    }
  });
}

void BuildSimHAC_I1I2E1G1G1P(const Control& control, const Merging& merging) {
  WithCriterion(control.crfun, [&]<typename Row>(const Row&) {
    using Merge = typename Row::Merge;
    if constexpr (Merge::kIsSum || std::is_same_v<Merge, NoMerging>) {
      RefuseCode(control.crfun);
    } else {
      RatioGains<Merge>(control, merging).Run();
    }
  });
}

void InduceClusteringFromHAC(int n, int nparts, Span<const int> ptree, Span<int> part) {
  if (n < 1) return;
  Array<int> ftree = MakeChildTable(ptree.first(2 * n), "InduceClusteringFromHAC: ftree");
  const ChildTable children(ftree);
  Array<int> queue = AllocInts(nparts, "InduceClusteringFromHAC: queue");
  queue[0] = 2 * n - 2;
  for (int listed = 1; listed < nparts; ++listed) {
    const int highest = ArgMaxInt({queue.data(), listed});
    const int node = queue[highest];
    queue[highest] = queue[listed - 1];
    queue[listed - 1] = children.first(node);
    queue[listed] = children.second(node);
  }
  for (int c = 0; c < nparts; ++c) {
    ForEachLeafBelow(queue[c], ptree, children, [part, c](int leaf) { part[leaf] = c; });
  }
}

void MergeItems(const Control& control, const Merging& merging, int nparts, Span<int> part) {
  CheckItemCount(merging.n);
  if (nparts < 1 || nparts > std::max(merging.n, 1)) {
    FatalError("Cannot cut a tree over %d items into %d clusters!\n", merging.n, nparts);
  }
  SetInts(merging.ptree, -1);
  BuildSimHAC(control, merging);
  InduceClusteringFromHAC(merging.n, nparts, merging.ptree, part);
}

void CheckItemCount(int n) {
  if (n > kMostItems) {
    FatalError("A tree over %d items cannot be built, the most is %d!\n", n, kMostItems);
  }
}

}  // namespace molva
