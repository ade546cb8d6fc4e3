// SPDX-License-Identifier: MIT
//
// The matrix as read, with its labels and classes.
#pragma once

#include <cstdint>

#include "lib/support/alloc.h"
#include "lib/support/strings.h"

namespace mardle {

// Dense when rowptr is null, which is how every consumer tells the two forms apart.
struct Matrix {
  int nrows = -1;
  int ncols = -1;
  molva::Array<int> rowptr;    // nrows + 1 row starts
  molva::Array<int> rowind;    // 0-based column of each entry, in the order of the file
  molva::Array<float> rowval;  // value of each entry; dense: nrows * ncols values, row by row
  molva::Strings rclasses;     // class label of each row as read; null without a class file
  molva::Strings clabels;      // ncols column labels, read or generated
  molva::Strings rlabels;      // nrows row labels, read or generated
  int nclasses = -1;           // number of distinct classes; 1 without a class file
  molva::Array<int> classes;   // class of each row, 0 to nclasses - 1
  molva::Strings classnames;   // name of each class
};

// Makes the record empty again: counts -1, everything else null.
void InitMatrix(Matrix& mat);

// An empty record in a block named "CreateMatrix: mat".
molva::Owned<Matrix> CreateMatrix();

// Releases the three arrays of the matrix; labels and classes stay.
void FreeMatrix(Matrix& mat);

// Stored entries of a sparse matrix, cells of a dense one.
std::int64_t NonZeroCount(const Matrix& mat);

}  // namespace mardle
