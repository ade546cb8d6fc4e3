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
  std::vector<std::string> notes = {};  // what the user should know of the input, a line each
};

// Throws FileError when the input or the files fail, std::invalid_argument when the options are
// wrong for the input; nothing is written then.
ImportResult Import(const ImportOptions& options);

// What was made, for the user, one line or more.
std::string Summary(const ImportOptions& options, const ImportResult& result);

}  // namespace mardle::tools
