// SPDX-License-Identifier: MIT
//
// What the sums of clusters tell: lengths, similarities, the value of a criterion, and what batch
// passes judge rows against. All of it is computed in one order from integers, so it is the same
// wherever the sums come from.
#pragma once

#include <cstdint>

#include "lib/support/span.h"

namespace molva {

// The sums of nparts clusters over ncols columns, in units, cluster by cluster.
struct ClusterSums {
  int nparts;
  int ncols;
  const std::int64_t* sums;
  Span<const std::int64_t> operator[](int k) const {
    return {sums + std::int64_t{k} * ncols, ncols};
  }
};

// dnorms[k] = D_k.D_k, csim[k] = D_k.G
void MeasureSums(const ClusterSums& clusters, Span<double> dnorms, Span<double> csim);

// smat[k][l] = D_k.D_l
void MultiplySums(const ClusterSums& clusters, Span<float> smat);

// The composites times `scale`, column by column with all clusters side by side, and their sum.
void MakeView(const ClusterSums& clusters, double scale, Span<float> composites, Span<float> whole);

// The criterion by its formula, in wide arithmetic.
double CriterionOfSums(int crfun, Span<const std::int64_t> pwgts, Span<const double> dnorms,
                       Span<const double> csim);

}  // namespace molva
