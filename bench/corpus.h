// SPDX-License-Identifier: MIT
//
// Seeded document-like matrices of any size.
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

  molva::RawMatrix raw() const {
    return {nrows, ncols, rowptr.data(), rowind.data(), rowval.data()};
  }
  std::int64_t entries() const { return static_cast<std::int64_t>(rowind.size()); }
};

struct CorpusShape {
  int nrows = 10000;
  int ncols = 30000;
  int entries_per_row = 90;  // draws; repeated columns are counted together
  int topics = 20;
  std::uint32_t seed = 1;
};

// Each row belongs to a topic. Half of its draws come from a Zipf law over all columns, half from a
// Zipf law over the topic's own shuffled order of them. Values are counts; columns increase.
Corpus MakeCorpus(const CorpusShape& shape);

// The corpus in the sparse matrix format: its first line, the line of row i, and all of it.
std::string HeaderLine(const Corpus& corpus);
std::string RowLine(const Corpus& corpus, int i);
std::string MatrixText(const Corpus& corpus);

}  // namespace bench
