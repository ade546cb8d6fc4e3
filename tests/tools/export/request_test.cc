// SPDX-License-Identifier: MIT
#include "tools/export/request.h"

#include <gmock/gmock.h>

#include <iostream>
#include <vector>

namespace {

using mardle::exporting::Contents;
using mardle::exporting::Format;
using mardle::exporting::HeightsFrom;
using mardle::exporting::Request;
using mardle::exporting::TableForm;
using testing::HasSubstr;

std::variant<Request, int> Parse(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "mardle-export");
  return mardle::exporting::ParseRequest(static_cast<int>(arguments.size()), arguments.data());
}

Request Parsed(const std::vector<const char*>& arguments) {
  std::variant<Request, int> parsed = Parse(arguments);
  if (Request* request = std::get_if<Request>(&parsed)) return std::move(*request);
  ADD_FAILURE() << "the command line was refused";
  return {};
}

// What a refused command line prints to standard error; the status must be 2.
std::string Refusal(const std::vector<const char*>& arguments) {
  testing::internal::CaptureStderr();
  const std::variant<Request, int> parsed = Parse(arguments);
  const std::string told = testing::internal::GetCapturedStderr();
  const int* status = std::get_if<int>(&parsed);
  EXPECT_TRUE(status != nullptr && *status == 2);
  return told;
}

TEST(ParseRequest, TakesTheFilesOfATable) {
  const Request request = Parsed({"json", "--clustering", "c", "--matrix=m", "--rlabelfile", "l",
                                  "--rclassfile", "k", "--output", "o"});
  EXPECT_EQ(request.format, Format::kJson);
  EXPECT_EQ(request.clustering, "c");
  EXPECT_EQ(request.files.matrix, "m");
  EXPECT_EQ(request.files.rlabelfile, "l");
  EXPECT_EQ(request.files.rclassfile, "k");
  EXPECT_EQ(request.output, "o");
}

TEST(ParseRequest, TakesTheFilesOfATree) {
  const Request request = Parsed({"linkage", "--tree", "t", "--matrix", "m", "--leaves", "l"});
  EXPECT_EQ(request.format, Format::kLinkage);
  EXPECT_EQ(request.tree, "t");
  EXPECT_EQ(request.files.matrix, "m");
  EXPECT_EQ(request.leaves, "l");
  EXPECT_EQ(request.heights, HeightsFrom::kOrder);
  EXPECT_EQ(Parsed({"dot", "--tree", "t"}).format, Format::kDot);
  EXPECT_EQ(Parsed({"newick", "--tree", "t", "--heights", "similarity"}).heights,
            HeightsFrom::kSimilarity);
}

TEST(ParseRequest, TakesTheRunOfAPage) {
  const Request request =
      Parsed({"html", "--clustering", "c",   "--matrix",    "m", "--clabelfile", "cl", "--tree",
              "t",    "--crfun",      "3",   "--treecrfun", "5", "--rowmodel",   "4",  "--colmodel",
              "1",    "--prune",      "0.7", "--nfeatures", "9", "--noreorder"});
  EXPECT_EQ(request.format, Format::kHtml);
  EXPECT_EQ(request.files.clabelfile, "cl");
  EXPECT_EQ(request.tree, "t");
  EXPECT_EQ(request.run.crfun, 3);
  EXPECT_EQ(request.run.treecrfun, 5);
  EXPECT_EQ(request.run.rowmodel, 4);
  EXPECT_EQ(request.run.colmodel, 1);
  EXPECT_EQ(request.run.prune, 0.7F);
  EXPECT_EQ(request.run.nfeatures, 9);
  EXPECT_EQ(request.run.noreorder, 1);
}

TEST(ParseRequest, DerivesWhatARunDerives) {
  const Request plain = Parsed({"html", "--clustering", "c", "--matrix", "m"});
  EXPECT_EQ(plain.run.crfun, 2);
  EXPECT_EQ(plain.run.treecrfun, 2);
  EXPECT_EQ(plain.run.colmodel, 2);
  EXPECT_EQ(plain.run.prune, 1.0F);
  EXPECT_EQ(plain.run.nfeatures, 10);
  EXPECT_EQ(Parsed({"html", "--clustering", "c", "--matrix", "m", "--sim", "2"}).run.colmodel, 1);
  EXPECT_EQ(Parsed({"html", "--clustering", "c", "--matrix", "m", "--denseinput"}).run.colmodel, 1);
}

TEST(ParseRequest, TakesWhatTheMatrixHolds) {
  const auto contents = [](const char* word) {
    return Parsed({"html", "--clustering", "c", "--matrix", "m", "--contents", word}).contents;
  };
  EXPECT_EQ(contents("text"), Contents::kText);
  EXPECT_EQ(contents("table"), Contents::kTable);
  EXPECT_EQ(Parsed({"html", "--clustering", "c", "--matrix", "m"}).contents, Contents::kUnknown);
}

TEST(ParseRequest, KnowsWhichOptionsWereGiven) {
  const Request request = Parsed({"features", "--clustering", "c", "--matrix", "m", "--rowmodel",
                                  "1", "--record", "r", "--as", "json"});
  EXPECT_TRUE(request.told.contains("--rowmodel"));
  EXPECT_FALSE(request.told.contains("--colmodel"));
  EXPECT_EQ(request.record, "r");
  EXPECT_EQ(request.form, TableForm::kJson);
  EXPECT_EQ(request.format, Format::kFeatures);
  EXPECT_EQ(Parsed({"heatmap", "--clustering", "c", "--matrix", "m"}).format, Format::kHeatMap);
}

TEST(ParseRequest, PrintsHelpAndVersionWithStatusZero) {
  for (const char* option : {"--help", "--version"}) {
    testing::internal::CaptureStdout();
    const std::variant<Request, int> parsed = Parse({option});
    EXPECT_THAT(testing::internal::GetCapturedStdout(), HasSubstr("mardle-export"));
    ASSERT_NE(std::get_if<int>(&parsed), nullptr);
    EXPECT_EQ(std::get<int>(parsed), 0);
  }
}

TEST(ParseRequest, RefusesWhatItDoesNotKnow) {
  EXPECT_THAT(Refusal({}), HasSubstr("A format is required"));
  EXPECT_THAT(Refusal({"pdf"}), HasSubstr("pdf"));
  EXPECT_THAT(Refusal({"dot", "--tree", "t", "--speed"}), HasSubstr("--speed"));
}

TEST(ParseRequest, RefusesMissingFiles) {
  EXPECT_THAT(Refusal({"tsv", "--matrix", "m"}), HasSubstr("--clustering is required"));
  EXPECT_THAT(Refusal({"tsv", "--clustering", "c"}), HasSubstr("--matrix is required"));
  EXPECT_THAT(Refusal({"newick"}), HasSubstr("--tree is required"));
  EXPECT_THAT(Refusal({"newick", "--tree", "t", "--rlabelfile", "l"}), HasSubstr("--matrix"));
}

TEST(ParseRequest, RefusesNumbersOutsideTheirRange) {
  const auto page = [](const char* name, const char* value) {
    return Refusal({"html", "--clustering", "c", "--matrix", "m", name, value});
  };
  EXPECT_THAT(page("--crfun", "10"), HasSubstr("--crfun"));
  EXPECT_THAT(page("--treecrfun", "8"), HasSubstr("--treecrfun"));
  EXPECT_THAT(page("--sim", "0"), HasSubstr("--sim"));
  EXPECT_THAT(page("--rowmodel", "5"), HasSubstr("--rowmodel"));
  EXPECT_THAT(page("--colmodel", "x"), HasSubstr("--colmodel"));
  EXPECT_THAT(page("--prune", "1.1"), HasSubstr("--prune"));
  EXPECT_THAT(page("--prune", "nan"), HasSubstr("--prune"));
  EXPECT_THAT(page("--nfeatures", "0"), HasSubstr("--nfeatures"));
  EXPECT_THAT(page("--contents", "music"), HasSubstr("--contents"));
}

TEST(ParseRequest, WantsATreeCriterionWhereThatOfTheRunBuildsNone) {
  const std::vector<const char*> page = {"html", "--clustering", "c", "--matrix",
                                         "m",    "--crfun",      "8"};
  EXPECT_THAT(Refusal(page), HasSubstr("trees are built under the criteria 1 to 7"));
}

TEST(ParseRequest, RefusesSimilaritiesAsHeightsOfATreeOverTheRows) {
  EXPECT_THAT(Refusal({"newick", "--tree", "t", "--matrix", "m", "--heights", "similarity"}),
              HasSubstr("the similarities of a tree over the rows give no heights"));
  EXPECT_THAT(Refusal({"newick", "--tree", "t", "--heights", "weight"}), HasSubstr("--heights"));
}

}  // namespace
