// SPDX-License-Identifier: MIT
#include "tools/export/rows.h"

#include "lib/support/files.h"
#include "programs/io/labels.h"
#include "programs/io/line_reader.h"
#include "programs/io/read_matrix.h"
#include "tools/export/failure.h"
#include "tools/export/file.h"

namespace mardle::exporting {
namespace {

// A named file has to be there; the readers would go on without it.
molva::String NameOrNull(const std::string& name) {
  if (name.empty()) return {};
  OpenOrFail(name);
  return molva::mystrdup(name.c_str());
}

RunParams ParamsOf(const MatrixFiles& files) {
  RunParams params;
  OpenOrFail(files.matrix);
  params.filename = molva::mystrdup(files.matrix.c_str());
  params.clabelfile = NameOrNull(files.clabelfile);
  params.rlabelfile = NameOrNull(files.rlabelfile);
  params.rclassfile = NameOrNull(files.rclassfile);
  return params;
}

}  // namespace

Matrix ReadRowNames(const MatrixFiles& files) {
  const RunParams params = ParamsOf(files);
  Matrix mat;
  {
    const molva::File file = OpenOrFail(files.matrix);
    LineReader reader(file.get());
    mat.nrows = ReadHeader(reader).nrows;
  }
  if (mat.nrows < 1) throw FailureAt(files.matrix, 1, "the header tells of no rows");
  mat.ncols = 0;
  ReadLabelsAndClasses(params, mat);
  return mat;
}

Matrix ReadWholeMatrix(const MatrixFiles& files, int denseinput) {
  RunParams params = ParamsOf(files);
  params.denseinput = denseinput;
  Matrix mat;
  ReadMatrix(params, mat);
  if (mat.nrows < 1) throw FailureAt(files.matrix, 1, "the header tells of no rows");
  return mat;
}

}  // namespace mardle::exporting
