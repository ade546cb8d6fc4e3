// SPDX-License-Identifier: MIT
//
// Seeded dense matrices like embeddings of texts: rows of unit length around centres, with all
// their cells stored.
#pragma once

#include <string>
#include <vector>

namespace bench {

struct Vectors {
  int ncols = 0;
  std::vector<float> cells;  // row by row
  std::vector<int> center;   // of every row
};

struct VectorsShape {
  int nrows = 20000;
  int ncols = 384;
  int factors = 48;  // of which the cells of a row are sums, but for some noise
  int centers = 50;
  double center_slope = 0.5;  // centre t has rows in proportion to 1 / (t + 1)^slope
  double spread = 1.5;        // of a row's factors around its centre's; those spread by 1
  int seed = 1;
};

// The factors of a row are normal around those of its centre; they are spread over the columns by
// one random matrix. To that comes what all rows share, so that most cosines are above 0, as those
// of embeddings are, and some noise in every cell.
Vectors MakeVectors(const VectorsShape& shape);

// The dense matrix format: its first line, and the line of row i.
std::string HeaderLine(const Vectors& vectors);
std::string RowLine(const Vectors& vectors, int i);

}  // namespace bench
