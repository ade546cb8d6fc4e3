// SPDX-License-Identifier: MIT
#include "tools/text/numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>

namespace {

using namespace mardle::tools;

std::string TextOf(double value) {
  std::string text;
  AppendNumber(text, value);
  return text;
}

TEST(Numbers, ANumberIsTheWholeText) {
  EXPECT_EQ(ParseNumber("1.5"), 1.5);
  EXPECT_EQ(ParseNumber("+.5e1"), 5.0);
  EXPECT_EQ(ParseNumber("-3"), -3.0);
  for (const char* text : {"", "+", "+-3", "1,5", "1x", " 1", "0x10"}) {
    EXPECT_FALSE(ParseNumber(text)) << text;
  }
}

TEST(Numbers, NumbersBeyondTheRangeAreInfiniteOrZero) {
  EXPECT_TRUE(std::isinf(*ParseNumber("1e400")));
  EXPECT_EQ(ParseNumber("1e-400"), 0.0);
}

TEST(Numbers, AnIntegerHasNoFraction) {
  EXPECT_EQ(ParseInteger("+12"), 12);
  for (const char* text : {"", "1.0", "99999999999999999999"}) {
    EXPECT_FALSE(ParseInteger(text)) << text;
  }
}

TEST(Numbers, TheShortestTextIsWritten) {
  EXPECT_EQ(TextOf(0.1), "0.1");
  EXPECT_EQ(TextOf(3), "3");
  EXPECT_EQ(TextOf(1e-7), "1e-07");
}

TEST(Numbers, EveryNumberReadsBackAsItself) {
  std::mt19937_64 bits(1);
  for (int i = 0; i < 10000; ++i) {
    const std::uint64_t pattern = bits();
    double value = 0;
    std::memcpy(&value, &pattern, sizeof value);
    if (!std::isfinite(value)) continue;
    EXPECT_EQ(std::strtod(TextOf(value).c_str(), nullptr), value);
  }
}

}  // namespace
