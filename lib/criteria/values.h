// SPDX-License-Identifier: MIT
//
// The criterion of a finished clustering, from the measures of its clusters. The formulas are those
// that refinement optimises; what is rounded on the way is not, as here single sums, and the sum of
// lengths wherever it occurs, are brought to single precision after every term.
#pragma once

#include <cmath>

#include "lib/criteria/terms.h"
#include "lib/support/span.h"
#include "lib/support/wide.h"

namespace molva {

struct ClusterMeasures {
  Span<const int> pwgts;
  Span<const float> dnorms;
  Span<const float> csim;
  std::size_t size() const { return pwgts.size(); }
  ClusterMeasure operator[](std::size_t k) const { return {pwgts[k], dnorms[k], csim[k]}; }
};

template <typename Term>
struct WideSum {
  static Wide Of(const ClusterMeasures& clusters) {
    Wide sum = 0;
    for (std::size_t k = 0; k < clusters.size(); ++k) sum += Term::Of(clusters[k]);
    return sum;
  }
};

template <typename Term>
struct RoundedSum {
  static float Of(const ClusterMeasures& clusters) {
    float sum = 0;
    for (std::size_t k = 0; k < clusters.size(); ++k) {
      sum = static_cast<float>(sum + Term::Of(clusters[k]));
    }
    return sum;
  }
};

template <typename SumA, typename SumB>
struct RatioOf {
  static Wide Of(const ClusterMeasures& clusters) {
    return SumA::Of(clusters) / SumB::Of(clusters);
  }
};

// The fourth root is taken as two successive square roots here.
template <typename SumB, typename SumA>
struct ProductWithFourthRoot {
  static Wide Of(const ClusterMeasures& clusters) {
    return SumB::Of(clusters) * Sqrt(Sqrt(SumA::Of(clusters)));
  }
};

}  // namespace molva
