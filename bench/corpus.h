// SPDX-License-Identifier: MIT
//
// Seeded document-like matrices of any size, with the traits of texts that decide what a clustering
// costs: rows of very unequal lengths, topics of very unequal sizes, rows that are clear and rows
// that are not, and column numbers that tell nothing of how often a column occurs.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "lib/matrix/control.h"

namespace bench {

struct Corpus {
  int nrows = 0;
  int ncols = 0;
  std::vector<int> rowptr;
  std::vector<int> rowind;
  std::vector<float> rowval;
  std::vector<int> topic;  // of every row

  molva::RawMatrix raw() const {
    return {nrows, ncols, rowptr.data(), rowind.data(), rowval.data()};
  }
  std::int64_t entries() const { return static_cast<std::int64_t>(rowind.size()); }
};

struct CorpusShape {
  int nrows = 10000;
  int ncols = 30000;
  int draws_per_row = 90;      // on average; repeated columns are counted together
  double length_spread = 0.7;  // the standard deviation of the logarithm of a row's draws
  int topics = 20;
  double topic_slope = 1;  // topic t has rows in proportion to 1 / (t + 1)^slope
  int seed = 1;
};

// The draws of a row are log-normal in number. A share of them, between none and three fifths and
// another one for every row, comes from a Zipf law over the order of columns of the row's topic,
// the rest from a Zipf law over one order for all rows; all orders are shuffled. Values are counts;
// the columns of a row increase.
Corpus MakeCorpus(const CorpusShape& shape);

// The corpus in the sparse matrix format: its first line, the line of row i, and all of it.
std::string HeaderLine(const Corpus& corpus);
std::string RowLine(const Corpus& corpus, int i);
std::string MatrixText(const Corpus& corpus);

}  // namespace bench
