// SPDX-License-Identifier: MIT
//
// What one cluster adds to a criterion. Six terms make all nine criteria, in refinement, for a
// finished clustering and in the gains of merging. A term is shared; the order of a sum of terms
// is not, because its last bit decides ties.
#pragma once

#include <cmath>
#include <cstdint>

#include "lib/support/wide.h"

namespace molva {

// A cluster of n rows with composite D, as a term sees it. G is the composite of all rows.
template <typename Number>
struct BasicMeasure {
  std::int64_t size;      // n
  Number squared_length;  // D.D
  Number similarity;      // D.G, the cluster against the whole; not read by I1Term and I2Term
};
using ClusterMeasure = BasicMeasure<Wide>;

// D.D / n
struct I1Term {
  static constexpr bool kUsesSimilarity = false;
  template <typename Number>
  static Number Of(const BasicMeasure<Number>& c) {
    return c.squared_length / static_cast<Number>(c.size);
  }
};

// |D|
struct I2Term {
  static constexpr bool kUsesSimilarity = false;
  template <typename Number>
  static Number Of(const BasicMeasure<Number>& c) {
    return Sqrt(c.squared_length);
  }
};

// n D.G / |D|
struct E1Term {
  static constexpr bool kUsesSimilarity = true;
  template <typename Number>
  static Number Of(const BasicMeasure<Number>& c) {
    return static_cast<Number>(c.size) * c.similarity / Sqrt(c.squared_length);
  }
};

// D.G / D.D
struct G1Term {
  static constexpr bool kUsesSimilarity = true;
  template <typename Number>
  static Number Of(const BasicMeasure<Number>& c) {
    return c.similarity / c.squared_length;
  }
};

// n^2 D.G / D.D
struct G1PrimeTerm {
  static constexpr bool kUsesSimilarity = true;
  template <typename Number>
  static Number Of(const BasicMeasure<Number>& c) {
    // As a product of integers it would overflow for weights near the limit of an int.
    const auto n = static_cast<Number>(c.size);
    return n * n * c.similarity / c.squared_length;
  }
};

// n D.G / D.D
struct SizedG1Term {
  static constexpr bool kUsesSimilarity = true;
  template <typename Number>
  static Number Of(const BasicMeasure<Number>& c) {
    return static_cast<Number>(c.size) * c.similarity / c.squared_length;
  }
};

}  // namespace molva
