// SPDX-License-Identifier: MIT
#include "bench/corpus.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <random>

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

}  // namespace

Corpus MakeCorpus(const CorpusShape& shape) {
  Random random(shape.seed);
  std::vector<std::vector<int>> topics;
  for (int t = 0; t < shape.topics; ++t) topics.push_back(ShuffledColumns(random, shape.ncols));

  Corpus corpus;
  corpus.nrows = shape.nrows;
  corpus.ncols = shape.ncols;
  corpus.rowptr = {0};
  for (int i = 0; i < shape.nrows; ++i) {
    const std::vector<int>& topic = topics[random() % topics.size()];
    std::map<int, int> counts;
    for (int draw = 0; draw < shape.entries_per_row; ++draw) {
      const bool on_topic = draw % 2 == 0;
      const std::size_t rank = ZipfRank(random, shape.ncols);
      ++counts[on_topic ? topic[rank] : static_cast<int>(rank)];
    }
    for (const auto& [column, count] : counts) {
      corpus.rowind.push_back(column);
      corpus.rowval.push_back(static_cast<float>(count));
    }
    corpus.rowptr.push_back(static_cast<int>(corpus.rowind.size()));
  }
  return corpus;
}

std::string MatrixText(const Corpus& corpus) {
  std::string text = std::to_string(corpus.nrows) + " " + std::to_string(corpus.ncols) + " " +
                     std::to_string(corpus.entries()) + "\n";
  for (int i = 0; i < corpus.nrows; ++i) {
    const auto row = static_cast<std::size_t>(i);
    for (int p = corpus.rowptr[row]; p < corpus.rowptr[row + 1]; ++p) {
      const auto entry = static_cast<std::size_t>(p);
      text += std::to_string(corpus.rowind[entry] + 1) + " " +
              std::to_string(static_cast<int>(corpus.rowval[entry])) + " ";
    }
    text.back() = '\n';
  }
  return text;
}

}  // namespace bench
