// SPDX-License-Identifier: MIT
#include "lib/rough/lanes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "lib/matrix/composites.h"
#include "lib/support/vectors.h"
#include "tests/testing/matrices.h"
#include "tests/testing/oracles.h"

namespace molva {
namespace {

using testing_support::Prepared;
using testing_support::PreparedOf;
using testing_support::RandomDocuments;

TEST(Lanes, HoldEachCompositeInALaneOfItsOwn) {
  const auto mat = PreparedOf({{1, 0, 2}, {0, 3, 4}});
  Lanes lanes(3, 3, "Test: lanes");
  lanes.Add(Row(*mat, 0), 0);
  lanes.Add(Row(*mat, 1), 2);
  lanes.Add(Row(*mat, 0), 2);
  lanes.Subtract(Row(*mat, 1), 0);
  EXPECT_EQ(lanes[0][0], 1);
  EXPECT_EQ(lanes[0][1], -3);
  EXPECT_EQ(lanes[0][2], -2);
  EXPECT_EQ(lanes[1][0], 0);
  EXPECT_EQ(lanes[2][2], 6);
}

TEST(Lanes, HaveAddressesWithoutColumns) {
  const auto mat = PreparedOf({{}, {}});
  for (const int count : {1, 2, 3, 20}) {
    Lanes lanes(count, 0, "Test: lanes");
    for (int lane = 0; lane < count; ++lane) {
      lanes.Add(Row(*mat, 0), lane);
      EXPECT_NE(lanes[lane].first, nullptr);
    }
  }
}

TEST(Lanes, KeepTheLastValueOfAColumnThatIsSetTwice) {
  PreparedMatrix mat;
  mat.nrows = 1;
  mat.ncols = 2;
  mat.rowptr = AllocInts(2, "Test");
  mat.rowind = AllocIntsSet(2, 1, "Test");
  mat.rowval = AllocFloats(2, "Test");
  mat.rowptr[0] = 0;
  mat.rowptr[1] = 2;
  mat.rowval[0] = 5;
  mat.rowval[1] = 7;
  Lanes lanes(1, 2, "Test: lanes");
  lanes.Set(Row(mat, 0), 0);
  EXPECT_EQ(lanes[0][1], 7);
}

// All numbers of lanes that take another path, and more columns than are summed at a time.
TEST(Lanes, GiveTheDotProductsOfDenseVectorsBitForBit) {
  const auto mat = Prepared(RandomDocuments(3, 200, 700, 5, 30));
  const auto ncols = static_cast<std::size_t>(mat->ncols);
  for (const int count : {1, 2, 3, 5, 8, 16, 21, 33}) {
    Lanes lanes(count, mat->ncols, "Test: lanes");
    std::vector<std::vector<float>> dense(static_cast<std::size_t>(count),
                                          std::vector<float>(ncols));
    std::vector<float> whole(ncols);
    for (int i = 0; i < mat->nrows; ++i) {
      lanes.Add(Row(*mat, i), i % count);
      AddRow(Row(*mat, i), dense[static_cast<std::size_t>(i % count)]);
      AddRow(Row(*mat, i), whole);
    }
    std::vector<float> squares(dense.size());
    std::vector<float> dots(dense.size());
    lanes.SquaredLengths(squares);
    lanes.DotsWith(whole, dots);
    for (std::size_t lane = 0; lane < dense.size(); ++lane) {
      EXPECT_EQ(squares[lane], DotFloats(dense[lane], dense[lane]));
      EXPECT_EQ(dots[lane], DotFloats(dense[lane], whole));
    }
  }
}

TEST(Lanes, GiveTheRoughDotProductsOfARowWithAllOfThem) {
  const auto mat = PreparedOf({{1, 0, 2}, {0, 3, 4}});
  Lanes lanes(2, 3, "Test: lanes");
  lanes.Add(Row(*mat, 0), 0);
  lanes.Add(Row(*mat, 1), 1);
  std::vector<float> products(lanes.stride());
  lanes.DotRow(Row(*mat, 1), products.data());
  EXPECT_EQ(products[0], 8);
  EXPECT_EQ(products[1], 25);
}

// 1 + 2^-24 lies midway between two floats and goes to the even one, 1; a little more goes up.
// Double sums with a margin cannot tell.
TEST(Lanes, SettleSquaredLengthsNearATieByTheFullArithmetic) {
  const auto rows = PreparedOf({{1, 0x1p-12F}, {1, 0x1.0001p-12F}});
  Lanes lanes(2, 2, "Test: lanes");
  lanes.Add(Row(*rows, 0), 0);
  lanes.Add(Row(*rows, 1), 1);
  float squares[2];
  lanes.SquaredLengths(squares);
  EXPECT_EQ(squares[0], 1.0F);
  EXPECT_EQ(squares[1], 1.0F + 0x1p-23F);
}

// The first two make a sum 512 2^-53 below a tie. A thousand more are just less than 2^-53, half a
// unit in double, which loses each; together they lift the sum above it.
TEST(Lanes, SettleSquaredLengthsByTheFullArithmeticWhereAllRoundingGoesOneWay) {
  std::vector<float> row(1002, std::sqrt(0x1p-53F) * (1 - 0x1p-20F));
  row[0] = 1;
  row[1] = 0x1p-12F * (1 - 0x1p-21F);
  const auto mat = PreparedOf({row});
  Lanes lanes(1, mat->ncols, "Test: lanes");
  lanes.Add(Row(*mat, 0), 0);
  float squares[1];
  lanes.SquaredLengths(squares);
  EXPECT_EQ(squares[0], 1.0F + 0x1p-23F);
}

}  // namespace
}  // namespace molva
