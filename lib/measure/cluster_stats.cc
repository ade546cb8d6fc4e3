// SPDX-License-Identifier: MIT
//
// Every per-cluster and per-row value is single precision after each step. Clusters of one row, of
// no row and of all rows divide by zero; infinite and not-a-number results are wanted there.
#include "lib/measure/cluster_stats.h"

#include <cmath>

#include "lib/matrix/composites.h"
#include "lib/support/narrowing.h"
#include "lib/support/team.h"
#include "lib/support/vectors.h"
#include "lib/support/wide.h"

namespace molva {
namespace {

constexpr int kRowsOfAPiece = 1024;

float Rounded(Wide value) { return static_cast<float>(value); }

float Quotient(Wide value, std::int64_t count) { return Rounded(value / static_cast<Wide>(count)); }

// isim[k] = D_k.D_k / n_k^2, esim[k] = (D_k.G - D_k.D_k) / ((N - n_k) n_k)
void MeasureClusters(const Rows<float>& centers, Span<const float> gcenter, int nrows,
                     const ClusterStats& stats) {
  const auto measure = [&](std::int64_t k) {
    const int size = stats.pwgts[k];
    const float internal = DotFloats(centers[k], centers[k]);
    const float external = DotFloats(centers[k], gcenter) - internal;
    stats.isim[k] = Quotient(internal, CountProduct(size, size));
    stats.esim[k] = Quotient(external, CountProduct(nrows - size, size));
  };
  ShareOutOne(static_cast<std::int64_t>(stats.pwgts.size()), measure);
}

struct RowAverages {
  float internal, external;
};

struct RoughAverages {
  RoughSum internal, external;
};

// The same sums in double.
RoughAverages MeasureRoughly(const RowView& row, Span<const float> composite,
                             Span<const float> whole) {
  const auto terms = static_cast<double>(row.size());
  RoughAverages sums{{0, 0, terms}, {0, 0, terms}};
  for (std::size_t p = 0; p < row.size(); ++p) {
    const auto v = static_cast<double>(row.values[p]);
    const auto own = static_cast<double>(composite[row.columns[p]]);
    const auto all = static_cast<double>(whole[row.columns[p]]);
    sums.internal.Add(v * own);
    sums.external.Add((all - own) * v);
  }
  return sums;
}

// The average similarity of a row to its own cluster, itself included, and to all other rows.
RowAverages MeasureRow(const RowView& row, Span<const float> composite, Span<const float> whole,
                       int size, int nrows) {
  const RoughAverages rough = MeasureRoughly(row, composite, whole);
  const Narrowed rough_internal = NarrowedQuotient(rough.internal, size);
  const Narrowed rough_external = NarrowedQuotient(rough.external, nrows - size);
  if (rough_internal.is_certain && rough_external.is_certain) {
    return {rough_internal.value, rough_external.value};
  }
  Wide internal = 0;
  Wide external = 0;
  for (std::size_t p = 0; p < row.size(); ++p) {
    const int j = row.columns[p];
    const Wide v = row.values[p];
    internal += v * composite[j];
    external += (static_cast<Wide>(whole[j]) - composite[j]) * v;
  }
  return {Quotient(internal, size), Quotient(external, nrows - size)};
}

void AddSquaredDifference(float a, float b, float& sum) {
  const Wide difference = static_cast<Wide>(a) - b;
  sum = Rounded(sum + difference * difference);
}

// The external deviation is divided by n_k - 1 as well, on purpose.
void FinishDeviations(const ClusterStats& stats) {
  for (std::size_t k = 0; k < stats.pwgts.size(); ++k) {
    const Wide degrees = stats.pwgts[k] - 1;
    stats.isdev[k] = Rounded(Sqrt(stats.isdev[k] / degrees));
    stats.esdev[k] = Rounded(Sqrt(stats.esdev[k] / degrees));
  }
}

float ZScore(float value, float mean, float deviation) {
  return Rounded((static_cast<Wide>(value) - mean) / deviation);
}

}  // namespace

void GetClusterStats(const PreparedMatrix& mat, Span<const int> part, const ClusterStats& stats) {
  const auto nparts = static_cast<int>(stats.pwgts.size());
  Rows<float> centers = AllocFloatMatrix(nparts, mat.ncols, 0, "GetClusterStats: centers");
  Array<float> gcenter = AllocFloatsSet(mat.ncols, 0, "GetClusterStats: gcenter");
  Array<float> isims = AllocFloatsSet(mat.nrows, 0, "GetClusterStats: isims");
  Array<float> esims = AllocFloatsSet(mat.nrows, 0, "GetClusterStats: esims");

  SetInts(stats.pwgts, 0);
  AccumulateComposites(mat, part, stats.pwgts, centers, gcenter);
  MeasureClusters(centers, gcenter, mat.nrows, stats);

  SetFloats(stats.isdev, 0);
  SetFloats(stats.esdev, 0);
  const auto for_each_clustered_row_of = [&](std::int64_t first, std::int64_t last, auto&& visit) {
    for (std::int64_t i = first; i < last; ++i) {
      if (part[i] >= 0 && part[i] < nparts) visit(i, part[i]);
    }
  };
  const auto rows = static_cast<std::int64_t>(part.size());
  const auto for_each_clustered_row = [&](auto&& visit) {
    for_each_clustered_row_of(0, rows, visit);
  };
  ShareOut(rows, kRowsOfAPiece, [&](std::int64_t first, std::int64_t last, int) {
    for_each_clustered_row_of(first, last, [&](std::int64_t i, int k) {
      const RowAverages averages =
          MeasureRow(Row(mat, static_cast<int>(i)), centers[k], gcenter, stats.pwgts[k], mat.nrows);
      isims[i] = averages.internal;
      esims[i] = averages.external;
    });
  });
  for_each_clustered_row([&](std::int64_t i, int k) {
    AddSquaredDifference(stats.isim[k], isims[i], stats.isdev[k]);
    AddSquaredDifference(stats.esim[k], esims[i], stats.esdev[k]);
  });
  FinishDeviations(stats);

  for_each_clustered_row([&](std::int64_t i, int k) {
    if (!stats.izscores.empty())
      stats.izscores[i] = ZScore(isims[i], stats.isim[k], stats.isdev[k]);
    if (!stats.ezscores.empty())
      stats.ezscores[i] = ZScore(esims[i], stats.esim[k], stats.esdev[k]);
  });
}

}  // namespace molva
