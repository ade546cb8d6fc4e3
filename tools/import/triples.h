// SPDX-License-Identifier: MIT
//
// Matrices that come as entries in any order.
#pragma once

#include <string>
#include <vector>

#include "tools/import/given_labels.h"
#include "tools/import/matrix_writer.h"

namespace mardle::tools {

struct Triple {
  int row;
  int column;
  double value;
};

// The matrix that the entries belong to.
struct TripleMatrix {
  std::string path;  // of the input
  int rows = 0;
  int columns = 0;
  bool dense = false;  // to be written so
};

// Throws FileError at `place` when more than a million rows have fewer than one entry for a hundred
// of them: a few bytes must not become millions of lines without entries.
void RefuseRowsThatAreNotThere(const Place& place, long long rows, long long entries);

// Entries given several times add up, and zeros are no entries.
MatrixSummary WriteTriples(std::vector<Triple>& triples, const TripleMatrix& matrix,
                           const MatrixOutput& output, const GivenLabels& labels);

}  // namespace mardle::tools
