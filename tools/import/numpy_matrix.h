// SPDX-License-Identifier: MIT
//
// Matrices that NumPy and SciPy have saved: an array of two dimensions (.npy, or alone in a .npz),
// or a sparse matrix by rows, by columns or by entries (.npz).
#pragma once

#include <string>
#include <vector>

#include "tools/import/dense_rows.h"
#include "tools/import/given_labels.h"
#include "tools/import/matrix_writer.h"

namespace mardle::tools {

// What the files of the two kinds are made into.
struct NumpyRequest {
  std::string path;  // of the input, for messages
  const MatrixOutput& output;
  const Preparation& preparation;  // of arrays
  const GivenLabels& labels;
};

// Take the bytes of the file. Throw FileError when anything in it is damaged or not supported.
MatrixSummary ImportNpy(std::string bytes, const NumpyRequest& request,
                        std::vector<std::string>& notes);
MatrixSummary ImportNpz(const std::string& bytes, const NumpyRequest& request,
                        std::vector<std::string>& notes);

}  // namespace mardle::tools
