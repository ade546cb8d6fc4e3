// SPDX-License-Identifier: MIT
#include "programs/help_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "tests/testing/files.h"

namespace {

using mardle::HelpLines;
using mardle::UsageLines;

bool HelpHas(const std::string& line) {
  return std::count(HelpLines().begin(), HelpLines().end(), line) == 1;
}

TEST(HelpText, Has152LinesOfAtMost99Characters) {
  EXPECT_EQ(HelpLines().size(), 152U);
  for (const char* line : HelpLines()) {
    EXPECT_GE(std::strlen(line), 1U);
    EXPECT_LE(std::strlen(line), 99U) << line;
  }
}

TEST(HelpText, BeginsWithABlankLineAndTheUsage) {
  EXPECT_STREQ(HelpLines()[0], " ");
  EXPECT_STREQ(HelpLines()[1], "Usage: mardle [options] <filename> <nclusters>");
  EXPECT_STREQ(HelpLines()[2], " ");
}

TEST(HelpText, EndsWithTheHelpOption) {
  EXPECT_STREQ(HelpLines()[150], "   -help");
  EXPECT_STREQ(HelpLines()[151], "      Prints this message.");
}

TEST(HelpText, KeepsItsSpellings) {
  EXPECT_TRUE(HelpHas("                this file must be compatible by that accepted by mardle."));
  EXPECT_TRUE(
      HelpHas("      array is is written in `filename.tree.nparts', where `filename' is the"));
  EXPECT_TRUE(HelpHas("      Surprasses the reorderings of the trees in the various plots."));
}

TEST(HelpText, KeepsItsTrailingBlanks) {
  EXPECT_TRUE(HelpHas("   -sim=int  "));
  EXPECT_TRUE(HelpHas("   -crfun=int    "));
  EXPECT_TRUE(HelpHas("          1 => I1               2 => I2 [default]     3 => E1        "));
  EXPECT_TRUE(HelpHas("          4 => G1               5 => G1'              6 => H1          "));
  EXPECT_TRUE(HelpHas("          7 => H2               8 => G3               9 => H3"));
  EXPECT_TRUE(HelpHas("          1 => None             2 => IDF [default]   "));
  EXPECT_TRUE(HelpHas("   -seed=int      "));
  EXPECT_TRUE(HelpHas("      the disk. "));
  EXPECT_TRUE(HelpHas("     "));
  EXPECT_TRUE(HelpHas("   -zscores "));
  EXPECT_TRUE(HelpHas("   -plotformat=string    "));
  EXPECT_EQ(std::count(HelpLines().begin(), HelpLines().end(), std::string("  ")), 2);
}

TEST(UsageText, HasThreeLines) {
  ASSERT_EQ(UsageLines().size(), 3U);
  EXPECT_STREQ(UsageLines()[0], " ");
  EXPECT_STREQ(UsageLines()[1], "    Usage: mardle [options] <filename> <nclusters>");
  EXPECT_STREQ(UsageLines()[2], "           use 'mardle -help' for a summary of the options.");
}

TEST(PrintLines, PrintsEachLineAsItIsWithANewline) {
  constexpr const char* kLines[] = {" a ", "", "100% %s"};
  EXPECT_EQ(testing_support::OutputOf([&] { mardle::PrintLines(kLines); }), " a \n\n100% %s\n");
}

}  // namespace
