// SPDX-License-Identifier: MIT
//
// Prints a seeded document-like matrix in the sparse format:
//   make_corpus ROWS [COLUMNS [ENTRIES_PER_ROW [SEED]]]
#include <cstdio>
#include <cstdlib>

#include "bench/corpus.h"

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "Usage: %s ROWS [COLUMNS [ENTRIES_PER_ROW [SEED]]]\n", argv[0]);
    return 1;
  }
  bench::CorpusShape shape;
  shape.nrows = std::atoi(argv[1]);
  if (argc > 2) shape.ncols = std::atoi(argv[2]);
  if (argc > 3) shape.entries_per_row = std::atoi(argv[3]);
  if (argc > 4) shape.seed = static_cast<std::uint32_t>(std::atoi(argv[4]));
  const bench::Corpus corpus = bench::MakeCorpus(shape);
  // Line by line, as the text is larger than the matrix.
  std::fputs(bench::HeaderLine(corpus).c_str(), stdout);
  for (int i = 0; i < corpus.nrows; ++i) std::fputs(bench::RowLine(corpus, i).c_str(), stdout);
  return std::fflush(stdout) == 0 ? 0 : 1;
}
