// SPDX-License-Identifier: MIT
#include "tools/cluster/request.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

#include "tests/testing/files.h"
#include "tools/cluster/cluster_run.h"
#include "tools/text/file_error.h"

namespace {

using namespace mardle::tools;
using testing_support::TempFolder;
using Texts = std::vector<std::string>;

std::optional<int> Parse(const Texts& arguments, ClusterRequest& request) {
  std::vector<const char*> argv{"mardle-cluster"};
  for (const std::string& argument : arguments) argv.push_back(argument.c_str());
  return ParseClusterRequest(static_cast<int>(argv.size()), argv.data(), request);
}

std::string Refusal(const Texts& arguments) {
  ClusterRequest request;
  try {
    Parse(arguments, request);
  } catch (const std::exception& error) {
    return error.what();
  }
  return "none";
}

TEST(ClusterRequest, TellsTheOptionsOfTheTwoProgramsApart) {
  const TempFolder folder;
  const std::string input = folder.Write("t.csv", "a\n1\n");
  ClusterRequest request;
  EXPECT_FALSE(Parse({"--text-column", "a", "-crfun=3", input, "--digits", "-direct", "4",
                      "--text-column", "b", "--output", "o", "--force", "--quiet"},
                     request));
  EXPECT_EQ(request.input, input);
  EXPECT_EQ(request.nclusters, 4);
  EXPECT_EQ(request.output, "o");
  EXPECT_TRUE(request.replace);
  EXPECT_TRUE(request.quiet);
  EXPECT_EQ(request.mardle_options, (Texts{"-crfun=3", "-direct"}));
  EXPECT_EQ(request.import_options,
            (Texts{"--text-column", "a", "--text-column", "b", "--digits"}));
  EXPECT_EQ(request.import.table.text_columns, (Texts{"a", "b"}));
  EXPECT_TRUE(request.import.words.rules.digits);
}

TEST(ClusterRequest, TheFolderIsCalledByInputAndNumber) {
  const TempFolder folder;
  ClusterRequest request;
  EXPECT_FALSE(Parse({folder.Write("my.texts.csv.gz", ""), "12"}, request));
  EXPECT_EQ(request.output, "my.texts-12");
}

TEST(ClusterRequest, WhatCannotBeMeantIsRefused) {
  const TempFolder folder;
  const std::string input = folder.Write("letters.txt", "a\n");
  EXPECT_EQ(Refusal({input, "ten"}), "NCLUSTERS is a whole number from 1 on, not 'ten'");
  EXPECT_EQ(Refusal({input, "0"}), "NCLUSTERS is a whole number from 1 on, not '0'");
  EXPECT_EQ(Refusal({input, "5.7"}),
            "NCLUSTERS is a whole number from 1 on, not '5.7'; did you mean 5?");
  EXPECT_EQ(Refusal({"6", input}),
            "INPUT comes first, then NCLUSTERS; did you mean 'mardle-cluster " + input + " 6'?");
  EXPECT_EQ(
      Refusal({folder.Path("leters.txt"), "6"}),
      folder.Path("leters.txt") + ": No such file or directory; did you mean '" + input + "'?");
  EXPECT_EQ(Refusal({"-crfun", "2", input, "6"}),
            "-crfun: the value stands behind =, as in -crfun=...");
}

TEST(ClusterRequest, WrongUsageEndsWithStatusTwo) {
  ClusterRequest request;
  for (const Texts& arguments :
       {Texts{}, Texts{"x"}, Texts{"x", "2", "y"}, Texts{"--bogus", "x", "2"}}) {
    EXPECT_EQ(Parse(arguments, request), 2);
  }
  EXPECT_EQ(Parse({"--help"}, request), 0);
}

TEST(StemOf, LeavesOutWhatTellsTheFormat) {
  const TempFolder folder;
  EXPECT_EQ(StemOf("a/b.csv"), "b");
  EXPECT_EQ(StemOf("b.c.txt.gz"), "b.c");
  EXPECT_EQ(StemOf(".hidden"), ".hidden");
  EXPECT_EQ(StemOf("-"), "input");
  std::filesystem::create_directory(folder.Path("my.letters"));
  EXPECT_EQ(StemOf(folder.Path("my.letters/")), "my.letters");
  EXPECT_EQ(StemOf(folder.Path("my.letters/.")), "my.letters");
}

TEST(LooksLikeMatrix, GoesByTheFirstLineAndTheName) {
  const TempFolder folder;
  int numbers = 0;
  EXPECT_TRUE(LooksLikeMatrix(folder.Write("a.mat", "3 2 4  \n1 1\n"), numbers));
  EXPECT_EQ(numbers, 3);
  EXPECT_TRUE(LooksLikeMatrix(folder.Write("b", "3 2\n1 1\n"), numbers));
  EXPECT_EQ(numbers, 2);
  EXPECT_FALSE(LooksLikeMatrix(folder.Write("c.txt", "3 2\n1 1\n"), numbers));
  EXPECT_FALSE(LooksLikeMatrix(folder.Write("d", "3 apples\n"), numbers));
  EXPECT_FALSE(LooksLikeMatrix(folder.Write("e", "3\n"), numbers));
  EXPECT_FALSE(LooksLikeMatrix(folder.Write("f", ""), numbers));
  EXPECT_FALSE(LooksLikeMatrix(folder.Path(""), numbers));
}

}  // namespace
