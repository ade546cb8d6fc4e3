// SPDX-License-Identifier: MIT
#include "tools/cluster/mardle_options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "programs/options.h"
#include "tests/testing/files.h"
#include "tools/text/file_error.h"

namespace {

using mardle::tools::CheckMardleOptions;
using mardle::tools::TakeMardleOptions;
using testing::ElementsAre;
using testing::StrEq;

std::string Refusal(const std::string& option) {
  std::vector<std::string> options{option};
  try {
    CheckMardleOptions(options);
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "none";
}

TEST(MardleOptions, EveryOptionOfMardleIsKnown) {
  for (const mardle::Option& option : mardle::OptionTable()) {
    const std::string name = std::string("-") + option.name;
    EXPECT_EQ(Refusal(name).find("is no option"), std::string::npos) << name;
  }
}

TEST(MardleOptions, WordsWithOneDashAreTakenButForNumbers) {
  const char* const words[] = {"tool", "-crfun=1", "texts", "--quiet", "-5", "-", "-rb"};
  std::vector<std::string> options;
  const std::vector<const char*> others = TakeMardleOptions(std::size(words), words, options);
  EXPECT_THAT(options, ElementsAre("-crfun=1", "-rb"));
  EXPECT_THAT(others, ElementsAre(StrEq("tool"), StrEq("texts"), StrEq("--quiet"), StrEq("-5"),
                                  StrEq("-")));
}

TEST(MardleOptions, ValuesInTheirRangesAreTaken) {
  for (const char* option : {"-crfun=1", "-crfun=9", "-rowmodel=4", "-colmodel=1", "-prune=0.9",
                             "-prune=1", "-ntrials=1", "-niter=0", "-seed=-5", "-sim=2", "-direct",
                             "-rb", "-refine", "-zscores", "-fulltree", "-denseinput"}) {
    EXPECT_EQ(Refusal(option), "none");
  }
}

TEST(MardleOptions, OthersAreRefused) {
  EXPECT_EQ(Refusal("-crfun=0"), "-crfun=0: a whole number from 1 to 9 is wanted");
  EXPECT_EQ(Refusal("-crfun=2.5"), "-crfun=2.5: a whole number from 1 to 9 is wanted");
  EXPECT_EQ(Refusal("-ntrials=0"), "-ntrials=0: a whole number from 1 on is wanted");
  EXPECT_EQ(Refusal("-ntrials="), "-ntrials=: a whole number from 1 on is wanted");
  EXPECT_EQ(Refusal("-seed=x"), "-seed=x: a whole number of at most nine digits is wanted");
  EXPECT_EQ(Refusal("-prune=90"),
            "-prune=90: a fraction above 0 and up to 1 is wanted; did you mean -prune=0.9?");
  EXPECT_EQ(Refusal("-prune=0"), "-prune=0: a fraction above 0 and up to 1 is wanted");
  EXPECT_EQ(Refusal("-prune=200"), "-prune=200: a fraction above 0 and up to 1 is wanted");
  EXPECT_EQ(Refusal("-direct=1"), "-direct=1: -direct has no value");
  EXPECT_EQ(Refusal("-crfun"), "-crfun: the value stands behind =, as in -crfun=...");
  EXPECT_EQ(Refusal("-crfn=3"), "-crfn is no option of mardle; did you mean '-crfun'?");
  EXPECT_EQ(Refusal("-weight=3"), "-weight is no option of mardle");
  EXPECT_EQ(
      Refusal("-plotmatrix=x"),
      "-plotmatrix has no use here, where files have fixed names and the page shows what there "
      "is to see; mardle-run takes it");
}

TEST(MardleOptions, FilesAreThereAndTheirNamesAbsolute) {
  const testing_support::TempFolder folder;
  std::vector<std::string> options{"-rlabelfile=" + folder.Write("labels", "a\n")};
  CheckMardleOptions(options);
  EXPECT_EQ(options[0], "-rlabelfile=" + folder.Path("labels"));
  options = {"-clabelfile=/nosuch"};
  EXPECT_THROW(CheckMardleOptions(options), mardle::tools::FileError);
}

}  // namespace
