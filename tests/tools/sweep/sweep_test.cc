// SPDX-License-Identifier: MIT
#include "tools/sweep/sweep.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "lib/support/fatal.h"
#include "programs/io/read_matrix.h"
#include "tests/testing/files.h"
#include "tools/run/promised_files.h"

namespace {

using mardle::Matrix;
using mardle::RunParams;
using mardle::tools::StageLine;
using mardle::tools::Sweep;
using mardle::tools::SweepNumbers;
using testing_support::TempFolder;

// Four rows along each of three axes, classes of the first two alike.
constexpr char kAxes[] =
    "12 3\n1 0 0\n2 0 0\n3 0 0\n4 0 0\n0 1 0\n0 2 0\n0 3 0\n0 4 0\n0 0 1\n0 0 2\n0 0 3\n0 0 4\n";
constexpr char kClasses[] = "a\na\na\na\na\na\na\na\nb\nb\nb\nb\n";

Sweep SweepOf(const std::vector<std::string>& options, const std::vector<int>& numbers,
              bool classes, int nseeds = 3) {
  const molva::CatchableErrors errors_are_thrown;
  const TempFolder folder;
  const std::string matrix = folder.Write("m", kAxes);
  if (classes) folder.Write("m.rclass", kClasses);
  std::vector<std::string> command_line{"mardle", "-denseinput"};
  command_line.insert(command_line.end(), options.begin(), options.end());
  command_line.insert(command_line.end(), {matrix, "2"});
  RunParams params;
  mardle::tools::ReadCommandLine(command_line, params);
  const molva::Owned<Matrix> mat = mardle::CreateMatrix();
  mardle::ReadMatrix(params, *mat);
  StageLine line(true);
  return SweepNumbers(params, *mat, numbers, nseeds, line);
}

TEST(Sweep, RecommendsTheNumberOfDirections) {
  for (const char* method : {"-direct", "-rb"}) {
    const Sweep sweep = SweepOf({method}, {2, 3, 4, 5}, false);
    EXPECT_EQ(sweep.recommendation.nclusters, 3) << method;
    EXPECT_EQ(sweep.rows[1].stability, 1);
    EXPECT_FALSE(sweep.rows[1].classes);
  }
}

TEST(Sweep, TellsWhatEachClusterAddsFromOneOn) {
  // I2 sums the lengths of the sums: of (4, 4, 4), of (4, 4, 0) and (0, 0, 4), of three times 4.
  const Sweep sweep = SweepOf({}, {2, 3, 5}, false);
  const double one = 4 * std::sqrt(3.0);
  const double two = 4 * std::sqrt(2.0) + 4;
  EXPECT_NEAR(sweep.rows[0].value, two, 1e-5);
  EXPECT_NEAR(sweep.rows[0].added, two - one, 1e-5);
  EXPECT_NEAR(sweep.rows[1].added, 12 - two, 1e-5);
  EXPECT_NEAR(sweep.rows[2].added, 0, 1e-5);
  EXPECT_TRUE(std::isnan(SweepOf({}, {3, 5}, false).rows[0].added));
}

TEST(Sweep, TellsSizesAndClassesOfTheClusters) {
  const Sweep sweep = SweepOf({}, {2, 3}, true);
  EXPECT_EQ(sweep.rows[0].smallest, 4);
  EXPECT_EQ(sweep.rows[0].median, 6);
  EXPECT_EQ(sweep.rows[0].largest, 8);
  EXPECT_EQ(sweep.rows[1].median, 4);
  EXPECT_DOUBLE_EQ(sweep.rows[1].classes->purity, 1);
  // The clusters tell the classes, log2(3) - 2/3 bits, and have log2(3) themselves.
  const double classes = std::log2(3.0) - 2.0 / 3;
  EXPECT_NEAR(sweep.rows[1].classes->nmi, classes / ((classes + std::log2(3.0)) / 2), 1e-12);
}

TEST(Sweep, TurnsCriteriaThatAreBetterWhenSmaller) {
  // E1 of three clusters: each 4 times 16 over 4 and |G|, which is not in it.
  const Sweep sweep = SweepOf({"-crfun=3"}, {2, 3, 4, 5}, false);
  EXPECT_NEAR(sweep.rows[1].value, 3 * 4 * 16 / 4.0, 1e-3);
  EXPECT_LT(sweep.rows[1].added, 0);
  EXPECT_EQ(sweep.recommendation.nclusters, 3);
}

TEST(Sweep, EndsWithTheMessageOfTheLibrary) {
  EXPECT_THROW(SweepOf({}, {13}, false), std::runtime_error);
}

}  // namespace
