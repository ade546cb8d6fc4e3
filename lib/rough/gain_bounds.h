// SPDX-License-Identifier: MIT
//
// What a row's coming to a cluster, or its going, can gain at the most: for each of the nine
// criteria a bound of one form, so that one screen serves them all.
//
// A cluster of n rows with squared length q = D.D and similarity s = D.G becomes, with a row d that
// comes (c = 1) or goes (c = -1), one of n + c rows with q + x, x = 2c D.d + d.d, and s + c g, g =
// d.G. Every term of a criterion grows with a power of q + x that a tangent bounds from the side
// that counts: a root from above, as it is concave, and 1/root and 1/q from below, as they are
// convex. Any tangent does; close to what rows at the border between two clusters make of q it is
// close to the curve. So what the term gains is at most
//
//   base + by_whole g + (by_length + by_both g) x
//
// and it grows with x. The terms with a similarity are wanted small, so their gain is the negative;
// for them the bound needs q + x > 0 and s + c g >= 0, without which 1/q turns.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "lib/criteria/terms.h"

namespace molva {

struct GainBound {
  double base = std::numeric_limits<double>::infinity();  // which bounds anything
  double by_whole = 0;
  double by_length = 0;
  double by_both = 0;

  double At(double x, double g) const {
    return base + by_whole * g + (by_length + by_both * g) * x;
  }
  // The most that the four summands can be together.
  double Magnitude(double most_x, double most_g) const {
    return std::fabs(base) + std::fabs(by_whole) * most_g +
           (std::fabs(by_length) + std::fabs(by_both) * most_g) * most_x;
  }
};

// weight times the bound added on.
inline void Add(double weight, const GainBound& bound, GainBound& sum) {
  sum.base += weight * bound.base;
  sum.by_whole += weight * bound.by_whole;
  sum.by_length += weight * bound.by_length;
  sum.by_both += weight * bound.by_both;
}

// A line that bounds a function r of the squared length: r(q + x) >= at_zero + slope x, or <=.
struct Tangent {
  double at_zero;
  double slope;
};

// Of r at the squared length `at`, where it is r_at with the slope r_slope.
inline Tangent TangentAt(double at, double q, double r_at, double r_slope) {
  return {r_at + r_slope * (q - at), r_slope};
}
inline Tangent TangentOfRoot(double at, double q) {
  const double root = std::sqrt(at);
  return TangentAt(at, q, root, 0.5 / root);
}
inline Tangent TangentOfInverseRoot(double at, double q) {
  const double inverse = 1 / std::sqrt(at);
  return TangentAt(at, q, inverse, -0.5 * inverse / at);
}
inline Tangent TangentOfInverse(double at, double q) {
  const double inverse = 1 / at;
  return TangentAt(at, q, inverse, -inverse * inverse);
}

// What W s r(q) loses when it becomes W' (s + c g) r(q + x).
inline GainBound FallingTermGain(double term, double weight_after, double similarity,
                                 const Tangent& r, int change) {
  return {term - weight_after * similarity * r.at_zero, -change * weight_after * r.at_zero,
          -weight_after * similarity * r.slope, -change * weight_after * r.slope};
}

// The bound for a cluster that a row comes to (1) or goes from (-1), by the tangent at a positive
// squared length.
template <typename Term>
GainBound GainBoundOf(const BasicMeasure<double>& c, int change, double at);

template <>
inline GainBound GainBoundOf<I1Term>(const BasicMeasure<double>& c, int change, double) {
  const double after = static_cast<double>(c.size) + change;
  return {c.squared_length / after - I1Term::Of(c), 0, 1 / after, 0};
}

template <>
inline GainBound GainBoundOf<I2Term>(const BasicMeasure<double>& c, int, double at) {
  const Tangent root = TangentOfRoot(at, c.squared_length);
  return {root.at_zero - I2Term::Of(c), 0, root.slope, 0};
}

template <>
inline GainBound GainBoundOf<E1Term>(const BasicMeasure<double>& c, int change, double at) {
  return FallingTermGain(E1Term::Of(c), static_cast<double>(c.size) + change, c.similarity,
                         TangentOfInverseRoot(at, c.squared_length), change);
}

template <>
inline GainBound GainBoundOf<G1Term>(const BasicMeasure<double>& c, int change, double at) {
  return FallingTermGain(G1Term::Of(c), 1, c.similarity, TangentOfInverse(at, c.squared_length),
                         change);
}

template <>
inline GainBound GainBoundOf<G1PrimeTerm>(const BasicMeasure<double>& c, int change, double at) {
  const double after = static_cast<double>(c.size) + change;
  return FallingTermGain(G1PrimeTerm::Of(c), after * after, c.similarity,
                         TangentOfInverse(at, c.squared_length), change);
}

template <>
inline GainBound GainBoundOf<SizedG1Term>(const BasicMeasure<double>& c, int change, double at) {
  return FallingTermGain(SizedG1Term::Of(c), static_cast<double>(c.size) + change, c.similarity,
                         TangentOfInverse(at, c.squared_length), change);
}

}  // namespace molva
