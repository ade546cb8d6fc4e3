// SPDX-License-Identifier: MIT
//
// The work of mardle-import: one input, of whatever format, becomes a matrix.
#pragma once

#include <string>
#include <vector>

#include "tools/import/import_options.h"

namespace mardle::tools {

struct ImportResult {
  InputFormat format;
  MatrixSummary matrix = {};
  std::vector<std::string> files = {};  // of a folder, those that were read; from the folder
  std::vector<std::string> notes = {};  // what the user should know of the input, a line each
};

// Throws FileError when the input or the files fail, std::invalid_argument when the options are
// wrong for the input; nothing is written then.
ImportResult Import(const ImportOptions& options);

// What mardle needs to be told of the matrix, as options. A sparse one whose cells are all stored
// has no IDF, and one that is weighted needs none.
std::vector<std::string> MardleOptionsFor(const MatrixSummary& matrix);

// What was made, for the user, one line or more, and the command that clusters it.
std::string SummaryWithoutCommand(const ImportOptions& options, const ImportResult& result);
std::string Summary(const ImportOptions& options, const ImportResult& result);

}  // namespace mardle::tools
