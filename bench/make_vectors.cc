// SPDX-License-Identifier: MIT
//
// Prints a seeded matrix like that of embeddings of texts in the dense format; vectors.h tells what
// it is like.
#include <cstdio>

#include "bench/arguments.h"
#include "bench/vectors.h"

int main(int argc, char** argv) {
  bench::VectorsShape shape;
  std::string classes;
  const bench::Argument arguments[] = {
      {"ROWS", &shape.nrows, 1, 1e7, "rows of the matrix"},
      // What fits into a line of the format.
      {"--columns", &shape.ncols, 1, 8000, "columns"},
      {"--factors", &shape.factors, 1, 8000, "numbers that a row is made of"},
      {"--centers", &shape.centers, 1, 10000, "centres"},
      {"--slope", &shape.center_slope, 0, 10, "centre t has rows in proportion to 1 / t^slope"},
      {"--spread", &shape.spread, 0, 100, "of rows around their centre; centres spread by 1"},
      {"--seed", &shape.seed, 0, 2147483647, "another seed, another matrix"},
      {"--classes", &classes, 0, 0, "file for the centres of the rows"},
  };
  bench::ParseArguments(argc, argv, "make_vectors prints a dense matrix like that of embeddings.",
                        arguments);
  const bench::Vectors vectors = bench::MakeVectors(shape);
  std::fputs(bench::HeaderLine(vectors).c_str(), stdout);
  for (int i = 0; i < shape.nrows; ++i) std::fputs(bench::RowLine(vectors, i).c_str(), stdout);
  if (!classes.empty()) bench::WriteClasses(classes, "center", vectors.center);
  return std::fflush(stdout) == 0 ? 0 : 1;
}
