// SPDX-License-Identifier: MIT
#include "bench/corpus.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numeric>
#include <random>
#include <span>

#include "bench/draws.h"

namespace bench {
namespace {

// A longer row might not fit into a line of the format.
constexpr int kMostDraws = 10000;

// The columns from the most to the least frequent one.
using Vocabulary = std::vector<int>;

// A rank with probability about proportional to 1 / (rank + 1): the logarithm of the rank is
// uniform.
std::size_t ZipfRank(Random& random, std::size_t n) {
  const double rank = std::exp(Uniform(random) * std::log(static_cast<double>(n) + 1)) - 1;
  return std::min(static_cast<std::size_t>(rank), n - 1);
}

Vocabulary ShuffledColumns(Random& random, int ncols) {
  Vocabulary order(static_cast<std::size_t>(ncols));
  std::iota(order.begin(), order.end(), 0);
  for (std::size_t i = order.size() - 1; i > 0; --i) std::swap(order[i], order[random() % (i + 1)]);
  return order;
}

std::size_t DrawLength(Random& random, const CorpusShape& shape) {
  // The mean of a log-normal law is its median times the other factor.
  const double spread = shape.length_spread;
  const double median = shape.draws_per_row / std::exp(spread * spread / 2);
  const double draws = std::round(median * std::exp(spread * Normal(random)));
  return static_cast<std::size_t>(std::clamp<double>(draws, 1, kMostDraws));
}

// The columns of a row, as drawn; some of them repeatedly.
void DrawColumns(Random& random, const Vocabulary& common, const Vocabulary& topic,
                 std::span<int> columns) {
  const double share_of_topic = 0.6 * Uniform(random);
  for (int& column : columns) {
    const Vocabulary& source = Uniform(random) < share_of_topic ? topic : common;
    column = source[ZipfRank(random, source.size())];
  }
}

// Each column is stored once, with the number of its draws.
void AppendRow(std::span<int> columns, Corpus& corpus) {
  std::sort(columns.begin(), columns.end());
  for (auto first = columns.begin(); first != columns.end();) {
    const auto next = std::upper_bound(first, columns.end(), *first);
    corpus.rowind.push_back(*first);
    corpus.rowval.push_back(static_cast<float>(next - first));
    first = next;
  }
  corpus.rowptr.push_back(static_cast<int>(corpus.rowind.size()));
}

void AppendNumber(std::int64_t number, char after, std::string& text) {
  char digits[24];
  text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
  text += after;
}

}  // namespace

Corpus MakeCorpus(const CorpusShape& shape) {
  Random random(static_cast<Random::result_type>(shape.seed));
  const Vocabulary common = ShuffledColumns(random, shape.ncols);
  std::vector<Vocabulary> topics;
  for (int t = 0; t < shape.topics; ++t) topics.push_back(ShuffledColumns(random, shape.ncols));
  const UnequalShares shares(shape.topics, shape.topic_slope);

  Corpus corpus;
  corpus.nrows = shape.nrows;
  corpus.ncols = shape.ncols;
  corpus.rowptr = {0};
  std::vector<int> columns;
  for (int i = 0; i < shape.nrows; ++i) {
    const std::size_t topic = shares.Draw(random);
    columns.resize(DrawLength(random, shape));
    DrawColumns(random, common, topics[topic], columns);
    AppendRow(columns, corpus);
    corpus.topic.push_back(static_cast<int>(topic));
  }
  return corpus;
}

std::string HeaderLine(const Corpus& corpus) {
  std::string line;
  AppendNumber(corpus.nrows, ' ', line);
  AppendNumber(corpus.ncols, ' ', line);
  AppendNumber(corpus.entries(), '\n', line);
  return line;
}

std::string RowLine(const Corpus& corpus, int i) {
  std::string line;
  const auto row = static_cast<std::size_t>(i);
  for (int p = corpus.rowptr[row]; p < corpus.rowptr[row + 1]; ++p) {
    const auto entry = static_cast<std::size_t>(p);
    AppendNumber(corpus.rowind[entry] + 1, ' ', line);
    AppendNumber(static_cast<int>(corpus.rowval[entry]), ' ', line);
  }
  line.back() = '\n';
  return line;
}

std::string MatrixText(const Corpus& corpus) {
  std::string text = HeaderLine(corpus);
  for (int i = 0; i < corpus.nrows; ++i) text += RowLine(corpus, i);
  return text;
}

}  // namespace bench
