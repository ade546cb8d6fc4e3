// SPDX-License-Identifier: MIT
#include "lib/partition/initial_clustering.h"

#include <cmath>

#include "lib/rough/growth_screen.h"
#include "lib/rough/lanes.h"
#include "lib/rough/rough_looks.h"
#include "lib/support/progress.h"
#include "lib/support/random.h"
#include "lib/support/span.h"
#include "lib/support/wide.h"

namespace molva {
namespace {

// The squared length of the composite if the row joined, from all entries against the composite as
// it stands, added to the old squared length one by one.
Wide SquaredLengthJoined(const RowView& row, const LaneView& composite, Wide squared_length) {
  for (std::size_t p = 0; p < row.size(); ++p) {
    const Wide c = composite[row.columns[p]];
    const Wide grown = c + row.values[p];
    squared_length += grown * grown - c * c;
  }
  return squared_length;
}

constexpr int kColumnsAhead = 2;

// The clusters so far.
class GrowingClusters {
 public:
  GrowingClusters(const RowRecords& rows, int nparts)
      : rows_(rows),
        nparts_(nparts),
        looks_(RoughLooksAreUsed()),
        dnorms_(AllocFloats(nparts, "InitialClustering: dnorms")),
        centers_(nparts, rows.matrix().ncols, "InitialClustering: centers[i]"),
        screen_(centers_, nparts, rows.extremes(), "InitialClustering: dnorms") {}

  // The row starts cluster k. Its entries are written, not added: a column stored twice in a seed
  // keeps its last value here, while the squared length counts both.
  void Seed(const RowRecord& row, int k) {
    centers_.Set(rows_.Entries(row), k);
    Wide squares = 0;
    for (const Wide v : rows_.Entries(row).values) squares += v * v;
    dnorms_[k] = static_cast<float>(squares);
    screen_.Start(k, dnorms_[k]);
  }

  // The row comes soon.
  [[gnu::always_inline]] void Prefetch(const RowRecord& row) const {
    centers_.Prefetch(rows_.Entries(row));
  }

  // Puts the row into the cluster that grows most and returns it.
  int Join(const RowRecord& row) {
    const RowView entries = rows_.Entries(row);
    const int rough = looks_ ? screen_.Choose(entries, row) : -1;
    const int k = rough >= 0 ? rough : FullChoice(entries);
    dnorms_[k] = SquaredLengthWith(row, k);
    centers_.Add(entries, k);
    screen_.Change(k, row, dnorms_[k]);
    return k;
  }

 private:
  // The cluster that grows most, by the full arithmetic. A gain that is not a number never replaces
  // the choice.
  int FullChoice(const RowView& row) const {
    int best = 0;
    Wide best_gain = 0;
    for (int k = 0; k < nparts_; ++k) {
      const Wide squared_length = dnorms_[k];
      const Wide joined = SquaredLengthJoined(row, centers_[k], squared_length);
      const Wide gain = Sqrt(joined) - Sqrt(squared_length);
      if (k == 0 || gain > best_gain) {
        best = k;
        best_gain = gain;
      }
    }
    return best;
  }

  float SquaredLengthWith(const RowRecord& row, int k) const {
    const RowView entries = rows_.Entries(row);
    if (looks_) {
      const GrowthScreen::MaybeSquare rough = screen_.SquaredLengthWith(entries, row, k);
      if (rough.is_certain) return rough.value;
    }
    return static_cast<float>(SquaredLengthJoined(entries, centers_[k], dnorms_[k]));
  }

  const RowRecords& rows_;
  int nparts_;
  bool looks_;
  Array<float> dnorms_;  // the squared length of each composite
  Lanes centers_;        // the composites
  GrowthScreen screen_;
};

}  // namespace

void InitialClustering(const RowRecords& rows, int nparts, Span<int> part) {
  Array<int> perm = AllocInts(rows.count(), "InitialClustering: perm");
  GrowingClusters clusters(rows, nparts);

  RandomPermute(perm, Start::kIdentity);
  for (int pass = 1; pass < kSeedingPermutations; ++pass) RandomPermute(perm, Start::kAsGiven);

  for (int j = 0; j < rows.count(); ++j) {
    if (j % kPollInterval == 0) Poll();
    rows.Prefetch(perm.data(), j);
    if (j + kColumnsAhead < rows.count()) clusters.Prefetch(rows[perm[j + kColumnsAhead]]);
    const RowRecord& row = rows[perm[j]];
    int& place = part[perm[j]];
    if (j < nparts) {
      clusters.Seed(row, j);
      place = j;
    } else {
      place = clusters.Join(row);
    }
  }
}

void InitialClustering(const PreparedMatrix& mat, int nparts, Span<int> part) {
  InitialClustering(RowRecords(mat, "InitialClustering: perm"), nparts, part);
}

}  // namespace molva
