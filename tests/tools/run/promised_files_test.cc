// SPDX-License-Identifier: MIT
#include "tools/run/promised_files.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/testing/files.h"

namespace {

using namespace mardle::tools;
using mardle::CommandLineKind;
using testing_support::TempFolder;
using Texts = std::vector<std::string>;

CommandLineKind KindOf(Texts arguments) {
  arguments.insert(arguments.begin(), "mardle");
  mardle::RunParams params;
  return ReadCommandLine(arguments, params);
}

TEST(ReadCommandLine, TellsARunFromHelpAndFromAWrongOne) {
  EXPECT_EQ(KindOf({"m", "3"}), CommandLineKind::kRun);
  EXPECT_EQ(KindOf({"-crf=3", "m", "--direct", "3"}), CommandLineKind::kRun);
  EXPECT_EQ(KindOf({"-help"}), CommandLineKind::kHelp);
  EXPECT_EQ(KindOf({"-bogus", "m", "3"}), CommandLineKind::kRefused);
  EXPECT_EQ(KindOf({"-show", "m", "3"}), CommandLineKind::kRefused);
  EXPECT_EQ(KindOf({"m"}), CommandLineKind::kRefused);
  EXPECT_EQ(KindOf({}), CommandLineKind::kRefused);
}

// A matrix of three rows in a folder, and the arguments of a run.
class Promises : public ::testing::Test {
 protected:
  Promises() : matrix_(folder_.Write("m", "3 2 3\n1 1\n2 1\n1 1\n")) {}

  // What is wrong after the run, with the folder's name left out.
  Texts Problems(Texts options, const std::string& nclusters = "2") {
    Texts command_line{"mardle"};
    command_line.insert(command_line.end(), options.begin(), options.end());
    command_line.insert(command_line.end(), {matrix_, nclusters});
    mardle::RunParams params;
    EXPECT_EQ(ReadCommandLine(command_line, params), CommandLineKind::kRun);
    const std::vector<Drawing> drawings = DrawingsOf(params);
    if (during_run_) during_run_();
    Texts problems = MissingResults(params, drawings);
    for (std::string& problem : problems) problem.erase(0, folder_.Path("").size());
    return problems;
  }

  TempFolder folder_;
  std::string matrix_;
  std::function<void()> during_run_;
};

TEST_F(Promises, AClusteringHasALineForEachRow) {
  EXPECT_EQ(Problems({}), Texts{"m.clustering.2: No such file or directory"});
  folder_.Write("m.clustering.2", "0\n1\n");
  EXPECT_EQ(Problems({}), Texts{"m.clustering.2: incomplete, 2 of 3 lines"});
  folder_.Write("m.clustering.2", "0\n1\n-1\n");
  EXPECT_EQ(Problems({}), Texts{});
  EXPECT_EQ(Problems({"-zscores"}), Texts{"m.clustering.2: incomplete, 0 of 3 lines"});
}

TEST_F(Promises, NoOutputPromisesNothingUnlessForScores) {
  EXPECT_EQ(Problems({"-nooutput"}), Texts{});
  EXPECT_EQ(Problems({"-nooutput", "-zscores"}),
            Texts{"m.clustering.2: No such file or directory"});
}

TEST_F(Promises, TheClusteringMayBeNamed) {
  const std::string name = folder_.Write("named", "0 0.5 0.5\n1 0.5 0.5\n1 0.5 -0.5\n");
  EXPECT_EQ(Problems({"-zscores", "-output=" + name}), Texts{});
}

TEST_F(Promises, NoClustersAskedMeansAsManyAsClasses) {
  EXPECT_EQ(Problems({}, "0"), Texts{"m.clustering.1: No such file or directory"});
  folder_.Write("m.rclass", "a\nb \nb\nbeyond\n");
  EXPECT_EQ(Problems({}, "0"), Texts{"m.clustering.2: No such file or directory"});
  const std::string named = folder_.Write("named", "a\nb\nc\n");
  EXPECT_EQ(Problems({"-rclassfile=" + named}, "x"),
            Texts{"m.clustering.3: No such file or directory"});
}

TEST_F(Promises, ATreeHasALineForEachNode) {
  EXPECT_EQ(Problems({"-nooutput", "-writetree"}), Texts{"m.tree.2: No such file or directory"});
  folder_.Write("m.tree.2", "2 0.0\n2 0.0\n-1 0.5\n");
  EXPECT_EQ(Problems({"-nooutput", "-writetree"}), Texts{});
  const std::string name = folder_.Write("tree", "3 0.0\n3 0.0\n4 0.0\n4 0.5\n");
  EXPECT_EQ(Problems({"-nooutput", "-fulltree", "-writetree=" + name}),
            Texts{"tree: incomplete, 4 of 5 lines"});
  EXPECT_EQ(Problems({"-nooutput", "-fulltree", "-writetree"}),
            Texts{"m.tree.3: No such file or directory"});
  EXPECT_EQ(Problems({"-nooutput", "-fulltree"}), Texts{});
}

TEST_F(Promises, DrawingsAreMadeByThisRun) {
  const std::string old = folder_.Write("old.ps", "an older drawing");
  const Texts options = {"-nooutput", "-plotmatrix=" + old,
                         "-plotclusters=" + folder_.Path("new.ps")};
  EXPECT_EQ(Problems(options), (Texts{"old.ps: not drawn", "new.ps: not drawn"}));
  during_run_ = [this] {
    folder_.Write("old.ps", "a drawing\n%%EOF\n");
    folder_.Write("new.ps", "");
  };
  EXPECT_EQ(Problems(options), Texts{"new.ps: empty"});
}

TEST_F(Promises, DevicesAreNotChecked) {
  EXPECT_EQ(Problems({"-output=/dev/null", "-plotmatrix=/dev/null"}), Texts{});
}

}  // namespace
