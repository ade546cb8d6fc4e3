// SPDX-License-Identifier: MIT
//
// Prints a seeded document-like matrix in the sparse format; corpus.h tells what it is like.
#include <cstdio>

#include "bench/arguments.h"
#include "bench/corpus.h"

int main(int argc, char** argv) {
  bench::CorpusShape shape;
  std::string classes;
  const bench::Argument arguments[] = {
      {"ROWS", &shape.nrows, 1, 1e8, "rows of the matrix"},
      {"--columns", &shape.ncols, 1, 1e6, "columns"},
      {"--draws", &shape.draws_per_row, 1, 5000, "words of a row on average, repeated ones too"},
      {"--spread", &shape.length_spread, 0, 2,
       "standard deviation of the logarithm of their number"},
      {"--topics", &shape.topics, 1, 10000, "topics"},
      {"--slope", &shape.topic_slope, 0, 10, "topic t has rows in proportion to 1 / t^slope"},
      {"--seed", &shape.seed, 0, 2147483647, "another seed, another matrix"},
      {"--classes", &classes, 0, 0, "file for the topics of the rows"},
  };
  bench::ParseArguments(argc, argv, "make_corpus prints a matrix like that of texts.", arguments);
  const bench::Corpus corpus = bench::MakeCorpus(shape);
  // Line by line, as the text is larger than the matrix.
  std::fputs(bench::HeaderLine(corpus).c_str(), stdout);
  for (int i = 0; i < corpus.nrows; ++i) std::fputs(bench::RowLine(corpus, i).c_str(), stdout);
  if (!classes.empty()) bench::WriteClasses(classes, "topic", corpus.topic);
  return std::fflush(stdout) == 0 ? 0 : 1;
}
