// SPDX-License-Identifier: MIT
#include "tools/text/option_complaint.h"

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace {

// A program with one argument and an option, and two parts with one option each.
std::string ComplaintOf(std::vector<const char*> line) {
  std::string text;
  CLI::App app("", "program");
  app.add_option("INPUT", text);
  app.add_option("--output", text);
  line.insert(line.begin(), "program");
  try {
    app.parse(static_cast<int>(line.size()), line.data());
  } catch (const CLI::ParseError& error) {
    return mardle::tools::OptionComplaint(app, error);
  }
  return "none";
}

std::string ComplaintOfParts(std::vector<const char*> line) {
  std::string text;
  CLI::App app("", "program");
  app.add_subcommand("html")->add_option("--tree", text)->required();
  app.add_subcommand("json")->add_option("--rows", text);
  line.insert(line.begin(), "program");
  try {
    app.parse(static_cast<int>(line.size()), line.data());
  } catch (const CLI::ParseError& error) {
    return mardle::tools::OptionComplaint(app, error);
  }
  return "none";
}

TEST(OptionComplaint, NamesTheOptionThatThereIsNot) {
  EXPECT_EQ(ComplaintOf({"a", "--ouptut=x"}),
            "there is no option '--ouptut'; did you mean '--output'?");
  EXPECT_EQ(ComplaintOf({"--ouptut", "x", "a"}),
            "there is no option '--ouptut'; did you mean '--output'?");
  EXPECT_EQ(ComplaintOf({"a", "-crfun=3"}), "there is no option '-crfun'");
}

TEST(OptionComplaint, NamesTheArgumentThatIsTooMany) {
  EXPECT_EQ(ComplaintOf({"a", "b"}), "'b' is one argument too many");
}

TEST(OptionComplaint, LeavesOtherErrorsAsTheyAre) {
  EXPECT_EQ(ComplaintOf({"a", "--output"}), "--output: 1 required TEXT missing");
  EXPECT_EQ(ComplaintOf({"a"}), "none");
}

TEST(OptionComplaint, KnowsThePartsOfTheProgramAndTheirOptions) {
  EXPECT_EQ(ComplaintOfParts({"htlm", "--tree", "t"}), "there is no 'htlm'; did you mean 'html'?");
  EXPECT_EQ(ComplaintOfParts({"html", "--tre", "t"}),
            "there is no option '--tre'; did you mean '--tree'?");
  EXPECT_EQ(ComplaintOfParts({"json", "--tre", "t"}), "there is no option '--tre'");
  EXPECT_EQ(ComplaintOfParts({"html"}), "--tree is required");
}

}  // namespace
