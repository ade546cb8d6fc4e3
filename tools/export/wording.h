// SPDX-License-Identifier: MIT
//
// What the rows and columns of a matrix are called.
#pragma once

#include <string>

#include "programs/io/matrix.h"

namespace mardle::exporting {

enum class Contents { kUnknown, kText, kTable };

struct Wording {
  std::string row, rows;        // "document", "documents"
  std::string column, columns;  // "word", "words"
};

// Documents and words for text, else rows and columns. What is not known is guessed: a sparse
// matrix of counts, nine in ten of whose columns are called by letters alone, is text.
Wording WordingOf(Contents contents, const Matrix& mat);

}  // namespace mardle::exporting
