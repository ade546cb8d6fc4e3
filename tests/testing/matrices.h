// SPDX-License-Identifier: MIT
//
// Small matrices for tests.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <random>
#include <vector>

#include "lib/matrix/control.h"
#include "lib/matrix/prepared_matrix.h"

namespace testing_support {

// A row-compressed matrix in plain vectors.
struct SparseMatrix {
  int nrows = 0;
  int ncols = 0;
  std::vector<int> rowptr = {0};
  std::vector<int> rowind;
  std::vector<float> rowval;

  molva::RawMatrix raw() const {
    return {nrows, ncols, rowptr.data(), rowind.data(), rowval.data()};
  }
};

// Stores the cells that are not zero, row by row.
SparseMatrix SparseOf(const std::vector<std::vector<float>>& rows);

// Document-like random rows: each of `nclusters` topics prefers its own share of the columns. Every
// row has entries; columns within a row are distinct and increasing.
SparseMatrix RandomDocuments(std::uint32_t seed, int nrows, int ncols, int nclusters,
                             int entries_per_row);

// Random values with both signs in every cell.
std::vector<float> RandomDense(std::uint32_t seed, int nrows, int ncols);

// A prepared matrix that holds exactly these rows: no scaling, no pruning.
molva::Owned<molva::PreparedMatrix> PreparedOf(const std::vector<std::vector<float>>& rows);

// The prepared form of a matrix under the cosine and no row or column model, or under what
// `control` says.
molva::Owned<molva::PreparedMatrix> Prepared(const SparseMatrix& matrix,
                                             const molva::Control& control = {});

// A clustering with every cluster in use: rows 0, 1, ... take clusters at random after the first
// nparts rows took one each.
std::vector<int> RandomPart(std::uint32_t seed, int nrows, int nparts);

}  // namespace testing_support
