// SPDX-License-Identifier: MIT
//
// A matrix file read in blocks of rows, as often as it is asked for.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "programs/io/read_matrix.h"

namespace mardle::tools {

// Rows of the file, from the row `first` on; dense when rowptr is empty.
struct RowBlock {
  std::int64_t first = 0;
  int nrows = 0;
  int ncols = 0;
  std::vector<int> rowptr, rowind;
  std::vector<float> rowval;

  const int* starts() const { return rowptr.empty() ? nullptr : rowptr.data(); }
  const int* columns() const { return rowptr.empty() ? nullptr : rowind.data(); }
};

class MatrixBlocks {
 public:
  // Reads the header. Files that cannot be opened and headers end the run as they end that of
  // mardle; so do the rows when they are read.
  MatrixBlocks(std::string name, bool is_dense);

  const MatrixHeader& header() const { return header_; }
  bool is_dense() const { return is_dense_; }
  std::int64_t entries() const;

  // Reads the file and hands over its blocks one after the other.
  void ForEach(const std::function<void(const RowBlock&)>& visit) const;

 private:
  std::string name_;
  bool is_dense_;
  MatrixHeader header_;
};

}  // namespace mardle::tools
