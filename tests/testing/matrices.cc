// SPDX-License-Identifier: MIT
#include "tests/testing/matrices.h"

#include <algorithm>
#include <set>

#include "lib/matrix/prepare.h"

namespace testing_support {

SparseMatrix SparseOf(const std::vector<std::vector<float>>& rows) {
  SparseMatrix matrix;
  matrix.nrows = static_cast<int>(rows.size());
  matrix.ncols = rows.empty() ? 0 : static_cast<int>(rows[0].size());
  for (const std::vector<float>& row : rows) {
    for (std::size_t j = 0; j < row.size(); ++j) {
      if (row[j] == 0) continue;
      matrix.rowind.push_back(static_cast<int>(j));
      matrix.rowval.push_back(row[j]);
    }
    matrix.rowptr.push_back(static_cast<int>(matrix.rowind.size()));
  }
  return matrix;
}

SparseMatrix RandomDocuments(std::uint32_t seed, int nrows, int ncols, int nclusters,
                             int entries_per_row) {
  std::mt19937 random(seed);
  const auto below = [&random](int n) {
    return static_cast<int>(random() % static_cast<unsigned>(n));
  };
  const int topic_columns = ncols / nclusters;
  SparseMatrix matrix;
  matrix.nrows = nrows;
  matrix.ncols = ncols;
  for (int i = 0; i < nrows; ++i) {
    const int topic = below(nclusters);
    std::set<int> columns;
    for (int entry = 0; entry < entries_per_row; ++entry) {
      const bool on_topic = below(4) != 0;
      columns.insert(on_topic ? topic * topic_columns + below(topic_columns) : below(ncols));
    }
    for (const int j : columns) {
      matrix.rowind.push_back(j);
      matrix.rowval.push_back(static_cast<float>(1 + below(5)));
    }
    matrix.rowptr.push_back(static_cast<int>(matrix.rowind.size()));
  }
  return matrix;
}

std::vector<float> RandomDense(std::uint32_t seed, int nrows, int ncols) {
  std::mt19937 random(seed);
  std::vector<float> values(static_cast<std::size_t>(nrows) * static_cast<std::size_t>(ncols));
  for (float& v : values) v = static_cast<float>(static_cast<int>(random() % 2001) - 1000) / 128.0F;
  return values;
}

molva::Owned<molva::PreparedMatrix> PreparedOf(const std::vector<std::vector<float>>& rows) {
  const SparseMatrix matrix = SparseOf(rows);
  molva::Owned<molva::PreparedMatrix> mat = molva::CreateMatrix();
  molva::SetUpMatrix({}, *mat, matrix.raw());
  return mat;
}

molva::Owned<molva::PreparedMatrix> Prepared(const SparseMatrix& matrix,
                                             const molva::Control& control) {
  molva::PreparedCopy copy = molva::MakePreparedCopy(control, matrix.raw(), "Test");
  return std::move(copy.mat);
}

std::vector<int> RandomPart(std::uint32_t seed, int nrows, int nparts) {
  std::mt19937 random(seed);
  std::vector<int> part(static_cast<std::size_t>(nrows));
  for (std::size_t i = 0; i < part.size(); ++i) {
    const auto parts = static_cast<std::size_t>(nparts);
    part[i] = static_cast<int>(i < parts ? i : random() % parts);
  }
  return part;
}

}  // namespace testing_support
