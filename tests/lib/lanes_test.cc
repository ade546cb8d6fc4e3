// SPDX-License-Identifier: MIT
#include "lib/lanes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "lib/composites.h"
#include "lib/support/vectors.h"
#include "tests/testing/matrices.h"
#include "tests/testing/oracles.h"

namespace molva {
namespace {

using testing_support::DenseRow;
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
  const auto mat = Prepared(RandomDocuments(4, 120, 90, 5, 12));
  for (const int count : {1, 2, 3, 4, 5, 8, 16, 21, 33}) {
    Lanes lanes(count, mat->ncols, "Test: lanes");
    for (int i = 0; i < mat->nrows; ++i) lanes.Add(Row(*mat, i), i % count);
    std::vector<double> products(lanes.stride());
    for (int i = 0; i < mat->nrows; ++i) {
      const RowView row = Row(*mat, i);
      lanes.DotRow(row, products.data());
      for (int lane = 0; lane < count; ++lane) {
        // One rounding of an exact product at a time, in entry order: the same on every processor.
        double expected = 0;
        for (std::size_t p = 0; p < row.size(); ++p) {
          expected += static_cast<double>(row.values[p]) *
                      static_cast<double>(lanes[lane][static_cast<std::size_t>(row.columns[p])]);
        }
        EXPECT_EQ(products[static_cast<std::size_t>(lane)], expected);
      }
    }
  }
}

}  // namespace
}  // namespace molva
