// SPDX-License-Identifier: MIT
#include "tools/export/written_numbers.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using mardle::exporting::Capital;
using mardle::exporting::Counted;
using mardle::exporting::Decimals;
using mardle::exporting::FourDigits;
using mardle::exporting::Grouped;
using mardle::exporting::Percent;
using mardle::exporting::PercentText;

TEST(WrittenNumbers, GroupThousands) {
  EXPECT_EQ(Grouped(0), "0");
  EXPECT_EQ(Grouped(999), "999");
  EXPECT_EQ(Grouped(1000), "1,000");
  EXPECT_EQ(Grouped(-123456), "-123,456");
  EXPECT_EQ(Grouped(12345678), "12,345,678");
}

TEST(WrittenNumbers, CountOneAndMany) {
  EXPECT_EQ(Counted(1, "word", "words"), "1 word");
  EXPECT_EQ(Counted(0, "word", "words"), "0 words");
  EXPECT_EQ(Counted(7674, "word", "words"), "7,674 words");
}

TEST(WrittenNumbers, AreSharesOfAHundred) {
  EXPECT_EQ(PercentText(0.1234), "12.3\u00a0%");
  EXPECT_EQ(Percent(0.375), "37.50%");
  EXPECT_EQ(Percent(-1), "0.00%");
  EXPECT_EQ(Percent(2), "100.00%");
}

TEST(WrittenNumbers, HaveFourDigits) {
  EXPECT_EQ(FourDigits(1500.4), "1,500");
  EXPECT_EQ(FourDigits(914.63), "914.6");
  EXPECT_EQ(FourDigits(0.0234567), "0.02346");
}

TEST(WrittenNumbers, SayWhereThereAreNone) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(Decimals(nan, 2), "n/a");
  EXPECT_EQ(PercentText(nan), "n/a");
  EXPECT_EQ(FourDigits(nan), "n/a");
}

TEST(WrittenNumbers, BeginWithACapital) {
  EXPECT_EQ(Capital("words"), "Words");
  EXPECT_EQ(Capital(""), "");
}

}  // namespace
