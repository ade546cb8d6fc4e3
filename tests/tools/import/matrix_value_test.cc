// SPDX-License-Identifier: MIT
#include "tools/import/matrix_value.h"

#include <gtest/gtest.h>

namespace {

using namespace mardle::tools;

std::string Refusal(std::string_view text) {
  try {
    MatrixValue(text, {"m.csv", 7}, "column 2");
  } catch (const FileError& error) {
    return error.what();
  }
  return "none";
}

TEST(MatrixValue, WhatTheMatrixCannotHoldIsRefusedWithItsPlace) {
  EXPECT_EQ(Refusal("1e38"), "none");
  EXPECT_EQ(Refusal("abc"), "m.csv:7: column 2 is no number: 'abc'");
  EXPECT_EQ(Refusal("nan"), "m.csv:7: column 2 is not a finite number: 'nan'");
  EXPECT_EQ(Refusal("1e39"), "m.csv:7: column 2 is too large for single precision: '1e39'");
  EXPECT_EQ(Refusal("inf"), "m.csv:7: column 2 is too large for single precision: 'inf'");
}

}  // namespace
