// SPDX-License-Identifier: MIT
#include "lib/rough/dot_kernels.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "lib/partition/initial_clustering.h"
#include "lib/partition/refine.h"
#include "tests/testing/matrices.h"
#include "tests/testing/oracles.h"

namespace molva {
namespace {

using testing_support::PlainRefinement;
using testing_support::PlainSeeding;
using testing_support::Prepared;
using testing_support::RandomDocuments;
using testing_support::SeedBoth;

// Entry order in one sum, or in four sums by turns that end in the first, as the kernels promise.
double PlainDot(const RowView& row, const std::vector<float>& lanes, std::size_t stride,
                std::size_t lane) {
  const std::size_t chains = stride < 8 ? 4 : 1;
  double sums[4] = {};
  const std::size_t whole = row.size() - row.size() % chains;
  for (std::size_t p = 0; p < row.size(); ++p) {
    const double v = static_cast<double>(row.values[p]);
    const double c =
        static_cast<double>(lanes[static_cast<std::size_t>(row.columns[p]) * stride + lane]);
    sums[p < whole ? p % chains : 0] += v * c;
  }
  return chains == 1 ? sums[0] : (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

TEST(DotKernels, GiveTheSameBitsOnEveryVectorUnit) {
  std::mt19937 random(1);
  const auto mat = Prepared(RandomDocuments(4, 120, 90, 5, 12));
  for (const std::size_t stride : {1, 2, 4, 8, 16, 24, 32, 40, 48, 56, 64, 104, 128, 136, 200}) {
    std::vector<float> lanes(static_cast<std::size_t>(mat->ncols) * stride);
    for (float& c : lanes) c = static_cast<float>(random() % 1000) / 7.0F;
    std::vector<double> products(stride);
    for (const DotKernel& kernel : AvailableDotKernels()) {
      SCOPED_TRACE(std::string(kernel.target) + ", stride " + std::to_string(stride));
      for (int i = 0; i < mat->nrows; ++i) {
        kernel.dot(Row(*mat, i), lanes.data(), stride, products.data());
        for (std::size_t lane = 0; lane < stride; ++lane) {
          ASSERT_EQ(products[lane], PlainDot(Row(*mat, i), lanes, stride, lane));
        }
      }
    }
  }
}

TEST(DotKernels, TheLastOneRunsEverywhere) {
  ASSERT_FALSE(AvailableDotKernels().empty());
  EXPECT_EQ(std::string(AvailableDotKernels().back().target), "default");
}

TEST(DotKernels, TheBestOneIsInUse) {
  EXPECT_EQ(CurrentDotKernel(), AvailableDotKernels().front().dot);
}

// A collection where ties abound: few columns, small counts, rows that repeat, zero rows, columns
// that repeat within a row.
testing_support::SparseMatrix TiedRows(std::mt19937& random) {
  testing_support::SparseMatrix matrix;
  matrix.nrows = 20 + static_cast<int>(random() % 30);
  matrix.ncols = 4 + static_cast<int>(random() % 8);
  for (int i = 0; i < matrix.nrows; ++i) {
    const auto entries = static_cast<unsigned>(random() % 5);
    for (unsigned p = 0; p < entries; ++p) {
      matrix.rowind.push_back(
          static_cast<int>(random() % static_cast<std::uint32_t>(matrix.ncols)));
      matrix.rowval.push_back(static_cast<float>(1 + random() % 2));
    }
    matrix.rowptr.push_back(static_cast<int>(matrix.rowind.size()));
  }
  return matrix;
}

testing_support::SparseMatrix AnyRows(std::mt19937& random) {
  if (random() % 3 == 0) return TiedRows(random);
  return RandomDocuments(static_cast<std::uint32_t>(random()), 30 + static_cast<int>(random() % 60),
                         20 + static_cast<int>(random() % 80), 1 + static_cast<int>(random() % 6),
                         2 + static_cast<int>(random() % 10));
}

// Seeding and refinement against the plain arithmetic on thousands of small matrices, every
// criterion on every vector unit.
TEST(DotKernels, ClusterLikeThePlainArithmeticOnEveryVectorUnit) {
  std::mt19937 random(20261121);
  int compared = 0;
  for (int round = 0; round < 150; ++round) {
    const auto mat = Prepared(AnyRows(random));
    if (mat->nrows < 2) continue;
    const int nparts =
        2 + static_cast<int>(random() % static_cast<unsigned>(std::min(11, mat->nrows - 1)));
    const int seed = static_cast<int>(random() % 100000);
    for (int code = 1; code <= 9; ++code) {
      std::vector<int> plain(static_cast<std::size_t>(mat->nrows));
      SeedBoth(seed);
      PlainSeeding(*mat, nparts, plain);
      const float plain_quality = PlainRefinement(code, *mat, nparts, 10, plain);
      for (const DotKernel& kernel : AvailableDotKernels()) {
        SCOPED_TRACE(std::string(kernel.target) + ", criterion " + std::to_string(code) +
                     ", round " + std::to_string(round));
        SetDotKernel(kernel.dot);
        std::vector<int> part(plain.size());
        SeedBoth(seed);
        InitialClustering(*mat, nparts, part);
        const float quality =
            RefineClusteringKWay({.crfun = code, .niter = 10}, *mat, nparts, part);
        ASSERT_EQ(part, plain);
        ASSERT_TRUE(quality == plain_quality ||
                    (quality != quality && plain_quality != plain_quality));
        ++compared;
      }
    }
  }
  SetDotKernel(AvailableDotKernels().front().dot);
  EXPECT_GT(compared, 1000);
}

}  // namespace
}  // namespace molva
