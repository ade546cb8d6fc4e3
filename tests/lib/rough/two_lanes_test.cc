// SPDX-License-Identifier: MIT
#include "lib/rough/two_lanes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "lib/rough/rounding.h"

namespace molva {
namespace {

// Entries of a row, with what other rows hold behind them, against two lanes of some columns.
class TwoLanes : public testing::Test {
 protected:
  static constexpr int kColumns = 40;

  void SetUp() override {
    for (float& c : lanes_) c = Draw();
    for (std::size_t p = 0; p < columns_.size(); ++p) {
      columns_[p] = static_cast<int>(random_() % kColumns);
      values_[p] = Draw();
    }
  }

  float Draw() { return static_cast<float>(random_() % 1000) / 7.0F - 50; }

  // The sums in double, and that no product in any order may be further off than single precision.
  void ExpectProducts(const Pair& products, const std::vector<int>& columns,
                      std::size_t size) const {
    for (const std::size_t lane : {0U, 1U}) {
      double product = 0;
      double magnitudes = 0;
      for (std::size_t p = 0; p < size; ++p) {
        const auto v = static_cast<double>(values_[p]);
        const auto c = static_cast<double>(lanes_[2 * static_cast<std::size_t>(columns[p]) + lane]);
        product += v * c;
        magnitudes += std::fabs(v * c);
      }
      ASSERT_NEAR(products[lane], product,
                  (static_cast<double>(size) + 1) * kUnitSingle * magnitudes);
    }
  }

  std::mt19937 random_{1};
  std::vector<float> lanes_ = std::vector<float>(2 * kColumns);
  std::vector<int> columns_ = std::vector<int>(kColumns);
  std::vector<float> values_ = std::vector<float>(kColumns);
};

TEST_F(TwoLanes, MeetRowsOfEverySizeWithAndWithoutRoomBehindThem) {
  for (std::size_t size = 0; size <= 21; ++size) {
    for (std::size_t room = size; room <= size + 4; ++room) {
      SCOPED_TRACE(std::to_string(size) + " of " + std::to_string(room));
      // Nothing behind the room may be read: a sanitizer would see it.
      const std::vector<int> columns(columns_.begin(), columns_.begin() + static_cast<int>(room));
      const std::vector<float> values(values_.begin(), values_.begin() + static_cast<int>(room));
      ExpectProducts(DotTwo({columns.data(), values.data(), size, room}, lanes_.data()), columns,
                     size);
    }
  }
}

TEST_F(TwoLanes, LeaveOutWhatRowsBehindHoldWhateverItIs) {
  for (std::size_t size = 1; size <= 8; ++size) {
    std::vector<float> values = values_;
    std::fill(values.begin() + static_cast<int>(size), values.end(),
              std::numeric_limits<float>::quiet_NaN());
    ExpectProducts(DotTwo({columns_.data(), values.data(), size, values.size()}, lanes_.data()),
                   columns_, size);
  }
}

TEST_F(TwoLanes, MeetFullRowsOfEverySize) {
  std::vector<int> columns(kColumns);
  for (int j = 0; j < kColumns; ++j) columns[static_cast<std::size_t>(j)] = j;
  for (std::size_t size = 0; size <= 21; ++size) {
    ExpectProducts(DotTwoFull(values_.data(), size, lanes_.data()), columns, size);
  }
}

TEST_F(TwoLanes, AreSummedInDoubleToo) {
  for (std::size_t size = 0; size <= 21; ++size) {
    const TwoExactProducts products =
        DotTwoInDouble(columns_.data(), values_.data(), size, lanes_.data());
    ExpectProducts(Pair{products.of[0], products.of[1]}, columns_, size);
    double square = 0;
    for (std::size_t p = 0; p < size; ++p) square += std::pow(static_cast<double>(values_[p]), 2);
    EXPECT_NEAR(products.square, square, 1e-12 * square);
  }
}

}  // namespace
}  // namespace molva
