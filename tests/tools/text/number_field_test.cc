// SPDX-License-Identifier: MIT
#include "tools/text/number_field.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>

namespace {

using namespace mardle::tools;
using Fields = std::vector<std::string_view>;

std::string TextOf(double value) {
  std::string text;
  AppendNumber(text, value);
  return text;
}

std::string Refusal(std::string_view text) {
  try {
    MatrixValue(text, {"m.csv", 7}, "column 2");
  } catch (const InputError& error) {
    return error.what();
  }
  return "none";
}

TEST(NumberField, FieldsStandBetweenBlanksAndTabs) {
  EXPECT_EQ(FieldsOf(" a\t b  c "), (Fields{"a", "b", "c"}));
  EXPECT_EQ(FieldsOf(" \t"), Fields{});
}

TEST(NumberField, TrimsBothEnds) {
  EXPECT_EQ(Trimmed("\t a b "), "a b");
  EXPECT_EQ(Trimmed("  "), "");
}

TEST(NumberField, ANumberIsTheWholeText) {
  EXPECT_EQ(ParseNumber("1.5"), 1.5);
  EXPECT_EQ(ParseNumber("+.5e1"), 5.0);
  EXPECT_EQ(ParseNumber("-3"), -3.0);
  for (const char* text : {"", "+", "+-3", "1,5", "1x", " 1", "0x10"}) {
    EXPECT_FALSE(ParseNumber(text)) << text;
  }
}

TEST(NumberField, NumbersBeyondTheRangeAreInfiniteOrZero) {
  EXPECT_TRUE(std::isinf(*ParseNumber("1e400")));
  EXPECT_EQ(ParseNumber("1e-400"), 0.0);
}

TEST(NumberField, AnIntegerHasNoFraction) {
  EXPECT_EQ(ParseInteger("+12"), 12);
  for (const char* text : {"", "1.0", "99999999999999999999"}) {
    EXPECT_FALSE(ParseInteger(text)) << text;
  }
}

TEST(NumberField, TheShortestTextIsWritten) {
  EXPECT_EQ(TextOf(0.1), "0.1");
  EXPECT_EQ(TextOf(3), "3");
  EXPECT_EQ(TextOf(1e-7), "1e-07");
}

TEST(NumberField, EveryNumberReadsBackAsItself) {
  std::mt19937_64 bits(1);
  for (int i = 0; i < 10000; ++i) {
    const std::uint64_t pattern = bits();
    double value = 0;
    std::memcpy(&value, &pattern, sizeof value);
    if (!std::isfinite(value)) continue;
    EXPECT_EQ(std::strtod(TextOf(value).c_str(), nullptr), value);
  }
}

TEST(NumberField, WhatTheMatrixCannotHoldIsRefusedWithItsPlace) {
  EXPECT_EQ(Refusal("1e38"), "none");
  EXPECT_EQ(Refusal("abc"), "m.csv:7: column 2 is no number: 'abc'");
  EXPECT_EQ(Refusal("nan"), "m.csv:7: column 2 is not a finite number: 'nan'");
  EXPECT_EQ(Refusal("1e39"), "m.csv:7: column 2 is too large for single precision: '1e39'");
  EXPECT_EQ(Refusal("inf"), "m.csv:7: column 2 is too large for single precision: 'inf'");
}

TEST(NumberField, LongTextsAreCutInMessages) {
  EXPECT_EQ(Quoted(std::string(40, 'x')), "'" + std::string(40, 'x') + "'");
  EXPECT_EQ(Quoted(std::string(41, 'x')), "'" + std::string(40, 'x') + "...'");
}

}  // namespace
