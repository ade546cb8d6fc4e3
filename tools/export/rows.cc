// SPDX-License-Identifier: MIT
#include "tools/export/rows.h"

#include <utility>

#include "lib/support/files.h"
#include "programs/io/labels.h"
#include "programs/io/line_reader.h"
#include "programs/io/read_matrix.h"
#include "tools/text/file_error.h"
#include "tools/text/input_lines.h"

namespace mardle::exporting {
namespace {

// A named file has to be there; the readers would go on without it.
molva::String NameOrNull(const std::string& name) {
  if (name.empty()) return {};
  tools::OpenForReading(name);
  return molva::mystrdup(name.c_str());
}

RunParams ParamsOf(const MatrixFiles& files) {
  RunParams params;
  tools::OpenForReading(files.matrix);
  params.filename = molva::mystrdup(files.matrix.c_str());
  params.clabelfile = NameOrNull(files.clabelfile);
  params.rlabelfile = NameOrNull(files.rlabelfile);
  params.rclassfile = NameOrNull(files.rclassfile);
  return params;
}

void RequireRows(const MatrixFiles& files, const Matrix& mat) {
  if (mat.nrows < 1) throw tools::FileError({files.matrix, 1}, "the header tells of no rows");
}

}  // namespace

NamedRows ReadNamedRows(const MatrixFiles& files) {
  const RunParams params = ParamsOf(files);
  Matrix mat;
  {
    const molva::File file = tools::OpenForReading(files.matrix);
    LineReader reader(file.get());
    mat.nrows = ReadHeader(reader).nrows;
  }
  RequireRows(files, mat);
  mat.ncols = 0;
  ReadLabelsAndClasses(params, mat);
  return {mat.nrows, std::move(mat.rlabels), std::move(mat.rclasses)};
}

Matrix ReadWholeMatrix(const MatrixFiles& files, int denseinput) {
  RunParams params = ParamsOf(files);
  params.denseinput = denseinput;
  Matrix mat;
  ReadMatrix(params, mat);
  RequireRows(files, mat);
  return mat;
}

}  // namespace mardle::exporting
