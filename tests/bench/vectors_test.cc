// SPDX-License-Identifier: MIT
#include "bench/vectors.h"

#include <gtest/gtest.h>

#include <numeric>

namespace {

using bench::MakeVectors;
using bench::Vectors;

// Rows have length 1.
double Cosine(const Vectors& vectors, int one, int other) {
  const auto row = [&](int i) { return vectors.cells.begin() + i * vectors.ncols; };
  return std::inner_product(row(one), row(one) + vectors.ncols, row(other), 0.0);
}

// The average over all pairs of rows that do, or do not, share their centre.
double MeanCosine(const Vectors& vectors, bool same_center) {
  double sum = 0;
  int pairs = 0;
  const auto nrows = static_cast<int>(vectors.center.size());
  for (int one = 0; one < nrows; ++one) {
    for (int other = 0; other < one; ++other) {
      const bool same = vectors.center[static_cast<std::size_t>(one)] ==
                        vectors.center[static_cast<std::size_t>(other)];
      if (same != same_center) continue;
      sum += Cosine(vectors, one, other);
      ++pairs;
    }
  }
  return sum / pairs;
}

TEST(Vectors, AreTheSameForTheSameSeedAndOthersForAnother) {
  EXPECT_EQ(MakeVectors({.nrows = 20}).cells, MakeVectors({.nrows = 20}).cells);
  EXPECT_NE(MakeVectors({.nrows = 20}).cells, MakeVectors({.nrows = 20, .seed = 2}).cells);
}

TEST(Vectors, RowsHaveLengthOne) {
  const Vectors vectors = MakeVectors({.nrows = 50});
  ASSERT_EQ(vectors.cells.size(), 50U * 384U);
  for (int i = 0; i < 50; ++i) EXPECT_NEAR(Cosine(vectors, i, i), 1, 1e-6);
}

// Of the variance of a cell, 3 in all, centres and spread bring 1 each, what all rows share 0.6,
// and noise 0.4; rows of a centre have 1.6 in common, others 0.6. Single centres differ from that,
// hence the width.
TEST(Vectors, RowsOfACenterAreMoreAlikeThanOthers) {
  const Vectors vectors = MakeVectors({.nrows = 600, .centers = 10, .spread = 1});
  EXPECT_NEAR(MeanCosine(vectors, true), 1.6 / 3, 0.1);
  EXPECT_NEAR(MeanCosine(vectors, false), 0.6 / 3, 0.1);
}

TEST(Vectors, AreWrittenInTheDenseFormat) {
  const Vectors vectors{.ncols = 2, .cells = {0.6F, -0.8F, 1, 0}, .center = {0, 0}};
  EXPECT_EQ(bench::HeaderLine(vectors), "2 2\n");
  EXPECT_EQ(bench::RowLine(vectors, 0), "0.6 -0.8\n");
  EXPECT_EQ(bench::RowLine(vectors, 1), "1 0\n");
}

}  // namespace
