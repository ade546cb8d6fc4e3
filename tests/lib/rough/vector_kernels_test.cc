// SPDX-License-Identifier: MIT
#include "lib/rough/vector_kernels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "lib/partition/initial_clustering.h"
#include "lib/partition/refine.h"
#include "lib/rough/rounding.h"
#include "tests/testing/matrices.h"
#include "tests/testing/oracles.h"

namespace molva {
namespace {

using testing_support::PlainRefinement;
using testing_support::PlainSeeding;
using testing_support::Prepared;
using testing_support::RandomDocuments;
using testing_support::SeedBoth;

// The sum in double, and how far single precision may be from it in any order.
struct Reference {
  double product = 0, error = 0;
};

Reference DotOf(const RowView& row, const std::vector<float>& lanes, std::size_t stride,
                std::size_t lane) {
  Reference reference;
  double magnitudes = 0;
  for (std::size_t p = 0; p < row.size(); ++p) {
    const auto v = static_cast<double>(row.values[p]);
    const auto c =
        static_cast<double>(lanes[static_cast<std::size_t>(row.columns[p]) * stride + lane]);
    reference.product += v * c;
    magnitudes += std::fabs(v * c);
  }
  reference.error = static_cast<double>(row.size() + 1) * kUnitSingle * magnitudes;
  return reference;
}

TEST(VectorKernels, StayWithinTheErrorOfAnyOrderOfSums) {
  std::mt19937 random(1);
  const auto mat = Prepared(RandomDocuments(4, 120, 90, 5, 12));
  for (const std::size_t stride :
       {1, 2, 4, 8, 16, 24, 32, 40, 48, 56, 64, 104, 128, 136, 200, 264}) {
    std::vector<float> lanes(static_cast<std::size_t>(mat->ncols) * stride);
    for (float& c : lanes) c = static_cast<float>(random() % 1000) / 7.0F - 50;
    std::vector<float> products(stride);
    for (const VectorKernel& kernel : AvailableKernels()) {
      SCOPED_TRACE(std::string(kernel.target) + ", stride " + std::to_string(stride));
      for (int i = 0; i < mat->nrows; ++i) {
        kernel.dot(Row(*mat, i), lanes.data(), stride, products.data());
        for (std::size_t lane = 0; lane < stride; ++lane) {
          const Reference reference = DotOf(Row(*mat, i), lanes, stride, lane);
          ASSERT_NEAR(products[lane], reference.product, reference.error);
        }
      }
    }
  }
}

TEST(VectorKernels, MultiplyFullRowsAllAtOnce) {
  std::mt19937 random(2);
  constexpr int kColumns = 37;
  const auto draw = [&random] { return static_cast<float>(random() % 1000) / 7.0F - 50; };
  std::vector<float> values(kFullRows * kColumns);
  for (float& v : values) v = draw();
  std::vector<int> columns(kColumns);
  std::iota(columns.begin(), columns.end(), 0);
  const float* rows[kFullRows];
  for (std::size_t r = 0; r < kFullRows; ++r) rows[r] = values.data() + r * kColumns;
  for (const std::size_t stride : {8, 16, 24, 32, 40, 56, 64, 96, 104, 136, 264}) {
    std::vector<float> lanes(kColumns * stride);
    for (float& c : lanes) c = draw();
    for (const VectorKernel& kernel : AvailableKernels()) {
      SCOPED_TRACE(std::string(kernel.target) + ", stride " + std::to_string(stride));
      std::vector<float> block(kFullRows * stride);
      float* products[kFullRows];
      for (std::size_t r = 0; r < kFullRows; ++r) products[r] = block.data() + r * stride;
      kernel.dot_full_rows(rows, kColumns, lanes.data(), stride, products);
      for (std::size_t r = 0; r < kFullRows; ++r) {
        const RowView row{columns, {rows[r], kColumns}};
        for (std::size_t lane = 0; lane < stride; ++lane) {
          const Reference reference = DotOf(row, lanes, stride, lane);
          ASSERT_NEAR(products[r][lane], reference.product, reference.error);
        }
      }
    }
  }
}

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr int kNowhere = -1;

// Bounds that are constant, so that each lane gains its base.
struct ConstantBounds {
  explicit ConstantBounds(const std::vector<double>& gains) : base(gains), zeros(gains.size(), 0) {}

  // With or without the numbers that go with d.G.
  BoundLanes Lanes(bool uses_whole) const {
    const double* whole = uses_whole ? zeros.data() : nullptr;
    return {base.size(), base.data(), whole, zeros.data(), whole, zeros.data(), whole};
  }

  std::vector<double> base, zeros;
};

TEST(VectorKernels, FindTheMostOfAllGains) {
  for (const VectorKernel& kernel : AvailableKernels()) {
    for (const std::size_t count : {1, 2, 4, 8, 24, 32}) {
      const std::vector<float> products(count, 0);
      std::vector<double> gains(count);
      for (std::size_t most = 0; most < count; ++most) {
        for (const double value : {-3.0, kInfinite, kNan}) {
          for (const bool uses_whole : {false, true}) {
            SCOPED_TRACE(std::string(kernel.target) + ", " + std::to_string(count) + " lanes");
            ConstantBounds bounds(std::vector<double>(count, -kInfinite));
            bounds.base[count / 2] = -7;
            bounds.base[most] = value;
            const double found = kernel.meet(bounds.Lanes(uses_whole), products.data(), {1, 1, 0},
                                             kNowhere, gains.data());
            EXPECT_TRUE(found == value || (found != found && value != value)) << found;
          }
        }
      }
    }
  }
}

TEST(VectorKernels, FindNothingToGainAtHome) {
  for (const VectorKernel& kernel : AvailableKernels()) {
    for (const std::size_t count : {2, 4, 8, 24}) {
      const std::vector<float> products(count, 0);
      for (std::size_t home = 0; home < count; ++home) {
        for (const double value : {5.0, kInfinite, kNan}) {
          ConstantBounds bounds(std::vector<double>(count, -3));
          bounds.base[home] = value;
          std::vector<double> gains(count, 1);
          EXPECT_EQ(kernel.meet(bounds.Lanes(false), products.data(), {1, 1, 0},
                                static_cast<int>(home), gains.data()),
                    -3)
              << kernel.target;
          for (std::size_t lane = 0; lane < count; ++lane) {
            EXPECT_EQ(gains[lane], lane == home ? -kInfinite : -3);
          }
        }
      }
    }
  }
}

// By hand: x = 2*3 + 1 + 10*0.5 = 12, so without d.G lane 0 gains 1 + 3*12 = 37, and with it 1 +
// 2*4
// + (3 + 5*4) 12 = 285; lane 1 needs a d.G of 4.5, which the row does not have.
TEST(VectorKernels, MeetEveryBoundWithTheRow) {
  const double base[] = {1, 1}, by_whole[] = {2, 2}, by_length[] = {3, 3}, by_both[] = {5, 5};
  const double error[] = {0.5, 0.5}, least_whole[] = {4, 4.5};
  const float products[] = {3, 3};
  for (const VectorKernel& kernel : AvailableKernels()) {
    double gains[2] = {};
    EXPECT_EQ(kernel.meet({2, base, nullptr, by_length, nullptr, error, nullptr}, products,
                          {10, 1, 4}, kNowhere, gains),
              37)
        << kernel.target;
    kernel.meet({2, base, by_whole, by_length, by_both, error, least_whole}, products, {10, 1, 4},
                kNowhere, gains);
    EXPECT_EQ(gains[0], 285) << kernel.target;
    EXPECT_EQ(gains[1], kInfinite) << kernel.target;
  }
}

TEST(VectorKernels, TheLastOneRunsEverywhere) {
  ASSERT_FALSE(AvailableKernels().empty());
  EXPECT_EQ(std::string(AvailableKernels().back().target), "default");
}

TEST(VectorKernels, TheBestOneIsInUse) {
  EXPECT_EQ(CurrentKernel().dot, AvailableKernels().front().dot);
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
TEST(VectorKernels, ClusterLikeThePlainArithmeticOnEveryVectorUnit) {
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
      for (const VectorKernel& kernel : AvailableKernels()) {
        SCOPED_TRACE(std::string(kernel.target) + ", criterion " + std::to_string(code) +
                     ", round " + std::to_string(round));
        SetKernel(kernel);
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
  SetKernel(AvailableKernels().front());
  EXPECT_GT(compared, 1000);
}

}  // namespace
}  // namespace molva
