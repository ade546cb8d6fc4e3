// SPDX-License-Identifier: MIT
//
// The engines beside the plain merging, bit for bit, and the merging without a queue alone.
#include "lib/tree/clear_merges.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "lib/molva.h"
#include "tests/testing/plain_merging.h"

namespace molva {
namespace {

using testing_support::PlainMerging;
using testing_support::PlainTree;
using Floats = std::vector<float>;

struct Products {
  std::size_t n() const { return pwgts.size(); }
  float& At(std::size_t i, std::size_t j) { return smat[i * n() + j]; }
  void SetBoth(std::size_t i, std::size_t j, float product) { At(i, j) = At(j, i) = product; }

  std::vector<int> pwgts;
  Floats smat;
};

// The products of random rows: entries 0 to `levels` - 1, so that few levels give many ties and
// zero rows, shifted by `shift`.
Products RandomProducts(std::uint32_t seed, std::size_t n, unsigned levels, int shift = 0) {
  constexpr std::size_t kColumns = 6;
  std::mt19937 random(seed);
  Floats rows;
  for (std::size_t x = 0; x < n * kColumns; ++x) {
    rows.push_back(static_cast<float>(static_cast<int>(random() % levels) + shift) / 16);
  }
  Products products{std::vector<int>(n, 1), {}};
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) {
      double product = 0;
      for (std::size_t c = 0; c < kColumns; ++c) {
        product += static_cast<double>(rows[i * kColumns + c]) * rows[j * kColumns + c];
      }
      products.smat.push_back(static_cast<float>(product));
    }
  }
  return products;
}

std::vector<std::uint32_t> Bits(const Floats& x) {
  std::vector<std::uint32_t> bits;
  for (const float element : x) {
    bits.push_back(std::isnan(element) ? 0x7fc00000U : std::bit_cast<std::uint32_t>(element));
  }
  return bits;
}

PlainTree EmptyTree(std::size_t n) {
  return {std::vector<int>(2 * n, -1), Floats(2 * n), Floats(2 * n)};
}

void ExpectSameTree(const PlainTree& tree, const PlainTree& plain) {
  EXPECT_EQ(tree.ptree, plain.ptree);
  EXPECT_EQ(Bits(tree.tsims), Bits(plain.tsims));
  EXPECT_EQ(Bits(tree.gains), Bits(plain.gains));
}

// Builds the tree through the engines and compares it with the plain one.
void ExpectPlainTree(int crfun, Products products) {
  const PlainTree plain = PlainMerging(crfun, products.pwgts, products.smat);
  PlainTree tree = EmptyTree(products.n());
  std::vector<int> part(products.n());
  MOLVA_SA_Cluster(static_cast<int>(products.n()), products.pwgts.data(), products.smat.data(),
                   crfun, 2, 0, 1, part.data(), tree.ptree.data(), tree.tsims.data(),
                   tree.gains.data());
  ExpectSameTree(tree, plain);
}

// Whether the merging without a queue went through; then the tree is the plain one, and otherwise
// the matrix is what it was.
bool WentThrough(int crfun, Products products) {
  const PlainTree plain = PlainMerging(crfun, products.pwgts, products.smat);
  const Floats before = products.smat;
  PlainTree tree = EmptyTree(products.n());
  const bool clear =
      MergeWhileClear(crfun, {static_cast<int>(products.n()), products.pwgts.data(),
                              products.smat.data(), tree.ptree, tree.tsims, tree.gains});
  if (clear) {
    ExpectSameTree(tree, plain);
  } else {
    EXPECT_EQ(Bits(products.smat), Bits(before));
  }
  return clear;
}

// Calls `test(crfun, seed, n)` for random numbers of items.
template <typename Test>
void ForManySeeds(int seeds, Test test) {
  std::mt19937 random(3);
  for (int seed = 0; seed < seeds; ++seed) {
    for (int crfun = 1; crfun <= 7; ++crfun) {
      SCOPED_TRACE("criterion " + std::to_string(crfun) + ", seed " + std::to_string(seed));
      test(crfun, static_cast<std::uint32_t>(seed), 2 + random() % 24);
    }
  }
}

TEST(MergingEngines, BuildThePlainTreeOfAnyProducts) {
  ForManySeeds(150, [](int crfun, std::uint32_t seed, std::size_t n) {
    ExpectPlainTree(crfun, RandomProducts(seed, n, 1U << 16));
  });
}

TEST(MergingEngines, BuildThePlainTreeWithTies) {
  ForManySeeds(200, [](int crfun, std::uint32_t seed, std::size_t n) {
    ExpectPlainTree(crfun, RandomProducts(seed, n, 2 + seed % 40));
  });
}

TEST(MergingEngines, BuildThePlainTreeOfNegativeProducts) {
  ForManySeeds(100, [](int crfun, std::uint32_t seed, std::size_t n) {
    ExpectPlainTree(crfun, RandomProducts(seed, n, 1U << (1 + seed % 16), -1 << (seed % 16)));
  });
}

TEST(MergingEngines, BuildThePlainTreeOfWeightedItems) {
  ForManySeeds(100, [](int crfun, std::uint32_t seed, std::size_t n) {
    Products products = RandomProducts(seed, n, seed % 2 == 0 ? 5 : 1U << 12);
    std::mt19937 random(seed);
    for (int& weight : products.pwgts) weight = 1 + static_cast<int>(random() % 1000);
    ExpectPlainTree(crfun, products);
  });
}

TEST(MergingEngines, BuildThePlainTreeOfAMatrixThatIsNotSymmetric) {
  ForManySeeds(100, [](int crfun, std::uint32_t seed, std::size_t n) {
    Products products = RandomProducts(seed, n, seed % 2 == 0 ? 5 : 1U << 12);
    std::mt19937 random(seed);
    for (float& product : products.smat) {
      if (random() % 3 == 0) product = std::nextafter(product, 1e9F);
    }
    ExpectPlainTree(crfun, products);
  });
}

TEST(MergingEngines, BuildThePlainTreeOfValuesThatAreNotFinite) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  constexpr float kWild[] = {NAN, kInfinity, -kInfinity, 3e38F, -3e38F, 1e-45F, 0};
  ForManySeeds(150, [&](int crfun, std::uint32_t seed, std::size_t n) {
    Products products = RandomProducts(seed, n, 1U << 12);
    std::mt19937 random(seed);
    for (std::size_t wild = 1 + random() % 3; wild > 0; --wild) {
      products.SetBoth(random() % n, random() % n, kWild[random() % std::size(kWild)]);
    }
    ExpectPlainTree(crfun, products);
  });
}

TEST(MergingEngines, BuildThePlainTreeOfHundredsOfItems) {
  for (int crfun = 1; crfun <= 5; ++crfun) {
    SCOPED_TRACE("criterion " + std::to_string(crfun));
    for (const unsigned levels : {3U, 40U, 1U << 16}) {
      ExpectPlainTree(crfun, RandomProducts(9, 400, levels));
    }
  }
}

TEST(ClearMerging, GoesThroughWhereEveryBestGainIsAlone) {
  for (int crfun = 1; crfun <= 5; ++crfun) {
    SCOPED_TRACE("criterion " + std::to_string(crfun));
    EXPECT_TRUE(WentThrough(crfun, RandomProducts(1, 200, 1U << 16)));
  }
}

TEST(ClearMerging, OfOneItemOrNoneIsDoneAtOnce) {
  EXPECT_TRUE(WentThrough(2, {{1}, {4}}));
  EXPECT_TRUE(WentThrough(2, {{}, {}}));
}

// Both pairs of unit rows at an angle of cosine 0.5; the others are orthogonal.
TEST(ClearMerging, GivesUpWhenTwoItemsHaveTheSameBestGain) {
  const Products pairs{{1, 1, 1, 1}, {1, .5F, 0, 0, .5F, 1, 0, 0, 0, 0, 1, .5F, 0, 0, .5F, 1}};
  for (int crfun = 1; crfun <= 5; ++crfun) EXPECT_FALSE(WentThrough(crfun, pairs)) << crfun;
}

// The last row has the same cosine with both others.
TEST(ClearMerging, GivesUpWhenOneItemHasTheSameBestGainTwice) {
  const Products fork{{1, 1, 1}, {1, 0, .5F, 0, 1, .5F, .5F, .5F, 1}};
  EXPECT_FALSE(WentThrough(1, fork));
  EXPECT_FALSE(WentThrough(2, fork));
}

// Items 0 and 1 have the best merge; what is left, 2 to 5, are two equal pairs.
TEST(ClearMerging, PutsTheMatrixBackWhenItGivesUpLate) {
  Products products{std::vector<int>(6, 1), Floats(36, 0)};
  for (std::size_t i = 0; i < 6; ++i) products.At(i, i) = 1;
  products.SetBoth(0, 1, 0.75F);
  products.SetBoth(2, 3, 0.5F);
  products.SetBoth(4, 5, 0.5F);
  EXPECT_FALSE(WentThrough(2, products));
  products.SetBoth(4, 5, 0.25F);
  products.SetBoth(0, 2, 0.125F);
  products.SetBoth(1, 4, 0.0625F);
  EXPECT_TRUE(WentThrough(2, products));
}

// Equal gains that are never the best decide nothing.
TEST(ClearMerging, PassesTiesBelowTheBestMerge) {
  const Products below{{1, 1, 1}, {1, .75F, .25F, .75F, 1, .25F, .25F, .25F, 1}};
  EXPECT_TRUE(WentThrough(2, below));
}

TEST(ClearMerging, GivesUpWhenAGainIsNotANumber) {
  Products products = RandomProducts(4, 20, 1U << 16);
  products.SetBoth(3, 7, NAN);
  for (int crfun = 1; crfun <= 5; ++crfun) EXPECT_FALSE(WentThrough(crfun, products)) << crfun;
}

// G1' of items of next to no length is beyond single precision: their gains are infinite.
TEST(ClearMerging, GivesUpWhenAGainIsBeyondSinglePrecision) {
  Products products = RandomProducts(4, 6, 1U << 16);
  products.pwgts.assign(6, 30000);
  for (const std::size_t i : {1U, 2U}) {
    products.SetBoth(i, i, 1e-42F);
    products.SetBoth(i, 5, 1e3F);
  }
  products.SetBoth(1, 2, 0);
  EXPECT_FALSE(WentThrough(5, products));
}

TEST(ClearMerging, GivesUpWhenTheMatrixIsNotSymmetricToTheLastBit) {
  Products products = RandomProducts(4, 20, 1U << 16);
  products.At(11, 3) = std::nextafter(products.At(11, 3), 0.0F);
  EXPECT_FALSE(WentThrough(2, products));
}

}  // namespace
}  // namespace molva
