// SPDX-License-Identifier: MIT
#include "tools/export/clustering.h"

#include <gmock/gmock.h>

#include <cmath>

#include "tests/testing/files.h"
#include "tests/tools/export/failures.h"

namespace {

using mardle::exporting::Clustering;
using mardle::exporting::ReadClustering;
using testing::ElementsAre;
using testing_support::FailureMessage;
using testing_support::TempFolder;

class ExportClustering : public testing::Test {
 protected:
  Clustering Read(const std::string& text, int nrows) {
    return ReadClustering(folder_.Write("c", text), nrows);
  }
  // What the reader says of a text, behind the name of the file.
  std::string Complaint(const std::string& text, int nrows) {
    const std::string message = FailureMessage([&] { Read(text, nrows); });
    EXPECT_EQ(message.substr(0, Path().size()), Path());
    return message.substr(std::min(Path().size(), message.size()));
  }
  std::string Path() const { return folder_.Path("c"); }

 private:
  TempFolder folder_;
};

TEST_F(ExportClustering, HoldsTheClusterOfEachRow) {
  const Clustering clustering = Read("1\n0\n-1\n1\n", 4);
  EXPECT_THAT(clustering.part, ElementsAre(1, 0, -1, 1));
  EXPECT_EQ(clustering.nclusters, 2);
  EXPECT_FALSE(clustering.has_zscores());
}

TEST_F(ExportClustering, HoldsTheZScoresOfEachRow) {
  const Clustering clustering = Read("0 -0.5 1.25\n0 inf -nan\n", 2);
  ASSERT_TRUE(clustering.has_zscores());
  EXPECT_EQ(clustering.internal_z[0], -0.5);
  EXPECT_EQ(clustering.external_z[0], 1.25);
  EXPECT_EQ(clustering.internal_z[1], INFINITY);
  EXPECT_TRUE(std::isnan(clustering.external_z[1]));
}

TEST_F(ExportClustering, HasNoClustersWhenEveryRowWasDropped) {
  EXPECT_EQ(Read("-1\n-1\n", 2).nclusters, 0);
}

TEST_F(ExportClustering, TakesEitherLineEnd) {
  EXPECT_THAT(Read("1\r\n0\r\n", 2).part, ElementsAre(1, 0));
}

TEST_F(ExportClustering, MustExist) {
  EXPECT_EQ(FailureMessage([] { ReadClustering("/no/such/file", 1); }),
            "/no/such/file: No such file or directory");
}

TEST_F(ExportClustering, NamesTheLineThatIsNoCluster) {
  EXPECT_EQ(Complaint("0\none\n", 2), ":2: 'one' is not a whole number");
  EXPECT_EQ(Complaint("0\n1.5\n", 2), ":2: '1.5' is not a whole number");
  EXPECT_EQ(Complaint("0\n99999999999\n", 2), ":2: '99999999999' is not a whole number");
}

TEST_F(ExportClustering, NamesTheLineWhoseZScoreIsNoNumber) {
  EXPECT_EQ(Complaint("0 1 x\n", 1), ":1: 'x' is not a number");
}

TEST_F(ExportClustering, NamesTheLineWithTheWrongNumberOfFields) {
  const std::string wanted = "a cluster, or a cluster and two z-scores, is wanted; fields found: ";
  EXPECT_EQ(Complaint("0\n0 1\n", 2), ":2: " + wanted + "2");
  EXPECT_EQ(Complaint("0\n\n", 2), ":2: " + wanted + "0");
}

TEST_F(ExportClustering, HasZScoresInAllLinesOrInNone) {
  EXPECT_EQ(Complaint("0\n0 1 1\n", 2), ":2: z-scores, which the lines before lack");
  EXPECT_EQ(Complaint("0 1 1\n0\n", 2), ":2: no z-scores, which the lines before have");
}

TEST_F(ExportClustering, NumbersClustersFromZeroAndBelowTheNumberOfRows) {
  EXPECT_EQ(Complaint("0\n-2\n", 2), ":2: cluster -2 is below -1");
  EXPECT_EQ(Complaint("2\n0\n", 2), ":1: cluster 2 is too large for a matrix of 2 rows");
}

TEST_F(ExportClustering, HasOneLinePerRow) {
  EXPECT_EQ(Complaint("0\n0\n", 3), ":2: the file ends here, the matrix has 3 rows");
  EXPECT_EQ(Complaint("", 3), ":1: the file ends here, the matrix has 3 rows");
  EXPECT_EQ(Complaint("0\n0\n0\n", 2), ":3: the matrix has 2 rows, the clustering has more");
}

}  // namespace
