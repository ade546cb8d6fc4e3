// SPDX-License-Identifier: MIT
#include "tools/text/shell_text.h"

#include <gtest/gtest.h>

namespace {

using mardle::tools::ShellText;

TEST(ShellText, PlainArgumentsStayAsTheyAre) {
  EXPECT_EQ(ShellText("a/b-1.mat"), "a/b-1.mat");
  EXPECT_EQ(ShellText("über"), "über");
}

TEST(ShellText, OthersStandInQuotes) {
  EXPECT_EQ(ShellText(""), "''");
  EXPECT_EQ(ShellText("my file"), "'my file'");
  EXPECT_EQ(ShellText("it's $HOME"), "'it'\\''s $HOME'");
  EXPECT_EQ(ShellText("*"), "'*'");
}

}  // namespace
