// SPDX-License-Identifier: MIT
#include "tools/sweep/request.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/testing/files.h"
#include "tools/text/file_error.h"

namespace {

using namespace mardle::tools;
using testing_support::TempFolder;
using Texts = std::vector<std::string>;

std::optional<int> Parse(const Texts& arguments, SweepRequest& request) {
  std::vector<const char*> argv{"mardle-sweep"};
  for (const std::string& argument : arguments) argv.push_back(argument.c_str());
  return ParseSweepRequest(static_cast<int>(argv.size()), argv.data(), request);
}

// What is said of a wrong command line; {} stands for a matrix that is there.
std::string Refusal(Texts arguments) {
  const TempFolder folder;
  const std::string matrix = folder.Write("m", "2 1\n1\n1\n");
  for (std::string& argument : arguments) {
    if (argument == "{}") argument = matrix;
  }
  SweepRequest request;
  try {
    Parse(arguments, request);
  } catch (const std::invalid_argument& error) {
    std::string message = error.what();
    const std::size_t at = message.find(matrix);
    return at == std::string::npos ? message : message.replace(at, matrix.size(), "{}");
  }
  return "none";
}

TEST(SweepRequest, TellsTheOptionsOfTheTwoProgramsApart) {
  const TempFolder folder;
  const std::string matrix = folder.Write("m", "");
  SweepRequest request;
  EXPECT_FALSE(Parse({"--seeds", "5", "-crfun=3", matrix, "4", "-rb", "11", "--step", "3", "--csv",
                      "t.csv", "--picture=p.svg", "--quiet"},
                     request));
  EXPECT_EQ(request.matrix, matrix);
  EXPECT_EQ(request.numbers, (std::vector<int>{4, 7, 10}));
  EXPECT_EQ(request.nseeds, 5);
  EXPECT_EQ(request.csv, "t.csv");
  EXPECT_EQ(request.picture, "p.svg");
  EXPECT_TRUE(request.quiet);
  EXPECT_EQ(request.mardle_options, (Texts{"-crfun=3", "-rb"}));
}

TEST(SweepRequest, TakesThreeSeedsAndEveryNumberUnasked) {
  const TempFolder folder;
  SweepRequest request;
  EXPECT_FALSE(Parse({folder.Write("m", ""), "2", "2147483647", "--step", "1073741824"}, request));
  EXPECT_EQ(request.numbers, (std::vector<int>{2, 1073741826}));
  EXPECT_EQ(request.nseeds, 3);
}

TEST(SweepRequest, RefusesNumbersThatAreNone) {
  EXPECT_EQ(Refusal({"{}", "1", "9"}), "FROM is a whole number from 2 on, not '1'");
  EXPECT_EQ(Refusal({"{}", "two", "9"}), "FROM is a whole number from 2 on, not 'two'");
  EXPECT_EQ(Refusal({"{}", "2", "9.5"}), "TO is a whole number from 2 on, not '9.5'");
  EXPECT_EQ(Refusal({"{}", "2", "2147483648"}), "TO is a whole number from 2 on, not '2147483648'");
  EXPECT_EQ(Refusal({"{}", "2", "9", "--step", "0"}),
            "--step is a whole number from 1 on, not '0'");
  EXPECT_EQ(Refusal({"{}", "2", "9", "--seeds", "1"}),
            "--seeds is a whole number from 2 on, not '1'");
}

TEST(SweepRequest, TellsWhatWasMeant) {
  EXPECT_EQ(Refusal({"{}", "9", "2"}), "FROM is above TO; did you mean 'mardle-sweep {} 2 9'?");
  EXPECT_EQ(Refusal({"2", "9", "{}"}), "MATRIX comes first, then FROM and TO");
  EXPECT_EQ(Refusal({"{}", "2", "9", "-crfn=3"}),
            "-crfn is no option of mardle; did you mean '-crfun'?");
}

TEST(SweepRequest, RefusesOptionsThatHaveNoUseHere) {
  EXPECT_EQ(Refusal({"{}", "2", "9", "-seed=3"}),
            "-seed=3: a sweep has several seeds; --seeds tells how many");
  EXPECT_EQ(Refusal({"{}", "2", "9", "-zscores"}),
            "-zscores has no use here: a sweep keeps no clustering");
  EXPECT_EQ(Refusal({"{}", "2", "9", "-showfeatures"}),
            "-showfeatures has no use here: a sweep keeps no clustering");
  EXPECT_EQ(Refusal({"{}", "2", "9", "-prune=90"}),
            "-prune=90: a fraction above 0 and up to 1 is wanted; did you mean -prune=0.9?");
}

TEST(SweepRequest, WantsAMatrixThatIsThere) {
  SweepRequest request;
  EXPECT_THROW(Parse({"/nowhere/m", "2", "9"}, request), FileError);
}

TEST(SweepRequest, ReportsAWrongCommandLine) {
  SweepRequest request;
  testing::internal::CaptureStderr();
  EXPECT_EQ(Parse({"m", "2"}, request), 2);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "mardle-sweep: TO is required\nTry 'mardle-sweep --help'.\n");
  testing::internal::CaptureStderr();
  EXPECT_EQ(Parse({"m", "2", "9", "--seed", "4"}, request), 2);
  EXPECT_NE(testing::internal::GetCapturedStderr().find("did you mean '--seeds'?"),
            std::string::npos);
}

}  // namespace
