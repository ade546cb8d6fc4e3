// SPDX-License-Identifier: MIT
#include "lib/rough/gain_bounds.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "lib/support/wide.h"

namespace molva {
namespace {

// What the term itself gains, in wide arithmetic: more of those that are wanted large, less of the
// others.
template <typename Term>
Wide TrueGain(const BasicMeasure<double>& c, int change, double x, double g) {
  const ClusterMeasure before{c.size, c.squared_length, c.similarity};
  const ClusterMeasure after{c.size + change, static_cast<Wide>(c.squared_length) + x,
                             static_cast<Wide>(c.similarity) + change * static_cast<Wide>(g)};
  const Wide gain = Term::Of(after) - Term::Of(before);
  return Term::kUsesSimilarity ? -gain : gain;
}

template <typename Term>
void ExpectBounded() {
  std::mt19937 random(7);
  const auto uniform = [&random] { return static_cast<double>(random()) / 0x1p32; };
  for (int round = 0; round < 100000; ++round) {
    const int change = random() % 2 == 0 ? 1 : -1;
    BasicMeasure<double> c{2 + static_cast<int>(random() % 1000), 0, 0};
    c.squared_length = std::exp(20 * uniform() - 6);
    c.similarity = std::exp(20 * uniform() - 6);
    // From nearly all of the squared length and the similarity gone to several times as much.
    const double x = c.squared_length * (4 * uniform() - 0.999);
    const double g = change * c.similarity * (4 * uniform() - 0.999);
    const auto gain = static_cast<double>(TrueGain<Term>(c, change, x, g));
    // Tangents from half the squared length to twice as much.
    const double at = c.squared_length * (0.5 + 1.5 * uniform());
    const GainBound bound = GainBoundOf<Term>(c, change, at);
    const double room = 1e-12 * (std::fabs(gain) + std::fabs(Term::Of(c)) +
                                 bound.Magnitude(std::fabs(x), std::fabs(g)));
    ASSERT_GE(bound.At(x, g) + room, gain);
    // Where the tangent touches it is what the term gains.
    const double x_at = at - c.squared_length;
    ASSERT_NEAR(bound.At(x_at, g), static_cast<double>(TrueGain<Term>(c, change, x_at, g)),
                1e-9 * (std::fabs(Term::Of(c)) + bound.Magnitude(std::fabs(x_at), std::fabs(g))));
  }
}

TEST(GainBounds, AreNeverBelowWhatATermGains) {
  ExpectBounded<I1Term>();
  ExpectBounded<I2Term>();
  ExpectBounded<E1Term>();
  ExpectBounded<G1Term>();
  ExpectBounded<G1PrimeTerm>();
  ExpectBounded<SizedG1Term>();
}

// n = 2, q = 4, s = 6: the root 2 becomes sqrt(9) = 3 with x = 5, and the tangent gives 2 + 5/4.
TEST(GainBounds, FollowTheTangentOfARoot) {
  EXPECT_EQ(GainBoundOf<I2Term>({2, 4, 6}, 1, 4).At(5, 0), 1.25);
}

// D.D / n: 4/2 becomes (4 + 5)/3, of which nothing is lost.
TEST(GainBounds, AreExactForTheMeanSquare) {
  EXPECT_NEAR(GainBoundOf<I1Term>({2, 4, 6}, 1, 4).At(5, 0), 1, 1e-15);
  EXPECT_NEAR(GainBoundOf<I1Term>({2, 4, 6}, -1, 4).At(-3, 0), 1 - 2, 1e-15);
}

// D.G / D.D: 6/4 becomes (6 + 2)/(4 + 2) = 1.333, and the tangent of 1/q gives 8 (1/4 - 2/16) = 1.
TEST(GainBounds, FollowTheTangentOfAnInverse) {
  EXPECT_EQ(GainBoundOf<G1Term>({2, 4, 6}, 1, 4).At(2, 2), 1.5 - 1);
}

TEST(GainBounds, AreWithoutEndUntilTheyAreMade) {
  EXPECT_EQ(GainBound().At(3, 4), std::numeric_limits<double>::infinity());
}

}  // namespace
}  // namespace molva
