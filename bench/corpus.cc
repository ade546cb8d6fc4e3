// SPDX-License-Identifier: MIT
#include "bench/corpus.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numeric>
#include <random>
#include <span>

namespace bench {
namespace {

using Random = std::mt19937;

double Uniform(Random& random) { return static_cast<double>(random()) * 0x1p-32; }

// A rank with probability about proportional to 1 / (rank + 1): the logarithm of the rank is
// uniform.
std::size_t ZipfRank(Random& random, int n) {
  const double rank = std::exp(Uniform(random) * std::log(n + 1.0)) - 1;
  return std::min(static_cast<std::size_t>(rank), static_cast<std::size_t>(n) - 1);
}

std::vector<int> ShuffledColumns(Random& random, int ncols) {
  std::vector<int> order(static_cast<std::size_t>(ncols));
  std::iota(order.begin(), order.end(), 0);
  for (std::size_t i = order.size() - 1; i > 0; --i) std::swap(order[i], order[random() % (i + 1)]);
  return order;
}

// The columns of a row, as drawn; some of them repeatedly.
void DrawColumns(Random& random, const std::vector<int>& topic, std::span<int> columns) {
  const auto ncols = static_cast<int>(topic.size());
  bool on_topic = true;
  for (int& column : columns) {
    const std::size_t rank = ZipfRank(random, ncols);
    column = on_topic ? topic[rank] : static_cast<int>(rank);
    on_topic = !on_topic;
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
  Random random(shape.seed);
  std::vector<std::vector<int>> topics;
  for (int t = 0; t < shape.topics; ++t) topics.push_back(ShuffledColumns(random, shape.ncols));

  Corpus corpus;
  corpus.nrows = shape.nrows;
  corpus.ncols = shape.ncols;
  corpus.rowptr = {0};
  std::vector<int> columns(static_cast<std::size_t>(shape.entries_per_row));
  for (int i = 0; i < shape.nrows; ++i) {
    DrawColumns(random, topics[random() % topics.size()], columns);
    AppendRow(columns, corpus);
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
