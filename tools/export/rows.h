// SPDX-License-Identifier: MIT
//
// The files of a run as the export reads them.
#pragma once

#include <string>

#include "programs/io/matrix.h"
#include "programs/run_params.h"

namespace mardle::exporting {

// Where a matrix and its companions are. Empty names stand for the files beside the matrix, which
// may be missing; named ones must exist.
struct MatrixFiles {
  std::string matrix;
  std::string clabelfile;
  std::string rlabelfile;
  std::string rclassfile;
};

// The rows of a matrix as its companions name them.
struct NamedRows {
  int nrows = 0;
  Labels rlabels;
  molva::Strings rclasses;  // null without a class file
};

// Reads the labels and classes; of the matrix itself only the number of rows.
NamedRows ReadNamedRows(const MatrixFiles& files);

// The matrix with everything that goes with it.
Matrix ReadWholeMatrix(const MatrixFiles& files, int denseinput);

}  // namespace mardle::exporting
