// SPDX-License-Identifier: MIT
#include "lib/matrix/similarities.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lib/matrix/prepare.h"
#include "tests/testing/allocation.h"
#include "tests/testing/files.h"
#include "tests/testing/matrices.h"
#include "tests/testing/oracles.h"

namespace molva {
namespace {

using testing_support::BlockNames;
using testing_support::CompositeOf;
using testing_support::Dot;
using testing_support::OutputOf;
using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::RandomDocuments;
using testing_support::RandomPart;
using Floats = std::vector<float>;
using Ints = std::vector<int>;
using Names = std::vector<std::string>;

// A square matrix whose elements are 77 until they are written.
Floats Square(std::size_t stride) { return Floats(stride * stride, 77); }

// Composites (2,1), (0,2) and (3,0).
TEST(ClusterSimilarities, AreTheProductsOfComposites) {
  const auto mat = PreparedOf({{1, 0}, {1, 0}, {0, 1}, {0, 2}, {3, 0}});
  Floats smat = Square(3);
  Ints pwgts = {5, 5, 5};
  ComputeCluster2ClusterSimilarities(*mat, 3, Ints{0, 0, 0, 1, 2}, smat.data(), 3, pwgts);
  EXPECT_EQ(smat, (Floats{5, 2, 6, 2, 4, 0, 6, 0, 9}));
  EXPECT_EQ(pwgts, (Ints{3, 1, 1}));
}

TEST(ClusterSimilarities, FillTheLeadingBlockOfAWiderMatrix) {
  const auto mat = PreparedOf({{1, 0}, {1, 1}});
  Floats smat = Square(3);
  Ints pwgts(2);
  ComputeCluster2ClusterSimilarities(*mat, 2, Ints{0, 1}, smat.data(), 3, pwgts);
  EXPECT_EQ(smat, (Floats{1, 1, 77, 1, 2, 77, 77, 77, 77}));
}

TEST(ClusterSimilarities, AreZeroForAnEmptyCluster) {
  const auto mat = PreparedOf({{1, 0}, {0, 1}});
  Floats smat = Square(2);
  Ints pwgts(2);
  ComputeCluster2ClusterSimilarities(*mat, 2, Ints{1, 1}, smat.data(), 2, pwgts);
  EXPECT_EQ(smat, (Floats{0, 0, 0, 2}));
  EXPECT_EQ(pwgts, (Ints{0, 2}));
}

TEST(ClusterSimilarities, SkipRowsWithoutACluster) {
  const auto mat = PreparedOf({{1, 0}, {1, 0}, {1, 0}});
  Floats smat = Square(1);
  Ints pwgts(1);
  ComputeCluster2ClusterSimilarities(*mat, 1, Ints{0, -1, 1}, smat.data(), 1, pwgts);
  EXPECT_EQ(smat[0], 1);
  EXPECT_EQ(pwgts[0], 1);
}

TEST(ClusterSimilarities, EqualThoseComputedFromScratch) {
  const auto mat = Prepared(RandomDocuments(5, 60, 50, 4, 8));
  const Ints part = RandomPart(5, mat->nrows, 6);
  Floats smat = Square(6);
  Ints pwgts(6);
  ComputeCluster2ClusterSimilarities(*mat, 6, part, smat.data(), 6, pwgts);
  for (int k = 0; k < 6; ++k) {
    for (int l = 0; l < 6; ++l) {
      const Wide product = Dot(CompositeOf(*mat, part, k), CompositeOf(*mat, part, l));
      EXPECT_NEAR(smat[static_cast<std::size_t>(6 * k + l)], static_cast<double>(product), 1e-4);
    }
  }
}

TEST(ClusterSimilarities, NameTheBlockOfTheComposites) {
  const auto mat = PreparedOf({{1, 0}, {1, 0}});
  Floats smat = Square(1);
  Ints pwgts(1);
  const std::string name = "ComputeCluster2ClusterSimilarities: centers";
  EXPECT_EQ(BlockNames([&] {
              ComputeCluster2ClusterSimilarities(*mat, 1, Ints{0, 0}, smat.data(), 1, pwgts);
            }),
            (Names{name, name}));
}

TEST(RowSimilarities, AreTheProductsOfRows) {
  const auto mat = PreparedOf({{1, 2, 0}, {0, 0, 0}, {0, 3, -1}});
  Floats smat = Square(3);
  ComputeRowSimilarities({}, *mat, smat.data(), 3);
  EXPECT_EQ(smat, (Floats{5, 0, 6, 0, 0, 0, 6, 0, 10}));
}

TEST(RowSimilarities, FillTheLeadingBlockOfAWiderMatrix) {
  const auto mat = PreparedOf({{1, 0}, {1, 1}});
  Floats smat = Square(3);
  ComputeRowSimilarities({}, *mat, smat.data(), 3);
  EXPECT_EQ(smat, (Floats{1, 1, 77, 1, 2, 77, 77, 77, 77}));
}

// Every stored entry meets every stored entry of its column, also those of its own row.
TEST(RowSimilarities, CountAColumnStoredTwiceAsTwoEntries) {
  testing_support::SparseMatrix twice;
  twice.nrows = 2;
  twice.ncols = 3;
  twice.rowptr = {0, 2, 3};
  twice.rowind = {1, 1, 1};
  twice.rowval = {1, 2, 10};
  const auto mat = CreateMatrix();
  SetUpMatrix({}, *mat, twice.raw());
  Floats smat = Square(2);
  ComputeRowSimilarities({}, *mat, smat.data(), 2);
  EXPECT_EQ(smat, (Floats{9, 30, 30, 100}));
}

// The product of rows i and r, column by column in the order of row i, rounded after each.
float PlainProduct(const PreparedMatrix& mat, int i, int r) {
  const RowView row = Row(mat, i);
  const RowView other = Row(mat, r);
  float product = 0;
  for (std::size_t p = 0; p < row.size(); ++p) {
    for (std::size_t q = 0; q < other.size(); ++q) {
      if (other.columns[q] != row.columns[p]) continue;
      product = static_cast<float>(product + static_cast<Wide>(row.values[p]) * other.values[q]);
    }
  }
  return product;
}

TEST(RowSimilarities, AreAddedInTheOrderOfTheRowBitForBit) {
  const auto mat = Prepared(RandomDocuments(8, 40, 30, 3, 9));
  const auto n = static_cast<std::size_t>(mat->nrows);
  Floats smat = Square(n);
  ComputeRowSimilarities({}, *mat, smat.data(), n);
  for (int i = 0; i < mat->nrows; ++i) {
    for (int r = 0; r < mat->nrows; ++r) {
      EXPECT_EQ(smat[static_cast<std::size_t>(i) * n + static_cast<std::size_t>(r)],
                PlainProduct(*mat, i, r));
    }
  }
}

TEST(RowSimilarities, PrintNothingByDefault) {
  const auto mat = PreparedOf({{1, 0}, {1, 1}});
  Floats smat = Square(2);
  // Refinement and merging have bits of their own.
  EXPECT_EQ(OutputOf([&] { ComputeRowSimilarities({.dbglvl = 6}, *mat, smat.data(), 2); }), "");
}

// Of nine products two are negative and two are 0.
TEST(RowSimilarities, ReportTheShareOfProductsAboveZero) {
  const auto mat = PreparedOf({{1, 0}, {-1, 1}, {0, 1}});
  Floats smat = Square(3);
  EXPECT_EQ(OutputOf([&] { ComputeRowSimilarities({.dbglvl = 1}, *mat, smat.data(), 3); }),
            "Computing pairwise similarities:.:Done! (3, fill=0.556)\n");
}

TEST(RowSimilarities, ReportADotForEveryHundredRowsBegun) {
  for (const std::size_t n : {100U, 101U, 250U}) {
    const auto mat = PreparedOf(std::vector<Floats>(n, {1, 0}));
    Floats smat = Square(n);
    EXPECT_EQ(OutputOf([&] { ComputeRowSimilarities({.dbglvl = 1}, *mat, smat.data(), n); }),
              "Computing pairwise similarities:" + std::string((n + 99) / 100, '.') + ":Done! (" +
                  std::to_string(n) + ", fill=1.000)\n");
  }
}

}  // namespace
}  // namespace molva
