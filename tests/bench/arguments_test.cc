// SPDX-License-Identifier: MIT
#include "bench/arguments.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct Fields {
  int rows = 0;
  double spread = 0.5;
  std::string file;
};

Fields Parse(std::vector<std::string> words) {
  Fields fields;
  const bench::Argument known[] = {
      {"ROWS", &fields.rows, 1, 100, "rows"},
      {"--spread", &fields.spread, 0, 2, "spread"},
      {"--file", &fields.file, 0, 0, "file"},
  };
  words.insert(words.begin(), "program");
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  bench::ParseArguments(static_cast<int>(argv.size()), argv.data(), "Makes a matrix.", known);
  return fields;
}

TEST(Arguments, SetTheirFieldsInAnyOrder) {
  const Fields fields = Parse({"--file=a=b", "12", "--spread=1.25"});
  EXPECT_EQ(fields.rows, 12);
  EXPECT_EQ(fields.spread, 1.25);
  EXPECT_EQ(fields.file, "a=b");
}

TEST(Arguments, ThatAreNotGivenKeepWhatTheyHad) { EXPECT_EQ(Parse({"12"}).spread, 0.5); }

TEST(Arguments, ThatCannotBeUnderstoodEndTheRun) {
  for (const char* wrong : {"101", "0", "12x", "", "--spread=2.5", "--spread=nan",
                            "--spread=", "--spread", "--file=", "--other=1", "-1"}) {
    EXPECT_EXIT(Parse({wrong}), testing::ExitedWithCode(1), "out of range.*ROWS +rows") << wrong;
  }
}

TEST(Arguments, AskForWhatMustBeGivenOnce) {
  EXPECT_EXIT(Parse({"--spread=1"}), testing::ExitedWithCode(1), "ROWS +rows");
  EXPECT_EXIT(Parse({"1", "2"}), testing::ExitedWithCode(1), "ROWS +rows");
}

TEST(Arguments, HelpIsNoError) { EXPECT_EXIT(Parse({"--help"}), testing::ExitedWithCode(0), ""); }

}  // namespace
