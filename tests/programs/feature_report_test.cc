// SPDX-License-Identifier: MIT
#include "programs/feature_report.h"

#include <gtest/gtest.h>

#include <array>
#include <sstream>
#include <string>
#include <vector>

#include "tests/testing/allocation.h"
#include "tests/testing/files.h"

namespace {

using mardle::Matrix;
using mardle::RunParams;
using Part = std::vector<int>;
using Texts = std::vector<std::string>;

// A dense matrix of two columns with these labels.
Matrix TwoColumns(const std::vector<std::array<float, 2>>& rows,
                  const Texts& labels = {"ship", "sea wind"}) {
  Matrix mat;
  mat.nrows = static_cast<int>(rows.size());
  mat.ncols = 2;
  mat.rowval = molva::AllocFloats(2 * mat.nrows, "rowval");
  for (std::size_t i = 0; i < rows.size(); ++i) {
    mat.rowval[2 * i] = rows[i][0];
    mat.rowval[2 * i + 1] = rows[i][1];
  }
  mat.clabels = molva::Strings(2, "clabels");
  for (std::size_t j = 0; j < 2; ++j) mat.clabels.Set(j, labels[j].c_str());
  return mat;
}

std::string Report(const Matrix& mat, const Part& part, int nclusters, int nfeatures) {
  RunParams params;
  params.colmodel = 1;
  params.nclusters = nclusters;
  params.nfeatures = nfeatures;
  return testing_support::OutputOf([&] {
    mardle::ShowClusterFeatures(params, mat, {params.nclusters, part.data()});
  });
}

// Unit rows (1,0) twice and (0.6,0.8), (0,1): composites (2,0) and (0.6,1.8). The second has the
// squared length 3.6, of which 3.24 is the second column's. The unit composites differ by
// (0.683772, -0.948683), whose squares are 0.467544 and 0.9.
std::string OfFourRows(int nfeatures) {
  return Report(TwoColumns({{5, 0}, {3, 4}, {2, 0}, {0, 7}}), {0, 1, 0, 1}, 2, nfeatures);
}

const std::string kRule = std::string(80, '-') + "\n";
const std::string kTitle =
    kRule + "2-way clustering solution - Descriptive & Discriminating Features...\n" + kRule;

TEST(FeatureReport, ListsTheColumnsOfEachCluster) {
  EXPECT_EQ(OfFourRows(2), kTitle +
                               "Cluster   0, Size:     2, ISim: 1.000, ESim: 0.300\n"
                               "      Descriptive:  ship 100.0%, sea wind  0.0%\n"
                               "   Discriminating:  sea wind 65.8%, ship 34.2%\n"
                               "\n"
                               "Cluster   1, Size:     2, ISim: 0.900, ESim: 0.300\n"
                               "      Descriptive:  sea wind 90.0%, ship 10.0%\n"
                               "   Discriminating:  sea wind 65.8%, ship 34.2%\n" +
                               kRule);
}

TEST(FeatureReport, EndsALineWithACommaWhenTheLastSlotIsEmpty) {
  EXPECT_EQ(OfFourRows(3), kTitle +
                               "Cluster   0, Size:     2, ISim: 1.000, ESim: 0.300\n"
                               "      Descriptive:  ship 100.0%, sea wind  0.0%,\n"
                               "   Discriminating:  sea wind 65.8%, ship 34.2%,\n"
                               "\n"
                               "Cluster   1, Size:     2, ISim: 0.900, ESim: 0.300\n"
                               "      Descriptive:  sea wind 90.0%, ship 10.0%,\n"
                               "   Discriminating:  sea wind 65.8%, ship 34.2%,\n" +
                               kRule);
  EXPECT_EQ(OfFourRows(9), OfFourRows(3));
}

TEST(FeatureReport, ListsASingleColumnWithoutAComma) {
  EXPECT_EQ(OfFourRows(1), kTitle +
                               "Cluster   0, Size:     2, ISim: 1.000, ESim: 0.300\n"
                               "      Descriptive:  ship 100.0%\n"
                               "   Discriminating:  sea wind 65.8%\n"
                               "\n"
                               "Cluster   1, Size:     2, ISim: 0.900, ESim: 0.300\n"
                               "      Descriptive:  sea wind 90.0%\n"
                               "   Discriminating:  sea wind 65.8%\n" +
                               kRule);
}

TEST(FeatureReport, ListsNothingWithoutSlots) {
  const std::string expected = kTitle +
                               "Cluster   0, Size:     2, ISim: 1.000, ESim: 0.300\n"
                               "      Descriptive: \n"
                               "   Discriminating: \n"
                               "\n"
                               "Cluster   1, Size:     2, ISim: 0.900, ESim: 0.300\n"
                               "      Descriptive: \n"
                               "   Discriminating: \n" +
                               kRule;
  EXPECT_EQ(OfFourRows(0), expected);
  EXPECT_EQ(OfFourRows(-2), expected);
}

TEST(FeatureReport, HasNoBlankLineBehindTheLastCluster) {
  const std::string report = Report(TwoColumns({{1, 0}, {3, 4}}), {0, 0}, 1, 1);
  EXPECT_TRUE(report.starts_with(
      kRule + "1-way clustering solution - Descriptive & Discriminating Features...\n" + kRule +
      "Cluster   0, Size:     2, ISim: 0.800, ESim: "))
      << report;
  // (1.6,0.8): 2.56 of 3.2. Nothing is outside.
  EXPECT_NE(report.find("\n      Descriptive:  ship 80.0%\n   Discriminating:  "),
            std::string::npos)
      << report;
  EXPECT_TRUE(report.ends_with("nan%\n" + kRule)) << report;
}

TEST(FeatureReport, HasABlockForAnEmptyCluster) {
  const std::string report = Report(TwoColumns({{1, 0}, {0, 1}, {0, 2}}), {0, 2, 2}, 3, 1);
  EXPECT_NE(report.find("\nCluster   1, Size:     0, ISim: "), std::string::npos) << report;
  EXPECT_NE(report.find("\nCluster   2, Size:     2, ISim: 1.000, ESim: 0.000\n"
                        "      Descriptive:  sea wind 100.0%\n"),
            std::string::npos)
      << report;
}

TEST(FeatureReport, PrintsLabelsAsTheyAre) {
  const Matrix mat = TwoColumns({{1, 0}, {0, 1}}, {"100%s %d\\n", ""});
  const std::string report = Report(mat, {0, 1}, 2, 1);
  EXPECT_NE(report.find("Descriptive:  100%s %d\\n 100.0%\n"), std::string::npos) << report;
  EXPECT_NE(report.find("Descriptive:   100.0%\n"), std::string::npos) << report;
}

TEST(FeatureReport, NamesItsBlocks) {
  const Matrix mat = TwoColumns({{1, 0}, {0, 1}});
  const Part part = {0, 1};
  RunParams params;
  params.colmodel = 1;
  params.nclusters = 2;
  testing::internal::CaptureStdout();
  const Texts names = testing_support::BlockNames([&] {
    mardle::ShowClusterFeatures(params, mat, {params.nclusters, part.data()});
  });
  testing::internal::GetCapturedStdout();
  Texts expected;
  for (const char* array :
       {"pwgts", "cintsim", "cextsim", "cintsdev", "izscores", "cextsdev", "ezscores",
        "internalids", "internalwgts", "externalids", "externalwgts"}) {
    expected.push_back(std::string("ShowClusterFeatures: ") + array);
  }
  EXPECT_EQ(Texts(names.begin(), names.begin() + 11), expected);
}

}  // namespace
