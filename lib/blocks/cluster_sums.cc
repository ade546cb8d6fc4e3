// SPDX-License-Identifier: MIT
#include "lib/blocks/cluster_sums.h"

#include <type_traits>

#include "lib/blocks/fixed_point.h"
#include "lib/criteria/table.h"
#include "lib/support/alloc.h"
#include "lib/support/team.h"

namespace molva {
namespace {

constexpr int kColumnsOfAPiece = 4096;

// The sums of all rows.
Array<std::int64_t> WholeOf(const ClusterSums& clusters) {
  auto whole = Array<std::int64_t>::Zeroed(clusters.ncols, "WholeOf: whole");
  for (int k = 0; k < clusters.nparts; ++k) {
    const Span<const std::int64_t> sums = clusters[k];
    for (std::size_t j = 0; j < sums.size(); ++j) AddUnits(sums[j], whole[j]);
  }
  return whole;
}

Wide Product(Span<const std::int64_t> a, Span<const std::int64_t> b) {
  Wide sum = 0;
  for (std::size_t j = 0; j < a.size(); ++j) sum += FromUnits(a[j]) * FromUnits(b[j]);
  return sum;
}

}  // namespace

void MeasureSums(const ClusterSums& clusters, Span<double> dnorms, Span<double> csim) {
  const Array<std::int64_t> whole = WholeOf(clusters);
  ShareOutOne(clusters.nparts, [&](std::int64_t at) {
    const int k = static_cast<int>(at);
    dnorms[k] = static_cast<double>(Product(clusters[k], clusters[k]));
    csim[k] = static_cast<double>(Product(clusters[k], {whole.data(), clusters.ncols}));
  });
}

void MultiplySums(const ClusterSums& clusters, Span<float> smat) {
  const std::int64_t n = clusters.nparts;
  ShareOutOne(n, [&](std::int64_t k) {
    for (std::int64_t l = k; l < n; ++l) {
      const Wide product = Product(clusters[static_cast<int>(k)], clusters[static_cast<int>(l)]);
      smat[k * n + l] = smat[l * n + k] = static_cast<float>(product);
    }
  });
}

void MakeView(const ClusterSums& clusters, double scale, Span<float> composites,
              Span<float> whole) {
  const Array<std::int64_t> all = WholeOf(clusters);
  const auto scaled = [scale](std::int64_t units) {
    return static_cast<float>(FromUnits(units) * scale);
  };
  ShareOut(clusters.ncols, kColumnsOfAPiece, [&](std::int64_t first, std::int64_t last, int) {
    for (std::int64_t j = first; j < last; ++j) {
      whole[j] = scaled(all[j]);
      for (int k = 0; k < clusters.nparts; ++k) {
        composites[j * clusters.nparts + k] = scaled(clusters[k][j]);
      }
    }
  });
}

double CriterionOfSums(int crfun, Span<const std::int64_t> pwgts, Span<const double> dnorms,
                       Span<const double> csim) {
  return WithCriterion(crfun, [&](const auto& criterion) {
    typename std::decay_t<decltype(criterion)>::Objective objective;
    using Objective = decltype(objective);
    for (std::size_t k = 0; k < pwgts.size(); ++k) {
      objective.AddCluster(Objective::TermsOf({pwgts[k], dnorms[k], csim[k]}));
    }
    objective.Start();
    return static_cast<double>(objective.Progress(1));
  });
}

}  // namespace molva
