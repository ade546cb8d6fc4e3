// SPDX-License-Identifier: MIT
//
// Reads a matrix file and the label and class files beside it.
#pragma once

#include <cstdint>
#include <vector>

#include "programs/io/line_reader.h"
#include "programs/io/matrix.h"
#include "programs/run_params.h"

namespace mardle {

// Fills `mat` from params.filename, dense when params.denseinput is set, then the labels and
// classes. Every failure ends the run with its message. The file's checks are those of the two
// routines below.
void ReadMatrix(const RunParams& params, Matrix& mat);

// The header: up to three decimal integers, absent ones 0. A number that no int holds ends the run.
struct MatrixHeader {
  int nrows = 0;
  int ncols = 0;
  int nnz = 0;
};
MatrixHeader ReadHeader(LineReader& reader);

// The rows after the header. Sparse: pairs "column value", columns 1-based in the file and stored
// 0-based; only their upper bound is checked here. Dense: ncols values a row. Ends the run on a
// column above ncols, a missing value, a wrong number of entries, and rows that are missing.
void ReadSparseRows(LineReader& reader, const MatrixHeader& header, Matrix& mat);
void ReadDenseRows(LineReader& reader, const MatrixHeader& header, Matrix& mat);

// The same row by row, for matrices that are not to be held as a whole. Row i is a line; `count`
// entries of the file came before it.
void AppendSparseRow(const char* line, int i, std::int64_t count, int ncols,
                     std::vector<int>& columns, std::vector<float>& values);
void AppendDenseRow(const char* line, int i, int ncols, std::vector<float>& values);
[[noreturn]] void RefuseRowCount(int wanted, int found);
void RequireEntries(const MatrixHeader& header, std::int64_t count);

}  // namespace mardle
