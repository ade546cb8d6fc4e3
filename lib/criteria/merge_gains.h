// SPDX-License-Identifier: MIT
//
// What an item adds to a criterion, and what merging two adds. A criterion that is minimised enters
// negated, so that a larger gain is always a better merge and the criterion only grows by the
// gains.
#pragma once

#include <cmath>

#include "lib/criteria/terms.h"
#include "lib/support/wide.h"

namespace molva {

template <typename CriterionTerm>
struct Maximised {
  static constexpr bool kIsSum = true;
  using Term = CriterionTerm;
  static Wide Signed(Wide term) { return term; }
  // From the terms of the two as one and of each alone.
  template <typename Number>
  static Number Gain(Number merged, Number i, Number j) {
    return merged - (i + j);
  }
};

// The difference is negated as a whole: a gain of nothing then is -0.
template <typename CriterionTerm>
struct Minimised {
  static constexpr bool kIsSum = true;
  using Term = CriterionTerm;
  static Wide Signed(Wide term) { return -term; }
  template <typename Number>
  static Number Gain(Number merged, Number i, Number j) {
    return -(merged - (i + j));
  }
};

// A criterion that is a ratio of two sums: its value is global, and every pair is tried.
template <typename NumeratorTerm, typename DenominatorTerm>
struct RatioMerging {
  static constexpr bool kIsSum = false;
  using Numerator = NumeratorTerm;
  using Denominator = DenominatorTerm;
};

// Trees are not built under the criterion.
struct NoMerging {
  static constexpr bool kIsSum = false;
};

}  // namespace molva
