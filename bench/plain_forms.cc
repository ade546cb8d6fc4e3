// SPDX-License-Identifier: MIT
#include "bench/plain_forms.h"

#include <cmath>
#include <span>
#include <utility>

#include "lib/matrix/control.h"
#include "lib/matrix/prepare.h"
#include "lib/matrix/submatrix.h"
#include "lib/partition/cluster_rb.h"
#include "lib/partition/reorder_clusters.h"
#include "lib/support/random.h"
#include "lib/support/sort.h"
#include "lib/support/wide.h"
#include "tests/testing/oracles.h"

namespace bench {
namespace {

using molva::Wide;

constexpr int kI2 = 2;

PreparedRows RowsOf(const Corpus& corpus) {
  PreparedRows rows;
  for (std::size_t i = 0; i + 1 < corpus.rowptr.size(); ++i) {
    const int begin = corpus.rowptr[i];
    const int end = corpus.rowptr[i + 1];
    rows.columns.emplace_back(corpus.rowind.begin() + begin, corpus.rowind.begin() + end);
    rows.values.emplace_back(corpus.rowval.begin() + begin, corpus.rowval.begin() + end);
  }
  return rows;
}

// Calls visit(column, value) for every entry, row by row.
template <typename Rows, typename Visit>
void ForEachEntry(Rows& rows, Visit visit) {
  for (std::size_t i = 0; i < rows.columns.size(); ++i) {
    for (std::size_t p = 0; p < rows.columns[i].size(); ++p) {
      visit(static_cast<std::size_t>(rows.columns[i][p]), rows.values[i][p]);
    }
  }
}

void ScaleByIdf(PreparedRows& rows, std::size_t ncols) {
  std::vector<int> entries(ncols);
  ForEachEntry(rows, [&](std::size_t j, float&) { ++entries[j]; });
  const auto nrows = static_cast<Wide>(rows.columns.size());
  ForEachEntry(rows, [&](std::size_t j, float& value) {
    value *= static_cast<float>(-molva::Log(static_cast<Wide>(entries[j]) / nrows));
  });
}

void MakeUnitRows(PreparedRows& rows) {
  for (std::vector<float>& row : rows.values) {
    Wide squares = 0;
    for (const Wide v : row) squares += v * v;
    if (!(squares > 0)) continue;
    for (float& v : row) v *= static_cast<float>(1 / molva::Sqrt(squares));
  }
}

// The columns as (weight in the unit-length sum of all rows, column), heaviest first.
std::vector<molva::KeyValue> RankedColumns(const PreparedRows& rows, std::size_t ncols) {
  std::vector<float> sum(ncols);
  ForEachEntry(rows, [&](std::size_t j, float value) { sum[j] += value; });
  Wide squares = 0;
  for (const Wide weight : sum) squares += weight * weight;
  const auto length = static_cast<float>(molva::Sqrt(squares));
  std::vector<molva::KeyValue> ranked;
  for (const float weight : sum) {
    ranked.push_back({weight / length, static_cast<int>(ranked.size())});
  }
  molva::SortKeyValuesDecreasing(ranked);
  return ranked;
}

// The columns stored at least twice, heaviest first, until their squared weights pass 1.
std::vector<bool> KeptColumns(const PreparedRows& rows, std::size_t ncols) {
  std::vector<int> entries(ncols);
  ForEachEntry(rows, [&](std::size_t j, float) { ++entries[j]; });
  std::vector<bool> kept(ncols);
  Wide reached = 0;
  for (const auto& [weight, column] : RankedColumns(rows, ncols)) {
    if (reached > 1) break;
    const auto j = static_cast<std::size_t>(column);
    if (entries[j] < 2) continue;
    kept[j] = true;
    reached += static_cast<Wide>(weight) * weight;
  }
  return kept;
}

// The kept entries; rows that lose all of theirs are dropped.
PreparedRows Pruned(const PreparedRows& rows, const std::vector<bool>& kept) {
  PreparedRows pruned;
  for (std::size_t i = 0; i < rows.columns.size(); ++i) {
    std::vector<int> columns;
    std::vector<float> values;
    for (std::size_t p = 0; p < rows.columns[i].size(); ++p) {
      if (!kept[static_cast<std::size_t>(rows.columns[i][p])]) continue;
      columns.push_back(rows.columns[i][p]);
      values.push_back(rows.values[i][p]);
    }
    if (columns.empty()) continue;
    pruned.columns.push_back(std::move(columns));
    pruned.values.push_back(std::move(values));
  }
  return pruned;
}

molva::Control ControlOf(const Trials& trials) {
  return {
      .crfun = kI2, .colmodel = MOLVA_COL_IDF, .ntrials = trials.ntrials, .niter = trials.niter};
}

std::vector<int> BestOfTrials(const Trials& trials, const molva::PreparedMatrix& mat, int nparts) {
  std::vector<int> best(static_cast<std::size_t>(mat.nrows));
  float best_quality = 0;
  for (int trial = 0; trial < trials.ntrials; ++trial) {
    std::vector<int> part(best.size());
    testing_support::PlainSeeding(mat, nparts, part);
    const float quality = testing_support::PlainRefinement(kI2, mat, nparts, trials.niter, part);
    if (trial == 0 || quality > best_quality) {
      best_quality = quality;
      best = part;
    }
  }
  return best;
}

// Halves the largest cluster until there are enough.
std::vector<int> RepeatedBisection(const Trials& trials, const molva::PreparedMatrix& mat,
                                   int nparts) {
  std::vector<int> part(static_cast<std::size_t>(mat.nrows));
  for (int added = 1; added < nparts; ++added) {
    const int halved = molva::SelectACluster(added, part);
    const auto cluster = molva::Cluster2Matrix(mat, halved, part);
    const std::vector<int> halves = BestOfTrials(trials, *cluster, 2);
    auto half = halves.begin();
    for (int& k : part) {
      if (k == halved && *half++ == 1) k = added;
    }
  }
  return part;
}

// The clustering that `method` finds on the prepared matrix, in the final numbering, of the
// caller's rows.
template <typename Method>
std::vector<int> Clustering(const Corpus& corpus, const Trials& trials, int nparts, Method method) {
  const molva::PreparedCopy copy =
      molva::MakePreparedCopy(ControlOf(trials), corpus.raw(), "PlainClustering");
  testing_support::SeedBoth(trials.seed);
  std::vector<int> prepared_part = method(trials, *copy.mat, nparts);
  molva::ReorderClusters(*copy.mat, nparts, prepared_part);
  std::vector<int> part(static_cast<std::size_t>(corpus.nrows), -1);
  for (std::size_t i = 0; i < prepared_part.size(); ++i) {
    part[static_cast<std::size_t>(copy.rperm[i])] = prepared_part[i];
  }
  return part;
}

}  // namespace

PreparedRows PlainPreparation(const Corpus& corpus) {
  const auto ncols = static_cast<std::size_t>(corpus.ncols);
  PreparedRows rows = RowsOf(corpus);
  ScaleByIdf(rows, ncols);
  MakeUnitRows(rows);
  PreparedRows pruned = Pruned(rows, KeptColumns(rows, ncols));
  MakeUnitRows(pruned);
  return pruned;
}

std::vector<int> PlainBisection(const Corpus& corpus, const Trials& trials, int nparts) {
  return Clustering(corpus, trials, nparts, RepeatedBisection);
}

std::vector<int> PlainDirect(const Corpus& corpus, const Trials& trials, int nparts) {
  return Clustering(corpus, trials, nparts, BestOfTrials);
}

}  // namespace bench
