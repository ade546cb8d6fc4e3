// SPDX-License-Identifier: MIT
#include "bench/corpus.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace {

using bench::Corpus;
using bench::MakeCorpus;

std::vector<double> LogDraws(const Corpus& corpus) {
  std::vector<double> logs;
  for (std::size_t i = 0; i + 1 < corpus.rowptr.size(); ++i) {
    const auto row = corpus.rowval.begin() + corpus.rowptr[i];
    const auto end = corpus.rowval.begin() + corpus.rowptr[i + 1];
    logs.push_back(std::log(std::accumulate(row, end, 0.0)));
  }
  return logs;
}

double Mean(const std::vector<double>& numbers) {
  return std::accumulate(numbers.begin(), numbers.end(), 0.0) / static_cast<double>(numbers.size());
}

double Spread(const std::vector<double>& numbers) {
  const double mean = Mean(numbers);
  double squares = 0;
  for (const double number : numbers) squares += (number - mean) * (number - mean);
  return std::sqrt(squares / static_cast<double>(numbers.size()));
}

// The correlation of the column numbers with how often each occurs.
double TrendOfFrequency(const Corpus& corpus) {
  std::vector<double> entries(static_cast<std::size_t>(corpus.ncols));
  for (const int column : corpus.rowind) ++entries[static_cast<std::size_t>(column)];
  std::vector<double> ranks(entries.size()), products;
  std::iota(ranks.begin(), ranks.end(), 0.0);
  const double mean_entries = Mean(entries), mean_rank = Mean(ranks);
  for (std::size_t j = 0; j < ranks.size(); ++j) {
    products.push_back((entries[j] - mean_entries) * (ranks[j] - mean_rank));
  }
  return Mean(products) / (Spread(entries) * Spread(ranks));
}

TEST(Corpus, IsTheSameForTheSameSeedAndAnotherForAnother) {
  const bench::CorpusShape shape{.nrows = 50};
  bench::CorpusShape other = shape;
  other.seed = 2;
  EXPECT_EQ(bench::MatrixText(MakeCorpus(shape)), bench::MatrixText(MakeCorpus(shape)));
  EXPECT_NE(bench::MatrixText(MakeCorpus(shape)), bench::MatrixText(MakeCorpus(other)));
}

TEST(Corpus, StoresEachColumnOfARowOnceInIncreasingOrder) {
  const Corpus corpus = MakeCorpus({.nrows = 200, .ncols = 40});
  for (std::size_t i = 0; i + 1 < corpus.rowptr.size(); ++i) {
    for (int p = corpus.rowptr[i] + 1; p < corpus.rowptr[i + 1]; ++p) {
      const auto entry = static_cast<std::size_t>(p);
      ASSERT_LT(corpus.rowind[entry - 1], corpus.rowind[entry]);
    }
  }
  EXPECT_GE(*std::ranges::min_element(corpus.rowind), 0);
  EXPECT_LT(*std::ranges::max_element(corpus.rowind), 40);
}

TEST(Corpus, RowsAreLogNormalInLength) {
  const Corpus corpus = MakeCorpus({.nrows = 5000, .draws_per_row = 90, .length_spread = 0.7});
  const std::vector<double> logs = LogDraws(corpus);
  EXPECT_NEAR(Mean(logs), std::log(90) - 0.7 * 0.7 / 2, 0.04);
  EXPECT_NEAR(Spread(logs), 0.7, 0.03);
}

TEST(Corpus, RowsAreAllOfOneLengthWithoutSpread) {
  const Corpus corpus = MakeCorpus({.nrows = 20, .draws_per_row = 90, .length_spread = 0});
  for (const double log : LogDraws(corpus)) EXPECT_NEAR(log, std::log(90), 1e-12);
}

TEST(Corpus, TopicsHaveTheirSharesOfRows) {
  // 1 + 1/2 + 1/3 + 1/4 = 25/12.
  const Corpus corpus = MakeCorpus({.nrows = 5000, .draws_per_row = 5, .topics = 4});
  for (int t = 0; t < 4; ++t) {
    const auto rows = static_cast<double>(std::ranges::count(corpus.topic, t));
    EXPECT_NEAR(rows / 5000, 12.0 / 25 / (t + 1), 0.02) << "topic " << t;
  }
}

TEST(Corpus, ColumnNumbersTellNothingOfFrequency) {
  const Corpus corpus = MakeCorpus({.nrows = 2000, .ncols = 5000});
  EXPECT_NEAR(TrendOfFrequency(corpus), 0, 0.05);
}

TEST(Corpus, IsWrittenInTheSparseFormat) {
  Corpus corpus;
  corpus.nrows = 2;
  corpus.ncols = 7;
  corpus.rowptr = {0, 2, 3};
  corpus.rowind = {0, 6, 2};
  corpus.rowval = {1, 3, 12};
  EXPECT_EQ(bench::MatrixText(corpus), "2 7 3\n1 1 7 3\n3 12\n");
}

}  // namespace
