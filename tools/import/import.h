// SPDX-License-Identifier: MIT
//
// The work of mardle-import: one input, of whatever format, becomes a matrix.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tools/import/documents.h"
#include "tools/import/input_format.h"
#include "tools/import/matrix_writer.h"
#include "tools/import/table_columns.h"
#include "tools/import/term_counts.h"
#include "tools/import/text_tokens.h"

namespace mardle::tools {

struct ImportOptions {
  std::string input;
  std::optional<InputFormat> format;  // found out when absent
  MatrixOutput output;
  bool sparse = false;      // tables and arrays
  bool zero_based = false;  // svmlight
  TableOptions table;       // the label and class columns are also those of lines
  FolderOptions folder;
  std::string token_pattern = kDefaultTokenPattern;
  std::string stop_words = "english";
  TermLimits limits;
  bool quiet = false;
};

struct ImportResult {
  InputFormat format;
  MatrixSummary matrix = {};
  std::int64_t files_passed_over = 0;  // of a folder
};

// Throws InputError when the input or the files fail, std::invalid_argument when the options are
// wrong for the input; nothing is written then.
ImportResult Import(const ImportOptions& options);

// What was made, for the user, one line or more.
std::string Summary(const ImportOptions& options, const ImportResult& result);

}  // namespace mardle::tools
