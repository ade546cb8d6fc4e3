// SPDX-License-Identifier: MIT
//
// Everything the command line of mardle-import sets, with the defaults.
#pragma once

#include <optional>
#include <string>

#include "tools/import/dense_rows.h"
#include "tools/import/documents.h"
#include "tools/import/given_labels.h"
#include "tools/import/input_format.h"
#include "tools/import/matrix_writer.h"
#include "tools/import/table_columns.h"
#include "tools/import/term_counts.h"
#include "tools/import/text_tokens.h"

namespace mardle::tools {

struct ImportOptions {
  std::string input;
  std::optional<InputFormat> format;  // found out when absent
  std::string encoding;               // empty: UTF-8
  MatrixOutput output;
  Preparation preparation;  // tables and arrays
  bool zero_based = false;  // svmlight
  LabelFiles labels;        // of formats that have none
  TableOptions table;       // the label and class columns are also those of lines
  FolderOptions folder;
  WordOptions words;
  TermLimits limits;
  bool quiet = false;
};

}  // namespace mardle::tools
