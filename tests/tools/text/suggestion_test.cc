// SPDX-License-Identifier: MIT
#include "tools/text/suggestion.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using mardle::tools::Closest;
using mardle::tools::DidYouMean;

const std::vector<std::string> kNames = {"species", "petal", "sepal", "x", ""};

TEST(Suggestion, IsTheNameOfTheFewestChanges) {
  EXPECT_EQ(Closest("specis", kNames), "species");
  EXPECT_EQ(Closest("spceies", kNames), "species");
  EXPECT_EQ(Closest("SPECIES", kNames), "species");
  EXPECT_EQ(Closest("petals", kNames), "petal");
  EXPECT_EQ(DidYouMean("sepol", kNames), "; did you mean 'sepal'?");
}

TEST(Suggestion, IsNoneWhenAllAreFarAway) {
  EXPECT_EQ(Closest("weight", kNames), std::nullopt);
  EXPECT_EQ(Closest("y", kNames), std::nullopt);
  EXPECT_EQ(Closest("", kNames), std::nullopt);
  EXPECT_EQ(Closest(std::string(1000, 'x'), kNames), std::nullopt);
  EXPECT_EQ(DidYouMean("weight", kNames), "");
}

TEST(Suggestion, IsTheFirstAmongEquals) {
  const std::vector<std::string> names = {"abcd", "abce"};
  EXPECT_EQ(Closest("abcf", names), "abcd");
}

}  // namespace
