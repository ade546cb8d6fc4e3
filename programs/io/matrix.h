// SPDX-License-Identifier: MIT
//
// The matrix as read, with its labels and classes.
#pragma once

#include <cstdint>
#include <utility>

#include "lib/support/alloc.h"
#include "lib/support/strings.h"

namespace mardle {

// Labels of rows or columns: read from a file, or generated when they are asked for, since few of a
// large matrix ever are.
class Labels {
 public:
  Labels() = default;
  // NOLINTNEXTLINE(google-explicit-constructor): a table that was read is a table of labels.
  Labels(molva::Strings texts) : texts_(std::move(texts)) {}
  // n labels PREFIX00001, PREFIX00002, ...
  Labels(std::int64_t n, molva::BlockName name, const char* prefix)
      : texts_(n, name), prefix_(prefix) {}

  std::size_t size() const { return texts_.size(); }
  explicit operator bool() const { return static_cast<bool>(texts_); }
  const char* operator[](std::int64_t i) const;
  void Set(std::size_t i, const char* text) { texts_.Set(i, text); }

 private:
  mutable molva::Strings texts_;
  const char* prefix_ = "";
};

// Dense when rowptr is null, which is how every consumer tells the two forms apart.
struct Matrix {
  int nrows = -1;
  int ncols = -1;
  molva::Array<int> rowptr;    // nrows + 1 row starts
  molva::Array<int> rowind;    // 0-based column of each entry, in the order of the file
  molva::Array<float> rowval;  // value of each entry; dense: nrows * ncols values, row by row
  molva::Strings rclasses;     // class label of each row as read; null without a class file
  Labels clabels;              // ncols column labels, read or generated
  Labels rlabels;              // nrows row labels, read or generated
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
