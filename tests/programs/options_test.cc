// SPDX-License-Identifier: MIT
#include "programs/options.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "programs/help_text.h"
#include "tests/testing/files.h"

namespace {

using mardle::RunParams;
using Words = std::vector<std::string>;

// Parses the words behind the program's name.
RunParams Parse(Words words, std::string program = "mardle") {
  std::vector<char*> argv = {program.data()};
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  RunParams params;
  mardle::ParseCommandLine(params, static_cast<int>(argv.size()) - 1, argv.data());
  return params;
}

const char* TextOf(const molva::String& text) { return text ? text.get() : "(absent)"; }

// Every field on a line of its own.
std::string Fields(const RunParams& p) {
  std::ostringstream text;
  text << "simfun " << p.simfun << "\ncrfun " << p.crfun << "\nrowmodel " << p.rowmodel
       << "\ncolmodel " << p.colmodel << "\nprune " << p.prune << "\nntrials " << p.ntrials
       << "\nniter " << p.niter << "\nseed " << p.seed << "\ndbglvl " << p.dbglvl << "\nrefine "
       << p.refine << "\nnooutput " << p.nooutput << "\ndirect " << p.direct << "\nrb " << p.rb
       << "\nnclusters " << p.nclusters << "\nnfeatures " << p.nfeatures << "\nshowfeatures "
       << p.showfeatures << "\nshowtree " << p.showtree << "\ntreecrfun " << p.treecrfun
       << "\nlabeltree " << p.labeltree << "\nwritetree " << p.writetree << "\nzscores "
       << p.zscores << "\nfulltree " << p.fulltree << "\ndenseinput " << p.denseinput
       << "\nclustercolumns " << p.clustercolumns << "\nzeroblack " << p.zeroblack << "\nnoreorder "
       << p.noreorder << "\nfilename " << TextOf(p.filename) << "\nclabelfile "
       << TextOf(p.clabelfile) << "\nrlabelfile " << TextOf(p.rlabelfile) << "\nrclassfile "
       << TextOf(p.rclassfile) << "\noutputfile " << TextOf(p.outputfile) << "\ntreefile "
       << TextOf(p.treefile) << "\nplotmatrixfile " << TextOf(p.plotmatrixfile)
       << "\nplotclustersfile " << TextOf(p.plotclustersfile) << "\nplotformat "
       << p.plotformat.data() << "\n";
  return text.str();
}

constexpr char kDefaults[] =
    "simfun 1\ncrfun 2\nrowmodel 1\ncolmodel 2\nprune 1\nntrials 10\nniter 10\nseed 1\ndbglvl 0\n"
    "refine 0\nnooutput 0\ndirect 0\nrb 1\nnclusters 10\nnfeatures 5\nshowfeatures 0\nshowtree 0\n"
    "treecrfun 2\nlabeltree 0\nwritetree 0\nzscores 0\nfulltree 0\ndenseinput 0\n"
    "clustercolumns 0\nzeroblack 0\nnoreorder 0\nfilename file\nclabelfile (absent)\n"
    "rlabelfile (absent)\nrclassfile (absent)\noutputfile (absent)\ntreefile (absent)\n"
    "plotmatrixfile (absent)\nplotclustersfile (absent)\nplotformat ps\n";

// The defaults with other values in the fields named.
std::string DefaultsBut(const std::vector<std::pair<std::string, std::string>>& changes) {
  std::string text = kDefaults;
  for (const auto& [field, value] : changes) {
    const std::size_t line = text.find("\n" + field + " ");
    const std::size_t begin = text.starts_with(field + " ") ? 0 : line + 1;
    text.replace(begin, text.find('\n', begin) - begin, field + " " + value);
  }
  return text;
}

// What a command line that ends the process with status 0 prints to standard output.
std::string LastWords(const Words& words, const std::string& program = "mardle",
                      const char* error_output = "") {
  const testing_support::TempFolder folder;
  const std::string path = folder.Path("out");
  EXPECT_EXIT(
      {
        if (std::freopen(path.c_str(), "w", stdout) == nullptr) std::abort();
        Parse(words, program);
      },
      ::testing::ExitedWithCode(0), error_output);
  return testing_support::ReadText(path);
}

std::string Lines(std::span<const char* const> lines) {
  std::string text;
  for (const char* line : lines) text += std::string(line) + "\n";
  return text;
}

constexpr char kIllegal[] =
    "Illegal command-line option(s)\nUse mardle -help for a summary of the options.\n";
constexpr char kMissing[] =
    "Missing parameters. \n"
    "    Usage: mardle [options] <filename> <nclusters>\n"
    "           use 'mardle -help' for a summary of the options.\n";

TEST(CommandLine, SetsEveryFieldToItsDefault) {
  EXPECT_EQ(Fields(Parse({"file", "10"})), kDefaults);
}

// Where a setting follows from an option, its field stands beside the option's own.
TEST(CommandLine, SetsTheFieldOfAnOptionAndNoOther) {
  const struct {
    const char* option;
    std::vector<std::pair<std::string, std::string>> changes;
  } rows[] = {
      {"-crfun=5", {{"crfun", "5"}, {"treecrfun", "5"}}},
      {"-rowmodel=3", {{"rowmodel", "3"}}},
      {"-colmodel=1", {{"colmodel", "1"}}},
      {"-prune=0.25", {{"prune", "0.25"}}},
      {"-ntrials=20", {{"ntrials", "20"}}},
      {"-niter=30", {{"niter", "30"}}},
      {"-seed=40", {{"seed", "40"}}},
      {"-dbglvl=3", {{"dbglvl", "3"}}},
      {"-clabelfile=a", {{"clabelfile", "a"}}},
      {"-rlabelfile=b", {{"rlabelfile", "b"}}},
      {"-rclassfile=c", {{"rclassfile", "c"}}},
      {"-direct", {{"direct", "1"}, {"rb", "0"}}},
      {"-rb", {{"rb", "1"}}},
      {"-refine", {{"refine", "1"}}},
      {"-output=d", {{"outputfile", "d"}}},
      {"-nooutput", {{"nooutput", "1"}}},
      {"-showfeatures", {{"showfeatures", "1"}}},
      {"-nfeatures=6", {{"nfeatures", "6"}}},
      {"-showtree=7", {{"showtree", "1"}, {"treecrfun", "7"}}},
      {"-labeltree", {{"labeltree", "1"}}},
      {"-writetree=e", {{"writetree", "1"}, {"treefile", "e"}}},
      {"-zscores", {{"zscores", "1"}}},
      {"-fulltree", {{"fulltree", "1"}}},
      {"-sim=3", {{"simfun", "3"}}},
      {"-denseinput", {{"denseinput", "1"}, {"colmodel", "1"}}},
      {"-plotmatrix=f", {{"plotmatrixfile", "f"}}},
      {"-clustercolumns", {{"clustercolumns", "1"}}},
      {"-plotformat=svg", {{"plotformat", "svg"}}},
      {"-plotclusters=g", {{"plotclustersfile", "g"}}},
      {"-zeroblack", {{"zeroblack", "1"}}},
      {"-noreorder", {{"noreorder", "1"}}},
  };
  EXPECT_EQ(std::size(rows) + 1, mardle::OptionTable().size());  // and -help
  for (const auto& row : rows) {
    EXPECT_EQ(Fields(Parse({row.option, "file", "10"})), DefaultsBut(row.changes)) << row.option;
  }
}

TEST(OptionTable, Names32Options) {
  std::set<std::string> names;
  for (const mardle::Option& option : mardle::OptionTable()) names.insert(option.name);
  EXPECT_EQ(
      names,
      (std::set<std::string>{
          "crfun",      "rowmodel",   "colmodel",   "prune",          "ntrials",      "niter",
          "seed",       "dbglvl",     "clabelfile", "rlabelfile",     "rclassfile",   "direct",
          "rb",         "refine",     "output",     "nooutput",       "showfeatures", "nfeatures",
          "showtree",   "labeltree",  "writetree",  "zscores",        "fulltree",     "sim",
          "denseinput", "plotmatrix", "plotformat", "clustercolumns", "plotclusters", "zeroblack",
          "noreorder",  "help"}));
  EXPECT_EQ(mardle::OptionTable().size(), 32U);
}

// The help writes an optional value in brackets and a required one behind "=".
std::string HelpLineStart(const mardle::Option& option) {
  using enum mardle::Option::Value;
  const std::string start = std::string("   -") + option.name;
  if (option.value == kOptionalInt || option.value == kOptionalText) return start + "[=";
  return option.value == kNone || option.value == kHelp ? start : start + "=";
}

TEST(OptionTable, StandsInTheHelpWithItsValues) {
  for (const mardle::Option& option : mardle::OptionTable()) {
    const std::string start = HelpLineStart(option);
    const auto lines = mardle::HelpLines();
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                            [&](std::string_view line) {
                              return line.starts_with(start) &&
                                     (start.back() == '=' ||
                                      line.find_first_not_of(' ', start.size()) == line.npos);
                            }),
              1)
        << option.name;
  }
}

TEST(CommandLine, TakesAValueFromTheNextWord) {
  const RunParams params = Parse({"-crfun", "3", "-output", "res", "-prune", "0.5", "file", "10"});
  EXPECT_EQ(params.crfun, 3);
  EXPECT_STREQ(params.outputfile.get(), "res");
  EXPECT_EQ(params.prune, 0.5F);
  EXPECT_STREQ(params.filename.get(), "file");
}

TEST(CommandLine, TakesTwoDashesForOne) {
  EXPECT_EQ(Parse({"--crfun=3", "file", "10"}).crfun, 3);
  EXPECT_EQ(Parse({"--rb", "file", "10"}).rb, 1);
}

TEST(CommandLine, TakesAPrefixThatFitsOneOption) {
  EXPECT_EQ(Parse({"-crf=3", "file", "10"}).crfun, 3);
  EXPECT_EQ(Parse({"-nt=4", "file", "10"}).ntrials, 4);
  EXPECT_EQ(Parse({"-dir", "file", "10"}).direct, 1);
}

TEST(CommandLine, TakesOptionsBeforeBetweenAndBehindTheArguments) {
  for (const Words& words :
       {Words{"-crfun=3", "-refine", "file", "10"}, Words{"-crfun=3", "file", "-refine", "10"},
        Words{"file", "10", "-crfun", "3", "-refine"}}) {
    const RunParams params = Parse(words);
    EXPECT_EQ(params.crfun, 3);
    EXPECT_EQ(params.refine, 1);
    EXPECT_STREQ(params.filename.get(), "file");
    EXPECT_EQ(params.nclusters, 10);
  }
}

TEST(CommandLine, TakesArgumentsThatBeginWithADashBehindTwoDashes) {
  const RunParams params = Parse({"-refine", "--", "-file", "-2"});
  EXPECT_STREQ(params.filename.get(), "-file");
  EXPECT_EQ(params.nclusters, -2);
}

TEST(CommandLine, DoesNotDependOnTheEnvironment) {
  setenv("POSIXLY_CORRECT", "1", 1);
  const RunParams params = Parse({"file", "-crfun=3", "10", "-refine"});
  unsetenv("POSIXLY_CORRECT");
  EXPECT_EQ(params.crfun, 3);
  EXPECT_EQ(params.refine, 1);
  EXPECT_EQ(params.nclusters, 10);
}

TEST(CommandLine, LetsALaterOptionOverrideAnEarlierOne) {
  const RunParams params = Parse({"-crfun=3", "-output=a", "-crfun=4", "-output=bc",
                                  "-plotformat=gif", "-plotformat=ps", "file", "10"});
  EXPECT_EQ(params.crfun, 4);
  EXPECT_STREQ(params.outputfile.get(), "bc");
  EXPECT_STREQ(params.plotformat.data(), "ps");
}

TEST(CommandLine, ReadsWholeNumbersAsTheStandardConversionDoes) {
  EXPECT_EQ(Parse({"-seed= 7", "file", "10"}).seed, 7);
  EXPECT_EQ(Parse({"-seed=12abc", "file", "10"}).seed, 12);
  EXPECT_EQ(Parse({"-seed=abc", "file", "10"}).seed, 0);
  EXPECT_EQ(Parse({"-seed=", "file", "10"}).seed, 0);
  EXPECT_EQ(Parse({"-seed=010", "file", "10"}).seed, 10);
  EXPECT_EQ(Parse({"-seed=3.9", "file", "10"}).seed, 3);
}

TEST(CommandLine, ReadsTheFractionAsTheStandardConversionDoes) {
  EXPECT_EQ(Parse({"-prune=.5", "file", "10"}).prune, 0.5F);
  EXPECT_EQ(Parse({"-prune=25e-2x", "file", "10"}).prune, 0.25F);
  EXPECT_EQ(Parse({"-prune=x", "file", "10"}).prune, 0.0F);
}

TEST(CommandLine, ChecksNoRange) {
  const RunParams params =
      Parse({"-crfun=12", "-ntrials=0", "-nfeatures=-4", "-prune=-2", "-rowmodel=9", "file", "10"});
  EXPECT_EQ(params.crfun, 12);
  EXPECT_EQ(params.ntrials, 0);
  EXPECT_EQ(params.nfeatures, -4);
  EXPECT_EQ(params.prune, -2.0F);
  EXPECT_EQ(params.rowmodel, 9);
}

TEST(CommandLine, TakesANumberOfClustersThatIsNoNumberForZero) {
  EXPECT_EQ(Parse({"file", "abc"}).nclusters, 0);
}

TEST(CommandLine, KeepsAnEmptyTextApartFromAnAbsentOne) {
  const RunParams params = Parse({"-output=", "file", "10"});
  ASSERT_TRUE(params.outputfile);
  EXPECT_STREQ(params.outputfile.get(), "");
}

TEST(CommandLine, CutsAFormatThatDoesNotFit) {
  const std::string fits(255, 'a');
  EXPECT_EQ(Parse({"-plotformat=" + fits, "file", "10"}).plotformat.data(), fits);
  EXPECT_EQ(Parse({"-plotformat=" + fits + "b", "file", "10"}).plotformat.data(), fits);
  EXPECT_EQ(Parse({"-plotformat=" + std::string(300, 'a'), "file", "10"}).plotformat.data(), fits);
}

TEST(CommandLine, LeavesNothingOfALongerFormat) {
  const RunParams params =
      Parse({"-plotformat=" + std::string(300, 'a'), "-plotformat=ps", "file", "10"});
  EXPECT_TRUE(std::all_of(params.plotformat.begin() + 2, params.plotformat.end(),
                          [](char c) { return c == '\0'; }));
}

TEST(CommandLine, IsParsedAfreshEachTime) {
  RunParams params;
  std::string words[] = {"mardle", "first", "-crfun=3", "-output=a", "3"};
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  mardle::ParseCommandLine(params, 5, argv.data());
  EXPECT_STREQ(params.filename.get(), "first");
  std::string more_words[] = {"mardle", "file", "10"};
  argv.clear();
  for (std::string& word : more_words) argv.push_back(word.data());
  argv.push_back(nullptr);
  mardle::ParseCommandLine(params, 3, argv.data());
  EXPECT_EQ(Fields(params), kDefaults);
}

TEST(DerivedSettings, KeepBothMethodsThatWereAskedFor) {
  const RunParams params = Parse({"-direct", "-rb", "file", "10"});
  EXPECT_EQ(params.direct, 1);
  EXPECT_EQ(params.rb, 1);
}

TEST(DerivedSettings, GiveTheTreeTheFinalCriterionOfTheClustering) {
  EXPECT_EQ(Parse({"-showtree", "-crfun=6", "file", "10"}).treecrfun, 6);
  EXPECT_EQ(Parse({"-showtree=0", "-crfun=6", "file", "10"}).treecrfun, 6);
  EXPECT_EQ(Parse({"-showtree=4", "-crfun=6", "file", "10"}).treecrfun, 4);
}

TEST(DerivedSettings, WriteTheClusteringWithZScores) {
  for (const Words& words : {Words{"-zscores", "-nooutput", "file", "10"},
                             Words{"-nooutput", "-zscores", "file", "10"}}) {
    EXPECT_EQ(Parse(words).nooutput, 0);
    EXPECT_EQ(Parse(words).zscores, 1);
  }
}

TEST(DerivedSettings, TakeNoColumnModelWithFullRows) {
  EXPECT_EQ(Parse({"-sim=2", "-colmodel=2", "file", "10"}).colmodel, 1);
  EXPECT_EQ(Parse({"-denseinput", "-colmodel=2", "file", "10"}).colmodel, 1);
  EXPECT_EQ(Parse({"-colmodel=7", "-sim=2", "file", "10"}).colmodel, 1);
}

TEST(OptionalValues, AreTakenAttachedOnly) {
  const RunParams params = Parse({"-showtree", "4", "file"});
  EXPECT_EQ(params.showtree, 1);
  EXPECT_EQ(params.treecrfun, 2);
  EXPECT_STREQ(params.filename.get(), "4");
  EXPECT_EQ(params.nclusters, 0);
}

TEST(OptionalValues, MayBeAbsent) {
  const RunParams params = Parse({"-writetree", "file", "10"});
  EXPECT_EQ(params.writetree, 1);
  EXPECT_FALSE(params.treefile);
}

TEST(OptionalValues, StayWhenTheOptionComesAgainWithoutOne) {
  const RunParams params =
      Parse({"-showtree=4", "-writetree=t", "-showtree", "-writetree", "file", "10"});
  EXPECT_EQ(params.treecrfun, 4);
  EXPECT_STREQ(params.treefile.get(), "t");
}

TEST(Help, PrintsItsLinesAndEndsWithStatusZero) {
  EXPECT_EQ(LastWords({"-help"}, "mardle", "^$"), Lines(mardle::HelpLines()));
}

TEST(Help, ComesBeforeWhatStandsBehindIt) {
  EXPECT_EQ(LastWords({"file", "-help", "-bogus"}), Lines(mardle::HelpLines()));
}

TEST(IllegalOptions, AreTheUnknownOnes) {
  EXPECT_EQ(LastWords({"-bogus", "file", "10"}), kIllegal);
  EXPECT_EQ(LastWords({"-bogus", "-help"}), kIllegal);
  EXPECT_EQ(LastWords({"file", "-3"}), kIllegal);
}

// -niter, -nfeatures, -nooutput, -ntrials and -noreorder begin with an n.
TEST(IllegalOptions, AreTheAmbiguousOnes) {
  EXPECT_EQ(LastWords({"-n=3", "file", "10"}), kIllegal);
  EXPECT_EQ(LastWords({"-plot=3", "file", "10"}), kIllegal);
  EXPECT_EQ(LastWords({"-no", "file", "10"}), kIllegal);
}

TEST(IllegalOptions, AreThoseThatMissTheirValue) {
  EXPECT_EQ(LastWords({"file", "10", "-crfun"}), kIllegal);
  EXPECT_EQ(LastWords({"file", "10", "-plotformat"}), kIllegal);
}

TEST(IllegalOptions, AreThoseWithAValueTheyDoNotTake) {
  EXPECT_EQ(LastWords({"-rb=1", "file", "10"}), kIllegal);
}

TEST(IllegalOptions, AreToldUnderTheNameTheProgramWasStartedWith) {
  EXPECT_EQ(LastWords({"-bogus"}, "/opt/bin/100%s"),
            "Illegal command-line option(s)\n"
            "Use /opt/bin/100%s -help for a summary of the options.\n");
}

TEST(MissingParameters, AreToldWithTheUsage) {
  EXPECT_EQ(LastWords({}, "mardle", "^$"), kMissing);
  EXPECT_EQ(LastWords({"file"}, "mardle", "^$"), kMissing);
  EXPECT_EQ(LastWords({"-showtree", "file"}, "mardle", "^$"), kMissing);
}

TEST(MissingParameters, AreToldWhenThereAreTooMany) {
  EXPECT_EQ(LastWords({"file", "10", "11"}, "mardle", "^$"), kMissing);
  EXPECT_EQ(LastWords({"-showtree", "4", "file", "10"}, "mardle", "^$"), kMissing);
}

}  // namespace
