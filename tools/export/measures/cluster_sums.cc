// SPDX-License-Identifier: MIT
#include "tools/export/measures/cluster_sums.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace mardle::exporting {
namespace {

struct Release {
  void operator()(void* array) const { MOLVA_Free(array); }
};
template <typename T>
using Handed = std::unique_ptr<T[], Release>;

// The prepared matrix, its columns called by the caller's numbers.
struct PreparedRows {
  explicit PreparedRows(const EngineInput& in)
      : place(static_cast<std::size_t>(in.nrows), -1), cperm(static_cast<std::size_t>(in.ncols)) {
    std::vector<int> rperm(static_cast<std::size_t>(in.nrows));
    int* starts = nullptr;
    int* columns = nullptr;
    float* values = nullptr;
    int nrows = 0;
    int ncols = 0;
    MOLVA_InternalizeMatrix(in.nrows, in.ncols, in.rowptr, in.rowind, in.rowval, in.simfun,
                            in.rowmodel, in.colmodel, in.prune, &nrows, &ncols, &starts, &columns,
                            &values, rperm.data(), cperm.data());
    rowptr.reset(starts);
    rowind.reset(columns);
    rowval.reset(values);
    for (int row = 0; row < nrows; ++row) {
      place[static_cast<std::size_t>(rperm[static_cast<std::size_t>(row)])] = row;
    }
  }

  Handed<int> rowptr, rowind;
  Handed<float> rowval;
  std::vector<int> place;  // the prepared row of each row, -1 for one that is dropped
  std::vector<int> cperm;
};

// Calls visit(column, value) for the entries of a row.
template <typename Visit>
void ForEachEntry(const PreparedRows& prepared, int i, Visit visit) {
  const int row = prepared.place[static_cast<std::size_t>(i)];
  if (row < 0) return;
  for (int p = prepared.rowptr[row]; p < prepared.rowptr[row + 1]; ++p) {
    visit(prepared.cperm[static_cast<std::size_t>(prepared.rowind[p])],
          static_cast<double>(prepared.rowval[p]));
  }
}

double LengthOf(std::span<const SumEntry> entries) {
  double squares = 0;
  for (const SumEntry& entry : entries) squares += entry.value * entry.value;
  return std::sqrt(squares);
}

double Scale(double length) { return length > 0 ? 1 / length : 0; }

}  // namespace

ClusterSums::ClusterSums(const EngineInput& in, const ClusterRows& rows)
    : total_(static_cast<std::size_t>(in.ncols), 0) {
  const PreparedRows prepared(in);
  std::vector<double> sums(total_.size(), 0);
  for (int k = 0; k < rows.nclusters(); ++k) {
    for (const int i : rows[k]) {
      ForEachEntry(prepared, i,
                   [&](int j, double value) { sums[static_cast<std::size_t>(j)] += value; });
    }
    for (const int i : rows[k]) {
      ForEachEntry(prepared, i, [&](int j, double) {
        double& sum = sums[static_cast<std::size_t>(j)];
        if (sum != 0) entries_.push_back({j, sum});
        total_[static_cast<std::size_t>(j)] += sum;
        sum = 0;  // a column is taken once
      });
    }
    begins_.push_back(entries_.size());
    lengths_.push_back(LengthOf((*this)[k]));
  }
  double total_square = 0;
  for (const double value : total_) total_square += value * value;
  for (int k = 0; k < rows.nclusters(); ++k) {
    const auto at = static_cast<std::size_t>(k);
    const std::span<SumEntry> entries{entries_.data() + begins_[at], begins_[at + 1] - begins_[at]};
    std::sort(entries.begin(), entries.end(),
              [](const SumEntry& a, const SumEntry& b) { return a.column < b.column; });
    double rest_square = total_square;
    for (SumEntry& entry : entries) {
      const double total = total_[static_cast<std::size_t>(entry.column)];
      const double rest = total - entry.value;
      rest_square += rest * rest - total * total;
      entry.value *= Scale(lengths_[at]);
    }
    rest_lengths_.push_back(std::sqrt(std::max(rest_square, 0.0)));
  }
}

double ClusterSums::ValueOf(int k, int j) const {
  const std::span<const SumEntry> entries = (*this)[k];
  const auto found =
      std::lower_bound(entries.begin(), entries.end(), j,
                       [](const SumEntry& entry, int column) { return entry.column < column; });
  return found != entries.end() && found->column == j ? found->value : 0;
}

bool ClusterSums::IsWeaker(int k, int j) const {
  const auto at = static_cast<std::size_t>(k);
  const double inside = ValueOf(k, j);
  const double rest = total_[static_cast<std::size_t>(j)] - inside * lengths_[at];
  return inside < rest * Scale(rest_lengths_[at]);
}

namespace {

// Calls visit(k, products) for every cluster with the products of its unit vector and all others.
template <typename Visit>
void ForEachProducts(const ClusterSums& sums, Visit visit) {
  std::vector<std::vector<Neighbour>> holders(static_cast<std::size_t>(sums.ncols()));
  for (int k = 0; k < sums.nclusters(); ++k) {
    for (const SumEntry& entry : sums[k]) {
      holders[static_cast<std::size_t>(entry.column)].push_back({k, entry.value});
    }
  }
  std::vector<double> products(static_cast<std::size_t>(sums.nclusters()));
  for (int k = 0; k < sums.nclusters(); ++k) {
    std::fill(products.begin(), products.end(), 0);
    for (const SumEntry& entry : sums[k]) {
      for (const Neighbour& other : holders[static_cast<std::size_t>(entry.column)]) {
        products[static_cast<std::size_t>(other.cluster)] += entry.value * other.similarity;
      }
    }
    visit(k, std::span<const double>(products));
  }
}

}  // namespace

std::vector<std::vector<Neighbour>> NearestClusters(const ClusterSums& sums, std::size_t count) {
  std::vector<std::vector<Neighbour>> nearest;
  ForEachProducts(sums, [&](int k, std::span<const double> products) {
    std::vector<Neighbour>& list = nearest.emplace_back();
    for (int other = 0; other < sums.nclusters(); ++other) {
      const double product = products[static_cast<std::size_t>(other)];
      if (other != k && std::isfinite(product) && product != 0) list.push_back({other, product});
    }
    const auto end = list.begin() + static_cast<std::ptrdiff_t>(std::min(count, list.size()));
    std::partial_sort(list.begin(), end, list.end(), [](const Neighbour& a, const Neighbour& b) {
      return a.similarity != b.similarity ? a.similarity > b.similarity : a.cluster < b.cluster;
    });
    list.erase(end, list.end());
    list.shrink_to_fit();
  });
  return nearest;
}

std::vector<float> ProductsOfSums(const ClusterSums& sums) {
  std::vector<float> table;
  table.reserve(static_cast<std::size_t>(sums.nclusters()) *
                static_cast<std::size_t>(sums.nclusters()));
  ForEachProducts(sums, [&](int k, std::span<const double> products) {
    for (int other = 0; other < sums.nclusters(); ++other) {
      table.push_back(static_cast<float>(products[static_cast<std::size_t>(other)] *
                                         sums.Length(k) * sums.Length(other)));
    }
  });
  return table;
}

}  // namespace mardle::exporting
