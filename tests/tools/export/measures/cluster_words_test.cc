// SPDX-License-Identifier: MIT
#include "tools/export/measures/cluster_words.h"

#include <gmock/gmock.h>

#include "tests/tools/export/measures/matrices.h"

namespace {

using mardle::Matrix;
using mardle::exporting::ClusterRows;
using mardle::exporting::ClusterSums;
using mardle::exporting::ClusterWord;
using mardle::exporting::ClusterWords;
using mardle::exporting::FindClusterWords;
using mardle::exporting::NameOf;
using testing::ElementsAre;
using testing_support::PlainInput;
using testing_support::SparseMatrixOf;

std::vector<ClusterWords> WordsOf(const Matrix& mat, const std::vector<int>& part, int nclusters,
                                  int nfeatures) {
  const mardle::EngineInput in = PlainInput(mat, part, nclusters);
  return FindClusterWords(in, nfeatures, ClusterSums(in, ClusterRows(part, nclusters)));
}

TEST(ClusterWords, HaveTheirSharesOfSimilarityAndDistance) {
  // The unit sums are (0.6, 0.8) and (0, 1): the squares of the first are 0.36 and 0.64, those of
  // the difference 0.36 and 0.04.
  const Matrix mat = SparseMatrixOf({{3, 4}, {3, 4}, {0, 1}, {0, 1}});
  const std::vector<ClusterWords> words = WordsOf(mat, {0, 0, 1, 1}, 2, 2);
  ASSERT_EQ(words[0].size(), 2U);
  EXPECT_EQ(words[0][0].column, 1);
  EXPECT_NEAR(*words[0][0].describes, 0.64, 1e-6);
  EXPECT_NEAR(*words[0][0].tells_apart, 0.1, 1e-6);
  EXPECT_TRUE(words[0][0].weaker);
  EXPECT_EQ(words[0][1].column, 0);
  EXPECT_NEAR(*words[0][1].describes, 0.36, 1e-6);
  EXPECT_NEAR(*words[0][1].tells_apart, 0.9, 1e-6);
  EXPECT_FALSE(words[0][1].weaker);
}

TEST(ClusterWords, ThatOnlyTellItApartComeLast) {
  // Cluster 1 lacks column 0, which is what tells it apart most.
  const Matrix mat = SparseMatrixOf({{3, 4}, {3, 4}, {0, 1}, {0, 1}});
  const std::vector<ClusterWords> words = WordsOf(mat, {0, 0, 1, 1}, 2, 1);
  ASSERT_EQ(words[1].size(), 2U);
  EXPECT_EQ(words[1][0].column, 1);
  EXPECT_FALSE(words[1][0].tells_apart);
  EXPECT_EQ(words[1][1].column, 0);
  EXPECT_FALSE(words[1][1].describes);
  EXPECT_TRUE(words[1][1].weaker);
}

TEST(ClusterWords, DoNotTellAClusterOfAllRowsApart) {
  const Matrix mat = SparseMatrixOf({{3, 4}, {3, 4}});
  const std::vector<ClusterWords> words = WordsOf(mat, {0, 0}, 1, 2);
  ASSERT_EQ(words[0].size(), 2U);
  for (const ClusterWord& word : words[0]) EXPECT_FALSE(word.tells_apart);
}

TEST(ClusterName, TakesWordsThatTellApartThenWordsThatDescribe) {
  const ClusterWords words = {{7, 0.5, std::nullopt, false},
                              {4, 0.3, 0.1, true},
                              {5, 0.1, 0.2, false},
                              {8, std::nullopt, 0.4, true},
                              {9, std::nullopt, 0.3, false}};
  EXPECT_THAT(NameOf(words, 9), ElementsAre(9, 5, 7, 4));
  EXPECT_THAT(NameOf(words, 2), ElementsAre(9, 5));
}

TEST(ClusterName, TakesNoWordWithoutWeight) {
  EXPECT_THAT(NameOf({{1, 0.0, 0.0, false}, {2, 1.0, std::nullopt, false}}, 3), ElementsAre(2));
}

}  // namespace
